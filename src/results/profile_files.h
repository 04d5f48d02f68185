// Entry points of the profile and plot files written at the end of a run, and their shared values.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// Extremes of one pattern over all its points, taken once the background is in Ycalc.
struct PlotExtremes {
  float Ymax = -1.0e20f;    // largest Ytotal or total Ycalc
  float BackMin = 1.0e20f;  // smallest background
};

// What the IGOR file states about the run besides the job record.
struct ProfileFileContext {
  PlotExtremes extremes;
  std::string date;           // date of the run as shown in the text box
  std::string time;           // time of the run
  bool poissonNoise = false;  // the calculated pattern was randomised with Poisson noise
};

// Adds the background to Ycalc at every point of pattern ip, sets Ytotal equal
// to Ycalc in calculation-only jobs (|JOBTYP| > 1), and returns Ymax and BackMin.
PlotExtremes AddBackgroundForPlots(Job& job, int ip);

// The profile file of pattern ip in the layout chosen by its IPL2
// (0 none, 1, 2, 3, -3 on the .prf unit; 4 and 5 on the .pl1 and .pl2 files).
void WriteProfileFile(Job& job, int ip, const ProfileFileContext& context);

// Each layout on its own.
void WriteFixedProfileFile(Job& job, int ip, const PlotExtremes& extremes);       // IPL2 1
void WriteIgorProfileFile(Job& job, int ip, const ProfileFileContext& context);   // IPL2 2
void WriteTabbedProfileFile(Job& job, int ip, const PlotExtremes& extremes);      // IPL2 3
void WriteSideBySideProfileFile(Job& job, int ip, const PlotExtremes& extremes);  // IPL2 -3
void WriteFreePlotFiles(Job& job, int ip, const PlotExtremes& extremes);          // IPL2 4
void WriteOffsetPlotFiles(Job& job, int ip, const PlotExtremes& extremes);        // IPL2 5

// Name of a .pl1/.pl2 file: the control-file code, "_" and the pattern number
// when the job has several patterns, then the extension (".pl1" or ".pl2").
std::string PlotFileName(const Job& job, int ip, const std::string& extension);

// The three kinds of XYDATA file of the final report.
enum class XyDataKind { Background, Difference, ZeroCorrectedDifference };

// Writes one XYDATA file of pattern ip (<code>_bac.xy, <code>_dif.xy or
// <code>_zdif.xy, with the pattern suffix) on the background unit, and names it
// in the report. Called before the background is added to Ycalc, so that Ycalc
// is the Bragg part only.
void WriteXyDataFile(Job& job, int ip, XyDataKind kind);

// The XYDATA file that IPL asks for: 2 the background, 3 the difference.
void WriteBackgroundPlotFiles(Job& job, int ip);

// The table of x, Yobs, Ycalc and Variance on the .out unit (IOT = 1).
void WriteLinePrinterTable(Job& job, int ip);

// The character plot of Yobs, Ycalc and their difference on the .out unit
// (IPL = 1); a scale of 0 becomes 50.
void WriteLinePrinterPlot(Job& job, int ip, float scaleY, float scaleD);

}  // namespace corvinet
