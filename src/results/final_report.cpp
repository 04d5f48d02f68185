// The final report of a run, step by step in its fixed order: background files, new control file,
// correlation matrix, background, phase fractions and reflection lists, simulated data, profile
// and plot files, and the closing records.
#include "results/final_report.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

#include "control/control_writer.h"
#include "format/date_time.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/file_set.h"
#include "observations/background.h"
#include "records/profile_slots.h"
#include "records/reflection.h"
#include "refine/bragg_profile.h"
#include "refine/cycle_work.h"
#include "refine/intensity_evaluation.h"
#include "results/apparent_size_strain.h"
#include "results/cif_export.h"
#include "results/correlation_matrix.h"
#include "results/dimension_report.h"
#include "results/extracted_intensities.h"
#include "results/fit_picture.h"
#include "results/magnetic_comments.h"
#include "results/pattern_exports.h"
#include "results/phase_fractions.h"
#include "results/profile_files.h"
#include "results/refinement_analysis.h"
#include "results/reflection_rows.h"
#include "results/simulated_pattern.h"
#include "results/structure_exports.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// Below this the observed intensity of a phase counts as none.
constexpr float kNoIntensity = 1.0e-10f;
constexpr float kRadianToDegree = 57.29578f;

void WriteOut(Job& job, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) WriteLine(job, Unit::Out, line);
}

// The background files while Ycalc is still the Bragg part.
void WriteBackgrounds(Job& job) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    const int ipl = job.patterns[ip].IPL;
    if (ipl == 2 || ipl == 3) WriteBackgroundPlotFiles(job, ip);
  }
}

// The new control file, with the scales of the last pattern that has a
// line-printer plot (read with the end lines of the control file); then the
// input control file is closed.
void WriteNewControlFile(Job& job) {
  if (job.run.NXT != 0) {
    int Iscale = 100, Idif = 100;
    for (int ip = 1; ip <= job.run.NPATT; ++ip) {
      if (job.patterns[ip].IPL != 1) continue;
      Iscale = job.patterns[ip].Iscale;
      Idif = job.patterns[ip].Idif;
    }
    WriteControlFile(job, Iscale, Idif, job.run.rpaRangeLow, job.run.rpaRangeHigh);
  }
  CloseUnit(job.files.units[Unit::Control]);
}

// The correlation matrix, when asked for.
void WriteCorrelationMatrix(Job& job) {
  if (job.run.MAT == 0) return;
  WriteOut(job, CorrelationMatrixLines(job.refinement.normal, FittedCount(job)));
}

void WritePhaseHeader(Job& job, int ip, int f) {
  const std::string dashes(80, '-');
  WriteLine(job, Unit::Out, "");
  WriteLine(job, Unit::Out, dashes);
  WriteLine(job, Unit::Out,
            Fmt("(A,I3,A,I3,A,A)", " Pattern#", ip, " Phase No: ", f,
                " Phase name: ", TrimRight(job.phases[f].PhaseTitle)));
  WriteLine(job, Unit::Out, dashes);
}

// The head of the phase file of extracted intensities.
void OpenExtractedIntensityFile(Job& job, int ip, int f) {
  const Pattern& p = job.patterns[ip];
  const Phase& ph = job.phases[f];
  OpenFiles(job, FileKind::kIntensities, ip, f);
  const int u = Unit::IntensitiesOut;
  WriteLine(job, u,
            Fmt("(A,I3,A,I3,2X,A)", " Pattern#", ip, " Phase No: ", f, TrimRight(ph.PhaseTitle)));
  WriteLine(job, u,
            Fmt("(I6,3F10.5)", p.reflections.count[f], p.LAMBDA[1], p.LAMBDA[2], p.RATIO[2]));
  if (ph.Nvk <= 0) return;
  WriteLine(job, u, Fmt("(A,I3)", " Number of propagation vectors:", ph.Nvk));
  for (int n = 1; n <= ph.Nvk; ++n) {
    const Table1<float, 3>& K = ph.vectors[n].KVEC;
    WriteLine(job, u, Fmt("(3F10.5)", K[1], K[2], K[3]));
  }
}

