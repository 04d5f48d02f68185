// The phase block: title, flags, contributions to each pattern, their normalisation and their
// words.
#include "control/phase_block.h"

#include <cmath>
#include <cstdlib>

#include "control/run_block.h"
#include "crystal/phase_symmetry.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/field_range.h"
#include "io/field_reader.h"
#include "surface/console.h"

namespace corvinet {

namespace {

void ReadPhaseTitle(Job& job, int k) {
  Phase& ph = job.phases[k];
  std::string record;
  if (!ReadNonCommentRecord(job, record, 70))
    StopBox(job, " Error reading the phase name in *.PCR");
  ph.PhaseTitle = CutText(record, 70);
  const std::string rule(80, '-');
  WriteReports(job, rule);
  WriteReports(job, Fmt("(A,I2,A,A)", " => Phase  No.", k, "      ", ph.PhaseTitle));
  WriteReports(job, rule);
}

void ReadMoreFlags(Job& job, Phase& ph, bool withPatternFields) {
  if (withPatternFields) {
    PhasePattern& c = ph.pat[1];
    ReadMaskedLine(job, Unit::Control, "iiiiiiffffi", job.LINE,
                   {&ph.Jvi, &ph.Jdi, &ph.Hel, &ph.Sol, &ph.MomOut, &ph.Ter, &c.Brind, &c.Rmua,
                    &c.Rmub, &c.Rmuc, &c.Jtyp});
  } else {
    ReadMaskedLine(job, Unit::Control, "iiiiii", job.LINE,
                   {&ph.Jvi, &ph.Jdi, &ph.Hel, &ph.Sol, &ph.MomOut, &ph.Ter});
  }
}

// Dis and Mom (fields 2 and 3 of the flags line) within the tables of restraints.
void CheckRestraintCounts(Job& job, const FieldLine& line, const Phase& ph) {
  CheckIntegerField(job, line, 2, "Dis", ph.Dis, 0, DimensionLimits::NCONST);
  CheckIntegerField(job, line, 3, "Mom", ph.Mom, 0, DimensionLimits::NCONST);
}

void ReadSinglePatternFlags(Job& job, Phase& ph) {
  PhasePattern& c = ph.pat[1];
  const FieldLine line =
      ReadFieldLine(job, Unit::Control, "iiifffiiiiifiii", job.LINE,
                    {&ph.Nat, &ph.Dis, &ph.Mom, &c.PREF[1], &c.PREF[2], &c.PREF[3], &ph.Jbt, &c.Irf,
                     &ph.Isy, &ph.Str, &ph.Furth, &ph.ATZ, &ph.Nvk, &c.Npr, &ph.More});
  CheckRestraintCounts(job, line, ph);
  if (ph.More != 0) ReadMoreFlags(job, ph, true);
  c.Contribution = 1;
}

void ReadMultiPatternFlags(Job& job, Phase& ph) {
  const FieldLine line = ReadFieldLine(job, Unit::Control, "iiiiiiifii", job.LINE,
                                       {&ph.Nat, &ph.Dis, &ph.Mom, &ph.Jbt, &ph.Isy, &ph.Str,
                                        &ph.Furth, &ph.ATZ, &ph.Nvk, &ph.More});
  CheckRestraintCounts(job, line, ph);
  if (ph.More != 0) ReadMoreFlags(job, ph, false);
  std::vector<ReadTarget> contributions;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) contributions.emplace_back(&ph.pat[ip].Contribution);
  ReadMaskedLineList(job, Unit::Control, std::string(37, 'i'), job.LINE, contributions);
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    PhasePattern& c = ph.pat[ip];
    if (c.Contribution == 0) continue;
    ReadMaskedLine(job, Unit::Control, "iii", job.LINE, {&c.Irf, &c.Npr, &c.Jtyp});
    ReadMaskedLine(job, Unit::Control, "fffffff", job.LINE,
                   {&c.PREF[1], &c.PREF[2], &c.PREF[3], &c.Brind, &c.Rmua, &c.Rmub, &c.Rmuc});
  }
}

