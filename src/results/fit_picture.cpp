// The picture of the final fit: one panel per pattern, written beside the profile files.
#include "results/fit_picture.h"

#include "format/fortran_format.h"
#include "format/text.h"
#include "refine/plot_view.h"
#include "surface/drawing_page.h"
#include "surface/pattern_plot.h"

namespace corvinet {

namespace {

// Frame of panel ip of n in the page, leaving room for its title and axis labels.
PlotFrame PanelFrame(int ip, int n) {
  const float band = 1.0f / static_cast<float>(n);
  const float top = band * static_cast<float>(ip - 1);
  return FrameOf(0.11f, top + 0.12f * band, 0.96f, top + 0.88f * band);
}

std::vector<std::string> CornerLines(const Job& job, int ip, const PhaseAnalysisInputs& phases) {
  const ReliabilityFactors& a = job.reliability.pattern[ip].setA;
  std::vector<std::string> lines;
  lines.push_back(TrimmedCopy(
      Fmt("(A,F7.2,A,F7.2,A,F9.2)", "Rp =", a.Rp, "   Rwp =", a.Rwp, "   Chi2 =", a.Chi2)));
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    if (job.phases[f].pat[ip].Contribution == 0) continue;
    lines.push_back(TrimmedCopy(Fmt("(A,I1,A,F7.2,A,F7.2)", "Phase ", f,
                                    ":  RB =", phases[f].FinalRB, "   RF =", phases[f].FinalRF)));
  }
  return lines;
}

}  // namespace

bool WritesProfileFile(const Job& job, int ip) {
  const int ipl2 = job.patterns[ip].IPL2;
  return job.run.ICRYG == 0 && (ipl2 == 1 || ipl2 == 2 || ipl2 == 3 || ipl2 == -3);
}

void WriteFitPicture(Job& job, const Table1<PhaseAnalysisInputs, DimensionLimits::NPATT>& phases) {
  bool any = false;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) any = any || WritesProfileFile(job, ip);
  if (!any) return;
  const int n = job.run.NPATT;
  const PageSize size{kFitPictureWidth, kFitPictureHeight + kFitPanelHeight * (n - 1)};
  std::unique_ptr<DrawingPage> page =
      CreatePicturePage(TrimmedCopy(job.driver.PcrCode) + "_fit", size);
  if (!page) return;
  page->BeginPage();
  for (int ip = 1; ip <= n; ++ip) {
    PlotViewBuffers buffers;
    PatternPlotView view = PatternView(job, ip, true, buffers);
    if (n > 1) view.title = TrimmedCopy(view.title) + Fmt("(A,I2)", "  -  pattern", ip);
    view.phaseColours = true;
    view.yTitleOffset = 0.08f;  // clear of labels of up to six digits
    for (int f = 1; f <= job.run.NPHASE; ++f) {
      view.phaseNames.push_back(Fmt("(A,I1,A)", "Phase ", f, ": ") +
                                TrimmedCopy(job.phases[f].PhaseTitle));
    }
    view.cornerLines = CornerLines(job, ip, phases[ip]);
    DrawPatternPanel(*page, PanelFrame(ip, n), view);
  }
  page->EndPage();
}

}  // namespace corvinet
