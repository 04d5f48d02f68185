// Text of the reliability report lines: .out and .sum blocks, console, .rpa rows, Scor.
#include "refine/reliability_report_lines.h"

#include "format/fortran_format.h"
#include "surface/console.h"

namespace corvinet {

namespace {

const char* const kAllPointsTitle =
    " ==> RELIABILITY FACTORS WITH ALL NON-EXCLUDED POINTS FOR PATTERN:";
const char* const kBraggPointsTitle =
    " ==> RELIABILITY FACTORS FOR POINTS WITH BRAGG CONTRIBUTIONS FOR PATTERN:";

std::string TitleLine(int ip, bool braggSet) {
  return Fmt("(A,I3)", braggSet ? kBraggPointsTitle : kAllPointsTitle, ip);
}

std::string RFactorsLine(int ip, const ReliabilityFactors& f) {
  return Fmt("(A,2G9.3,A,G10.3,A,F8.4,A,I3)", " => R-Factors: ", f.Rp, f.Rwp, " Chi2:", f.Chi2,
             " DW-Stat.:", f.DwStat, "   Patt#:", ip);
}

// Rexp under Rwp and the expected Durbin-Watson value under the statistic.
std::string ExpectedLine(const ReliabilityFactors& f) {
  return Fmt("(A,G9.3,26X,F8.4)", " => Expected :          ", f.Rexp, f.DwExp);
}

std::string FourFactorsLine(float rp, float rwp, float rexp, float chi2) {
  return Fmt("(A,G9.3,A,G9.3,A,G9.3,A,G10.3)", " => Rp:", rp, " Rwp:", rwp, " Rexp:", rexp,
             " Chi2:", chi2);
}

std::string ConventionalFactorsLine(const ReliabilityFactors& f) {
  return FourFactorsLine(f.conventionalRp, f.conventionalRwp, f.conventionalRexp,
                         f.conventionalChi2);
}

std::string NSigmaLine(const ReliabilityFactors& f) {
  return Fmt("(A,F10.3)", " => N-sigma of the GoF: ", f.NSigma);
}

}  // namespace

std::vector<std::string> ReliabilityOutLines(int ip, const ReliabilityFactors& f, bool braggSet,
                                             float condition, bool lastPass) {
  const ResidualSums& s = f.sums;
  std::vector<std::string> lines = {
      TitleLine(ip, braggSet),
      RFactorsLine(ip, f),
      ExpectedLine(f),
      Fmt("(A,G12.4,A,G12.4)", " => Deviance :", f.Deviance, "     Dev*: ", f.DevStar),
      Fmt("(A,G8.2,A)", " => GoF-index:", f.GoF, "     Sqrt(Residual/N)"),
      Fmt("(A,I5)", " => N-P+C: ", f.NP),
      " =>  SumYdif       SumYobs      SumYcal      SumwYobsSQ  Residual      Condition",
      Fmt("(A,6G14.4)", " => ", s.SumYdif, s.SumYobs, s.SumYcal, s.SumwYobsSQ, s.Residual,
          condition),
      Fmt("(A,3G9.3,G10.3)", " => Conventional Rietveld Rp,Rwp,Re and Chi2: ", f.conventionalRp,
          f.conventionalRwp, f.conventionalRexp, f.conventionalChi2),
      " => (Values obtained using Ynet, but true sigma(y))",
      Fmt("(A,2G14.4)", " =>  SumYnet, Sum(w Ynet**2): ", s.SumYnet, s.SumwYnetSQ),
  };
  if (lastPass) lines.push_back(NSigmaLine(f));
  return lines;
}

std::vector<std::string> ReliabilitySumLines(int ip, const ReliabilityFactors& f, bool braggSet,
                                             int cycle, int maxCycle,
                                             std::string_view methodLabel) {
  return {
      TitleLine(ip, braggSet),
      Fmt("(A,I5,A,I5)", " => Cycle:", cycle, " => MaxCycle:", maxCycle),
      Fmt("(A,I3)", " =>  R-factors (not corrected for background) for Pattern:", ip),
      FourFactorsLine(f.Rp, f.Rwp, f.Rexp, f.Chi2) + "  " + std::string(methodLabel) +
          " refinement",
      Fmt("(A,I3)", " => Conventional Rietveld R-factors for Pattern:", ip),
      ConventionalFactorsLine(f),
      Fmt("(A,G12.4,A,G12.4)", " => Deviance: ", f.Deviance, "     Dev*  : ", f.DevStar),
      Fmt("(A,F8.4,A,F8.4)", " => DW-Stat.: ", f.DwStat, "     DW-exp: ", f.DwExp),
      NSigmaLine(f),
  };
}

std::vector<std::string> ReliabilityConsoleLines(int ip, const ReliabilityFactors& f) {
  return {
      RFactorsLine(ip, f),
      ExpectedLine(f),
      Fmt("(A,I3)", " Conventional Rietveld R-factors for Pattern:", ip),
      ConventionalFactorsLine(f),
  };
}

std::vector<std::string> ReliabilityRecordLines(const ReliabilityFactors& f, bool braggSet) {
  return {
      Fmt("(A,4G14.6)", braggSet ? "RFBR " : "RFAR ", f.Rp, f.Rwp, f.Rexp, f.Chi2),
      Fmt("(A,4G14.6,I8)", braggSet ? "RFBC " : "RFAC ", f.conventionalRp, f.conventionalRwp,
          f.conventionalRexp, f.conventionalChi2, f.NP),
      Fmt("(A,4G14.6)", braggSet ? "DEVB " : "DEVA ", f.Deviance, f.DevStar, f.DwStat, f.DwExp),
  };
}

std::vector<std::string> ScorOutLines(float scor) {
  return {
      Fmt("(A,F7.4)", "   Standard deviations have to be multiplied by:", scor),
      "   (correlated residuals) See references:",
      "   -J.F.Berar & P.Lelann, J. Appl. Cryst. 24, 1-5 (1991)",
      "   -J.F.Berar, Acc. in Pow. Diff. II, NIST Sp.Pub. 846, 63 (1992)",
  };
}

std::string ScorSumLine(float scor) {
  return Fmt("(A,F7.4)", " => Scor:", scor);
}

void WriteScorLines(Job& job, float scor) {
  for (const std::string& line : ScorOutLines(scor)) WriteLine(job, Unit::Out, line);
  WriteLine(job, Unit::Sum, ScorSumLine(scor));
}

}  // namespace corvinet