// The Fourier row of a reflection row; sigma(F) from the counting statistics of Iobs.
FourierRow FourierRowOf(const Pattern& p, int k, const ReflectionRowValues& row) {
  const Reflection& r = p.reflections.slot[k];
  FourierRow f;
  f.h = row.h;
  f.k = row.k;
  f.l = row.l;
  f.Fobs = row.Fobs;
  f.Fcalc = row.Fcalc;
  f.sigmaF = row.Iobs > 0.0f ? row.Fobs / (2.0f * std::sqrt(row.Iobs)) : 0.0f;
  f.A = r.Aprime;
  f.B = r.Bprime;
  f.phase = r.phaseAngle * kRadianToDegree;
  return f;
}

// The CIF row of a reflection row: its |F|^2 is that of the whole cell.
CifReflection CifRowOf(const Job& job, int ip, int f, int k, const ReflectionRowValues& row) {
  CifReflection c;
  c.h = row.h;
  c.k = row.k;
  c.l = row.l;
  c.multiplicity = row.multiplicity;
  c.d = row.d;
  c.position = row.twoTheta;
  c.Iobs = row.Iobs;
  c.Icalc = row.Icalc;
  c.F2calc = job.patterns[ip].reflections.slot[k].F2 *
             static_cast<float>(job.phases[f].group.multiplicityFactor);
  return c;
}

// A reflection of a matching phase on the scale of its intensity list.
ExtractedReflection ExtractedOf(const Job& job, int ip, int f, const ReflectionRowValues& row,
                                const ReflectionShare& share) {
  const float scale = job.phases[f].pat[ip].PAR[ProfileSlot::Scale];
  const float perScale = scale != 0.0f ? 1.0f / scale : 1.0f;
  ExtractedReflection e;
  e.h = row.h;
  e.k = row.k;
  e.l = row.l;
  e.vector = row.vector;
  e.multiplicity = row.multiplicity;
  e.twoTheta = row.twoTheta;
  e.fwhm = row.fwhm;
  e.intensity = row.Iobs * perScale;
  e.sigma = std::sqrt(share.IobsVariance) * perScale;
  return e;
}

// The extracted list of a matching phase, then its clusters of overlapped
// peaks in the regrouped file, with the rules on the .out file.
void WriteExtractedIntensities(Job& job, int ip, int f,
                               const std::vector<ExtractedReflection>& extracted) {
  const Phase& ph = job.phases[f];
  const int u = Unit::IntensitiesOut;
  for (const ExtractedReflection& e : extracted) {
    WriteLine(job, u, ExtractedIntensityRow(e, ph.Nvk > 0));
  }
  CloseUnit(job.files.units[u]);
  const RegroupRules rules = RegroupRulesOf(ph.pat[ip].Rmub, ph.pat[ip].Rmuc);
  const std::vector<ClusterRecord> clusters = RegroupOverlaps(extracted, rules);
  RegroupedFileHead head;
  head.phase = f;
  head.wavelength = job.patterns[ip].LAMBDA[1];
  head.xray = ph.pat[ip].Jtyp == 0 || ph.pat[ip].Jtyp == 2;
  head.cosMono = job.patterns[ip].Cthm;
  for (int n = 1; n <= ph.Nvk; ++n) {
    const Table1<float, 3>& K = ph.vectors[n].KVEC;
    head.vectors.push_back({K[1], K[2], K[3]});
  }
  OpenFiles(job, FileKind::kRegrouped, ip, f);
  for (const std::string& line : RegroupedFileLines(head, clusters)) WriteLine(job, u, line);
  CloseUnit(job.files.units[u]);
  WriteOut(job, RegroupRuleLines(f, rules));
}

