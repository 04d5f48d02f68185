// The bank of a GSAS file that INSTR 13 reads: its BANK line, its time maps, and the two readers.
#pragma once

#include <string>
#include <vector>

#include "observations/powder_data_common.h"

namespace corvinet {

// The items of a BANK line: BANK IBANK NCHAN NREC BINTYP BCOEF1..4 DATTYP.
struct GsasBankLine {
  int IBANK = 0;
  int NCHAN = 0;
  int NREC = 0;
  std::string BINTYP;    // CONST (or CONS), SLOG, TIME_MAP, ...
  double BCOEF[4] = {};  // the coefficients, missing ones 0
  std::string DATTYP = "STD";
};

// One segment of a time map: from channel C on, channel C starts at T ticks
// and every channel of the segment is W ticks wide.
struct TimeMapSegment {
  long long C = 0, T = 0, W = 0;
};

// A TIME_MAP block: its number, its clock tick in ns, its segments and the end time in ticks.
struct TimeMap {
  int number = 0;
  double CLCKWDT = 0.0;
  std::vector<TimeMapSegment> segments;
  long long TMAX = 0;
};

// What comes before the chosen bank and the bank itself.
struct GsasBank {
  GsasBankLine line;
  std::vector<TimeMap> maps;
  bool binWidthMultiplied = false;  // a comment says Y was multiplied by the bin widths
};

// Decodes a BANK line; a malformed one stops with its line number.
GsasBankLine DecodeGsasBankLine(DataFile& file, const std::string& line);

// Reads a TIME_MAP block whose header line has just been read.
TimeMap ReadTimeMap(DataFile& file, const std::string& header);

// The start of each of `count` channels of a map, and their widths, in microseconds.
void TimeMapChannels(const TimeMap& map, int count, std::vector<double>& start,
                     std::vector<double>& width);

// The points of an FXYE or FXY bank (CONST or SLOG binning), read after its BANK line.
void ReadFxyeBank(DataFile& file, const GsasBank& bank);

// The points of a STD bank whose positions come from a time map.
void ReadTimeMapBank(DataFile& file, const GsasBank& bank);

}  // namespace corvinet
