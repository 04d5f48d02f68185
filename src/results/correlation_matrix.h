// The correlation matrix of the refined parameters in percent.
#pragma once

#include <string>
#include <vector>

#include "records/job.h"
#include "records/normal_matrix.h"

namespace corvinet {

// trunc(100 C(i,j) / (s sqrt|C(i,i) C(j,j)|) + 0.5), s the sign of C(i,i) C(j,j).
int CorrelationPercent(float cij, float cii, float cjj);

// " => Correlation matrix ==>" and blocks of at most 19 columns; nothing for
// fewer than two parameters.
std::vector<std::string> CorrelationMatrixLines(const NormalMatrix& normal, int fitted);

}  // namespace corvinet
