// The data format and the bank or spectrum that a pattern's INSTR value selects.
#pragma once

namespace corvinet {

// Formats whose INSTR may carry a bank: INSTR = 100*bank + format.
constexpr int kGsasBankFormat = 13;    // GSAS file of FXYE/FXY or TIME_MAP STD banks
constexpr int kColumnDataFormat = 14;  // x, y(, sigma) columns with comment lines

// The format number of INSTR: its last two digits for the formats that take a
// bank, INSTR itself otherwise.
constexpr int DataFormatOf(int INSTR) {
  const int format = INSTR % 100;
  if (INSTR >= 100 && (format == kGsasBankFormat || format == kColumnDataFormat)) return format;
  return INSTR;
}

// The bank (GSAS) or spectrum (columns) that INSTR asks for; 0 is the first of the file.
constexpr int DataBankOf(int INSTR) {
  return DataFormatOf(INSTR) == INSTR ? 0 : INSTR / 100;
}

}  // namespace corvinet
