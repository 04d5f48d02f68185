// The picture of the final fit: written when a pattern leaves a .prf file, one panel per pattern.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "results/fit_picture.h"
#include "surface/drawing_page.h"
#include "test_support.h"

#ifdef CORVINET_HAVE_CAIRO
#include <cairo.h>
#endif

namespace corvinet {
namespace {

using testing::ScratchDir;

// A job "fit" of `patterns` patterns of 50 points each, with Prf `prf`.
std::unique_ptr<Job> FitJob(int patterns, int prf) {
  auto job = std::make_unique<Job>();
  job->driver.PcrCode = "fit";
  job->run.NPATT = patterns;
  job->run.Title = "Fit picture";
  for (int ip = 1; ip <= patterns; ++ip) {
    Pattern& p = job->patterns[ip];
    p.IPL2 = prf;
    p.NPTS = 50;
    for (int i = 1; i <= p.NPTS; ++i) {
      p.X[i] = 10.0f + 0.5f * static_cast<float>(i);
      p.Ycalc[i] = 100.0f + (i % 10 == 0 ? 500.0f : 0.0f);
      p.Ytotal[i] = p.Ycalc[i] + static_cast<float>(i % 3);
    }
  }
  return job;
}

std::pair<int, int> PngSize(const std::string& path) {
#ifdef CORVINET_HAVE_CAIRO
  cairo_surface_t* s = cairo_image_surface_create_from_png(path.c_str());
  std::pair<int, int> size{0, 0};
  if (cairo_surface_status(s) == CAIRO_STATUS_SUCCESS) {
    size = {cairo_image_surface_get_width(s), cairo_image_surface_get_height(s)};
  }
  cairo_surface_destroy(s);
  return size;
#else
  (void)path;
  return {0, 0};
#endif
}

TEST(FitPicture, OnePanelPerPatternAtLeast1600By1000) {
  if (!PicturesAvailable()) GTEST_SKIP() << "built without cairo";
  ScratchDir dir;
  auto job = FitJob(2, 1);
  WriteFitPicture(*job, {});
  EXPECT_EQ(PngSize((dir.path / "fit_fit.png").string()),
            std::make_pair(kFitPictureWidth, kFitPictureHeight + kFitPanelHeight));
  EXPECT_TRUE(dir.Exists("fit_fit.svg"));
  const std::string svg = dir.Read("fit_fit.svg");
  EXPECT_NE(svg.find("<svg"), std::string::npos);
}

TEST(FitPicture, NoPictureWithoutAProfileFile) {
  ScratchDir dir;
  auto job = FitJob(1, 0);
  WriteFitPicture(*job, {});
  EXPECT_FALSE(dir.Exists("fit_fit.png"));
  auto pl1 = FitJob(1, 4);  // .pl1 and .pl2, not a .prf
  WriteFitPicture(*pl1, {});
  EXPECT_FALSE(dir.Exists("fit_fit.png"));
}

TEST(FitPicture, NoPictureForIntegratedIntensities) {
  ScratchDir dir;
  auto job = FitJob(1, 1);
  job->run.ICRYG = 1;
  WriteFitPicture(*job, {});
  EXPECT_FALSE(dir.Exists("fit_fit.png"));
}

}  // namespace
}  // namespace corvinet
