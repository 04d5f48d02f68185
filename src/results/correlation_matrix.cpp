// The correlation matrix of the refined parameters in percent, from the covariance matrix.
#include <algorithm>
#include <cmath>
#include <limits>

#include "format/fortran_format.h"
#include "results/correlation_matrix.h"

namespace corvinet {

namespace {

constexpr int kBlockColumns = 19;

}  // namespace

int CorrelationPercent(float cij, float cii, float cjj) {
  const float product = cii * cjj;
  const float s = product >= 0.0f ? 1.0f : -1.0f;
  const float value = 100.0f * cij / (s * std::sqrt(std::fabs(product))) + 0.5f;
  // A zero variance gives no number; it is shown as 0 rather than as garbage.
  if (!std::isfinite(value)) return 0;
  const float limit = static_cast<float>(std::numeric_limits<int>::max() / 2);
  return static_cast<int>(std::trunc(std::clamp(value, -limit, limit)));
}

std::vector<std::string> CorrelationMatrixLines(const NormalMatrix& normal, int fitted) {
  std::vector<std::string> lines;
  if (fitted <= 1) return lines;
  lines.emplace_back(" => Correlation matrix ==>");
  for (int first = 1; first <= fitted; first += kBlockColumns) {
    const int last = std::min(fitted, first + kBlockColumns - 1);
    std::vector<FormatValue> head;
    for (int j = first; j <= last; ++j) head.emplace_back(j);
    lines.emplace_back("");
    lines.push_back(FormatText("(6X,19I4)", head));
    for (int i = 1; i <= fitted; ++i) {
      std::vector<FormatValue> row{FormatValue(i)};
      for (int j = first; j <= last; ++j) {
        row.emplace_back(CorrelationPercent(normal.A(i, j), normal.A(i, i), normal.A(j, j)));
      }
      lines.push_back(FormatText("(I5,1X,19I4)", row));
    }
  }
  return lines;
}

}  // namespace corvinet
