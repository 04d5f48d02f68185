// The general position as the orbit of a test point, and the reading of each image as an operator.
#include <cmath>

#include "crystal/space_group_symbol.h"
#include "crystal/symmetry_operators.h"

namespace corvinet {
namespace {

using Point = std::array<float, 3>;

// 108 times the test point gives 2, 3 and 4, which the decoding relies on.
constexpr Point kTestPoint = {1.0f / 54.0f, 1.0f / 36.0f, 1.0f / 27.0f};
constexpr float kCoincidence = 0.0001f;

constexpr float kTranslationOfCode[4] = {0.0f, 0.5f, 0.25f, 0.75f};

float Reduced(float v) {
  v += 8.0f;
  v -= std::trunc(v);
  return v >= 0.99999f ? 0.0f : v;
}

Point ApplyOrdinary(GeneratorWord w, const Point& p) {
  const float x = p[0], y = p[1], z = p[2];
  const float xs[4] = {x, y, -x, -y};
  const float ys[4] = {y, x, -y, -x};
  Point q;
  q[0] = xs[word::R1(w)] + kTranslationOfCode[word::T1(w)];
  q[1] = ys[word::R2(w)] + kTranslationOfCode[word::T2(w)];
  q[2] = (word::R3(w) != 0 ? -z : z) + kTranslationOfCode[word::T3(w)] +
         static_cast<float>(word::T3Third(w)) / 3.0f;
  return q;
}

// The images of one point under one word: one for an ordinary word, two for a
// three-fold or the rhombohedral centring.
int Images(GeneratorWord w, const Point& p, Point out[2]) {
  const float x = p[0], y = p[1], z = p[2];
  if (w == word::kCentringR) {
    out[0] = {x + 1.0f / 3.0f, y + 2.0f / 3.0f, z + 2.0f / 3.0f};
    out[1] = {x + 2.0f / 3.0f, y + 1.0f / 3.0f, z + 1.0f / 3.0f};
    return 2;
  }
  if (word::WordType(w) == 1) {
    const float screw = static_cast<float>(word::T1(w) - 1) / 3.0f;
    out[0] = {-y, x - y, z + screw};
    out[1] = {-out[0][1], -x, z - screw};
    return 2;
  }
  if (word::WordType(w) == 2) {
    out[0] = {z, x, y};
    out[1] = {y, z, x};
    return 2;
  }
  out[0] = ApplyOrdinary(w, p);
  return 1;
}

bool OnTestPoint(const Point& p, const Point& first) {
  for (int c = 0; c < 3; ++c) {
    if (std::fabs(p[c] - first[c]) >= kCoincidence) return false;
  }
  return true;
}

// A row of the rotation from the signed axis code of a decoded coordinate.
bool SetRow(IntMatrix3& m, int row, int code) {
  switch (code) {
    case 1:  // -x+y
      m(row, 1) = -1;
      m(row, 2) = 1;
      return true;
    case -1:  // x-y
      m(row, 1) = 1;
      m(row, 2) = -1;
      return true;
    case 2:
    case -2:
      m(row, 1) = code > 0 ? 1 : -1;
      return true;
    case 3:
    case -3:
      m(row, 2) = code > 0 ? 1 : -1;
      return true;
    case 4:
    case -4:
      m(row, 3) = code > 0 ? 1 : -1;
      return true;
    default:
      return false;
  }
}

}  // namespace

SymmetryMessages GeneralPositions(SpaceGroup& group, GeneralPositionList& positions) {
  SymmetryMessages messages;
  positions.count = 1;
  positions.point[1] = kTestPoint;
  positions.word[1] = 0;
  for (int g = 1; g <= group.generatorCount; ++g) {
    const GeneratorWord w = group.generatorWords[g];
    const int present = positions.count;
    for (int e = 1; e <= present; ++e) {
      Point images[2];
      const int n = Images(w, positions.point[e], images);
      for (int m = 0; m < n; ++m) {
        for (float& v : images[m]) v = Reduced(v);
        if (positions.count >= SpaceGroupLimits::kGeneralPositions ||
            OnTestPoint(images[m], positions.point[1])) {
          messages.stop = " The program generated wrong symmetry operator";
          return messages;
        }
        ++positions.count;
        positions.point[positions.count] = images[m];
        positions.word[positions.count] = w ^ positions.word[e];
      }
    }
  }
  group.generalPositionCount = positions.count;
  return messages;
}

bool DecodePosition(const Point& point, SymmetryOperator& op) {
  op.rotation.Fill(0);
  for (int c = 0; c < 3; ++c) {
    const int n = static_cast<int>(std::trunc(108.0f * point[c] + 0.1f));
    const int m = n + 4;
    float t = static_cast<float>(m / 9) / 12.0f;
    t -= std::trunc(t);
    op.translation[c + 1] = t;
    if (!SetRow(op.rotation, c + 1, m % 9 - 4)) return false;
  }
  return true;
}

}  // namespace corvinet
