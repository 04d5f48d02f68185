// Background model dispatch: evaluation at reading, refresh per cycle, values and derivatives.
#include "observations/background.h"

#include "observations/background_file.h"
#include "observations/background_points.h"

namespace corvinet {

namespace {

constexpr int kPolynomialTerms = 6;
constexpr int kExtendedPolynomialTerms = 12;

int PolynomialTerms(BackgroundModel model) {
  return model == BackgroundModel::Polynomial12 ? kExtendedPolynomialTerms : kPolynomialTerms;
}

void FillClosedForm(Pattern& p, BackgroundModel model) {
  const int terms = PolynomialTerms(model);
  const bool debye = model == BackgroundModel::Debye;
  for (int i = 1; i <= p.NPTS; ++i) {
    float value = PolynomialValue(p, p.X[i], terms);
    if (debye) value += DebyeValue(p, p.X[i]);
    p.Backg[i] = value;
  }
}

void FillFromFile(Pattern& p) {
  for (int i = 1; i <= p.NPTS; ++i) p.Backg[i] = FileBackgroundAt(p, i);
}

}  // namespace

BackgroundModel BackgroundModelOf(const Pattern& pattern) {
  const int typed = pattern.NBCKGD * pattern.backgroundSign;
  switch (typed) {
    case 0:
      return BackgroundModel::Polynomial;
    case 1:
      return BackgroundModel::File;
    case -1:
      return BackgroundModel::Debye;
    case -2:
      return BackgroundModel::Fourier;
    case -3:
      return BackgroundModel::Polynomial12;
    default:
      return typed > 0 ? BackgroundModel::Linear : BackgroundModel::Spline;
  }
}

void EvaluateBackground(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  const BackgroundModel model = BackgroundModelOf(p);
  if (model == BackgroundModel::File) ReadBackgroundFile(job, ip);
  if (model == BackgroundModel::Fourier) {
    for (int i = 1; i <= p.NPTS; ++i) p.Backg[i] = 0.0f;
  }
  FillBackground(job, ip);
}

void FillBackground(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  const BackgroundModel model = BackgroundModelOf(p);
  switch (model) {
    case BackgroundModel::Polynomial:
    case BackgroundModel::Debye:
    case BackgroundModel::Polynomial12:
      FillClosedForm(p, model);
      return;
    case BackgroundModel::File:
      FillFromFile(p);
      return;
    case BackgroundModel::Linear:
      FillLinearBackground(job, ip);
      return;
    case BackgroundModel::Spline:
      FillSplineBackground(job, ip);
      return;
    case BackgroundModel::Fourier:
      return;
  }
}

bool RefilledEachCycle(const Pattern& pattern) {
  const BackgroundModel model = BackgroundModelOf(pattern);
  return model != BackgroundModel::File && model != BackgroundModel::Fourier;
}

float BackgroundAt(const Pattern& pattern, int i) {
  if (BackgroundModelOf(pattern) == BackgroundModel::File) return FileBackgroundAt(pattern, i);
  return pattern.Backg[i];
}

void BackgroundDerivatives(const Pattern& pattern, int i, float scaleSin,
                           DerivativeVector& derivative) {
  const BackgroundModel model = BackgroundModelOf(pattern);
  switch (model) {
    case BackgroundModel::Polynomial:
    case BackgroundModel::Polynomial12:
      AddPolynomialDerivatives(pattern, pattern.X[i], PolynomialTerms(model), scaleSin, derivative);
      return;
    case BackgroundModel::Debye:
      AddPolynomialDerivatives(pattern, pattern.X[i], kPolynomialTerms, scaleSin, derivative);
      AddDebyeDerivatives(pattern, pattern.X[i], scaleSin, derivative);
      return;
    case BackgroundModel::File:
      AddFileBackgroundDerivatives(pattern, i, scaleSin, derivative);
      return;
    case BackgroundModel::Linear:
      AddPointDerivatives(pattern, i, false, scaleSin, derivative);
      return;
    case BackgroundModel::Spline:
      AddPointDerivatives(pattern, i, true, scaleSin, derivative);
      return;
    case BackgroundModel::Fourier:
      return;
  }
}

}  // namespace corvinet
