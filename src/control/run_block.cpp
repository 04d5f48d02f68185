// The head of the control file: title, single- or multi-pattern form, job lines, names and output
// options.
#include "control/run_block.h"

#include <cmath>
#include <cstdlib>
#include <vector>

#include "control/run_messages.h"
#include "format/fortran_format.h"
#include "io/field_reader.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// Reads the next record of the control file, counting it; the end of the
// file ends the process as for every control-file line.
std::string ReadControlRecord(Job& job, std::size_t length) {
  std::string record;
  RecordRead got = ReadRecord(job.files.units[Unit::Control], record, length);
  if (got != RecordRead::Ok) {
    ConsoleLine(job, Fmt("(A,I3)", " => Not FATAL End of file !,  logical unit: ", Unit::Control));
    throw ProcessStop{ExitStatus::kError, "End of file in the control file"};
  }
  ++job.LINE;
  return record;
}

void ReadTitle(Job& job) {
  std::string record;
  if (ReadRecord(job.files.units[Unit::Control], record, 70) != RecordRead::Ok) {
    StopBox(job, "  Error reading the *.PCR at the first line");
  }
  std::string_view head(record);
  if (head.substr(0, 4) == "FREE" || head.substr(0, 4) == "COMM") {
    if (head.substr(0, 4) == "COMM") job.run.commentedOutput = 1;
    record = record.size() > 5 ? record.substr(5) : std::string();
  }
  job.run.Title = CutText(record, 70);
}

// Reads `count` values free-format from column 6 of a text line.
void ReadFromColumnSix(Job& job, const std::string& record, std::span<const ReadTarget> targets) {
  std::string_view rest = record.size() > 5 ? std::string_view(record).substr(5) : "";
  if (ReadListLine(rest, targets) != ReadStatus::Ok) {
    ReportFieldError(job, FieldError::ReadError, record, 6);
    StopAtLine(job, job.LINE);
  }
  for (const ReadTarget& target : targets) {
    if (target.kind != ReadTarget::Kind::Float) continue;
    const float value = *static_cast<const float*>(target.target);
    if (std::isfinite(value) && value >= 0.0f) continue;
    ConsoleLine(job, " => The weights W_PAT must be finite numbers, 0 or above");
    ShowLineWithCaret(job, record, 6);
    StopAtLine(job, job.LINE);
  }
}

// Decides the form of the head. In the multi-pattern form reads NPATT and the weights.
void ReadForm(Job& job, const HeadSteps& steps) {
  RunOptions& r = job.run;
  std::string record;
  do {
    record = LeftJustified(ReadControlRecord(job, 132));
  } while (!record.empty() && record[0] == '!');
  if (record.substr(0, 5) != "NPATT" && record.substr(0, 5) != "npatt") {
    r.singlePatternForm = true;
    --job.LINE;
    Backspace(job.files.units[Unit::Control]);
    if (Trim(job.driver.DatCode).empty()) {
      job.driver.DatCode = steps.askDataCode(job);
      if (job.driver.DatCode.empty()) job.driver.DatCode = job.driver.PcrCode;
    }
    job.patterns[1].DatCode = job.driver.DatCode;
    return;
  }
  r.singlePatternForm = false;
  const ReadTarget count[] = {&r.NPATT};
  ReadFromColumnSix(job, record, count);
  if (r.NPATT < 1 || r.NPATT > DimensionLimits::NPATT) {
    ConsoleLine(job, Fmt("(A,I6,A,I2)", " => Number of patterns:", r.NPATT, "  allowed: 1 to",
                         DimensionLimits::NPATT));
    StopBox(job, " => Too many patterns in the control file!");
  }
  std::string weights;
  if (ReadRecord(job.files.units[Unit::Control], weights, 132) != RecordRead::Ok) {
    StopBox(job, " => Error reading W_PAT in the *.PCR file");
  }
  std::vector<ReadTarget> targets;
  for (int ip = 1; ip <= r.NPATT; ++ip) targets.emplace_back(&job.patterns[ip].W_PAT);
  ++job.LINE;
  ReadFromColumnSix(job, weights, targets);
  steps.multiPatternNames(job);
}

void NormaliseWeights(Job& job) {
  float sum = 0.0f;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) sum += job.patterns[ip].W_PAT;
  if (!(sum > 0.0f) || !std::isfinite(sum)) {
    StopBox(job, " => The weights W_PAT of the patterns add up to no weight at all");
  }
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    job.patterns[ip].W_PAT = (1.0f / sum) * job.patterns[ip].W_PAT;
  }
}