// One row per reflection of the phase and the sums; the rows of a CIF go to
// `cif`, and the weighted squares of Iobs - Icalc into `chi2Sum`. The
// extracted reflections of a matching phase go to `extracted` when it is given.
PhaseReportSums WriteReflectionRows(Job& job, int ip, int f, const BraggProfile& profile,
                                    std::vector<CifReflection>& cif, float& chi2Sum,
                                    std::vector<ExtractedReflection>* extracted) {
  const Pattern& p = job.patterns[ip];
  const bool toFile = p.JLKH != 0;
  if (toFile) {
    for (const std::string& line : ReflectionFileHeader(job, ip, f)) {
      WriteLine(job, Unit::HklOut, line);
    }
  }
  WriteLine(job, Unit::Out,
            " Code h   k   l  Mult   D(A)     2T      HW       Iobs    Icalc   io-ic");
  const PhaseBraggSums bragg =
      SumPhaseShares(job, ip, f, profile, [&](int k, const ReflectionShare& share) {
        if (share.IobsVariance > 0.0f) {
          const float d = share.Iobs - share.Icalc;
          chi2Sum += d * d / share.IobsVariance;
        }
        const ReflectionRowValues row = ReflectionRow(job, ip, k, share);
        cif.push_back(CifRowOf(job, ip, f, k, row));
        if (p.JFOU != 0)
          WriteLine(job, Unit::Fourier, FourierFileRow(p.JFOU, FourierRowOf(p, k, row)));
        WriteLine(job, Unit::Out, ReportReflectionRow(row));
        if (toFile) WriteLine(job, Unit::HklOut, ReflectionFileRow(job, ip, f, row));
        if (extracted && share.counted && KeyWavelength(p.reflections.slot[k].key) == 1) {
          extracted->push_back(ExtractedOf(job, ip, f, row, share));
        }
      });
  PhaseReportSums sums;
  sums.SumIobs = bragg.SumIobs;
  sums.SumIcalc = bragg.SumIcalc;
  if (std::fabs(sums.SumIobs) < kNoIntensity) {
    WarningBox(job, "Sum(Iobs)=0: have you really reflections?");
    sums.SumIobs = 1.0f;
  }
  sums.FinalRB = BraggRatio(bragg.SumAbsI, sums.SumIobs);
  sums.FinalRF = BraggRatio(bragg.SumAbsF, bragg.SumFobs);
  return sums;
}

// The block of one phase: header, rows, Bragg factors; returns what the
// analysis needs of the phase.
PhaseAnalysisInput ReportPhase(Job& job, int ip, int f, const PhaseFractions& fractions,
                               const BraggProfile& profile) {
  PhaseAnalysisInput result;
  const Phase& ph = job.phases[f];
  const bool matching = std::abs(ph.Jbt) == 2;
  WritePhaseHeader(job, ip, f);
  if (matching) OpenExtractedIntensityFile(job, ip, f);
  std::vector<ExtractedReflection> extracted;
  if (std::abs(ph.pat[ip].Irf) == 4) {
    auto scratch = std::make_unique<StructureFactorScratch>();
    ReportIntensityList(job, *scratch, ip, f);
  } else {
    std::vector<CifReflection> cif;
    const PhaseReportSums sums = WriteReflectionRows(job, ip, f, profile, cif, result.IntChi2Sum,
                                                     matching ? &extracted : nullptr);
    result.SumIobs = sums.SumIobs;
    result.FinalRB = sums.FinalRB;
    result.FinalRF = sums.FinalRF;
    for (const std::string& line : FinalBraggLines(job, ip, f, fractions, sums)) {
      WriteReports(job, line);
    }
    // The final factors are those the run ends with, for the files written after the report.
    job.reliability.pattern[ip].braggR[f] = sums.FinalRB;
    job.reliability.pattern[ip].rfFactor[f] = sums.FinalRF;
    if (WritesPhaseCif(job, ip, f)) WritePhaseCif(job, ip, f, {sums.FinalRB, sums.FinalRF}, cif);
    if (job.run.JCIL > 0) WriteLine(job, Unit::Rpa, BraggRecordRow(f, fractions, sums));
    WriteOut(job, ApparentSizeStrainLines(job, ip, f));
  }
  WriteOut(job, ConicalComments(f, ph.Jbt));
  if (matching) WriteExtractedIntensities(job, ip, f, extracted);
  return result;
}

