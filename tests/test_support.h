// Helpers shared by the tests: temporary directories, a job with captured console, runs of the
// binary.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "records/job.h"
#include "surface/console.h"

namespace corvinet::testing {

// A fresh directory that is removed with the object; the process works inside it.
struct ScratchDir {
  std::filesystem::path path;
  std::filesystem::path previous;
  ScratchDir();
  ~ScratchDir();
  void Write(const std::string& name, const std::string& text) const;
  std::string Read(const std::string& name) const;
  bool Exists(const std::string& name) const;
};

// A job whose console writes into memory and reads from a given text.
struct CapturedJob {
  std::unique_ptr<Job> job;
  char* buffer = nullptr;
  std::size_t size = 0;
  std::string input;
  explicit CapturedJob(const std::string& answers = "");
  ~CapturedJob();
  std::string Console();
  Job& operator*() { return *job; }
  Job* operator->() { return job.get(); }
};

// Result of running the built program.
struct BinaryRun {
  int exitCode = -1;
  std::string output;
};

// Runs the corvinet binary inside `dir` with arguments and standard input.
BinaryRun RunBinary(const std::filesystem::path& dir, const std::string& arguments,
                    const std::string& input = "", const std::string& environment = "");

std::vector<std::string> SplitLines(const std::string& text);

// How many lines of `text` are exactly `line`.
int CountLines(const std::string& text, const std::string& line);

// True when one line of `text` is exactly `line`.
bool HasLine(const std::string& text, const std::string& line);

// The same after dates, clock times and CPU times of both are normalised.
bool HasNormalisedLine(const std::string& text, const std::string& line);

// Replaces dates, clock times and CPU times by fixed words so that reports compare line by line.
std::string NormaliseLine(const std::string& line);
std::vector<std::string> NormaliseLines(const std::vector<std::string>& lines);

// Positions `job` at the start of the control text `lines`, written as x.pcr
// in `dir`: the run record reset and units 1 (control) and 2 (reports) open.
void OpenControlText(const ScratchDir& dir, Job& job, const std::string& lines);

// Reads the control text `pcr` as job "x" in `dir` (control file x.pcr,
// reports x.out and x.sum): the head only, or the whole file. Returns false
// when the run stopped.
bool ReadControlText(ScratchDir& dir, CapturedJob& job, const std::string& pcr, bool headOnly);
inline bool ReadHeadOnly(ScratchDir& dir, CapturedJob& job, const std::string& pcr) {
  return ReadControlText(dir, job, pcr, true);
}

// Runs `step` on the job; false when it ended in a stop.
template <typename F>
bool RunsWithoutStop(Job& job, F step) {
  try {
    step(job);
  } catch (const ProcessStop&) {
    return false;
  }
  return true;
}

// The report file `name` as written so far by the open unit 7.
std::string FlushedReport(const ScratchDir& dir, Job& job, const std::string& name = "x.out");

// Text of a file of the test data directory.
std::string TestData(const std::string& relative);

// The line after the first line of `text` that starts with `head`; empty when there is none.
std::string LineAfter(const std::string& text, const std::string& head);

// The numbers of a line as the free-format reader separates them (a sign ends a number).
std::vector<double> NumbersIn(const std::string& line);

// The numbers of the atom line of a control file whose label is `label` (after the label and
// the species: x y z B occ ..., four numbers at least); empty when no line has that label.
std::vector<double> AtomLineValues(const std::string& control, const std::string& label);

// Runs the calculation job of test data file `simulation` as job "sim" in `dir` and the
// refinement job of `refinement` as job `name` on its simulated pattern; the exit status of the
// refinement, or -1 when the calculation failed.
int SimulateThenRefine(const ScratchDir& dir, const std::string& simulation,
                       const std::string& refinement, const std::string& name);

}  // namespace corvinet::testing
