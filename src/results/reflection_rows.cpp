// The reflection rows of the final report: headers of the reflection file by JLKH, one row per
// reflection, the Bragg factor lines with fractions, and the BRAG row of the parameter record.
#include "results/reflection_rows.h"

#include <cmath>

#include "format/fortran_format.h"
#include "records/reflection.h"
#include "refine/order_reflections.h"

namespace corvinet {

namespace {

constexpr float kHalfDegree = 0.008726646f;
constexpr float kTwoPi = 6.2831855f;

bool HasVectors(const Job& job, int f) {
  return job.phases[f].Nvk > 0;
}

// Interplanar distance of a reflection from its position in the abscissa unit.
float SpacingOf(const Pattern& p, float position) {
  switch (p.IXUNIT) {
    case AbscissaUnit::kTwoTheta: {
      const float s = std::sin(kHalfDegree * position);
      return s > 0.0f ? MeanWavelength(p) / (2.0f * s) : 0.0f;
    }
    case AbscissaUnit::kTimeOfFlight:
      return p.Dtt1 != 0.0f ? position / p.Dtt1 : 0.0f;
    default:
      return position != 0.0f ? p.GLB[8] / position : 0.0f;
  }
}

std::vector<std::string> VectorFormatLines(const Job& job, int f) {
  std::vector<std::string> lines;
  const Phase& ph = job.phases[f];
  lines.emplace_back(HasVectors(job, f) ? "(4i4,2f12.4,i4,3f8.0)" : "(3i4,2f12.4,i4,3f8.4)");
  lines.emplace_back("   0   0");
  for (int n = 1; n <= ph.Nvk; ++n) {
    const Table1<float, 3>& K = ph.vectors[n].KVEC;
    lines.push_back(Fmt("(I4,3F8.4)", n, K[1], K[2], K[3]));
  }
  return lines;
}

}  // namespace

float MeanWavelength(const Pattern& p) {
  return (p.LAMBDA[1] + p.RATIO[2] * p.LAMBDA[2]) / (1.0f + p.RATIO[2]);
}

std::vector<std::string> ReflectionFileHeader(const Job& job, int ip, int f) {
  const int jlkh = job.patterns[ip].JLKH;
  const bool vectors = HasVectors(job, f);
  switch (jlkh) {
    case 0:
      return {};
    case 1:
      if (IsMagneticKind(job.phases[f].Jbt)) {
        return {"   h   k   l Mult   Intensity   S.Factor     2T      D(A)   Q(A-1 )"};
      }
      return {" Code h   k   l  Mult   D(A)     2T      HW       Iobs    Icalc   io-ic"};
    case 2:
      return {"   h   k   l    Mult  sinT/lamb    2T       Fwhm         F2      sf2"};
    case -2:
      return {"   h   k   l    Mult   Q(Ang-1)    2T       Fwhm         F2      sf2"};
    case 3:
    case -3:
      return {"   h   k   l    Mult    Freal       Fimag        2T        Intensity "};
    case 4:
    case -4:
      return VectorFormatLines(job, f);
    default:
      if (vectors) return {"   h   k   l ivk Mult     S.Factor     2T      D(A)    Q(A-1)"};
      return {"   h   k   l  Mult     S.Factor     2T      D(A)    Q(A-1)"};
  }
}

ReflectionRowValues ReflectionRow(const Job& job, int ip, int k, const ReflectionShare& share) {
  const Pattern& p = job.patterns[ip];
  const Reflection& r = p.reflections.slot[k];
  ReflectionRowValues v;
  v.h = KeyH(r.key);
  v.k = KeyK(r.key);
  v.l = KeyL(r.key);
  v.vector = r.satelliteIndex;
  v.multiplicity = r.multiplicity;
  v.phase = KeyPhase(r.key);
  v.twoTheta = PeakIntervalOf(job, ip, k).position;
  v.d = SpacingOf(p, r.position);
  if (v.d > 0.0f) {
    v.Q = kTwoPi / v.d;
    v.sinThetaOverLambda = 1.0f / (2.0f * v.d);
  }
  v.fwhm = r.Fwhm;
  v.Iobs = share.Iobs;
  v.Icalc = share.Icalc;
  v.Fobs = share.Fobs;
  v.Fcalc = share.Fcalc;
  v.Freal = r.Aprime;
  v.Fimag = r.Bprime;
  return v;
}

std::string ReportReflectionRow(const ReflectionRowValues& v) {
  return Fmt("(I5,3I4,I5,F8.4,F9.3,F8.4,F11.1,F9.1,F8.1)", v.phase, v.h, v.k, v.l, v.multiplicity,
             v.d, v.twoTheta, v.fwhm, v.Iobs, v.Icalc, v.Iobs - v.Icalc);
}

std::string ReflectionFileRow(const Job& job, int ip, int f, const ReflectionRowValues& v) {
  const int jlkh = job.patterns[ip].JLKH;
  const bool vectors = HasVectors(job, f);
  switch (jlkh) {
    case 0:
      return {};
    case 1:
      if (IsMagneticKind(job.phases[f].Jbt)) {
        return Fmt("(3I4,I5,2F12.3,F9.3,2F9.4)", v.h, v.k, v.l, v.multiplicity, v.Iobs, v.Fobs,
                   v.twoTheta, v.d, v.Q);
      }
      return ReportReflectionRow(v);
    case 2:
    case -2:
      return Fmt("(3I4,I8,F11.5,F9.3,F11.4,F12.3,F9.3)", v.h, v.k, v.l, v.multiplicity,
                 jlkh == 2 ? v.sinThetaOverLambda : v.Q, v.twoTheta, v.fwhm, v.Fobs * v.Fobs, 0.0f);
    case 3:
    case -3:
      return Fmt("(3I4,I8,2F12.4,F11.3,F14.2)", v.h, v.k, v.l, v.multiplicity, v.Freal, v.Fimag,
                 v.twoTheta, v.Icalc);
    case 4:
    case -4:
      if (vectors) {
        return Fmt("(4I4,2F12.4,I4,3F8.0)", v.h, v.k, v.l, v.vector, v.Fobs * v.Fobs, 0.0f, v.phase,
                   v.twoTheta, v.fwhm, v.sinThetaOverLambda);
      }
      return Fmt("(3I4,2F12.4,I4,3F8.4)", v.h, v.k, v.l, v.Fobs * v.Fobs, 0.0f, v.phase, v.twoTheta,
                 v.fwhm, v.sinThetaOverLambda);
    default:
      if (vectors) {
        return Fmt("(4I4,I5,F13.4,F9.3,2F10.4)", v.h, v.k, v.l, v.vector, v.multiplicity, v.Fcalc,
                   v.twoTheta, v.d, v.Q);
      }
      return Fmt("(3I4,I6,F13.4,F9.3,2F10.4)", v.h, v.k, v.l, v.multiplicity, v.Fcalc, v.twoTheta,
                 v.d, v.Q);
  }
}

std::vector<std::string> FinalBraggLines(const Job& job, int ip, int f, const PhaseFractions& fr,
                                         const PhaseReportSums& sums) {
  const PhasePattern& pp = job.phases[f].pat[ip];
  if (IsMagneticKind(job.phases[f].Jbt)) {
    return {Fmt("(A,I3)", " => Phase:", f),
            Fmt("(A,G9.3)", " => Magnetic R-factor: ", sums.FinalRB)};
  }
  const std::string volume =
      Fmt("(A,G9.3,A,F9.3,A,F6.3,A)", " => Bragg R-factor: ", sums.FinalRB,
          "   Vol:", static_cast<float>(pp.cellVolume), "(", fr.volumeSigma[f], ")");
  // A phase without a structure (profile matching) has no weight fraction.
  const std::string fraction = HasStructure(job.phases[f])
                                   ? Fmt("(A,F7.2,A,F5.2,A)", "  Fract(%): ", fr.VolumeFraction[f],
                                         "(", fr.FractionSigma[f], ")")
                                   : std::string();
  return {Fmt("(A,I3)", " => Phase:", f), volume + fraction,
          Fmt("(A,G9.3,A,F9.3,A,F7.4)", " => Rf-factor=", sums.FinalRF, "         ATZ:", fr.ATZ[f],
              "          Brindley: ", fr.Brindley[f])};
}

std::string BraggRecordRow(int f, const PhaseFractions& fr, const PhaseReportSums& sums) {
  return Fmt("(A,I4,2F9.3,4F12.3)", "BRAG ", f, sums.FinalRB, sums.FinalRF, fr.VolumeFraction[f],
             fr.FractionSigma[f], sums.SumIobs, sums.SumIcalc);
}

}  // namespace corvinet