void ReadJobLines(Job& job) {
  RunOptions& r = job.run;
  if (r.singlePatternForm) {
    Pattern& p = job.patterns[1];
    int unit = ControlNumber(p.IXUNIT);
    ReadMaskedLine(
        job, Unit::Control, "iiiiiiiiiiiiiiiii", job.LINE,
        {&p.JOBTYP, &p.NPROF, &r.NPHASE, &p.NBCKGD, &p.NEXCRG, &p.NSCAT, &p.NORI, &r.IDUM, &p.IWGT,
         &p.ILOR, &r.IASG, &p.IRESO, &p.ISTEP, &r.NRELL, &r.ICRYG, &unit, &p.ICORR});
    p.IXUNIT = AbscissaUnitOf(unit);
    return;
  }
  ReadMaskedLine(job, Unit::Control, "iiiii", job.LINE,
                 {&r.NPHASE, &r.IDUM, &r.IASG, &r.NRELL, &r.ICRYG});
  for (int ip = 1; ip <= r.NPATT; ++ip) {
    Pattern& p = job.patterns[ip];
    int unit = ControlNumber(p.IXUNIT);
    ReadMaskedLine(job, Unit::Control, "iiiiiiiiiiiii", job.LINE,
                   {&p.JOBTYP, &p.NPROF, &p.NBCKGD, &p.NEXCRG, &p.NSCAT, &p.NORI, &p.IWGT, &p.ILOR,
                    &p.IRESO, &p.ISTEP, &unit, &p.ICORR, &p.IASYM});
    p.IXUNIT = AbscissaUnitOf(unit);
  }
}

void ReadDataNames(Job& job) {
  if (!job.run.singlePatternForm) {
    for (int ip = 1; ip <= job.run.NPATT; ++ip) {
      std::string record;
      do {
        record = ReadControlRecord(job, 255);
      } while (!record.empty() && record[0] == '!');
      job.patterns[ip].DatCode = TrimmedCopy(record);
    }
  }
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    WriteReports(job, Fmt("(A,A,A,F10.5)", " => DAT file code: ", job.patterns[ip].DatCode,
                          " -> Relative contribution:", job.patterns[ip].W_PAT));
  }
}

// Integrated-intensity jobs have one pattern without profile, background or
// excluded regions; a negative phase count chooses the older asymmetry.
void ApplyJobRules(Job& job) {
  RunOptions& r = job.run;
  for (int ip = 1; ip <= r.NPATT; ++ip) {
    job.patterns[ip].scatteringCount = std::abs(job.patterns[ip].NSCAT);
  }
  if (r.ICRYG != 0) {
    r.NPATT = 1;
    for (Pattern& p : job.patterns) {
      p.NPROF = TypedNumber(ProfileCode::kGaussian);
      p.NBCKGD = 0;
      p.NEXCRG = 0;
      p.IRESO = 0;
      p.ISTEP = 0;
    }
    r.IDUM = 0;
  }
  if (r.NPHASE < 0) {
    r.NPHASE = -r.NPHASE;
    job.patterns[1].IASYM = 1;
  }
  if (r.IDUM == 3) {
    for (Pattern& p : job.patterns) p.idumScale = 1.0f;
  }
  if (r.NPHASE == 0) r.NPHASE = 1;
  if (r.NPHASE > DimensionLimits::NPHT) {
    ConsoleLine(job, Fmt("(A,I6,A,I2)", " => Number of phases:", r.NPHASE,
                         "  maximum:", DimensionLimits::NPHT));
    StopBox(job, " => Too many phases in the control file!");
  }
  WriteLine(job, Unit::Sum, " => Title:" + r.Title);
}

std::string ReadResolutionName(Job& job) {
  std::string record;
  if (!ReadNonCommentRecord(job, record, 255)) {
    StopBox(job, " Error reading the name of resolution file");
  }
  return TrimmedCopy(record);
}

// The side files, the limits and the stored profile number of one pattern.
void PreparePattern(Job& job, int ip, const HeadSteps& steps) {
  Pattern& p = job.patterns[ip];
  ProfileCode code = ProfileCodeFromTyped(p.NPROF);
  if (code == ProfileCode::kTimeOfFlight2) code = ProfileCode::kTimeOfFlight1;
  steps.readSideFiles(job, ip);
  if (p.IRESO != 0 && code != ProfileCode::kTchPseudoVoigt) {
    ConsoleLine(job, Fmt("(A,I3)", " Illegal use of resolution function for pattern: ", ip));
    WarningBox(job, " ===>>> Illegal use of resolution function!! ");
    StopBox(job, "        NPROF must be equal to 7!  ");
  }
  if (p.IRESO != 0) p.ResolutionFile = ReadResolutionName(job);
  p.backgroundSign = p.NBCKGD < 0 ? -1 : 1;
  p.NBCKGD = std::abs(p.NBCKGD);
  p.noBackgroundPoints = (p.backgroundSign > 0 && p.NBCKGD == 1) ||
                         (p.backgroundSign < 0 && (p.NBCKGD == 2 || p.NBCKGD == 3));
  if (p.NBCKGD > DimensionLimits::IBACP) {
    ConsoleLine(job, Fmt("(A,I6)", "         Number of backg. points/pattern:", p.NBCKGD));
    ConsoleLine(job,
                Fmt("(A,I6)", " Maximum Number of backg. points/pattern:", DimensionLimits::IBACP));
    StopBox(job, " Too many background points ");
  }
  if (p.NEXCRG > DimensionLimits::IEXCL) {
    ConsoleLine(job, Fmt("(A,I6)", "          Number of excl. regions/pattern: ", p.NEXCRG));
    ConsoleLine(
        job, Fmt("(A,I6)", "  Maximum number of excl. regions/pattern: ", DimensionLimits::IEXCL));
    StopBox(job, " Too many excluded regions ");
  }
  p.NPROF = StoredNumber(code);
}

