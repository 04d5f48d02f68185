// The lines of the refinement analysis on the .sum file: global and phase indicators, the
// standard deviations, the correlated parameters and the comments.
#include <algorithm>
#include <cmath>

#include "format/fortran_format.h"
#include "records/abscissa_unit.h"
#include "results/refinement_analysis.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr float kTwoPiSquared = 19.739209f;
constexpr float kTwoPi = 6.2831853f;

// Everything the lines are made of.
struct Analysis {
  int ip = 1;
  Table1<float, DimensionLimits::NPHT> fraction;
  float averageRB = 0.0f, averageRF = 0.0f;
  ParameterClasses classes;
  EffectiveReflections enref;
  ExpectedFactors expected;
  float fwhmSteps = 0.0f, averageFwhm = 0.0f;
  float chi2 = 0.0f;             // of the Bragg points
  std::array<float, 3> ratio{};  // Enref(p)/max(NIntensity, 1)
};

void Sum(Job& job, const std::string& line) {
  WriteLine(job, Unit::Sum, line);
}

void Rpa(Job& job, const std::string& line) {
  if (job.run.JCIL != 0) WriteLine(job, Unit::Rpa, line);
}

void WriteLimits(Job& job, const Pattern& p, const Analysis& a) {
  const float s1 = InverseSpacing(p, a.enref.firstPosition);
  const float s2 = InverseSpacing(p, a.enref.lastPosition);
  const auto d = [](float s) { return s != 0.0f ? 1.0f / s : 0.0f; };
  Sum(job, "    The first and last reflections appears at:");
  Sum(job, Fmt("(A,2F12.4)", "  2theta(degrees)/T.O.F(microsecs) => ", a.enref.firstPosition,
               a.enref.lastPosition));
  Sum(job, Fmt("(A,2F12.5)", "    s (angstroms-1) => ", s1, s2));
  Sum(job, Fmt("(A,2F12.5)", "    D (angstroms  ) => ", d(s1), d(s2)));
  Sum(job, Fmt("(A,2F12.5)", "    sin(theta/lamb) => ", 0.5f * s1, 0.5f * s2));
  Sum(job, Fmt("(A,2F12.5)", "    Q (angstroms-1) => ", kTwoPi * s1, kTwoPi * s2));
}

