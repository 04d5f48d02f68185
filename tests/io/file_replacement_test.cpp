// Tests of the write-then-rename replacement of a file.
#include "io/file_replacement.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::ScratchDir;

const std::vector<std::string> kNewText = {"first line", "", "third line"};

TEST(FileReplacement, ReplacesTheTextAndLeavesNoTemporaryFile) {
  ScratchDir dir;
  dir.Write("x.pcr", std::string(5000, '!') + "\n");
  EXPECT_EQ(ReplaceFileLines("x.pcr", kNewText), ReplaceResult::kReplaced);
  EXPECT_EQ(dir.Read("x.pcr"), "first line\n\nthird line\n");
  EXPECT_FALSE(dir.Exists("x.pcr.tmp"));
  EXPECT_EQ(TemporaryNameOf("x.pcr"), "x.pcr.tmp");
}

TEST(FileReplacement, CreatesAFileThatDoesNotExist) {
  ScratchDir dir;
  EXPECT_EQ(ReplaceFileLines("x.new", kNewText), ReplaceResult::kReplaced);
  EXPECT_EQ(dir.Read("x.new"), "first line\n\nthird line\n");
}

TEST(FileReplacement, TheReplacedFileKeepsItsPermissions) {
  ScratchDir dir;
  dir.Write("x.pcr", "old\n");
  ASSERT_EQ(::chmod("x.pcr", 0640), 0);
  ASSERT_EQ(ReplaceFileLines("x.pcr", kNewText), ReplaceResult::kReplaced);
  struct stat info {};
  ASSERT_EQ(::stat("x.pcr", &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0640u);
}

TEST(FileReplacement, AFailureWhileWritingLeavesTheOldFile) {
  ScratchDir dir;
  dir.Write("x.pcr", "old text\n");
  const ReplaceResult result = ReplaceFile("x.pcr", [](std::FILE* file) {
    std::fputs("half of the new", file);
    return false;
  });
  EXPECT_EQ(result, ReplaceResult::kWriteFailed);
  EXPECT_EQ(dir.Read("x.pcr"), "old text\n");
  EXPECT_FALSE(dir.Exists("x.pcr.tmp"));
}

TEST(FileReplacement, ATemporaryNameThatCannotBeCreatedLeavesTheOldFile) {
  ScratchDir dir;
  dir.Write("x.pcr", "old text\n");
  std::filesystem::create_directory(dir.path / "x.pcr.tmp");
  EXPECT_EQ(ReplaceFileLines("x.pcr", kNewText), ReplaceResult::kCannotCreate);
  EXPECT_EQ(dir.Read("x.pcr"), "old text\n");
}

TEST(FileReplacement, OnlyARegularFileIsReplaced) {
  ScratchDir dir;
  std::filesystem::create_directory(dir.path / "x.pcr");
  EXPECT_EQ(ReplaceFileLines("x.pcr", kNewText), ReplaceResult::kNotARegularFile);
  EXPECT_TRUE(std::filesystem::is_directory(dir.path / "x.pcr"));
  EXPECT_FALSE(dir.Exists("x.pcr.tmp"));
}

}  // namespace
}  // namespace corvinet
