// INSTR 13 (and 100*n + 13): the chosen bank of a GSAS file, FXYE or FXY records (CONST or SLOG)
// or STD records with TIME_MAP binning.
#include <string>
#include <string_view>
#include <vector>

#include "format/text.h"
#include "observations/data_lines.h"
#include "observations/gsas_bank.h"
#include "records/data_format.h"

namespace corvinet {

namespace {

constexpr int kHeadingEcho = 7;  // heading lines echoed on the report

// The data types a BANK line may name; FXYE before FXY.
constexpr std::string_view kDataTypes[] = {"STD", "ESD", "ALT", "FXYE", "FXY"};

bool IsDataType(std::string_view word) {
  for (std::string_view type : kDataTypes) {
    if (word == type) return true;
  }
  return false;
}

// Reads the file up to the BANK line of the chosen bank (the first with
// `wanted` 0), keeping the time maps and what the comments say.
GsasBank FindChosenBank(DataFile& file, int wanted) {
  GsasBank bank;
  ReportData(file, " => Heading of GSAS file:");
  std::string line;
  int echoed = 0;
  while (ReadDataRecord(file, line, kDataListRecordLength)) {
    if (line.starts_with("BANK")) {
      const GsasBankLine decoded = DecodeGsasBankLine(file, line);
      if (wanted == 0 || decoded.IBANK == wanted) {
        bank.line = decoded;
        return bank;
      }
      continue;
    }
    if (line.starts_with("TIME_MAP")) {
      bank.maps.push_back(ReadTimeMap(file, line));
      continue;
    }
    if (line.find("multiplied by the bin width") != std::string::npos) {
      bank.binWidthMultiplied = true;
    }
    if (echoed < kHeadingEcho && file.lineNumber <= kHeadingEcho) {
      ReportData(file, " " + PrintableText(CutText(line, 80)));
      ++echoed;
    }
  }
  if (wanted == 0) StopData(file.job, " => Error in the input GSAS-file: BANK not found!");
  StopData(file.job,
           Fmt("(A,I0,A)", " => Error in the input GSAS-file: BANK ", wanted, " not found!"));
}

void ReportBank(DataFile& file, const GsasBankLine& b) {
  ReportData(file, Fmt("(A,3I8)", " -> IBANK,NCHAN,NREC: ", b.IBANK, b.NCHAN, b.NREC));
  ReportData(file, " -> BINTYP          : " + b.BINTYP);
  ReportData(file, Fmt("(A,4G14.6)", " -> COEFFS          : ", b.BCOEF[0], b.BCOEF[1], b.BCOEF[2],
                       b.BCOEF[3]));
  ReportData(file, " -> DATTYP          : " + b.DATTYP);
}

}  // namespace

GsasBankLine DecodeGsasBankLine(DataFile& file, const std::string& line) {
  const std::vector<std::string_view> items = LineWords(std::string_view(line).substr(4));
  GsasBankLine bank;
  double v[3] = {};
  if (items.size() < 4 || !LineNumbers(std::string_view(line).substr(4), 3, v)) {
    StopMalformedLine(file, file.lineNumber, line, "BANK IBANK NCHAN NREC BINTYP ... expected");
  }
  bank.IBANK = static_cast<int>(v[0]);
  bank.NCHAN = static_cast<int>(v[1]);
  bank.NREC = static_cast<int>(v[2]);
  bank.BINTYP = std::string(items[3]);
  std::size_t k = 4;
  for (; k < items.size() && !IsDataType(items[k]); ++k) {
    double value = 0.0;
    if (!WordNumber(items[k], value)) {
      StopMalformedLine(file, file.lineNumber, line, "a coefficient is not a number");
    }
    if (k - 4 < 4) bank.BCOEF[k - 4] = value;
  }
  if (k < items.size()) bank.DATTYP = std::string(items[k]);
  if (bank.NCHAN < 1) StopMalformedLine(file, file.lineNumber, line, "NCHAN must be above 0");
  return bank;
}

void ReadGsasBankData(DataFile& file) {
  const GsasBank bank = FindChosenBank(file, DataBankOf(file.INSTR));
  file.firstInteger = bank.line.IBANK;
  ReportBank(file, bank.line);
  const std::string& type = bank.line.DATTYP;
  if (type == "FXYE" || type == "FXY") {
    ReadFxyeBank(file, bank);
  } else if (type == "STD" && bank.line.BINTYP == "TIME_MAP") {
    ReadTimeMapBank(file, bank);
  } else {
    StopData(file.job, " => Only FXYE or FXY records, or STD records with TIME_MAP, are read here");
  }
}

}  // namespace corvinet