void WriteGlobalIndicators(Job& job, const Analysis& a) {
  const PatternReliability& rel = job.reliability.pattern[a.ip];
  const ExpectedFactors& x = a.expected;
  Sum(job, " => GLOBAL INDICATORS:");
  WriteLimits(job, job.patterns[a.ip], a);
  Sum(job, Fmt("(A,F10.4,A,F8.2)", "    The average FWHM is: ", a.averageFwhm,
               "  Fwhm(av)/step = ", a.fwhmSteps));
  const float total = x.regionSum[0] + x.regionSum[1] + x.regionSum[2] + x.regionSum[3];
  Sum(job, Fmt("(A,4F12.1,A)", " => Sum(Yiobs-Yical): ", x.regionSum[0], x.regionSum[1],
               x.regionSum[2], x.regionSum[3], " <- Four regions"));
  Sum(job, Fmt("(A,F12.1)", "            Total ->  ", total));
  Sum(job, Fmt("(A,F8.2,A,F8.2)", "  Expected Rp (background uncorrected): ", x.ExRp,
               " Observed-> ", rel.setA.Rp));
  Sum(job, Fmt("(A,F8.2,A,F8.2)", "  Expected cRp(background   corrected): ", x.ExCRp,
               " Observed-> ", rel.setA.conventionalRp));
  const float rpRatio = x.ExRp != 0.0f ? rel.setA.Rp / x.ExRp : 0.0f;
  Sum(job, Fmt("(A,F8.2)", "  -> Ratio Rp/Exp=cRp/cExp: ", rpRatio));
  Sum(job, Fmt("(A,F8.2)", "  Weighted Average Bragg R-factor: ", a.averageRB));
  Sum(job, Fmt("(A,F8.2)", "  Weighted Average      RF-factor: ", a.averageRF));
  Sum(job, Fmt("(A,F10.3)", "  Reduced Chi-square : ", a.chi2));
  Sum(job, Fmt("(A,I7)", " => Total number of \"independent\" reflections: ", a.enref.count));
  static constexpr const char* kLevels[] = {
      "                      at level p=1.00  :", "                      at level p=0.50  :",
      "                      at level p=0.25  :"};
  for (std::size_t n = 0; n < 3; ++n) Sum(job, Fmt("(A,F10.2)", kLevels[n], a.enref.Enref[n]));
  for (const char* line : {"    A reflection contributes as x/(x+nearest), where \"x\"  ",
                           "   is the fraction of the total area of the current phase and ",
                           "   \"nearest\" is the number of adjacent reflections verifying the "
                           "formula:",
                           "     Postn-p*FWHM <= Postn(adjacent) <= Postn+p*FWHM ",
                           "   \"nearest\" is weighted by the corresponding \"x(s)\" "}) {
    Sum(job, line);
  }
  const ParameterClasses& c = a.classes;
  Sum(job, Fmt("(A,I5)", " =>             Number of global  refined parameters: ", c.NGlobal));
  Sum(job, Fmt("(A,I5)", "                Number of profile refined parameters: ", c.NProfile));
  Sum(job, Fmt("(A,I5)", "    Number of intensity-dependent refined parameters: ", c.NIntensity));
  Sum(job, "      (Preferred orientation belongs to this class)   ");
  Sum(job, " => (Effective Number of reflections)/(Number of intensity parameters)=");
  Sum(job, Fmt("(A,F10.2)", "      Ratio ( Optimistic view,p=0.25): ", a.ratio[2]));
  Sum(job, Fmt("(A,F10.2)", "      Ratio (Pessimistic view,p=1.00): ", a.ratio[0]));
  Sum(job, Fmt("(A,F10.2)", "      Ratio (   Eclectic view,p=0.50): ", a.ratio[1]));
  Rpa(job, Fmt("(A,2F10.3)", "EXRP ", x.ExRp, rpRatio));
  Rpa(job, Fmt("(A,I7,3F10.2)", "REFL ", a.enref.count, a.enref.Enref[0], a.enref.Enref[1],
               a.enref.Enref[2]));
  Rpa(job, Fmt("(A,3I5)", "REFP ", c.NGlobal, c.NProfile, c.NIntensity));
  Rpa(job, Fmt("(A,3F10.2)", "SOLV ", a.ratio[0], a.ratio[1], a.ratio[2]));
}

// Q, DQ and Dd/d of the sharpest reflection of phase f.
void WriteSharpest(Job& job, const Pattern& p, const Analysis& a, int f) {
  const float H = a.enref.Hmin[f], P = a.enref.Pmin[f];
  const WidthInQ w = SharpestInQ(p, P, H);
  const float Q = w.Q;
  const Phase& ph = job.phases[f];
  const float volume = static_cast<float>(ph.pat[a.ip].cellVolume);
  const float delta = Q != 0.0f && volume != 0.0f
                          ? kTwoPiSquared * static_cast<float>(ph.group.NSYM) / (Q * Q * volume)
                          : 0.0f;
  Sum(job, Fmt("(I8,F12.4,F8.4,3F8.4,F9.3)", f, P, H, Q, w.DQ, delta, w.relativePercent));
}

void WritePhaseIndicators(Job& job, const Analysis& a) {
  const Pattern& p = job.patterns[a.ip];
  Sum(job, " => PHASE DEPENDENT INDICATORS:");
  Sum(job, " => Positions and FWHM of the sharpest reflection");
  Sum(job, "     Phase  2Theta/TOF  FWHM     Q       DQ      Delta   Dd/d(%)");
  for (int f = 1; f <= job.run.NPHASE; ++f) WriteSharpest(job, p, a, f);
  Sum(job, "   Q ,DQ(FWHM in Q-space) and Delta are given in 1/angstroms");
  Sum(job, " Delta is the expected step between consecutive reflections at Q");
  Sum(job, " Phase    %Cont  Nintdp  Nprofp   Nref      Enref(Effective)");
  Sum(job, "                                         R:p=1  R:p=1/2  R:p=1/4");
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const std::array<float, 3>& e = a.enref.phaseEnref[f];
    const float m = static_cast<float>(std::max(a.classes.phaseIntensity[f], 1));
    Sum(job, Fmt("(I4,F10.2,2I8,I7,3F9.2)", f, 100.0f * a.fraction[f], a.classes.phaseIntensity[f],
                 a.classes.phaseProfile[f], a.enref.phaseCount[f], e[0], e[1], e[2]));
    Sum(job, Fmt("(37X,3F9.2)", e[0] / m, e[1] / m, e[2] / m));
  }
  for (const char* line : {"  %Cont: percentage of the total integrated intensity (100x)",
                           " Nintdp: Number of intensity-dependent refined parameters",
                           " Nprofp: Number of profile refined parameters",
                           "   Nref: Number \"independent\" contributing reflections",
                           "  Enref: Effective Number of reflections for each p-value",
                           "R:p=1/n: Ratio Enref(Effective)/Nintdp"}) {
    Sum(job, line);
  }
}

