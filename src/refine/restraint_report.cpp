// Report lines of the restraints of a phase: one row per restraint, then the sums of the cycle.
#include "refine/restraint_report.h"

#include <algorithm>

#include "format/fortran_format.h"
#include "format/text.h"

namespace corvinet {

namespace {

// The words of the sums of one kind: "D" for distances, "M" for moments.
void AppendSums(const Job& job, const RestraintSums& sums, const std::string& kind,
                const std::string& letter, std::vector<std::string>& lines) {
  const double chi2 = job.refinement.GlobalChi2;
  const double S2 = job.refinement.globalResidualSum;
  // SumWD2 holds the mean of ((wanted - obtained)/sigma)^2.
  const double SM = static_cast<double>(sums.count) * sums.SumWD2 * chi2;
  const std::string diff = "(" + letter + "obs-" + letter + "cal)**2";
  lines.push_back(" => Slack Constraints(" + kind + "):");
  lines.push_back(
      Fmt("(A,I3,A,G12.5)", "         Sum{W" + diff + "}/", sums.count, " =", sums.SumWD2));
  lines.push_back(Fmt("(A,G12.5)", " SM/S2 =", S2 != 0.0 ? SM / S2 : 0.0));
  lines.push_back(Fmt("(A,G12.5)", "    SM=Chi2*Sum{W" + diff + "} =", SM));
  lines.push_back(Fmt("(A,G12.5)", "    S2=     Sum{w(yobs-ycal)**2} =", S2));
  lines.push_back(Fmt("(A,I3,A,G12.5)", "   Rms=Sqrt{Sum[" + letter + "obs-" + letter + "cal]**2/",
                      sums.count, " =", sums.SumD2));
}

std::string ResultRow(const std::string& name, float wanted, float obtained, float sigma) {
  return Fmt("(A,2F10.5,F10.2,A,F9.5)", name, wanted, obtained, (wanted - obtained) / sigma,
             "   sigma:", sigma);
}

}  // namespace

std::vector<std::string> DistanceRestraintLines(const Job& job, int k) {
  const Phase& ph = job.phases[k];
  std::vector<std::string> lines;
  if (ph.Dis == 0) return lines;
  lines.push_back(" => Distance constraints:      Dobs     Dcalc  diff/sigma");
  for (int c = 1; c <= ph.Dis; ++c) {
    const DistanceRestraint& d = ph.restraints.distances[c];
    const std::string names =
        Fmt("(3X,A4,1X,A4,1X,I3)", FixedText(d.Atom1, 4), FixedText(d.Atom2, 4), d.ITnum);
    lines.push_back(ResultRow(names, d.Dist, d.Dcalc, d.Sigma));
  }
  AppendSums(job, ph.restraints.distanceSums, "dist", "D", lines);
  return lines;
}

std::vector<std::string> MomentRestraintLines(const Job& job, int k) {
  const Phase& ph = job.phases[k];
  std::vector<std::string> lines;
  if (ph.Mom == 0) return lines;
  const PhaseRestraints& r = ph.restraints;
  lines.push_back(" => Moment constraints:        Mobs     Mcalc  diff/sigma");
  const int shown = std::min(r.momentSums.count, r.momentResults.size());
  for (int n = 1; n <= shown; ++n) {
    const MomentRestraintResult& result = r.momentResults[n];
    const MomentRestraint& m = r.moments[result.restraint];
    const std::string name = Fmt("(3X,A4,7X)", FixedText(job.atoms[result.atom].label, 4));
    lines.push_back(ResultRow(name, m.Moment, result.obtained, m.MomentSigma));
  }
  AppendSums(job, r.momentSums, "mag", "M", lines);
  return lines;
}

void ReportDistanceRestraints(Job& job, int k, const UpdatePass& pass) {
  WritePassLines(job, pass, DistanceRestraintLines(job, k));
}

void ReportMomentRestraints(Job& job, int k, const UpdatePass& pass) {
  WritePassLines(job, pass, MomentRestraintLines(job, k));
}

}  // namespace corvinet
