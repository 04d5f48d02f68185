// INSTR 9: UXD text files (typed lines, keyword header, counts), with the report of the experiment.
#include <cctype>
#include <string>
#include <vector>

#include "format/text.h"
#include "io/field_reader.h"
#include "observations/powder_data_common.h"

namespace corvinet {

namespace {

constexpr std::size_t kUxdRecordLength = 128;  // type character and 127 more

// The quantities the keywords of a UXD header give.
enum class UxdItem {
  File,
  Sample,
  Date,
  RunTime,
  Wave1,
  Wave2,
  Wave3,
  WaveRatio,
  Anode,
  Drive,
  Step,
  Start,
  TwoTheta,
  Omega,
  Chi,
  Phi,
  Tr1,
  Tr2,
  KiloVolt,
  MilliAmpere,
  Changer,
  HighVoltage,
  Gain,
  LowerLevel,
  UpperLevel,
  Rotation,
  Counter,
  Divergence,
  Oscillation,
  Temperature,
  StepTime,
  StepSize,
  StepMode,
  StepCount,
  Counts
};

struct UxdKeyword {
  const char* word;
  UxdItem item;
};

// Longer words first, so that STEPTIME is not taken for STE nor COUNTS for COU.
constexpr UxdKeyword kKeywords[] = {
    {"STEPTIME", UxdItem::StepTime},
    {"STEPSIZE", UxdItem::StepSize},
    {"STEPMODE", UxdItem::StepMode},
    {"STEPCOUN", UxdItem::StepCount},
    {"COUNTS", UxdItem::Counts},
    {"FIL", UxdItem::File},
    {"SAM", UxdItem::Sample},
    {"SA", UxdItem::Sample},
    {"DAT", UxdItem::Date},
    {"RUN", UxdItem::RunTime},
    {"WL1", UxdItem::Wave1},
    {"WL2", UxdItem::Wave2},
    {"WL3", UxdItem::Wave3},
    {"WLR", UxdItem::WaveRatio},
    {"ANO", UxdItem::Anode},
    {"DRI", UxdItem::Drive},
    {"STE", UxdItem::Step},
    {"STA", UxdItem::Start},
    {"2TH", UxdItem::TwoTheta},
    {"THE", UxdItem::Omega},
    {"KHI", UxdItem::Chi},
    {"PHI", UxdItem::Phi},
    {"X=", UxdItem::Tr1},
    {"Y=", UxdItem::Tr2},
    {"KV=", UxdItem::KiloVolt},
    {"MA=", UxdItem::MilliAmpere},
    {"CHA", UxdItem::Changer},
    {"HV=", UxdItem::HighVoltage},
    {"GAI", UxdItem::Gain},
    {"LLD", UxdItem::LowerLevel},
    {"ULD", UxdItem::UpperLevel},
    {"ROT", UxdItem::Rotation},
    {"COU", UxdItem::Counter},
    {"DIV", UxdItem::Divergence},
    {"OSC", UxdItem::Oscillation},
    {"TEM", UxdItem::Temperature},
};

// The experiment block of the header, for the report.
struct UxdExperiment {
  std::string date, fileName, sample, runTime, anode, stepMode, rotation;
  float wave1 = 0, wave2 = 0, wave3 = 0, waveRatio = 0;
  float stepTime = 0, step = 0, start = 0, twoTheta = 0, omega = 0, chi = 0, phi = 0;
  float tr1 = 0, tr2 = 0, kiloVolt = 0, milliAmpere = 0, highVoltage = 0, gain = 0;
  float lowerLevel = 0, upperLevel = 0, temperature = 0;
  bool stepGiven = false, startGiven = false, twoThetaGiven = false, temperatureGiven = false;
};

// The kinds of line, by their type character.
enum class UxdLine { Keyword, Data, Comment, End, Skip };

UxdLine KindOf(char type) {
  switch (type) {
    case '_':
      return UxdLine::Keyword;
    case '+':
    case '-':
    case '.':
      return UxdLine::Data;
    case ';':
    case '*':
      return UxdLine::Comment;
    case '/':
      return UxdLine::End;
    default:
      break;
  }
  return std::isdigit(static_cast<unsigned char>(type)) ? UxdLine::Data : UxdLine::Skip;
}

// The value of a keyword line: the text behind "=", or behind the first word,
// without blanks and quotes around it.
std::string KeywordValue(std::string_view text) {
  std::size_t at = text.find('=');
  if (at == std::string_view::npos) at = text.find_first_of(" \t");
  std::string value = at == std::string_view::npos ? "" : TrimmedCopy(text.substr(at + 1));
  if (value.size() >= 2 && (value.front() == '\'' || value.front() == '"') &&
      value.back() == value.front()) {
    value = TrimmedCopy(std::string_view(value).substr(1, value.size() - 2));
  }
  return value;
}

// A number of the header; a text that is not one reads as 0 unless `required`.
float HeaderNumber(DataFile& file, const std::string& value, bool required) {
  float number = 0.0f;
  const ReadTarget target[] = {&number};
  if (ReadListLine(value, target) != ReadStatus::Ok) {
    if (required) StopBadData(file.job);
    return 0.0f;
  }
  return number;
}

// The block number written behind the word RANGE, or -1 when the line names no block.
int RangeNumber(std::string upper) {
  ToUpper(upper);
  const std::size_t at = upper.find("RANGE");
  if (at == std::string::npos) return -1;
  std::size_t i = at + 5;
  while (i < upper.size() && !std::isdigit(static_cast<unsigned char>(upper[i]))) ++i;
  if (i == upper.size()) return -1;
  int number = 0;
  while (i < upper.size() && std::isdigit(static_cast<unsigned char>(upper[i])) &&
         number < 100000) {
    number = number * 10 + (upper[i] - '0');
    ++i;
  }
  return number;
}

void ReadKeyword(DataFile& file, std::string_view text, UxdExperiment& e) {
  std::string upper(text);
  ToUpper(upper);
  for (const UxdKeyword& k : kKeywords) {
    if (!upper.starts_with(k.word)) continue;
    const std::string value = KeywordValue(text);
    auto number = [&](bool required = false) { return HeaderNumber(file, value, required); };
    switch (k.item) {
      case UxdItem::File:
        e.fileName = value;
        break;
      case UxdItem::Sample:
        e.sample = value;
        break;
      case UxdItem::Date:
        e.date = value;
        break;
      case UxdItem::RunTime:
        e.runTime = value;
        break;
      case UxdItem::Wave1:
        e.wave1 = number();
        break;
      case UxdItem::Wave2:
        e.wave2 = number();
        break;
      case UxdItem::Wave3:
        e.wave3 = number();
        break;
      case UxdItem::WaveRatio:
        e.waveRatio = number();
        break;
      case UxdItem::Anode:
        e.anode = value;
        break;
      case UxdItem::Step:
      case UxdItem::StepSize:
        e.step = number(true);
        e.stepGiven = true;
        break;
      case UxdItem::Start:
        e.start = number(true);
        e.startGiven = true;
        break;
      case UxdItem::TwoTheta:
        e.twoTheta = number();
        e.twoThetaGiven = true;
        break;
      case UxdItem::Omega:
        e.omega = number();
        break;
      case UxdItem::Chi:
        e.chi = number();
        break;
      case UxdItem::Phi:
        e.phi = number();
        break;
      case UxdItem::Tr1:
        e.tr1 = number();
        break;
      case UxdItem::Tr2:
        e.tr2 = number();
        break;
      case UxdItem::KiloVolt:
        e.kiloVolt = number();
        break;
      case UxdItem::MilliAmpere:
        e.milliAmpere = number();
        break;
      case UxdItem::HighVoltage:
        e.highVoltage = number();
        break;
      case UxdItem::Gain:
        e.gain = number();
        break;
      case UxdItem::LowerLevel:
        e.lowerLevel = number();
        break;
      case UxdItem::UpperLevel:
        e.upperLevel = number();
        break;
      case UxdItem::Rotation:
        e.rotation = value;
        break;
      case UxdItem::Temperature:
        e.temperature = number();
        e.temperatureGiven = true;
        break;
      case UxdItem::StepTime:
        e.stepTime = number();
        break;
      case UxdItem::StepMode:
        e.stepMode = value;
        break;
      // Recognised, but nothing the reader or its report uses.
      case UxdItem::Drive:
      case UxdItem::Changer:
      case UxdItem::Counter:
      case UxdItem::Divergence:
      case UxdItem::Oscillation:
      case UxdItem::StepCount:
      case UxdItem::Counts:
        break;
    }
    return;
  }
}

// The counts of a data line, in free format.
void ReadCounts(DataFile& file, std::string_view text, std::vector<float>& counts) {
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == ',')) ++i;
    const std::size_t start = i;
    while (i < text.size() && text[i] != ' ' && text[i] != '\t' && text[i] != ',') ++i;
    if (i == start) break;
    float value = 0.0f;
    const ReadTarget target[] = {&value};
    if (ReadListLine(text.substr(start, i - start), target) != ReadStatus::Ok) {
      StopBadData(file.job);
    }
    counts.push_back(value);
  }
}

