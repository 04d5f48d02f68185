// The run of a search: titles, progress on the terminal, the best configurations and the solution
// files.
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>

#include "control/control_writer.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "refine/intensity_evaluation.h"
#include "search/search_run.h"
#include "surface/console.h"

namespace corvinet {

namespace {

void WriteTitle(Job& job) {
  const char* title = job.run.ICRYG == 2 ? " **** MONTECARLO SEARCH FOR STARTING CONFIGURATION ****"
                                         : " **** GRID SEARCH FOR STARTING CONFIGURATION ****";
  ConsoleLine(job, title);
  WriteReports(job, title);
}

void ReportBest(Job& job, int k, int count, const TrialsOutcome& outcome) {
  WriteReports(job, Fmt("(A,I3)", "     => BEST STARTING CONFIGURATIONS FOR PHASE:", k));
  WriteReports(job, Fmt("(A,I6,A)", " -> Configuration parameters (", count, " reflections):"));
  std::string line;
  for (std::size_t n = 0; n < outcome.best.size(); ++n) {
    line += Fmt("(A,I3,A,F9.3,A)", " Sol#:", static_cast<int>(n + 1), " RF2=", outcome.best[n].RF2,
                " :: ");
    if (n % 3 == 2 || n + 1 == outcome.best.size()) {
      WriteReports(job, line);
      line.clear();
    }
  }
  for (std::size_t n = 0; n < outcome.best.size(); ++n) {
    WriteLine(job, Unit::Out,
              Fmt("(A,I3,A,I10)", " -> Parameters of configuration no.: ", static_cast<int>(n + 1),
                  "   trial:", static_cast<int>(outcome.best[n].trial)));
    const std::vector<float>& v = outcome.best[n].values;
    std::string values;
    for (std::size_t c = 1; c < v.size(); ++c) values += Fmt("(F10.5)", v[c]);
    WriteLine(job, Unit::Out, values);
  }
}

// The control file of the solution as it stands in the job, refined on the
// intensities (ICRYG 1); the line that names the phase carries the solution's
// RF2 in place of the Bragg factors of the patterns.
std::vector<std::string> SolutionLines(Job& job, int k, float rf2) {
  const int searched = job.run.ICRYG;
  job.run.ICRYG = 1;
  std::vector<std::string> lines = ControlFileLines(job, ControlEndValues{});
  job.run.ICRYG = searched;
  const std::string named = Fmt("(A,I3)", "!  Data for PHASE number: ", k);
  const std::string solution = named + Fmt("(A,F9.3)", "  ==> Current R_Bragg: ", rf2);
  bool replaced = false;
  for (auto line = lines.begin(); line != lines.end();) {
    if (line->rfind(named, 0) != 0) {
      ++line;
    } else if (!replaced) {
      *line++ = solution;
      replaced = true;
    } else {
      line = lines.erase(line);
    }
  }
  return lines;
}

void WriteSolutionFile(Job& job, int k, int n, float rf2) {
  const std::string name = job.driver.PcrCode + std::to_string(n) + ".so";
  std::ofstream file(name, std::ios::trunc);
  for (const std::string& line : SolutionLines(job, k, rf2)) file << line << '\n';
  if (!file) StopBox(job, " Error writing the solution file " + name);
}

void SearchPhase(Job& job, int ip, int k, const SearchOptions& options) {
  const RunOptions& r = job.run;
  SearchSetup s = MakeSearchSetup(job, ip, k, options.seed);
  SearchProgressLines shown;
  shown.head =
      Fmt("(A,I3,A,I6,A)", " => Phase:", k, " searched on ", s.kernel.reflections, " reflections");
  ConsoleLine(job, shown.head);
  auto clockStart = std::chrono::steady_clock::now();
  const int keep = std::max(1, std::min(r.Nsolu, DimensionLimits::NSOL));
  auto progress = [&job, &shown](std::int64_t done, float best) {
    for (const std::string& line : shown.Next(done, best)) ConsoleLine(job, line);
  };
  const TrialsOutcome outcome = RunTrials(s, r.Nconfg, keep, options.threads, job.driver.interrupt,
                                          options.watchInterrupt, progress);
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - clockStart).count();
  if (outcome.interrupted) ConsoleLine(job, " => Search interrupted by the user");
  WriteReports(job, Fmt("(A,I12,A,F10.2,A)", " => Trials:", static_cast<int>(outcome.trials), " in",
                        static_cast<float>(seconds), " seconds"));
  for (std::size_t n = 0; n < outcome.best.size(); ++n) {
    ConsoleLine(job, Fmt("(A,I3,A,F10.4)", " => RF2-Factor for the best", static_cast<int>(n + 1),
                         "th solution: ", outcome.best[n].RF2));
  }
  ReportBest(job, k, s.kernel.reflections, outcome);
  auto scratch = std::make_unique<StructureFactorScratch>();
  for (std::size_t n = outcome.best.size(); n >= 1; --n) {
    RestoreSolution(job, ip, k, s, outcome.best[n - 1]);
    const IntensityFactors f = EvaluateIntensities(job, *scratch, ip, k, IntensityMode::kFactors);
    if (n == 1) {
      const std::string line =
          Fmt("(A,F10.4)", " => RF2-Factor for the best solution (all reflections):  RF2=", f.RF2);
      ConsoleLine(job, line);
      WriteReports(job, line);
    }
    WriteSolutionFile(job, k, static_cast<int>(n), f.RF2);
  }
}

}  // namespace

std::vector<std::string> SearchProgressLines::Next(std::int64_t done, float newBest) {
  std::vector<std::string> lines = {Fmt("(A,I12,A,F10.3)", " => Trials done:",
                                        static_cast<int>(done), "   best RF2 so far:", newBest)};
  if (!(newBest < best)) return lines;
  best = newBest;
  if (++improvements % 4 == 0) lines.push_back(head);
  lines.push_back(Fmt("(A,I3,A,F10.4)", " => RF2-Factor for the best", 1, "th solution: ", best));
  return lines;
}

void SearchRun(Job& job, const SearchOptions& options) {
  WriteTitle(job);
  const int ip = 1;
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    if (std::abs(job.phases[k].pat[ip].Irf) != 4) continue;
    SearchPhase(job, ip, k, options);
  }
}

}  // namespace corvinet