// Normalises the per-pattern flags of the phase.
void NormaliseContribution(Job& job, Phase& ph, int ip) {
  PhasePattern& c = ph.pat[ip];
  Pattern& p = job.patterns[ip];
  if (std::abs(c.Irf) == 4) job.run.integratedObservations = true;
  if (job.run.ICRYG != 0 && std::abs(c.Irf) != 4) c.Irf = 4;
  if (std::fabs(c.PREF[1]) + std::fabs(c.PREF[2]) + std::fabs(c.PREF[3]) < 0.01f) c.PREF[3] = 1.0f;
  if (ph.Sol == 1 && c.Irf == 1) p.JFOU = 0;
  if (std::abs(c.Irf) == 4) ph.Sol = 0;
  if (std::abs(c.Irf) == 4 && c.Rmua < 1.0e-5f) c.Rmua = 1.0f;
  if (c.Brind < 1.0e-15f) c.Brind = 1.0f;
  // A typed 0 takes the profile of the pattern.
  c.Npr = c.Npr == 0 ? p.NPROF : StoredNumber(ProfileCodeFromTyped(c.Npr));
  if (c.Jtyp == 0 && ph.More == 0) c.Jtyp = p.JOBTYP;
  if (std::abs(ph.Jbt) == 1 || std::abs(ph.Jbt) == 10) {
    c.magneticPattern = 1;
    if (c.Jtyp == 0) c.Jtyp = 1;
  } else {
    c.magneticPattern = 0;
  }
}

void ReadSpaceGroupLine(Job& job, Phase& ph) {
  std::string record;
  if (!ReadNonCommentRecord(job, record, 132)) {
    ConsoleLine(job, Fmt("(A,I6)", " Please check your *.PCR file at line: ", job.LINE));
    StopBox(job, "  Error reading the space group symbol");
  }
  record = FixedText(record, 30);
  ph.SpaceGroupSymbol = CutText(record.substr(0, 20), 20);
  ph.SpaceGroupRemark = CutText(record.substr(20, 10), 10);
}

void WriteJobOfPhase(Job& job, int k, int jtyp) {
  WriteReports(job, Fmt("(A,I2)", " => Different job for phase: ", k));
  if (jtyp == 0) WriteReports(job, "    X-ray diffraction data");
  if (jtyp == 1) WriteReports(job, "    Neutron diffraction data");
  if (jtyp == -1) WriteReports(job, "    Neutron T.O.F. diffraction data");
}

void WriteContributionWords(Job& job, int k, int ip) {
  Phase& ph = job.phases[k];
  PhasePattern& c = ph.pat[ip];
  const Pattern& p = job.patterns[ip];
  WriteReports(job, Fmt("(A,I2)", " =>-------> Pattern#", ip));
  if (std::abs(ph.Jbt) == 10 && ph.SpaceGroupRemark.find("Mag") != std::string::npos) {
    ph.magneticSymmetry = 1;
  }
  if (c.Jtyp != p.JOBTYP) WriteJobOfPhase(job, k, c.Jtyp);
  if (std::abs(c.Irf) == 4) {
    ph.Str = 0;
    WriteReports(job, Fmt("(A,I2)", " => Integrated intensities as observations for phase: ", k));
    if (c.Irf == -4) WriteReports(job, "    Partial Structure Factors, Fp=A+iB, read from file");
  }
  WritePhaseTypeWords(job, k);
  if (ph.Hel == 1 && c.magneticPattern == 1) {
    WriteReports(job, " => Fourier coefficients: S=1/2 (m1 u+ i m2 v), with u.v=0");
    WriteReports(job, "    ( -> M3(imag) or Phi(imag) is calculated to satisfy u.v=0 )");
  }
  if (std::abs(ph.Jbt) == 3 && c.Irf != 2) {
    ConsoleLine(job, Fmt("(A,I2)", "  Illegal JBT and IRF for phase:", k));
    ConsoleLine(job, "  If ABS(JBT)=3 then IRF must be = 2");
    StopBox(job, " Illegal JBT and IRF ");
  }
  if (c.Irf == 3)
    WriteReports(job, " => Reflection list & partial structure factors read from file");
  if (c.Npr != p.NPROF && std::abs(c.Irf) != 4) {
    WriteReports(job, Fmt("(A,I2,A,I2)", " => The ", TypedNumber(ProfileOf(c)),
                          "th profile function was selected for phase no. ", k));
  }
  WriteReports(
      job, Fmt("(A,3F8.3)", " => Preferred orientation vector: ", c.PREF[1], c.PREF[2], c.PREF[3]));
}