void ReportExperiment(DataFile& file, const UxdExperiment& e) {
  const char first = e.stepMode.empty() ? ' ' : e.stepMode.front();
  const std::string mode = (first == 'C' || first == 'c') ? "continuous scan" : "step scan      ";
  ReportData(file, " => Experimental conditions:");
  ReportData(file, "    Date of experiment: " + e.date);
  ReportData(file, "    Data from file:  " + e.fileName);
  ReportData(file, "    Data identifier: " + e.sample);
  ReportData(file, Fmt("(A,A,A,I6,A,F10.5)", "    Run time: ", e.runTime, " for ", file.NPTS,
                       " points   Step size = ", file.STEP));
  ReportData(file, Fmt("(A,A,A,F8.2,A,A)", "    Scan mode: ", mode, " Counting time:", e.stepTime,
                       " secs/step  Sample rotation: ", e.rotation));
  ReportData(file, Fmt("(A,F9.4,A,F9.4,A,F9.4,A,F9.4)", "    Angles: 2-theta= ", e.twoTheta,
                       "  omega= ", e.omega, "  chi= ", e.chi, "  phi= ", e.phi));
  ReportData(file, Fmt("(A,F9.4,A,F9.4)", "                tr1= ", e.tr1, "    tr2= ", e.tr2));
  ReportData(file, "    Generator settings:");
  ReportData(file, Fmt("(A,F7.1,A,F7.1,A,F8.1,A,F8.1,A,F8.3,A,F8.3,A)", "       KV= ", e.kiloVolt,
                       " kV MA= ", e.milliAmpere, " mA  HV= ", e.highVoltage, "  Gain= ", e.gain,
                       "  LLD= ", e.lowerLevel, " V  ULD= ", e.upperLevel, " V"));
  ReportData(file, "    Wavelengths:");
  ReportData(
      file, Fmt("(A,A,A,F9.5,A,F9.5,A,F9.5,A,F8.4)", "        Anode=", e.anode, "  Wav1= ", e.wave1,
                "  Wav2= ", e.wave2, "  Wav3= ", e.wave3, "  WaveRatio= ", e.waveRatio));
}

}  // namespace

