// The integrated-intensity observations of a phase: calculated values, reliability factors, rows of
// the normal equations.
#include "refine/intensity_evaluation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "crystal/intensity_file.h"
#include "format/fortran_format.h"
#include "records/profile_slots.h"
#include "refine/reflection_structure.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr float kSmallestVariance = 1.0e-10f;
constexpr int kScaleSlots[] = {IntegratedSlot::Sc1, IntegratedSlot::Sc2, IntegratedSlot::Sc3,
                               IntegratedSlot::Sc4, IntegratedSlot::Sc5, IntegratedSlot::Sc6};

// The running sums of a cluster (one observation for single-crystal data).
struct ClusterSums {
  int first = 0;          // slot of the observation that carries the observed value
  double value = 0.0;     // calculated value of the cluster
  RunTable1<double> row;  // derivatives of the value, 1..fitted
};

// The running sums of the factors.
struct FactorSums {
  double absDiff = 0.0, weighted = 0.0, absF = 0.0;
  int observed = 0;
};

std::array<float, 3> RealIndices(const Phase& ph, const Reflection& r) {
  std::array<float, 3> h{static_cast<float>(KeyH(r.key)), static_cast<float>(KeyK(r.key)),
                         static_cast<float>(KeyL(r.key))};
  const int n = std::abs(r.satelliteIndex);
  if (n == 0 || n > ph.Nvk) return h;
  const float sign = r.satelliteIndex > 0 ? 1.0f : -1.0f;
  for (int i = 0; i < 3; ++i) h[static_cast<std::size_t>(i)] += sign * ph.vectors[n].KVEC[i + 1];
  return h;
}

// F² of observation o from the atoms of the phase; derivatives into dF2[0..fitted).
float ObservationF2(Job& job, StructureFactorScratch& scratch, int ip, int k,
                    IntensityObservation& o, float* dF2, int fitted) {
  const Phase& ph = job.phases[k];
  const PhasePattern& c = ph.pat[ip];
  StructureFactorInputs in{
      ph.group,
      std::span<const AtomSite>(job.atoms.ptr() + ph.atomOffset, static_cast<std::size_t>(ph.Nat)),
      c.species,
      job.patterns[ip].NSCAT,
      c.Irf,
      0};
  CellMetric metric;
  in.fractional = ObjectFrameOf(c, metric);
  StructureFactorRequest q;
  q.nSym = ph.group.NSYM;
  q.acentric = ph.group.ICENT == 1 ? 1 : 2;
  q.h = RealIndices(ph, o.reflection);
  q.s2 = o.sinThetaOverLambda * o.sinThetaOverLambda;
  const StructureFactorValue v = EvaluateStructureFactor(in, q, o.reflection, scratch, dF2, fitted);
  o.reflection.F2 = v.F2;
  return v.F2;
}

void AddCoded(RunTable1<double>& row, const Codeword& w, double value, int fitted) {
  const int n = w.parameterNumber;
  if (n >= 1 && n <= fitted) row[n] += w.multiplier * value;
}

// Adds member o to the cluster: its value and derivatives.
void AddMember(Job& job, StructureFactorScratch& scratch, int ip, int k, IntensityObservation& o,
               ClusterSums& cluster, float* dF2, int fitted) {
  const PhasePattern& c = job.phases[k].pat[ip];
  for (int L = 0; L < fitted; ++L) dF2[L] = 0.0f;
  const float F2 = ObservationF2(job, scratch, ip, k, o, fitted > 0 ? dF2 : nullptr, fitted);
  const float scale = GroupScale(c, o.group);
  const double factor = static_cast<double>(o.reflection.LpM) * o.reflection.Corr;
  o.F2cal = static_cast<float>(scale * factor * F2);
  cluster.value += o.F2cal;
  for (int L = 1; L <= fitted; ++L) cluster.row[L] += scale * factor * dF2[L - 1];
  if (scale != 0.0f)
    AddCoded(cluster.row, c.PAC[kScaleSlots[o.group - 1]], o.F2cal / scale, fitted);
}

void AddRow(NormalMatrix& n, const RunTable1<double>& row, double weight, double residual,
            int fitted) {
  for (int i = 1; i <= fitted; ++i) {
    if (row[i] == 0.0) continue;
    const double u = weight * row[i];
    n.SumB[i] += u * residual;
    for (int j = i; j <= fitted; ++j) n.SumA(i, j) += u * row[j];
  }
}