void WritePhaseData(Job& job, int k) {
  const Phase& ph = job.phases[k];
  WriteReports(job, Fmt("(A,I2)", " =>-------> Data for PHASE:", k));
  WriteReports(job, Fmt("(A,I4)", " => Number of atoms: ", ph.Nat));
  WriteReports(job, Fmt("(A,I4)", " => Number   of   distance    constraints: ", ph.Dis));
  WriteReports(job, Fmt("(A,I4)", " => Number of magnetic moment constraints: ", ph.Mom));
  if (ph.addMinusK == 'N') {
    WriteReports(job, Fmt("(A,I3)", " => Number of propagation vectors [K] = ", ph.Nvk));
  } else {
    WriteReports(job, " => The list of [K] vectors has been augmented with [-K]");
    WriteReports(job, Fmt("(A,I3)", " => Number of propagation vectors [K]+[-K] = ", 2 * ph.Nvk));
  }
}

void WriteViewWord(Job& job, int k) {
  const char* word = nullptr;
  switch (job.phases[k].Jvi) {
    case 1:
      word = " => Schakal File (*.sch) is output for phase:";
      break;
    case 2:
      word = " => STRUPLO File (*.sch) is output for phase:";
      break;
    case 11:
      word = " => Clusters of overlaped reflections is output for phase:";
      break;
    default:
      return;
  }
  WriteReports(job, Fmt("(A,I2)", word, k));
}

}  // namespace

const char* PhaseTypeWord(int Jbt) {
  switch (Jbt) {
    case 0:
      return " => Crystal Structure Refinement";
    case 1:
      return " => Magnetic Structure Refinement";
    case -1:
      return " => Magnetic Structure Refinement (Spherical)";
    case 2:
    case -2:
      return " => Pattern Matching (fixed scale)";
    case 3:
    case -3:
      return " => Pattern Matching (variable scale)";
    case 4:
    case -4:
      return " => Structural model provided by user";
    case 5:
    case -5:
      return " => Magnetic model provided by user";
    case 10:
      return " => Crystal+Magnetic Structure Refinement";
    case -10:
      return " => Crystal+Magnetic(Spherical) Structure Refinement";
    default:
      return "";
  }
}

void WritePhaseTypeWords(Job& job, int k) {
  Phase& ph = job.phases[k];
  const char* word = PhaseTypeWord(ph.Jbt);
  if (word[0] == '\0') return;
  WriteLine(job, Unit::Out, word);
  WriteLine(job, Unit::Sum, Fmt("(A,A,I2)", word, " for phase:", k));
  if (ph.Jbt == 2 || ph.Jbt == 3) {
    WriteReports(job, " => Input data if irf=2: Integrated Intensities");
  } else if (ph.Jbt == -2 || ph.Jbt == -3) {
    WriteReports(job, " => Input data if irf=2: F(H)^2");
  }
  if (std::abs(ph.Jbt) == 2) job.run.ConvergenceTestActive = false;
}

void ReadPhase(Job& job, int k) {
  Phase& ph = job.phases[k];
  ReadPhaseTitle(job, k);
  if (job.run.singlePatternForm) {
    ReadSinglePatternFlags(job, ph);
  } else {
    ReadMultiPatternFlags(job, ph);
  }
  for (int ip = 1; ip <= job.run.NPATT; ++ip) NormaliseContribution(job, ph, ip);
  if (ph.Dis != 0 || ph.Mom != 0) job.run.restraintsPresent = true;
  ph.addMinusK = 'N';
  if (ph.Nvk < 0) {
    ph.addMinusK = 'Y';
    ph.Nvk = -ph.Nvk;
  }
  if (ph.More != 0) WriteViewWord(job, k);
  ReadSpaceGroupLine(job, ph);
  if (std::abs(ph.Jbt) == 2 || std::abs(ph.Jbt) == 3) ph.Nat = 0;
  if (std::abs(ph.Jbt) == 2) {
    job.run.IASG = 1;
    if (job.run.IDUM == 0) job.run.IDUM = 1;
  }
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (ph.pat[ip].Contribution != 0) WriteContributionWords(job, k, ip);
  }
  WritePhaseData(job, k);
  BuildPhaseSymmetry(job, k);
}

}  // namespace corvinet
