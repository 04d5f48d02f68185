// INSTR 12 and -12: GSAS files with a BANK line and STD, ESD or ALT data.
#include <string>
#include <string_view>
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
    ReportData(file, " " + PrintableText(CutText(line, kGsasRecordLength)));
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

// The data types a BANK line may name (FXYE and FXY are named but not read).
constexpr std::string_view kDataTypes[] = {"STD", "ESD", "ALT", "FXYE", "FXY"};

bool IsDataType(std::string_view word) {
  for (std::string_view type : kDataTypes) {
    if (word == type) return true;
  }
  return false;
}

// BANK IBANK NCHAN NREC BINTYP BCOEF1..BCOEF4 DATTYP, taken by items: the data
// type is the first of its words after BINTYP (STD when none is there), the
// items before it are the coefficients (the first four are read), and the
// items after it are not read.
GsasBank DecodeBankLine(DataFile& file, const std::string& line) {
  const std::vector<std::string> items = SplitAtBlanks(std::string_view(line).substr(4));
  ReportData(file, Fmt("(A,I3)", " => Number of items read in BANK line: ", items.size()));
  if (items.size() < 4) StopBadData(file.job);
  GsasBank bank;
  ReadItem(file, items[0], bank.IBANK);
  ReadItem(file, items[1], bank.NCHAN);
  ReadItem(file, items[2], bank.NREC);
  bank.BINTYP = items[3];
  std::size_t k = 4;
  for (; k < items.size() && !IsDataType(items[k]); ++k) {
    if (k - 4 < 4) {
      ReadItem(file, items[k], bank.COEFFS[k - 4]);
      RequireFinite(file, bank.COEFFS[k - 4], file.lineNumber);
    }
  }
  if (k < items.size()) bank.DATTYP = items[k];
  ReportData(file, Fmt("(A,3I8)", " -> IBANK,NCHAN,NREC: ", bank.IBANK, bank.NCHAN, bank.NREC));
  ReportData(file, " -> BINTYP          : " + bank.BINTYP);
  ReportData(file, Fmt("(A,4F12.4)", " -> COEFFS          : ", bank.COEFFS[0], bank.COEFFS[1],
                       bank.COEFFS[2], bank.COEFFS[3]));
  ReportData(file, " -> DATTYP          : " + bank.DATTYP);
  return bank;
}

// Constant steps: BINTYP CONST, or CONS as some writers spell it.
bool IsConstantStep(const GsasBank& bank) {
  return bank.BINTYP.starts_with("CONS");
}

// Constant-step banks: the range from the first two coefficients.
void ConstantStepRange(DataFile& file, const GsasBank& bank, float divisor) {
  file.THMIN = bank.COEFFS[0] / divisor;
  file.STEP = bank.COEFFS[1] / divisor;
  file.THMAX = file.THMIN + static_cast<float>(file.NPTS - 1) * file.STEP;
  FillEvenPositions(file);
}

// STD records: per point the number of counters (blank is 1) and the mean
// count over them, whose variance is the mean over the counters.
void ReadStandardBank(DataFile& file, const GsasBank& bank, float divisor) {
  if (!IsConstantStep(bank)) {
    StopData(file.job, " => Only BINTYP=CONST is allowed for standard data");
  }
  ConstantStepRange(file, bank, divisor);
  ReadDataFormatted(file, "(10(I2,F6.0))", Interleaved({&file.CountNorm, &file.Ytotal}, file.NPTS));
  TakeCounterMeans(file);
}

void ReadEsdBank(DataFile& file, const GsasBank& bank, float divisor) {
  if (!IsConstantStep(bank)) StopData(file.job, " => Only BINTYP=CONST is allowed for ESD data");
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

// ALT records: position x 32, intensity, sigma. RALF positions and
// coefficients are times x 32; constant-step coefficients are positions as the
// other types have them, and the positions read are then in the same unit.
void ReadAltBank(DataFile& file, const GsasBank& bank, float divisor) {
  const bool ralf = bank.BINTYP == "RALF";
  if (!ralf && !IsConstantStep(bank)) {
    StopData(file.job, " => Only BINTYP=RALF or CONST is allowed for ALT data");
  }
  ReadDataFormatted(file, "(4(F8.0,F7.4,F5.4))",
                    Interleaved({&file.X, &file.Ytotal, &file.Variance}, file.NPTS));
  const float unit = ralf ? 1.0f : divisor;
  for (float& x : file.X) x = x * kTimeUnit / unit;
  if (ralf) CorrectRalfBins(file);
  SquareSigmas(file.Variance);
  file.stepKind = ralf ? 0 : 1;
  if (ralf) file.equalStep = 0;
  file.THMIN = ralf ? bank.COEFFS[0] * kTimeUnit : bank.COEFFS[0] / divisor;
  file.STEP = ralf ? bank.COEFFS[1] * kTimeUnit : bank.COEFFS[1] / divisor;
  file.THMAX = file.X.back();
  file.Cnorm = MeanVarianceRatio(file.Ytotal, file.Variance);
}

}  // namespace

void ReadGsasData(DataFile& file) {
  const GsasBank bank = DecodeBankLine(file, FindBankLine(file));
  file.firstInteger = bank.IBANK;
  SetPointCount(file, bank.NCHAN);
  // Constant-step positions are in centidegrees (INSTR 12, constant wavelength)
  // or in time units as they stand (INSTR -12).
  const float divisor = file.INSTR < 0 ? 1.0f : 100.0f;
  if (bank.DATTYP == "STD") {
    ReadStandardBank(file, bank, divisor);
  } else if (bank.DATTYP == "ESD") {
    ReadEsdBank(file, bank, divisor);
  } else if (bank.DATTYP == "ALT") {
    ReadAltBank(file, bank, divisor);
  } else {
    StopBadData(file.job);
  }
}

}  // namespace corvinet
