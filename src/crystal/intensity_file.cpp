// Reading the list of observed integrated intensities of a phase with |Irf| 4.
#include "crystal/intensity_file.h"

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "crystal/equivalents.h"
#include "crystal/metric.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/file_set.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr std::size_t kHeadLength = 60;
constexpr float kSmallestSigma = 1.0e-8f;
constexpr float kSigmaOfZero = 0.001f;
constexpr float kSameVector = 0.00001f;
constexpr int kLargestGroup = 6;

TextUnit& Unit6(Job& job) {
  return job.files.units[Unit::HklIn];
}

[[noreturn]] void StopUnreadable(Job& job, const std::string& record) {
  ConsoleLine(job, " => Unreadable record of the intensity file:");
  ConsoleLine(job, record);
  StopBox(job, " Error reading the intensity file ");
}

std::string HeadLine(Job& job) {
  std::string line;
  if (ReadRecord(Unit6(job), line, kHeadLength) != RecordRead::Ok) StopUnreadable(job, line);
  return line;
}

// The next line read in free format into `targets`.
void FreeLine(Job& job, std::span<const ReadTarget> targets) {
  std::string record;
  do {
    if (ReadRecord(Unit6(job), record) != RecordRead::Ok) StopUnreadable(job, record);
  } while (Trim(record).empty());
  if (ReadListLine(record, targets) != ReadStatus::Ok) StopUnreadable(job, record);
}

void ReadVectors(Job& job, const Phase& ph) {
  int count = -1;
  const ReadTarget countTarget[] = {&count};
  FreeLine(job, countTarget);
  if (count != ph.Nvk) StopBox(job, " Wrong number of k-vectors!! ");
  for (int n = 1; n <= ph.Nvk; ++n) {
    int number = 0;
    Table1<float, 3> read;
    const ReadTarget targets[] = {&number, &read[1], &read[2], &read[3]};
    FreeLine(job, targets);
    const Table1<float, 3>& given = ph.vectors[n].KVEC;
    bool differs = false;
    for (int i = 1; i <= 3; ++i) differs = differs || std::fabs(read[i] - given[i]) >= kSameVector;
    if (!differs) continue;
    WriteReports(job, " Difference between read and supplied K-vectors: ");
    WriteReports(job, Fmt("(I4,3F10.5,4X,3F10.5)", n, read[1], read[2], read[3], given[1], given[2],
                          given[3]));
  }
}

bool IsXrayPhase(const PhasePattern& c) {
  return c.Jtyp == 0 || c.Jtyp == 2;
}

// Lines 1 to 3, the monochromator line of X-ray clusters and the vectors.
CompiledFormat ReadHeading(Job& job, IntensityPhaseData& d) {
  d.title = HeadLine(job);
  WriteReports(job, " -> Title: " + d.title);
  d.dataFormat = Trim(HeadLine(job));
  WriteReports(job, " -> Format of data: " + d.dataFormat);
  CompiledFormat format;
  try {
    format = CompileFormat(d.dataFormat);
  } catch (const FormatTextError&) {
    StopBox(job, " Wrong format of the intensity records ");
  }
  const ReadTarget line3[] = {&d.WAVELENGTH, &d.CONV, &d.DATATYPE};
  FreeLine(job, line3);
  WriteReports(job, Fmt("(A,F10.5)", " -> Wavelength : ", d.WAVELENGTH));
  return format;
}

void ReadClusterTerms(Job& job, int k, int ip, IntensityPhaseData& d) {
  if (d.DATATYPE > 1) d.CONV = 0;
  if (d.DATATYPE <= 1 || !IsXrayPhase(job.phases[k].pat[ip])) return;
  const ReadTarget terms[] = {&d.COSMONO, &d.POLCONST};
  FreeLine(job, terms);
  WriteReports(job, " -> X-ray Powder data:");
  WriteReports(job, Fmt("(A,F10.5)", "                     cos2(2theta_monok)=", d.COSMONO));
  WriteReports(job, Fmt("(A,F10.5)", "                  Polarization constant=", d.POLCONST));
}

void ReportType(Job& job, const IntensityPhaseData& d) {
  std::string words = " F2 and Sig(F2) have been input";
  if (d.DATATYPE == 2) {
    words = " Powder integrated intensities of peak-clusters";
  } else if (d.CONV == 1) {
    words = " F and Sig(F) have been converted to F2, Sig(F2)";
  }
  WriteReports(job, " -> Type of data: " + words);
}