// The Scott values G(p), from the Bragg set.
std::array<float, 3> ScottValues(const Job& job, const Analysis& a) {
  const ReliabilityFactors& b = job.reliability.pattern[a.ip].setB;
  const float F = std::trunc(static_cast<float>(a.classes.NGlobal + a.classes.NProfile - b.N) +
                             b.sums.Residual);
  std::array<float, 3> G{};
  for (std::size_t n = 0; n < 3; ++n) {
    const float free = a.enref.Enref[n] - static_cast<float>(a.classes.NIntensity);
    G[n] = free != 0.0f ? std::fabs(F / free + 1.0f) : 0.0f;
  }
  return G;
}

float SqrtRatio(float v, float chi2) {
  return chi2 > 0.0f ? std::sqrt(std::fabs(v / chi2)) : 0.0f;
}

void WriteStandardDeviations(Job& job, const Analysis& a, const PhaseAnalysisInputs& phases) {
  const float scor = job.reliability.pattern[a.ip].Scor;
  const std::array<float, 3> G = ScottValues(job, a);
  Sum(job, " => ANALYSIS OF STANDARD DEVIATIONS");
  Table1<std::array<float, 3>, DimensionLimits::NPHT> chi2;
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const int nint = a.classes.phaseIntensity[f];
    const float m = static_cast<float>(std::max(nint, 1));
    std::array<float, 3> D{};
    for (std::size_t n = 0; n < 3; ++n) {
      const float R = a.enref.phaseEnref[f][n] / m;
      D[n] = std::max(R * m - static_cast<float>(nint), 1.0f);
      chi2[f][n] = phases[f].IntChi2Sum / D[n];
    }
    Sum(job, Fmt("(A,I3)", " => Phase:", f));
    Sum(job, Fmt("(A,3F10.2)", " Degrees of freedom for p=1, 1/2, 1/4: ", D[0], D[1], D[2]));
    Sum(job, Fmt("(A,3F10.3)", " Chi2 based on integrated intensities: ", chi2[f][0], chi2[f][1],
                 chi2[f][2]));
  }
  Sum(job, Fmt("(A,3F10.3)", " Calculated with Scott'S FORMULA     : ", G[0], G[1], G[2]));
  for (const char* line : {" => Standard deviations concern the PRECISION of parameters and",
                           "    represent ACCURACY only if there is no systematic errors",
                           "    A better estimate of the accuracy of structural parameters",
                           "    is obtained multipl(n_pat)ying sigmas by the parameter SCOR"}) {
    Sum(job, line);
  }
  Sum(job, Fmt("(A,F8.4,A)", " -> SCOR = ", scor, " { Berar'S FORMULA}"));
  Sum(job,
      Fmt("(A,F8.4,A)", " -> SCOR = ", std::sqrt(std::fabs(a.fwhmSteps)), " {Pawley'S FORMULA}"));
  Sum(job, " -> Application of modified Scott'S FORMULA");
  Rpa(job, Fmt("(A,F10.4)", "SCOR ", scor));
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const std::array<float, 3> s = {SqrtRatio(chi2[f][0], a.chi2), SqrtRatio(chi2[f][1], a.chi2),
                                    SqrtRatio(chi2[f][2], a.chi2)};
    const std::array<float, 3> g = {SqrtRatio(G[0], a.chi2), SqrtRatio(G[1], a.chi2),
                                    SqrtRatio(G[2], a.chi2)};
    Sum(job, Fmt("(A,3F8.4)", "    SCOR(p=1,1/2,1/4) = ", s[0], s[1], s[2]));
    Sum(job, Fmt("(A,3F8.4)", "    SCOR(expected Si) = ", g[0], g[1], g[2]));
    Rpa(job, Fmt("(A,I3,6F8.4)", "SCOR ", f, s[0], s[1], s[2], g[0], g[1], g[2]));
  }
  Sum(job, "   Warning! Do not take into account Scott'S SCOR");
  Sum(job, "            These indicators are under test....");
}