// Closes a cluster: its variance, the factor sums and, in a cycle, its row.
void CloseCluster(Job& job, int ip, int k, ClusterSums& cluster, FactorSums& sums,
                  IntensityMode mode, int fitted) {
  IntensityTable& t = job.patterns[ip].intensities;
  IntensityObservation& o = t.slot[cluster.first];
  const PhasePattern& c = job.phases[k].pat[ip];
  const IntensityPhaseData& d = t.phase[k];
  float variance = IntensityVariance(job.patterns[ip].IWGT, o.F2obs, o.sigmaF2);
  if (c.Rmuc > 0.9f) variance *= d.CHI2;
  if (variance < kSmallestVariance) variance = kSmallestVariance;
  o.variance = variance;
  if (!(o.F2obs >= c.Rmub * o.sigmaF2)) return;
  const double diff = static_cast<double>(o.F2obs) - cluster.value;
  ++sums.observed;
  sums.absDiff += std::fabs(diff);
  sums.weighted += diff * diff / variance;
  sums.absF += std::fabs(std::sqrt(std::fabs(o.F2obs)) - std::sqrt(std::fabs(cluster.value)));
  if (mode == IntensityMode::kEquations) {
    AddRow(job.refinement.normal, cluster.row, c.Rmua / variance, diff, fitted);
  }
}

float Percent(double sum, float divisor) {
  return divisor != 0.0f ? static_cast<float>(100.0 * sum / divisor) : 0.0f;
}

[[noreturn]] void StopOnTooFewObservations(Job& job, int ip, int k, int fitted) {
  const IntensityPhaseData& d = job.patterns[ip].intensities.phase[k];
  WriteReports(job, Fmt("(A,I3,A,I6,A,I4)", " => Phase", k, ": observed intensities", d.NOBSERVED,
                        " for refined parameters", fitted));
  ConsoleLine(job, " => The list must hold more observed intensities than refined parameters");
  StopBox(job, " Too few observed intensities ");
}

}  // namespace

float GroupScale(const PhasePattern& c, int g) {
  const int group = (g < 1 || g > 6) ? 1 : g;
  return c.PAR[kScaleSlots[group - 1]];
}

IntensityFactors EvaluateIntensities(Job& job, StructureFactorScratch& scratch, int ip, int k,
                                     IntensityMode mode) {
  IntensityTable& t = job.patterns[ip].intensities;
  IntensityPhaseData& d = t.phase[k];
  const int fitted = FittedCount(job);
  // Sized once for the list, before its observations.
  std::vector<float> derivatives(static_cast<std::size_t>(std::max(fitted, 1)), 0.0f);
  float* dF2 = derivatives.data();
  ClusterSums cluster;
  cluster.row = RunTable1<double>(fitted);
  FactorSums sums;
  const int first = t.start[k] + 1, last = t.start[k] + t.count[k];
  for (int s = first; s <= last; ++s) {
    IntensityObservation& o = t.slot[s];
    if (o.clusterStart) {
      if (s > first) CloseCluster(job, ip, k, cluster, sums, mode, fitted);
      cluster.first = s;
      cluster.value = 0.0;
      for (int L = 1; L <= fitted; ++L) cluster.row[L] = 0.0;
    }
    AddMember(job, scratch, ip, k, o, cluster, dF2, fitted);
  }
  if (last >= first) CloseCluster(job, ip, k, cluster, sums, mode, fitted);
  IntensityFactors f;
  f.observed = sums.observed;
  f.RF2 = Percent(sums.absDiff, d.SumF2);
  f.RF2w =
      d.SumF2w != 0.0f ? static_cast<float>(100.0 * std::sqrt(sums.weighted / d.SumF2w)) : 0.0f;
  f.RF = Percent(sums.absF, d.SumF);
  const int freedom = d.NOBSERVED - fitted;
  f.chi2Defined = freedom > 0;
  f.CHI2 = f.chi2Defined ? static_cast<float>(sums.weighted / freedom) : 0.0f;
  d.RF2 = f.RF2;
  d.RF2w = f.RF2w;
  d.RF = f.RF;
  if (f.chi2Defined) d.CHI2 = f.CHI2;
  return f;
}

std::vector<std::string> IntensityFactorLines(int k, int datatype, const IntensityFactors& f) {
  std::vector<std::string> lines;
  lines.push_back(Fmt("(A,I3)", " => Phase:", k));
  lines.push_back(Fmt("(A,F10.4)", " =>    RF2 -factor : ", f.RF2));
  lines.push_back(Fmt("(A,F10.4)", " =>    RF2w-factor : ", f.RF2w));
  if (datatype == 1) lines.push_back(Fmt("(A,F10.4)", " =>    RF  -factor : ", f.RF));
  lines.push_back(Fmt("(A,F12.4)", " =>    Chi2(Intens): ", f.CHI2));
  return lines;
}