// One record as read, before it takes a slot.
struct IntensityRecord {
  int h = 0, k = 0, l = 0, satellite = 0;
  float F2obs = 0.0f, sigmaF2 = 0.0f;
  int group = 0;
  float extra[3] = {0.0f, 0.0f, 0.0f};
};

// False at the end of the list: end of file or a record of zeros.
bool NextIntensityRecord(Job& job, const CompiledFormat& format, bool withVectors,
                         IntensityRecord& r) {
  std::string record;
  if (ReadRecord(Unit6(job), record) != RecordRead::Ok) return false;
  std::vector<ReadTarget> targets = {&r.h, &r.k, &r.l};
  if (withVectors) targets.emplace_back(&r.satellite);
  for (ReadTarget t : {ReadTarget(&r.F2obs), ReadTarget(&r.sigmaF2), ReadTarget(&r.group),
                       ReadTarget(&r.extra[0]), ReadTarget(&r.extra[1]), ReadTarget(&r.extra[2])}) {
    targets.push_back(t);
  }
  const NextRecord next = [&job](std::string& line) {
    return ReadRecord(Unit6(job), line) == RecordRead::Ok;
  };
  try {
    if (ReadFormatted(format, record, next, targets) != ReadStatus::Ok) StopUnreadable(job, record);
  } catch (const std::invalid_argument&) {
    StopBox(job, " Wrong format of the intensity records ");
  }
  return r.h != 0 || r.k != 0 || r.l != 0 || r.satellite != 0;
}

[[noreturn]] void StopTooMany(Job& job) {
  WriteReports(job, Fmt("(A,I6)", " -> Too many reflections!!!:", job.dimensions.IRS));
  ConsoleLine(job, " Too many reflections");
  StopBox(job, " Too many reflections ");
}

std::array<double, 3> RealIndices(const Phase& ph, const IntensityRecord& r) {
  std::array<double, 3> h{static_cast<double>(r.h), static_cast<double>(r.k),
                          static_cast<double>(r.l)};
  const int n = std::abs(r.satellite);
  if (n == 0 || n > ph.Nvk) return h;
  const double sign = r.satellite > 0 ? 1.0 : -1.0;
  for (int i = 0; i < 3; ++i) h[i] += sign * ph.vectors[n].KVEC[i + 1];
  return h;
}

Table1<float, 6> Coefficients(const PhasePattern& c) {
  Table1<float, 6> q;
  for (int i = 1; i <= 6; ++i) q[i] = c.PAR[5 + i];
  return q;
}

// Fills the observation of record r of phase k.
void StoreObservation(const Job& job, int k, int ip, const IntensityRecord& r,
                      IntensityObservation& o) {
  const Phase& ph = job.phases[k];
  const PhasePattern& c = ph.pat[ip];
  const IntensityPhaseData& d = job.patterns[ip].intensities.phase[k];
  o = IntensityObservation{};
  o.reflection.key = ReflectionKey(1, k, r.h, r.k, r.l);
  o.reflection.satelliteIndex = r.satellite;
  o.reflection.multiplicity = 1;
  o.F2obs = r.F2obs;
  o.sigmaF2 = r.sigmaF2 < kSmallestSigma ? kSigmaOfZero : r.sigmaF2;
  o.group = (r.group <= 0 || r.group > kLargestGroup) ? 1 : r.group;
  o.clusterStart = d.DATATYPE != 2 || r.group != 0;
  for (int i = 0; i < 3; ++i) o.direction[static_cast<std::size_t>(i)] = r.extra[i];
  if (c.Irf == -4) {
    o.reflection.fileValue1 = o.reflection.Aprime = r.extra[0];
    o.reflection.fileValue2 = o.reflection.Bprime = r.extra[1];
  }
  const double q = InverseDSquared(Coefficients(c), RealIndices(ph, r));
  o.sinThetaOverLambda = static_cast<float>(0.5 * std::sqrt(std::fabs(q)));
  o.reflection.Corr = 1.0f;
  if (d.DATATYPE != 2) {
    o.reflection.LpM = 1.0f;
    return;
  }
  o.reflection.multiplicity = ClusterMultiplicity(ph.group, r.h, r.k, r.l);
  o.lpFactor = IntensityLorentzPolarisation(
      {o.sinThetaOverLambda, d.WAVELENGTH, IsXrayPhase(c), d.COSMONO, d.POLCONST});
  o.reflection.LpM = static_cast<float>(o.reflection.multiplicity) * o.lpFactor;
}

