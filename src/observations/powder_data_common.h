// What the data-file readers share: the file being read, reads with their stops, point counts.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "format/fortran_format.h"
#include "records/job.h"

namespace corvinet {

// Longest record of a data file (the program's records are 132 characters).
constexpr std::size_t kDataRecordLength = 132;
// Free-format lists of values may stand on longer lines; they are not cut at 132.
constexpr std::size_t kDataListRecordLength = 4096;

// The data file of one pattern while it is read. The readers fill the points
// and the header values here; ReadPattern copies them into the Pattern only
// when the whole file has been read, so a stop leaves the Pattern untouched.
struct DataFile {
  Job& job;
  int ip;
  int INSTR;
  int lineNumber = 0;  // records read, for the field reader's reports

  int NPTS = 0;
  float THMIN = 0.0f, STEP = 0.0f, THMAX = 0.0f;
  std::vector<float> X, Ytotal, Variance, CountNorm;  // index 0 is point 1

  int stepKind = 0;
  int equalStep = 1;
  float Cnorm = 1.0f;
  float Temperature = 0.0f;
  float TSET = 0.0f;
  float MONITOR = 0.0f;
  int firstInteger = 0;  // the bank number of a "BANK" line, for the list copy

  DataFile(Job& j, int pattern);
  Pattern& pattern() { return job.patterns[ip]; }
};

// The points a data file may hold: the capacity of a pattern times the step
// reduction (Ste) that thins them while they are stored.
long long FilePointLimit(DataFile& file);

// ---------------------------------------------------------------------------
// Stops of the data readers (all end the process through the stop box).

// " End of file *.DAT ": the file ended before the format was complete.
[[noreturn]] void StopEndOfData(Job& job);
// "  Error on Intensity file, check your instr parameter! ": a value or a
// record that the format cannot read.
[[noreturn]] void StopBadData(Job& job);
// Any other stop text of a format.
[[noreturn]] void StopData(Job& job, std::string_view text);
// More than 20000 points: the count on the .out file and the console, then " Too many points ".
[[noreturn]] void StopTooManyPoints(Job& job, long long count);
// " => Non-finite value in data file: NAME at line N": a value read as nan or
// inf, or beyond the range of a 32-bit real.
[[noreturn]] void StopNonFinite(DataFile& file, int line);
// Stops as StopNonFinite when the value is not finite.
void RequireFinite(DataFile& file, float value, int line);
// True for a number text that reads as nan or inf, or whose value lies beyond
// the range of a 32-bit real; false for finite numbers and for other words.
bool ReadsAsNonFinite(std::string_view text);

// ---------------------------------------------------------------------------
// Records and values of unit 4.

// Reads the next record; false at the end of the file. A read error stops.
bool ReadDataRecord(DataFile& file, std::string& record, std::size_t maxLength = kDataRecordLength);
// Reads the next record; the end of the file stops with " End of file *.DAT ".
std::string RequireDataRecord(DataFile& file, std::size_t maxLength = kDataRecordLength);

// Reads values under a fixed-column format, starting with a new record and
// going on over as many records as the format's reversion asks for. A real
// value that is not finite stops the run with the line that held it.
void ReadDataFormatted(DataFile& file, std::string_view format,
                       std::span<const ReadTarget> targets);
void ReadDataFormatted(DataFile& file, const CompiledFormat& format,
                       std::span<const ReadTarget> targets);
// Reads values in free format, starting with a new record and going on over
// as many records as needed; non-finite values stop as above.
void ReadDataList(DataFile& file, std::span<const ReadTarget> targets);

// Targets for `count` values of each of the given vectors, interleaved:
// (a[0], b[0], ..., a[1], b[1], ...).
std::vector<ReadTarget> Interleaved(std::initializer_list<std::vector<float>*> columns, int count);

// ---------------------------------------------------------------------------
// Points.

// Checks the count against the 20000 points of a pattern and sizes the
// arrays: CountNorm 1, the rest 0. A count below 1 is a bad file.
void SetPointCount(DataFile& file, long long count);

// trunc((thmax - thmin)/step + 1.5); false when this is no finite number
// (a step of 0). The value is clamped to the range of a long long.
bool PointsInRange(float thmin, float step, float thmax, long long& count);

// X[i] = THMIN + (i-1)*STEP for all points.
void FillEvenPositions(DataFile& file);

// A free-format line THMIN, STEP, THMAX; NPTS = trunc((THMAX-THMIN)/STEP + 1.5)
// and the positions on that grid. A step of 0 is a bad file.
void ReadRangeLine(DataFile& file);

// THMIN, THMAX and the mean STEP from positions read point by point.
void RangeFromPositions(DataFile& file);

// The treatment of counter-normalised data: an intensity at or below 0.00001
// becomes 1, a counter count of 0 becomes 1, Variance = Ytotal/CountNorm and
// then Ytotal = Ytotal/CountNorm; Cnorm is set from the mean ratio.
void NormaliseByCounters(DataFile& file);

// The treatment of counts that are means over CountNorm counters (GSAS STD):
// an intensity at or below 0.00001 becomes 1, a counter count of 0 becomes 1,
// Ytotal stays the mean and Variance = Ytotal/CountNorm. Cnorm is 1: the
// variance of a calculated mean is then Ycalc/CountNorm, as for the data.
void TakeCounterMeans(DataFile& file);

// The mean of Variance[i]/max(Ytotal[i], 0.001) over the points (1 with no point).
float MeanVarianceRatio(const std::vector<float>& y, const std::vector<float>& variance);

// Variance = sigma squared for all points (the vector holds sigma on entry).
void SquareSigmas(std::vector<float>& sigmaToVariance);

// A report line of the reader on the .out file.
void ReportData(DataFile& file, std::string_view text);

// ---------------------------------------------------------------------------
// The formats (one reader per INSTR value or family).

void ReadFreeFormatData(DataFile& file);    // INSTR 0
void ReadD1AData(DataFile& file);           // INSTR 1
void ReadD1BData(DataFile& file);           // INSTR 2
void ReadD20Data(DataFile& file);           // INSTR 3
void ReadSynchrotronData(DataFile& file);   // INSTR 4 and -4
void ReadTwoAxisData(DataFile& file);       // INSTR 5
void ReadD1ASumData(DataFile& file);        // INSTR 6
void ReadD4Data(DataFile& file);            // INSTR 7
void ReadDmcData(DataFile& file);           // INSTR 8
void ReadUxdData(DataFile& file);           // INSTR 9
void ReadXYSigmaData(DataFile& file);       // INSTR 10
void ReadVariableTimeData(DataFile& file);  // INSTR 11
void ReadGsasData(DataFile& file);          // INSTR 12 and -12
void ReadGsasBankData(DataFile& file);      // INSTR 13 and 100*bank + 13
void ReadColumnData(DataFile& file);        // INSTR 14 and 100*spectrum + 14

}  // namespace corvinet
