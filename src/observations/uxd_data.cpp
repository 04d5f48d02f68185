// INSTR 9: UXD text files (typed lines, keyword header, counts), with the report of the experiment.
#include <cctype>
#include <string>
#include <vector>

#include "format/text.h"
#include "io/field_reader.h"
#include "observations/powder_data_common.h"
#include "observations/uxd_keywords.h"

namespace corvinet {

namespace {

constexpr std::size_t kUxdRecordLength = 128;  // type character and 127 more

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
  const UxdKeyword* keyword = FindUxdKeyword(text);
  if (keyword == nullptr || keyword->action == nullptr) return;
  const std::string value = KeywordValue(text);
  const UxdValue given{value, [&](bool required) { return HeaderNumber(file, value, required); }};
  keyword->action(e, given);
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
      if (total > FilePointLimit(file)) counts.resize(before);  // counted, not kept
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
