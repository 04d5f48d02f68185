// INSTR 4 and -4: the BNBL synchrotron formats, with point layouts chosen by the data's date.
#include <optional>
#include <string>
#include <vector>

#include "io/field_reader.h"
#include "observations/powder_data_common.h"
#include "surface/console.h"
#include "surface/prompts.h"

namespace corvinet {

namespace {

// The point layouts of the BNBL files by the date of the measurement.
enum class BnblDate { OCT85, FEB86, AUG86 };

std::optional<BnblDate> DateNamedIn(std::string text) {
  ToUpper(text);
  if (text.find("OCT85") != std::string::npos) return BnblDate::OCT85;
  if (text.find("FEB86") != std::string::npos) return BnblDate::FEB86;
  if (text.find("AUG86") != std::string::npos) return BnblDate::AUG86;
  return std::nullopt;
}

// The date from the header text, or else from the terminal; the end of the
// terminal's input leaves the file unreadable.
BnblDate DateOfData(DataFile& file, const std::string& header) {
  if (std::optional<BnblDate> date = DateNamedIn(header)) return *date;
  for (;;) {
    ConsoleLine(file.job, "     When was this data taken. OCT85,FEB86 or AUG86 ?");
    std::optional<std::string> answer = ReadConsoleAnswer(file.job.console);
    if (!answer) StopBadData(file.job);
    if (std::optional<BnblDate> date = DateNamedIn(*answer)) return *date;
  }
}

// INSTR -4: a range line, the intensities in 10F8.0 and the sigmas in 10F8.1.
void ReadSynchrotronBlocks(DataFile& file) {
  ReadRangeLine(file);
  ReadDataFormatted(file, "(10F8.0)", Interleaved({&file.Ytotal}, file.NPTS));
  ReadDataFormatted(file, "(10F8.1)", Interleaved({&file.Variance}, file.NPTS));
  SquareSigmas(file.Variance);
}

}  // namespace

void ReadSynchrotronData(DataFile& file) {
  if (file.INSTR == -4) {
    ReadSynchrotronBlocks(file);
    return;
  }
  std::string keyword;
  std::string title;
  const ReadTarget head[] = {&keyword, &title};
  ReadDataFormatted(file, "(A5,A56)", head);

  int points = 0;
  float second = 0.0f;
  float third = 0.0f;
  const ReadTarget count[] = {&points, &second, &third};
  ReadDataFormatted(file, "(I8,F8.0,E10.0)", count);

  float range[6] = {};
  const ReadTarget angles[] = {&range[0], &range[1], &range[2], &range[3], &range[4], &range[5]};
  ReadDataFormatted(file, "(6F8.0)", angles);
  SetPointCount(file, points);
  file.THMIN = range[0];
  file.THMAX = range[1];
  file.STEP = range[2];
  FillEvenPositions(file);

  const BnblDate date = DateOfData(file, keyword + title);
  // OCT85 rows give the sigma first, the later layouts the intensity first.
  const CompiledFormat layout =
      CompileFormat(date == BnblDate::OCT85 ? "(51X,F10.0,1X,F10.0)" : "(24X,F7.0,1X,F7.0)");
  for (std::size_t i = 0; i < static_cast<std::size_t>(file.NPTS); ++i) {
    float first = 0.0f;
    float last = 0.0f;
    const ReadTarget pair[] = {&first, &last};
    ReadDataFormatted(file, layout, pair);
    file.Ytotal[i] = date == BnblDate::OCT85 ? last : first;
    file.Variance[i] = date == BnblDate::OCT85 ? first : last;
  }
  SquareSigmas(file.Variance);
}

}  // namespace corvinet