ProfileFileContext ContextOf(const Job& job, const PlotExtremes& extremes) {
  const DateTimeStamp now = DateTime();
  ProfileFileContext c;
  c.extremes = extremes;
  c.date = DayText(now);
  c.time = ClockText(now, false);
  c.poissonNoise = job.run.IDUM < 0;
  return c;
}

// The files that read the total Ycalc: profile file, tables and plots.
void WritePatternPlots(Job& job, int ip, const PlotExtremes& extremes,
                       const PhaseAnalysisInputs& phases) {
  const Pattern& p = job.patterns[ip];
  WriteProfileFile(job, ip, ContextOf(job, extremes));
  if (p.IANALY != 0 && FittedCount(job) != 0 && !IsCalculatedPattern(p)) {
    AnalyseRefinement(job, ip, phases);
  }
  if (p.IOT == 1) WriteLinePrinterTable(job, ip);
  if (p.IOT > 1) {
    for (int f = 1; f <= job.run.NPHASE; ++f) {
      if (job.phases[f].pat[ip].Contribution == 0) continue;
      NotWrittenLine(job, Fmt("(A,I2)", "the contribution table to Yi of phase", f));
    }
  }
  if (p.IPL == 1) {
    WriteLinePrinterPlot(job, ip, static_cast<float>(p.Iscale), static_cast<float>(p.Idif));
  }
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const PhasePattern& pp = job.phases[f].pat[ip];
    if (job.phases[f].Sol != 0 && pp.Irf < 1 && pp.Irf != -4) {
      NotWrittenLine(job, Fmt("(A,I2)", "the structure-factor list of phase", f));
    }
  }
}

// The partition divides by the Bragg part of the calculated pattern, as in
// the cycles; by now Ycalc carries the background of the plots, so the phase
// blocks see Ycalc less the background, point by point, and Ycalc stays as it is.
BraggProfile WithBraggPartOfYcalc(const BraggProfile& profile, const Pattern& p) {
  BraggProfile view = profile;
  view.braggCalc = [&p](int, int i) { return p.Ycalc[i] - BackgroundAt(p, i); };
  return view;
}

// Everything the report writes for pattern ip; `phases` receives the figures of its phases.
void ReportPattern(Job& job, int ip, const PlotExtremes& extremes, const BraggProfile& profile,
                   PhaseAnalysisInputs& phases) {
  const PhaseFractions fractions = ComputePhaseFractions(job, ip);
  WritePatternExports(job, ip);
  const BraggProfile braggPart = WithBraggPartOfYcalc(profile, job.patterns[ip]);
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    if (job.phases[f].pat[ip].Contribution == 0) continue;
    phases[f] = ReportPhase(job, ip, f, fractions, braggPart);
  }
  CloseUnit(job.files.units[Unit::HklOut]);
  CloseUnit(job.files.units[Unit::Fourier]);
  WriteSimulatedPattern(job, ip);
  if (job.run.ICRYG != 0) return;
  WritePatternPlots(job, ip, extremes, phases);
}

}  // namespace

void FinalReport(Job& job, CycleWork& work) {
  const BraggProfile profile = PointLoopProfile(job, work);
  WriteBackgrounds(job);
  WriteNewControlFile(job);
  WriteCorrelationMatrix(job);
  Table1<PlotExtremes, DimensionLimits::NPATT> extremes;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) extremes[ip] = AddBackgroundForPlots(job, ip);
  Table1<PhaseAnalysisInputs, DimensionLimits::NPATT> phases;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    ReportPattern(job, ip, extremes[ip], profile, phases[ip]);
  }
  WriteFitPicture(job, phases);
  if (job.run.JCIL > 0) WriteLine(job, Unit::Rpa, std::string(80, '-'));
  ReportDimensions(job, job.dimensions, Unit::Out);
}

void FinalReport(Job& job) {
  auto work = std::make_unique<CycleWork>();
  FinalReport(job, *work);
}

}  // namespace corvinet
