// Tests of the check that a written control file reads back: the comparison of records word by
// word, and the reading of a text that does not give the values written or does not read at all.
#include "control/control_read_back.h"

#include <gtest/gtest.h>

#include <string>

#include "control/control_writer.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

TEST(ControlReadBack, RecordsWithTheSameNumbersToSixDigitsAreTheSame) {
  EXPECT_TRUE(SameRecordValues("   0.01200  -0.00800", "   0.012000-0.008000"));
  EXPECT_TRUE(SameRecordValues("  0.412345E-04", "   0.0000412345"));
  EXPECT_TRUE(SameRecordValues("Pb   PB  0.18784", "Pb   PB     0.187840"));
  EXPECT_TRUE(SameRecordValues(" 0.1000E-01-0.1000E-01", " 0.0100 -0.0100"));
}

TEST(ControlReadBack, RecordsThatDifferInAWordOrTheirCountDiffer) {
  EXPECT_FALSE(SameRecordValues("1.0 2.0", "1.0 2.1"));
  EXPECT_FALSE(SameRecordValues("0.00004", "0.0000412"));
  EXPECT_FALSE(SameRecordValues("   0   05000", "   0    0 5000"));
  EXPECT_FALSE(SameRecordValues("P m 3 m", "P m -3 m"));
  EXPECT_FALSE(SameRecordValues("1 2 3", "1 2"));
}

// Flat data over 20 to 60 degrees in steps of 0.02, free format.
std::string FlatData() {
  std::string data = "20.0 0.02 60.0\n";
  for (int i = 1; i <= 2001; ++i) data += i % 10 == 0 ? "100\n" : "100 ";
  return data + "\n";
}

const char* const kJob =
    "COMM Read back\n"
    "0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
    "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0\n"
    "1.5406 1.5444 0.5 40.0 8.0 0.8 0.0 30.0 0.0\n"
    "3 0.1 1 1 1 1 20.0 0.02 60.0 0 0\n"
    "1\n"
    "0.01 11.0 0.0 0.0 0.0 0.0 0.0 0.0 0\n"
    "100 0 0 0 0 0\n"
    "0 0 0 0 0 0\n"
    "Phase one\n"
    "0 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0\n"
    "P m 3 m\n"
    "1.0 0.0 0.0 0.0 0.0 0.0 0\n"
    "0 0 0 0 0 0\n"
    "0.01 -0.01 0.01 0.0 0.0 0.0 0.0 0\n"
    "0 0 0 0 0 0 0\n"
    "4.0 4.0 4.0 90 90 90\n"
    "0 0 0 0 0 0\n"
    "0 0 0 0 0 0\n"
    "0 0 0 0 0 0\n";

struct ReadJob {
  ScratchDir dir;
  CapturedJob job;
  ControlLines lines;
  ReadJob() {
    dir.Write("x.dat", FlatData());
    EXPECT_TRUE(testing::ReadControlText(dir, job, kJob, false)) << job.Console();
    lines = ControlFileLines(*job, {});
  }
  ReadBackResult Check(const ControlLines& text) {
    std::string joined;
    for (const std::string& line : text) joined += line + "\n";
    dir.Write("y.pcr", joined);
    return CheckControlReadsBack(*job, (dir.path / "y.pcr").string(), lines, {});
  }
};

TEST(ControlReadBack, TheWriterTextOfAReadJobReadsBack) {
  ReadJob r;
  const ReadBackResult result = r.Check(r.lines);
  EXPECT_TRUE(result.readsBack) << result.report;
  // The check writes nothing beside the text it reads.
  EXPECT_FALSE(r.dir.Exists("y.out"));
}

TEST(ControlReadBack, TextWithStarsDoesNotReadAndSaysWhere) {
  ReadJob r;
  ControlLines text = r.lines;
  for (std::string& line : text) {
    if (line.rfind("   0   0   1   0   1", 0) == 0) line.replace(36, 4, "****");
  }
  const ReadBackResult result = r.Check(text);
  EXPECT_FALSE(result.readsBack);
  EXPECT_NE(result.report.find("FindFMT: invalid character in a numeric field !"),
            std::string::npos)
      << result.report;
  EXPECT_NE(result.report.find(" => Please check your input file at line:"), std::string::npos);
}

TEST(ControlReadBack, TextThatReadsOtherValuesNamesItsLine) {
  ReadJob r;
  ControlLines text = r.lines;
  std::size_t changed = 0;
  for (std::size_t n = 0; n < text.size(); ++n) {
    if (text[n].rfind("   4.000000", 0) == 0) {
      text[n].replace(0, 11, "   4.100000");
      changed = n + 1;
    }
  }
  ASSERT_GT(changed, 0u);
  const ReadBackResult result = r.Check(text);
  EXPECT_FALSE(result.readsBack);
  EXPECT_NE(result.report.find(" => Line " + std::to_string(changed) + " reads back as:"),
            std::string::npos)
      << result.report;
}

}  // namespace
}  // namespace corvinet