// The correlated parameters; returns the warnings they give.
int WriteCorrelatedParameters(Job& job, const ParameterClasses& c, int fitted) {
  Sum(job, " => ANALYSIS OF CORRELATED PARAMETERS ");
  int correlated = 0, warnings = 0;
  for (int L = 1; L <= fitted; ++L) {
    if (c.Appearances[L] <= 1) continue;
    ++correlated;
    Sum(job,
        Fmt("(A,I4,A,I3,A)", "  -> The parameter: ", L, " appears ", c.Appearances[L], " times"));
  }
  Sum(job, Fmt("(A,I4)", "  -> The number of correlated parameters is :", correlated));
  for (int L = 1; L <= fitted; ++L) {
    if (c.DistinctUses[L] <= 0) continue;
    Sum(job, Fmt("(A,I4,A)", " => WARNING!!!  Parameter: ", L, " -> correlation of distinct kind"));
    warnings += 4;
  }
  return warnings;
}

Analysis Prepare(Job& job, int ip, const PhaseAnalysisInputs& phases) {
  Analysis a;
  a.ip = ip;
  float total = 0.0f;
  for (int f = 1; f <= job.run.NPHASE; ++f) total += phases[f].SumIobs;
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    a.fraction[f] = total != 0.0f ? phases[f].SumIobs / total : 0.0f;
    a.averageRB += a.fraction[f] * phases[f].FinalRB;
    a.averageRF += a.fraction[f] * phases[f].FinalRF;
  }
  RandomSeed(job.random);
  const int fitted = FittedCount(job);
  a.expected = ExpectedProfileFactors(job, ip);
  a.classes = ClassifyParameters(job, ip, fitted);
  a.enref = CountEffectiveReflections(job, ip, a.fraction);
  const Pattern& p = job.patterns[ip];
  a.averageFwhm = a.enref.count > 0 ? a.enref.sumFwhm / static_cast<float>(a.enref.count) : 0.0f;
  const float span = p.NPTS > 1 ? p.X[p.NPTS] - p.X[1] : 0.0f;
  if (p.stepKind == 0 && p.STEP != 0.0f) {
    a.fwhmSteps = a.averageFwhm / p.STEP;
  } else if (span != 0.0f) {
    a.fwhmSteps = a.averageFwhm * static_cast<float>(p.NPTS) / span;
  }
  a.chi2 = job.reliability.pattern[ip].setB.Chi2;
  const float m = static_cast<float>(std::max(a.classes.NIntensity, 1));
  for (std::size_t n = 0; n < 3; ++n) a.ratio[n] = a.enref.Enref[n] / m;
  return a;
}

}  // namespace

void AnalyseRefinement(Job& job, int ip, const PhaseAnalysisInputs& phases) {
  const Analysis a = Prepare(job, ip, phases);
  Sum(job, "");
  Sum(job, "       -    ANALYSIS OF THE REFINEMENT    -");
  Sum(job, "");
  WriteGlobalIndicators(job, a);
  WritePhaseIndicators(job, a);
  WriteStandardDeviations(job, a, phases);
  const int warnings = WriteCorrelatedParameters(job, a.classes, FittedCount(job));
  VerdictInputs v;
  v.chi2 = a.chi2;
  v.averageRB = a.averageRB;
  v.eclecticRatio = a.ratio[1];
  v.warnings = warnings;
  v.preferredOrientation = a.classes.preferredOrientation;
  v.jobType = job.patterns[ip].JOBTYP;
  for (const std::string& line : VerdictLines(v)) Sum(job, line);
}

}  // namespace corvinet