void ReadUxdData(DataFile& file) {
  UxdExperiment experiment;
  std::vector<float> counts;
  long long total = 0;
  bool inUsedBlock = true;  // lines before any RANGE mark belong to the scan
  std::string record;
  while (ReadDataRecord(file, record, kUxdRecordLength)) {
    // Leading blanks do not hide the type character of an indented line.
    const std::string_view line = Trim(record);
    if (line.empty()) continue;
    const UxdLine kind = KindOf(line.front());
    if (kind == UxdLine::End) break;
    if (kind == UxdLine::Keyword || kind == UxdLine::Comment) {
      const int block = RangeNumber(std::string(line.substr(1)));
      if (block >= 0) {
        inUsedBlock = block == 1;
        continue;
      }
    }
    if (!inUsedBlock) continue;
    if (kind == UxdLine::Keyword) {
      ReadKeyword(file, line.substr(1), experiment);
    } else if (kind == UxdLine::Data) {
      const std::size_t before = counts.size();
      ReadCounts(file, line, counts);
      total += static_cast<long long>(counts.size() - before);
      if (total > DimensionLimits::IDSZ) counts.resize(before);  // counted, not kept
    }
  }
  if (total == 0) StopEndOfData(file.job);
  if (!experiment.stepGiven || experiment.step == 0.0f) StopBadData(file.job);
  if (!experiment.startGiven && !experiment.twoThetaGiven) StopBadData(file.job);
  SetPointCount(file, total);
  file.Ytotal = std::move(counts);
  file.Variance = file.Ytotal;
  file.THMIN = experiment.startGiven ? experiment.start : experiment.twoTheta;
  file.STEP = experiment.step;
  file.THMAX = file.THMIN + static_cast<float>(file.NPTS - 1) * file.STEP;
  if (experiment.temperatureGiven) file.Temperature = experiment.temperature;
  FillEvenPositions(file);
  ReportExperiment(file, experiment);
}

}  // namespace corvinet
