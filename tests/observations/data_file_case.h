// A data file in a scratch directory, read into pattern 1 of a job whose .out is captured.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>

#include "observations/powder_data.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet::testing {

class DataFileCase {
 public:
  // Writes `text` as case.dat and prepares pattern 1 to read it with `instr`.
  // `answers` is what the terminal will answer.
  DataFileCase(int instr, const std::string& text, const std::string& answers = "")
      : job_(answers) {
    dir_.Write("case.dat", text);
    Prepare(instr);
  }

  // A pattern whose data file is an existing file, reached through a link named case.dat.
  struct LinkTo {
    std::string path;
  };
  DataFileCase(int instr, const LinkTo& target) {
    std::filesystem::create_symlink(target.path, dir_.path / "case.dat");
    Prepare(instr);
  }

  DataFileCase(const DataFileCase&) = delete;
  DataFileCase& operator=(const DataFileCase&) = delete;

  Job& job() { return *job_; }
  Pattern& pattern() { return job_->patterns[1]; }

  void Read() { ReadPattern(*job_, 1); }

  // Reads, expecting the run to stop; the console text is returned.
  std::string ReadExpectingStop() {
    bool stopped = false;
    try {
      ReadPattern(*job_, 1);
    } catch (const ProcessStop&) {
      stopped = true;
    }
    EXPECT_TRUE(stopped) << "the read did not stop the run";
    return job_.Console();
  }

  std::string Console() { return job_.Console(); }

  // The lines written on the .out file so far.
  std::string Report() {
    std::fflush(job_->files.units[Unit::Out].file);
    return dir_.Read("case.out");
  }

  bool DataUnitOpen() { return IsOpen(job_->files.units[Unit::Data]); }

  // The data file as it is on disk now.
  std::string DataText() { return dir_.Read("case.dat"); }

 private:
  void Prepare(int instr) {
    job_->patterns[1].DatCode = "case";
    job_->patterns[1].INSTR = instr;
    OpenUnit(job_->files.units[Unit::Out], "case.out", OpenStatus::Unknown);
  }

  ScratchDir dir_;  // first: the job's files live inside it
  CapturedJob job_;
};

// The i-th point (from 1) of a pattern as a triple, for compact comparisons.
struct PointValues {
  float x, y, variance;
};

inline void ExpectPoint(const Pattern& p, int i, PointValues expected, float tolerance = 1e-4f) {
  EXPECT_NEAR(p.X[i], expected.x, tolerance * std::max(1.0f, std::abs(expected.x)))
      << "X of point " << i;
  EXPECT_NEAR(p.Ytotal[i], expected.y, tolerance * std::max(1.0f, std::abs(expected.y)))
      << "Ytotal of point " << i;
  EXPECT_NEAR(p.Variance[i], expected.variance,
              tolerance * std::max(1.0f, std::abs(expected.variance)))
      << "Variance of point " << i;
}

// True when the text holds the line (trailing blanks of both ignored).
inline bool HasLine(const std::string& text, const std::string& line) {
  for (const std::string& l : SplitLines(text)) {
    if (NormaliseLine(l) == NormaliseLine(line)) return true;
  }
  return false;
}

}  // namespace corvinet::testing
