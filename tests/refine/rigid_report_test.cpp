// The report of rigid-body groups: the principal axes of their T and L tensors.
#include "refine/rigid_report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "refine/rigid_case.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::RigidCase;
using testing::ScratchDir;

// The value and vector of an eigen line.
std::vector<double> Numbers(const std::string& line) {
  std::istringstream in(line);
  std::vector<double> v;
  double x;
  while (in >> x) v.push_back(x);
  return v;
}

TEST(RigidReport, TheAxesOfTAndLOfATlsGroupAreTheirEigenvectors) {
  ScratchDir dir;
  dir.Write("x.dat", "");
  RigidCase c;
  c.option = 4;
  // T: a 2x2 block [[2, 1], [1, 2]] and 5 on z: eigenvalues 1, 3, 5 along
  // (1, -1, 0)/sqrt2, (1, 1, 0)/sqrt2 and z. L: diagonal 9, 4, 16.
  c.T = {2.0f, 2.0f, 5.0f, 1.0f, 0.0f, 0.0f};
  c.L = {9.0f, 4.0f, 16.0f, 0.0f, 0.0f, 0.0f};
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, testing::RigidControlText(c), false))
      << job.Console();
  const std::vector<std::string> lines = DiagonaliseTl(*job, 1);
  ASSERT_EQ(lines.size(), 11u);
  EXPECT_EQ(lines[0], " => TL-tensors of RBG defined for the refined phase(s) below:");
  EXPECT_EQ(lines[1], " => Diagonalization of T-tensor(100xAngstroms**2) of RBG no.  1");
  EXPECT_EQ(lines[2], "    Eigen Value ---->    Eigen vector(Orth. syst.)");
  EXPECT_EQ(lines[6], " => Diagonalization of L-tensor(degrees**2) of RBG no.   1");
  const double r = 1.0 / std::sqrt(2.0);
  for (int n = 3; n <= 5; ++n) {
    const std::vector<double> v = Numbers(lines[static_cast<std::size_t>(n)]);
    ASSERT_EQ(v.size(), 4u);
    if (std::fabs(v[0] - 1.0) < 1e-4) {
      EXPECT_NEAR(std::fabs(v[1]), r, 1e-4);
      EXPECT_NEAR(v[1], -v[2], 1e-4);
    } else if (std::fabs(v[0] - 3.0) < 1e-4) {
      EXPECT_NEAR(std::fabs(v[1]), r, 1e-4);
      EXPECT_NEAR(v[1], v[2], 1e-4);
    } else {
      EXPECT_NEAR(v[0], 5.0, 1e-4);
      EXPECT_NEAR(std::fabs(v[3]), 1.0, 1e-4);
    }
  }
  std::vector<double> L;
  for (int n = 8; n <= 10; ++n) L.push_back(Numbers(lines[static_cast<std::size_t>(n)])[0]);
  std::sort(L.begin(), L.end());
  EXPECT_NEAR(L[0], 4.0, 1e-4);
  EXPECT_NEAR(L[1], 9.0, 1e-4);
  EXPECT_NEAR(L[2], 16.0, 1e-4);
}

TEST(RigidReport, AStandardGroupHasNoTensorsToDiagonalise) {
  ScratchDir dir;
  dir.Write("x.dat", "");
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, testing::RigidControlText(RigidCase{}), false));
  EXPECT_TRUE(DiagonaliseTl(*job, 1).empty());
}

}  // namespace
}  // namespace corvinet
