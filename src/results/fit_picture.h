// The picture of the final fit: one panel per pattern, written beside the profile files.
#pragma once

#include "records/job.h"
#include "results/refinement_analysis.h"

namespace corvinet {

// The size of the picture of one pattern; each further pattern adds a panel.
inline constexpr int kFitPictureWidth = 1600;
inline constexpr int kFitPictureHeight = 1000;
inline constexpr int kFitPanelHeight = 640;

// Whether pattern ip leaves a .prf file.
bool WritesProfileFile(const Job& job, int ip);

// `<job>_fit.png` and `<job>_fit.svg` when some pattern leaves a .prf file:
// observed points, calculated curve, difference, the ticks of each phase in
// its colour and the R-factors of the pattern in the corner of its panel.
void WriteFitPicture(Job& job, const Table1<PhaseAnalysisInputs, DimensionLimits::NPATT>& phases);

}  // namespace corvinet
