// The live plot of the cycles: a page per pattern after every cycle and the questions that follow.
#include "refine/live_plot.h"

#include <fstream>

#include "format/fortran_format.h"
#include "format/text.h"
#include "refine/plot_view.h"
#include "surface/console.h"
#include "surface/drawing_page.h"
#include "surface/pattern_plot.h"
#include "surface/prompts.h"

namespace corvinet {

namespace {

// Opens the window: the page that a browser shows while the run goes on.
void CreateWindow(Job& job, const std::string& title) {
  LivePlotWindow& w = job.refinement.plotWindow;
  w.open = true;
  w.title = title;
  const std::string stem = LivePlotStem(job);
  const std::size_t slash = stem.rfind('/');
  const std::string picture = (slash == std::string::npos ? stem : stem.substr(slash + 1)) + ".png";
  std::ofstream(stem + ".html") << LivePlotHtml(picture, title);
}

void DrawPage(Job& job, int ip) {
  PlotViewBuffers buffers;
  const PatternPlotView view = PatternView(job, ip, false, buffers);
  std::unique_ptr<DrawingPage> page =
      CreatePicturePage(LivePlotStem(job), {kLivePlotWidth, kLivePlotHeight});
  ++job.refinement.plotWindow.pages;
  if (!page) return;
  page->BeginPage();
  DrawPatternPanel(*page, PlotFrame{}, view);
  page->EndPage();
}

}  // namespace

std::string LivePlotStem(const Job& job) {
  return TrimmedCopy(job.driver.PcrCode) + "_plot";
}

std::string LivePlotHtml(const std::string& pictureName, const std::string& title) {
  return "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n"
         "<meta http-equiv=\"refresh\" content=\"2\">\n<title>" +
         title + "</title>\n</head>\n<body style=\"margin:0\">\n<img src=\"" + pictureName +
         "\" alt=\"" + title + "\" style=\"width:100%\">\n</body>\n</html>\n";
}

void PlotCycle(Job& job, int cycle) {
  LivePlotWindow& w = job.refinement.plotWindow;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    const std::string title = Fmt("(A,I2)", "Corvinet Refinement for pattern # ", ip);
    if (!w.open) CreateWindow(job, title);
    DrawPage(job, ip);
    if (ip == job.run.NPATT || !AskNextPattern(job, ip)) break;
    w.open = false;
  }
  AskContinueCycle(job, cycle);
}

void AskContinueCycle(Job& job, int cycle) {
  const std::string heading = "Corvinet Refinement - " + Fmt("(A,I4)", "Cycle: ", cycle);
  if (cycle == job.run.NCY) {
    ShowMessage(job.console, heading, "Refinement finished!");
    return;
  }
  if (AskYesNo(job.console, heading, "Continue refinement ?", true)) return;
  // The user's stop: the run ends here, without its final files.
  WarningBox(job, "Corvinet stopped!");
  throw ProcessStop{ExitStatus::kNormal, "stopped by the user"};
}

bool AskNextPattern(Job& job, int p) {
  return AskYesNo(job.console, Fmt("(A,I2)", "Pattern: ", p), "Next Pattern ?", true);
}

}  // namespace corvinet
