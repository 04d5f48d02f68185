// The rows of points added to the normal equations: the same sums as point-by-point accumulation,
// whatever split of the matrix rows, with zero rows skipped; and the runs of one family.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include "records/normal_matrix.h"
#include "refine/point_calculation.h"

namespace corvinet {
namespace {

constexpr int kFitted = 37;
constexpr int kPoints = 53;  // three full blocks of 16 and five points over

// Rows with some parameters no point moves, some rows that end early and
// some points that move nothing.
struct RowSet {
  std::vector<float> d, w, r;
  std::vector<int> end;
};

RowSet MakeRows() {
  RowSet x;
  x.d.assign(static_cast<std::size_t>(kPoints) * kFitted, 0.0f);
  for (int p = 0; p < kPoints; ++p) {
    const int last = p % 5 == 0 ? 0 : (p % 3 == 0 ? kFitted / 2 : kFitted);
    for (int m = 0; m < last; ++m) {
      if (m % 7 == 3) continue;  // never moved
      x.d[static_cast<std::size_t>(p) * kFitted + m] =
          std::sin(0.731f * static_cast<float>(p * kFitted + m)) * 1.0e3f;
    }
    x.w.push_back(1.0f / (1.0f + 0.01f * static_cast<float>(p)));
    x.r.push_back(std::cos(0.37f * static_cast<float>(p)) * 50.0f);
    x.end.push_back(RowEnd(&x.d[static_cast<std::size_t>(p) * kFitted], kFitted));
  }
  return x;
}

// The accumulation as the program did it before: every point's weighted row
// added to the 32-bit block, every 16 points the block added to the double
// sums; written here on its own.
void ReferenceSums(const RowSet& x, std::vector<double>& sumA, std::vector<double>& sumB) {
  std::vector<float> A(kFitted * kFitted, 0.0f), B(kFitted, 0.0f);
  sumA.assign(kFitted * kFitted, 0.0);
  sumB.assign(kFitted, 0.0);
  auto flush = [&] {
    for (int L = 0; L < kFitted; ++L) {
      sumB[L] += B[L];
      B[L] = 0.0f;
      for (int m = L; m < kFitted; ++m) {
        sumA[L * kFitted + m] += A[L * kFitted + m];
        A[L * kFitted + m] = 0.0f;
      }
    }
  };
  for (int p = 0; p < kPoints; ++p) {
    const float* d = &x.d[static_cast<std::size_t>(p) * kFitted];
    for (int L = 0; L < kFitted; ++L) {
      const float u = x.w[p] * d[L];
      B[L] += u * x.r[p];
      for (int m = L; m < kFitted; ++m) A[L * kFitted + m] += u * d[m];
    }
    if ((p + 1) % 16 == 0) flush();
  }
  flush();
}

// Adds the rows in pieces of `piece` points with the matrix rows split in
// `shares`, then adds the last partial block.
std::unique_ptr<NormalMatrix> KernelSums(const RowSet& x, int piece, int shares) {
  auto n = std::make_unique<NormalMatrix>();
  std::vector<int> touched(kFitted + 1, kFitted);
  for (int p0 = 0; p0 < kPoints; p0 += piece) {
    PointRows rows;
    rows.rows = &x.d[static_cast<std::size_t>(p0) * kFitted];
    rows.stride = kFitted;
    rows.weight = &x.w[static_cast<std::size_t>(p0)];
    rows.residual = &x.r[static_cast<std::size_t>(p0)];
    rows.rowEnd = &x.end[static_cast<std::size_t>(p0)];
    rows.count = std::min(piece, kPoints - p0);
    rows.pending = n->pendingPoints;
    for (int t = 0; t < shares; ++t) {
      AddPointRows(*n, rows, t * kFitted / shares, (t + 1) * kFitted / shares, touched.data());
    }
    n->pendingPoints = PendingAfter(rows);
  }
  FlushNormalBlock(*n, kFitted);
  return n;
}

TEST(PointRows, BlockedRowsGiveTheSumsOfPointByPointAccumulationBitForBit) {
  const RowSet x = MakeRows();
  std::vector<double> sumA, sumB;
  ReferenceSums(x, sumA, sumB);
  for (int piece : {1, 7, 16, 53}) {
    for (int shares : {1, 2, 5}) {
      const auto n = KernelSums(x, piece, shares);
      for (int L = 0; L < kFitted; ++L) {
        ASSERT_EQ(n->SumB[L + 1], sumB[L]) << "B " << L << " piece " << piece;
        for (int m = L; m < kFitted; ++m) {
          ASSERT_EQ(n->SumA(L + 1, m + 1), sumA[L * kFitted + m])
              << L << "," << m << " piece " << piece << " shares " << shares;
        }
      }
    }
  }
}

TEST(PointRows, ParameterThatNoPointMovesKeepsZeroSums) {
  const RowSet x = MakeRows();
  const auto n = KernelSums(x, 16, 3);
  for (int m = 0; m < kFitted; ++m)
    EXPECT_EQ(n->SumA(4, m + 1), 0.0) << m;  // parameter 4: m % 7 == 3
  EXPECT_EQ(n->SumB[4], 0.0);
  EXPECT_NE(n->SumA(1, 1), 0.0);
}

TEST(PointRows, RowEndIsPastTheLastNonZeroEntry) {
  const float row[6] = {0.0f, 2.0f, 0.0f, -1.0f, 0.0f, 0.0f};
  EXPECT_EQ(RowEnd(row, 6), 4);
  EXPECT_EQ(RowEnd(row, 1), 0);
  const float zeros[3] = {};
  EXPECT_EQ(RowEnd(zeros, 3), 0);
}

TEST(PointRows, FamilyRunsJoinNeighboursOfOneFamily) {
  const std::uint8_t family[7] = {1, 3, 3, 3, 1, 1, 2};
  std::vector<FamilyRun> runs;
  BuildFamilyRuns(family, 7, runs);
  ASSERT_EQ(runs.size(), 4u);
  EXPECT_EQ(runs[0].begin, 0);
  EXPECT_EQ(runs[0].end, 1);
  EXPECT_EQ(runs[1].begin, 1);
  EXPECT_EQ(runs[1].end, 4);
  EXPECT_EQ(runs[1].family, 3);
  EXPECT_EQ(runs[2].begin, 4);
  EXPECT_EQ(runs[2].end, 6);
  EXPECT_EQ(runs[3].family, 2);
  BuildFamilyRuns(family, 0, runs);
  EXPECT_TRUE(runs.empty());
}

}  // namespace
}  // namespace corvinet