void ReadOutputLines(Job& job) {
  RunOptions& r = job.run;
  if (r.singlePatternForm) {
    Pattern& p = job.patterns[1];
    ReadMaskedLine(job, Unit::Control, "iiiiiiiiiiiiiiiii", job.LINE,
                   {&p.IOT, &p.IPL, &p.IPC, &r.MAT, &r.NXT, &p.LST1, &p.LST2, &p.LST3, &r.IPL1,
                    &p.IPL2, &p.INSTR, &r.JCIL, &r.JSY, &p.JLKH, &p.JFOU, &r.ISHOR, &p.IANALY});
  } else {
    ReadMaskedLine(job, Unit::Control, "iiiiii", job.LINE,
                   {&r.MAT, &r.NXT, &r.IPL1, &r.JCIL, &r.JSY, &r.ISHOR});
    for (int ip = 1; ip <= r.NPATT; ++ip) {
      Pattern& p = job.patterns[ip];
      ReadMaskedLine(job, Unit::Control, "iiiiiiiiiii", job.LINE,
                     {&p.IOT, &p.IPL, &p.IPC, &p.LST1, &p.LST2, &p.LST3, &p.IPL2, &p.INSTR, &p.JLKH,
                      &p.JFOU, &p.IANALY});
    }
  }
  // A background adjusted by Fourier filtering is written to the .bac file.
  for (int ip = 1; ip <= r.NPATT; ++ip) {
    Pattern& p = job.patterns[ip];
    if (p.backgroundSign < 0 && p.NBCKGD == 2) p.IPL = 2;
  }
}

void ApplyOutputRules(Job& job) {
  RunOptions& r = job.run;
  if (r.ICRYG == 2) {
    for (Pattern& p : job.patterns) {
      p.IOT = p.IPL = p.IPC = p.LST1 = p.LST2 = p.LST3 = p.JLKH = p.IANALY = 0;
    }
    r.MAT = 0;
    r.ISHOR = 0;
  }
  if (job.driver.cyclicMode == 1) {
    if (r.JCIL == 0) r.JCIL = 1;
    r.JSY = r.MAT = r.IPL1 = 0;
    r.NXT = r.ISHOR = 1;
    for (Pattern& p : job.patterns) {
      p.IOT = p.IPL = p.IPC = p.LST1 = p.LST2 = p.LST3 = p.IPL2 = p.JLKH = p.JFOU = p.IANALY = 0;
    }
  }
}

}  // namespace

bool ReadNonCommentRecord(Job& job, std::string& record, std::size_t length) {
  do {
    if (ReadRecord(job.files.units[Unit::Control], record, length) != RecordRead::Ok) return false;
    ++job.LINE;
  } while (!record.empty() && record[0] == '!');
  return true;
}

void ReadRunBlock(Job& job, const HeadSteps& steps) {
  RunOptions& r = job.run;
  job.patterns[1].W_PAT = 1.0f;
  job.LINE = 1;
  r.NPATT = 1;
  ConsoleLine(job, " => Reading control file *.PCR ...");
  ReadTitle(job);
  ReadForm(job, steps);
  for (Pattern& p : job.patterns) {
    p.idumScale = 0.0f;
    p.isXray = 0;
  }
  r.ConvergenceTestActive = true;
  NormaliseWeights(job);
  ReadJobLines(job);
  ReadDataNames(job);
  const int patternsRead = r.NPATT;
  ApplyJobRules(job);
  for (int ip = 1; ip <= patternsRead; ++ip) {
    PreparePattern(job, ip, steps);
    WritePatternConditions(job, ip);
  }
  if (r.ICRYG == 2) {
    WriteReports(job,
                 Fmt("(A,I4,A)", " => Montecarlo search for a number of ", r.NRELL, " parameters"));
    if (r.NRELL == 0) StopBox(job, "Montecarlo search for 0 parameters???");
  }
  ReadOutputLines(job);
  ApplyOutputRules(job);
  steps.openOutputFiles(job);
  WriteReports(job, " ==> INPUT/OUTPUT OPTIONS:");
  if (r.JSY == 1) WriteLine(job, Unit::Sym, " " + r.Title);
  if (r.JCIL == 1) WriteRpaHead(job);
  WriteOutputOptions(job);
  if (r.JSY == 1) WriteLine(job, Unit::Sym, Fmt("(I5,F8.4)", r.IPL1, 3.5f));
}

}  // namespace corvinet
