// INSTR 12 and -12: GSAS files with a BANK line and STD, ESD or ALT data.
#include <string>
#include <vector>

#include "format/text.h"
#include "observations/powder_data_common.h"

namespace corvinet {

namespace {

constexpr int kHeadingLines = 7;
constexpr std::size_t kGsasRecordLength = 80;
constexpr float kTimeUnit = 0.03125f;  // ALT positions are in 1/32 of the time unit

// The items of a BANK line.
struct GsasBank {
  int IBANK = 0;
  int NCHAN = 0;
  int NREC = 0;
  std::string BINTYP;
  float COEFFS[4] = {};
  std::string DATTYP = "STD";
};

// Up to seven heading lines are echoed; the BANK line must follow them.
std::string FindBankLine(DataFile& file) {
  ReportData(file, " => Heading of GSAS file:");
  for (int k = 1;; ++k) {
    std::string line;
    if (!ReadDataRecord(file, line, kGsasRecordLength)) break;
    if (line.starts_with("BANK")) return line;
    if (k > kHeadingLines) break;
    ReportData(file, " " + CutText(line, kGsasRecordLength));
  }
  StopData(file.job, " => Error in the input GSAS-file: BANK not found!");
}

std::vector<std::string> SplitAtBlanks(std::string_view text) {
  std::vector<std::string> items;
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
    const std::size_t start = i;
    while (i < text.size() && text[i] != ' ' && text[i] != '\t') ++i;
    if (i > start) items.emplace_back(text.substr(start, i - start));
  }
  return items;
}

template <typename T>
void ReadItem(DataFile& file, const std::string& item, T& value) {
  const ReadTarget target[] = {&value};
  if (ReadListLine(item, target) != ReadStatus::Ok) StopBadData(file.job);
}

GsasBank DecodeBankLine(DataFile& file, const std::string& line) {
  const std::vector<std::string> items = SplitAtBlanks(std::string_view(line).substr(4));
  ReportData(file, Fmt("(A,I3)", " => Number of items read in BANK line: ", items.size()));
  if (items.size() < 4) StopBadData(file.job);
  GsasBank bank;
  ReadItem(file, items[0], bank.IBANK);
  ReadItem(file, items[1], bank.NCHAN);
  ReadItem(file, items[2], bank.NREC);
  bank.BINTYP = items[3];
  for (std::size_t k = 0; k < 4 && 4 + k < items.size(); ++k) {
    ReadItem(file, items[4 + k], bank.COEFFS[k]);
  }
  if (items.size() > 8) bank.DATTYP = items[8];
  ReportData(file, Fmt("(A,3I8)", " -> IBANK,NCHAN,NREC: ", bank.IBANK, bank.NCHAN, bank.NREC));
  ReportData(file, " -> BINTYP          : " + bank.BINTYP);
  ReportData(file, Fmt("(A,4F12.4)", " -> COEFFS          : ", bank.COEFFS[0], bank.COEFFS[1],
                       bank.COEFFS[2], bank.COEFFS[3]));
  ReportData(file, " -> DATTYP          : " + bank.DATTYP);
  return bank;
}

// Constant-step banks: the range from the first two coefficients.
void ConstantStepRange(DataFile& file, const GsasBank& bank, float divisor) {
  file.THMIN = bank.COEFFS[0] / divisor;
  file.STEP = bank.COEFFS[1] / divisor;
  file.THMAX = file.THMIN + static_cast<float>(file.NPTS - 1) * file.STEP;
  FillEvenPositions(file);
}

void ReadStandardBank(DataFile& file, const GsasBank& bank, float divisor) {
  if (bank.BINTYP != "CONST") {
    StopData(file.job, " => Only BINTYP=CONST is allowed for standard data");
  }
  ConstantStepRange(file, bank, divisor);
  ReadDataFormatted(file, "(10(I2,F6.0))", Interleaved({&file.CountNorm, &file.Ytotal}, file.NPTS));
  NormaliseByCounters(file);
}

void ReadEsdBank(DataFile& file, const GsasBank& bank, float divisor) {
  if (bank.BINTYP != "CONST") StopData(file.job, " => Only BINTYP=CONST is allowed for ESD data");
  ConstantStepRange(file, bank, divisor);
  ReadDataFormatted(file, "(10F8.0)", Interleaved({&file.Ytotal, &file.Variance}, file.NPTS));
  SquareSigmas(file.Variance);
}

// RALF banks hold counts per bin: they become counts per 1000 time units of
// the bin's width, the last bin taking the width of the one before it.
void CorrectRalfBins(DataFile& file) {
  ReportData(file, " => Input Data for format RALF are internally modified");
  ReportData(file, " => The format of the triplets TOF,Y,Sigma is read as");
  ReportData(file, "                FMT = 4(F8.0,F7.4,F5.4)");
  ReportData(file, "    The input TOF is divided by 32 and then ");
  ReportData(file, "    Intensities and Standard deviations are trasformed as:");
  ReportData(file, "          Ycorr(i)=1000*Yread(i)/(TOF(i+1)-TOF(i))");
  ReportData(file, "          Scorr(i)=1000*Sread(i)/(TOF(i+1)-TOF(i))");
  const std::size_t n = file.X.size();
  if (n < 2) StopBadData(file.job);
  for (std::size_t i = 0; i < n; ++i) {
    const float width = i + 1 < n ? file.X[i + 1] - file.X[i] : file.X[n - 1] - file.X[n - 2];
    if (width == 0.0f) StopBadData(file.job);
    file.Ytotal[i] = 1000.0f * file.Ytotal[i] / width;
    file.Variance[i] = 1000.0f * file.Variance[i] / width;
  }
}

void ReadAltBank(DataFile& file, const GsasBank& bank) {
  const bool ralf = bank.BINTYP == "RALF";
  if (!ralf && bank.BINTYP != "CONST") {
    StopData(file.job, " => Only BINTYP=RALF or CONST is allowed for ALT data");
  }
  ReadDataFormatted(file, "(4(F8.0,F7.4,F5.4))",
                    Interleaved({&file.X, &file.Ytotal, &file.Variance}, file.NPTS));
  for (float& x : file.X) x *= kTimeUnit;
  if (ralf) CorrectRalfBins(file);
  SquareSigmas(file.Variance);
  file.stepKind = ralf ? 0 : 1;
  if (ralf) file.equalStep = 0;
  file.THMIN = bank.COEFFS[0] * kTimeUnit;
  file.STEP = bank.COEFFS[1] * kTimeUnit;
  file.THMAX = file.X.back();
  file.Cnorm = MeanVarianceRatio(file.Ytotal, file.Variance);
}

}  // namespace

void ReadGsasData(DataFile& file) {
  const GsasBank bank = DecodeBankLine(file, FindBankLine(file));
  file.firstInteger = bank.IBANK;
  SetPointCount(file, bank.NCHAN);
  // Constant-step coefficients are in centidegrees, except with a negative INSTR.
  const float divisor = file.INSTR < 0 ? 1.0f : 100.0f;
  if (bank.DATTYP == "STD") {
    ReadStandardBank(file, bank, divisor);
  } else if (bank.DATTYP == "ESD") {
    ReadEsdBank(file, bank, divisor);
  } else if (bank.DATTYP == "ALT") {
    ReadAltBank(file, bank);
  } else {
    StopBadData(file.job);
  }
}

}  // namespace corvinet
