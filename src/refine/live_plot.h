// The live plot of the cycles: a page per pattern after every cycle and the questions that follow.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// The value of LST2 of pattern 1 that asks for the live plot.
inline constexpr int kLivePlot = 4;

// The size of the pages of the live plot.
inline constexpr int kLivePlotWidth = 1000;
inline constexpr int kLivePlotHeight = 700;

// The stem of the pictures of the live plot: `<job>_plot`.
std::string LivePlotStem(const Job& job);

// The page that shows the PNG of the live plot and reloads itself every two seconds.
std::string LivePlotHtml(const std::string& pictureName, const std::string& title);

// Draws every pattern after cycle `cycle`, one page after the other, asking
// between them for the next pattern, then asks whether to continue. A No to
// "Continue refinement ?" ends the process (no final files).
void PlotCycle(Job& job, int cycle);

// After the last cycle only "Refinement finished!" is shown; before, the
// question "Continue refinement ?", whose No ends the process.
void AskContinueCycle(Job& job, int cycle);

// "Next Pattern ?" after pattern p: true to go on to the next pattern.
bool AskNextPattern(Job& job, int p);

}  // namespace corvinet
