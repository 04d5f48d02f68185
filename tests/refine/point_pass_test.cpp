// Tests of how many threads the point loop takes.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <thread>

#include "records/job.h"
#include "refine/cycle_work.h"
#include "refine/point_pass.h"

namespace corvinet {
namespace {

std::unique_ptr<Job> JobOfSize(int points, int parameters) {
  auto job = std::make_unique<Job>();
  job->run.NPATT = 1;
  job->patterns[1].NPTS = points;
  job->run.MAXS = parameters;
  return job;
}

int Cores() {
  return static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
}

TEST(PointPassThreads, SmallJobRunsOnOneThreadByDefault) {
  // 6 001 points and 20 parameters: (20 + 16) x 6 001 = 216 036, below a million.
  const auto job = JobOfSize(6001, 20);
  const CycleWork work;
  EXPECT_FALSE(WorthSeveralThreads(*job));
  EXPECT_EQ(PointThreads(*job, work), 1);
}

TEST(PointPassThreads, LargeJobTakesOneThreadPerCoreByDefault) {
  // 14 000 points and 87 parameters: (87 + 16) x 14 000 = 1 442 000.
  const auto job = JobOfSize(14000, 87);
  const CycleWork work;
  EXPECT_TRUE(WorthSeveralThreads(*job));
  EXPECT_EQ(PointThreads(*job, work), Cores());
}

TEST(PointPassThreads, WorkOfEveryPatternCounts) {
  // Two patterns of 5 000 points with 84 parameters: 2 x 5 000 x 100 = 1 000 000.
  auto job = JobOfSize(5000, 84);
  job->run.NPATT = 2;
  job->patterns[2].NPTS = 5000;
  EXPECT_TRUE(WorthSeveralThreads(*job));
  job->patterns[2].NPTS = 4999;
  EXPECT_FALSE(WorthSeveralThreads(*job));
}

TEST(PointPassThreads, ChosenThreadCountHoldsForAnySizeOfJob) {
  const auto small = JobOfSize(100, 3);
  small->driver.pointThreads = 4;
  const CycleWork work;
  EXPECT_EQ(PointThreads(*small, work), 4);
  CycleWork fixed;
  fixed.threads = 3;
  EXPECT_EQ(PointThreads(*small, fixed), 3);
}

}  // namespace
}  // namespace corvinet