float AccumulateIntensityObservations(Job& job, StructureFactorScratch& scratch, float previous) {
  const int fitted = FittedCount(job);
  float sum = previous;
  int counted = job.run.ICRYG == 0 ? 1 : 0;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    bool any = false;
    for (int k = 1; k <= job.run.NPHASE; ++k) {
      const PhasePattern& c = job.phases[k].pat[ip];
      if (c.Contribution == 0 || std::abs(c.Irf) != 4) continue;
      if (!any)
        ConsoleLine(job, " Calculation of Integrated intensities + Normal Matrix   vector...");
      any = true;
      const IntensityFactors f =
          EvaluateIntensities(job, scratch, ip, k, IntensityMode::kEquations);
      if (!f.chi2Defined && fitted > 0) StopOnTooFewObservations(job, ip, k, fitted);
      const int datatype = job.patterns[ip].intensities.phase[k].DATATYPE;
      for (const std::string& line : IntensityFactorLines(k, datatype, f)) ConsoleLine(job, line);
      sum += f.CHI2;
      ++counted;
    }
    if (any && job.patterns[ip].IWGT == 2) return 1.0f;
  }
  return counted > 0 ? sum / static_cast<float>(counted) : sum;
}

namespace {

// The calculated value of the cluster that begins at slot s.
float ClusterValue(const IntensityTable& t, int s, int last) {
  double value = t.slot[s].F2cal;
  for (int m = s + 1; m <= last && !t.slot[m].clusterStart; ++m) value += t.slot[m].F2cal;
  return static_cast<float>(value);
}

std::string ListRow(const IntensityTable& t, int s, int last, int datatype, float Rmub) {
  const IntensityObservation& o = t.slot[s];
  const Reflection& r = o.reflection;
  const int h = KeyH(r.key), k = KeyK(r.key), l = KeyL(r.key);
  if (datatype == 2 && !o.clusterStart) {
    return Fmt("(4I4,I7,2F13.2,F12.2)", h, k, l, r.satelliteIndex, r.multiplicity, 0.0f, o.F2cal,
               0.0f);
  }
  const float value = ClusterValue(t, s, last);
  const float difSig = (o.F2obs - value) / std::sqrt(o.variance);
  const std::string tag = o.F2obs >= Rmub * o.sigmaF2 ? "" : " Excl";
  if (datatype == 2) {
    return Fmt("(4I4,I7,2F13.2,F12.2,F13.3,F18.3,A)", h, k, l, r.satelliteIndex, r.multiplicity,
               o.F2obs, o.F2cal, 0.0f, difSig, value, tag);
  }
  return Fmt("(4I4,I6,2F14.3,F12.3,F12.3,A)", h, k, l, r.satelliteIndex, o.group, o.F2obs, value,
             0.0f, difSig, tag);
}

}  // namespace

void ReportIntensityList(Job& job, StructureFactorScratch& scratch, int ip, int k) {
  const IntensityTable& t = job.patterns[ip].intensities;
  const int datatype = t.phase[k].DATATYPE;
  const IntensityFactors f = EvaluateIntensities(job, scratch, ip, k, IntensityMode::kFactors);
  if (datatype == 2) {
    WriteLine(job, Unit::Out, " => Ical= scale*j*LP*Corr*F2");
    WriteLine(job, Unit::Out,
              "   h   k   l ivk   Mult       Iobs         Ical       Ical(mag)"
              "      Dif/sig        F2cal(Nuc+Mag)");
  } else {
    WriteLine(job, Unit::Out, " => F2cal= scale*Corr*F2");
    WriteLine(job, Unit::Out,
              "   h   k   l ivk   cod      F2obs         F2cal      F2cal(mag)     Dif/sig ");
  }
  const int first = t.start[k] + 1, last = t.start[k] + t.count[k];
  const float Rmub = job.phases[k].pat[ip].Rmub;
  for (int s = first; s <= last; ++s)
    WriteLine(job, Unit::Out, ListRow(t, s, last, datatype, Rmub));
  for (const std::string& line : IntensityFactorLines(k, datatype, f)) {
    ConsoleLine(job, line);
    WriteReports(job, line);
  }
}

float GlobalChi2WithIntensities(const Job& job, float profiles) {
  float sum = profiles;
  int counted = job.run.ICRYG == 0 ? 1 : 0;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    bool any = false;
    for (int k = 1; k <= job.run.NPHASE; ++k) {
      const PhasePattern& c = job.phases[k].pat[ip];
      if (c.Contribution == 0 || std::abs(c.Irf) != 4) continue;
      any = true;
      sum += job.patterns[ip].intensities.phase[k].CHI2;
      ++counted;
    }
    if (any && job.patterns[ip].IWGT == 2) return 1.0f;
  }
  return counted > 0 ? sum / static_cast<float>(counted) : sum;
}

bool HasIntensityObservations(const Job& job) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    for (int k = 1; k <= job.run.NPHASE; ++k) {
      const PhasePattern& c = job.phases[k].pat[ip];
      if (c.Contribution != 0 && std::abs(c.Irf) == 4) return true;
    }
  }
  return false;
}

}  // namespace corvinet