// The sums of the observed ones, with F turned into F² first when CONV is 1.
void ConvertAndSum(IntensityTable& t, int k, float Rmub) {
  IntensityPhaseData& d = t.phase[k];
  const int first = t.start[k] + 1, last = t.start[k] + t.count[k];
  auto sum = [&](bool sumOfF) {
    d.NOBSERVED = 0;
    d.SumF2 = d.SumF2w = 0.0f;
    for (int s = first; s <= last; ++s) {
      const IntensityObservation& o = t.slot[s];
      if (!o.clusterStart || !(o.F2obs >= Rmub * o.sigmaF2)) continue;
      ++d.NOBSERVED;
      d.SumF2 += o.F2obs;
      d.SumF2w += (o.F2obs / o.sigmaF2) * (o.F2obs / o.sigmaF2);
      if (sumOfF) d.SumF += std::sqrt(std::fabs(o.F2obs));
    }
  };
  d.SumF = 0.0f;
  if (d.CONV != 1) {
    sum(true);
    return;
  }
  sum(false);
  d.SumF = d.SumF2;
  for (int s = first; s <= last; ++s) {
    IntensityObservation& o = t.slot[s];
    if (o.F2obs < 0.0f) continue;
    o.sigmaF2 = 2.0f * o.F2obs * o.sigmaF2;
    if (o.sigmaF2 < kSmallestSigma) o.sigmaF2 = kSigmaOfZero;
    o.F2obs = o.F2obs * o.F2obs;
  }
  sum(false);
}

}  // namespace

float IntensityLorentzPolarisation(const IntensityLpInputs& in) {
  const double s = static_cast<double>(in.sinThetaOverLambda) * in.wavelength;
  const double sin2 = s * s;
  const double cosTheta = std::sqrt(std::fabs(1.0 - sin2));
  double lp = 1.0 / (2.0 * sin2 * cosTheta);
  if (in.xray) {
    const double c2 = (1.0 - 2.0 * sin2) * (1.0 - 2.0 * sin2);
    lp *= in.polConst > 0.0f ? 1.0 - in.polConst + in.polConst * c2 : 1.0 + in.cosMono * c2;
  }
  return static_cast<float>(lp);
}

int ClusterMultiplicity(const SpaceGroup& group, int h, int k, int l) {
  int a = std::abs(h), b = std::abs(k), c = std::abs(l);
  const int laue = group.LAUE;
  if (laue == 4 || laue == 5 || laue == 10 || laue == 11 || laue == 12) std::swap(a, b);
  if (laue == 14) std::swap(a, c);
  return MultiplicityByClass(laue, group.UniqueAxis, a, b, c) * group.multiplicityFactor;
}

float IntensityVariance(int IWGT, float F2obs, float sigmaF2) {
  const float w = static_cast<float>(IWGT);
  return ((1.0f - w) * (2.0f - w) / 2.0f) * sigmaF2 * sigmaF2 + w * (2.0f - w) * F2obs -
         w * (1.0f - w) / 2.0f;
}

int ReadIntensities(Job& job, int k, int ip) {
  const Phase& ph = job.phases[k];
  Pattern& p = job.patterns[ip];
  IntensityTable& t = p.intensities;
  IntensityPhaseData& d = t.phase[k];
  OpenFiles(job, FileKind::kReflectionInput, ip, k);
  const CompiledFormat format = ReadHeading(job, d);
  ReadClusterTerms(job, k, ip, d);
  if (ph.Nvk > 0) ReadVectors(job, ph);
  ReportType(job, d);
  t.start[k] = t.total;
  IntensityRecord r;
  int clusterGroup = 1;
  while (NextIntensityRecord(job, format, ph.Nvk > 0, r)) {
    if (t.total + p.reflections.total >= p.reflections.capacity) StopTooMany(job);
    ++t.total;
    t.slot.MakeRoomFor(t.total);
    IntensityObservation& o = t.slot[t.total];
    StoreObservation(job, k, ip, r, o);
    if (t.total == t.start[k] + 1) o.clusterStart = true;
    // The members of a cluster take the scale of its first reflection.
    if (o.clusterStart) clusterGroup = o.group;
    o.group = clusterGroup;
    r = IntensityRecord{};
  }
  CloseUnit(Unit6(job));
  t.count[k] = t.total - t.start[k];
  ConvertAndSum(t, k, ph.pat[ip].Rmub);
  WriteReports(job, Fmt("(A,I6,A,I6)", " -> Number of intensities read: ", t.count[k],
                        "  observed: ", d.NOBSERVED));
  return t.count[k];
}

}  // namespace corvinet
