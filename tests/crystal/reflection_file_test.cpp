// Reflections read from a file: the forms of Irf 1 to 3, with and without vectors.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "crystal/reflection_generation.h"
#include "model/lorentz_polarisation.h"
#include "reflection_case.h"

namespace corvinet {
namespace {

using testing::Cell;
using testing::HasLine;
using testing::HasLineWith;
using testing::ReflectionCase;

// Cubic a = 4 in 1/d from 0.2 to 0.6: (1 0 0) 0.25, (1 1 0) 0.354, (2 0 0) 0.5.
struct FileCase : ReflectionCase {
  FileCase(int irf, const std::string& file) : ReflectionCase("P m 3 m", Cell(4, 4, 4), 4) {
    P().THMIN = 0.2f;
    P().THMAX = 0.6f;
    Ph().pat[1].Irf = irf;
    dir.Write("x1.hkl", file);
  }
};

void Read(Job& job) {
  ReflectionsFromFile(job, 1, 1, ReflectionLorentzPolarisation);
}

TEST(ReflectionFile, Irf1ReadsIndicesAndMultiplicityAndSkipsWhatIsOutOfRange) {
  FileCase c(1, "A list of reflections\nsecond title\n1 0 0 6\n1 1 0 12\n\n2 0 0 6\n5 0 0 6\n");
  ASSERT_TRUE(c.Runs(Read));
  const std::vector<Reflection> slots = c.Slots();
  ASSERT_EQ(slots.size(), 3u);
  EXPECT_EQ(KeyH(slots[1].key), 1);
  EXPECT_EQ(KeyK(slots[1].key), 1);
  EXPECT_EQ(slots[1].multiplicity, 12);
  EXPECT_NEAR(slots[1].position, std::sqrt(2.0) / 4.0, 1e-6);
  EXPECT_NEAR(slots[2].position, 0.5, 1e-6);
  const std::string out = c.Out();
  EXPECT_TRUE(HasLine(out, "A list of reflections"));
  EXPECT_FALSE(HasLine(out, "second title"));
  EXPECT_TRUE(HasLine(out, " => Given Laue symmetry   m3m "));
  EXPECT_TRUE(HasLine(out, " Indices are read from file"));
}

TEST(ReflectionFile, Irf2And3ReadOneAndTwoValuesOfTheFile) {
  FileCase two(2, "t\nt\n1 0 0 6 123.5\n");
  ASSERT_TRUE(two.Runs(Read));
  ASSERT_EQ(two.Slots().size(), 1u);
  EXPECT_FLOAT_EQ(two.Slots()[0].fileValue1, 123.5f);
  EXPECT_FLOAT_EQ(two.Slots()[0].fileValue2, 0.0f);
  FileCase three(3, "t\nt\n1 1 0 12 40.0 2.5\n");
  ASSERT_TRUE(three.Runs(Read));
  ASSERT_EQ(three.Slots().size(), 1u);
  EXPECT_FLOAT_EQ(three.Slots()[0].fileValue1, 40.0f);
  EXPECT_FLOAT_EQ(three.Slots()[0].fileValue2, 2.5f);
  FileCase negative(-3, "t\nt\n1 1 0 12 41.0 3.5\n");
  ASSERT_TRUE(negative.Runs(Read));
  EXPECT_FLOAT_EQ(negative.Slots()[0].fileValue2, 3.5f);
}

TEST(ReflectionFile, SatelliteIndexAddsItsVectorWithItsSign) {
  FileCase c(1, "t\nt\n1\n1 0.0 0.0 0.5\n0 0 0 1 2\n1 0 0 -1 2\n1 0 0 0 6\n");
  c.Ph().Nvk = 1;
  c.Ph().vectors[1].KVEC[3] = 0.5f;
  c.P().THMIN = 0.1f;
  ASSERT_TRUE(c.Runs(Read));
  const std::vector<Reflection> slots = c.Slots();
  ASSERT_EQ(slots.size(), 3u);
  EXPECT_EQ(slots[0].satelliteIndex, 1);
  EXPECT_NEAR(slots[0].position, 0.5 / 4.0, 1e-6);
  EXPECT_EQ(slots[1].satelliteIndex, -1);
  EXPECT_NEAR(slots[1].position, std::sqrt(1.0 + 0.25) / 4.0, 1e-6);
  EXPECT_EQ(KeyH(slots[1].key), 1);
  EXPECT_EQ(slots[2].satelliteIndex, 0);
  EXPECT_FALSE(HasLineWith(c.Out(), "Warning! difference"));
}

TEST(ReflectionFile, Irf2And3WithVectorsReadTheSatelliteBeforeTheMultiplicity) {
  FileCase c(3, "t\nt\n1\n1 0.0 0.0 0.5\n1 0 0 1 2 7.0 8.0\n");
  c.Ph().Nvk = 1;
  c.Ph().vectors[1].KVEC[3] = 0.5f;
  ASSERT_TRUE(c.Runs(Read));
  ASSERT_EQ(c.Slots().size(), 1u);
  EXPECT_EQ(c.Slots()[0].satelliteIndex, 1);
  EXPECT_EQ(c.Slots()[0].multiplicity, 2);
  EXPECT_FLOAT_EQ(c.Slots()[0].fileValue1, 7.0f);
  EXPECT_FLOAT_EQ(c.Slots()[0].fileValue2, 8.0f);
}

TEST(ReflectionFile, WrongNumberOfVectorsStopsWithTheHeader) {
  FileCase c(1, "Magnetic list\nt\n2\n1 0 0 0.5\n2 0 0.5 0\n0 0 0 1 2\n");
  c.Ph().Nvk = 1;
  c.Ph().vectors[1].KVEC[3] = 0.5f;
  EXPECT_FALSE(c.Runs(Read));
  const std::string console = c.job.Console();
  EXPECT_TRUE(HasLine(console, " => Header: Magnetic list"));
  EXPECT_TRUE(HasLine(console, " Wrong number of k-vectors!!"));
}

TEST(ReflectionFile, DifferentVectorIsReportedAndTheRunGoesOn) {
  FileCase c(1, "t\nt\n1\n1 0.0 0.0 0.4\n1 0 0 0 6\n");
  c.Ph().Nvk = 1;
  c.Ph().vectors[1].KVEC[3] = 0.5f;
  ASSERT_TRUE(c.Runs(Read));
  EXPECT_EQ(c.Slots().size(), 1u);
  const std::string out = c.Out();
  EXPECT_TRUE(HasLine(out, " Warning! difference between read and supplied K-vectors:"));
  EXPECT_TRUE(HasLine(out, "   1   0.00000   0.00000   0.40000       0.00000   0.00000   0.50000"));
}

TEST(ReflectionFile, UnreadableRecordStops) {
  FileCase c(1, "t\nt\n1 0 0 six\n");
  EXPECT_FALSE(c.Runs(Read));
  const std::string console = c.job.Console();
  EXPECT_TRUE(HasLine(console, "1 0 0 six"));
  EXPECT_TRUE(HasLine(console, " Error reading the reflection file"));
}

TEST(ReflectionFile, PatternBlockAnnouncesTheReading) {
  FileCase c(2, "t\nt\n1 0 0 6 1.0\n1 1 0 12 2.0\n");
  ASSERT_TRUE(c.Runs([](Job& job) { MakeReflections(job, 1, 1, ReflectionLorentzPolarisation); }));
  EXPECT_TRUE(HasLine(c.job.Console(), " => Reading reflections for pattern:  1"));
  EXPECT_EQ(c.P().reflections.count[1], 2);
}

}  // namespace
}  // namespace corvinet
