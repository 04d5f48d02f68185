// The samples of the user guide are real: every control file and data file of docs/guide.md runs
// with the built program and gives the lines, the files and the ending the guide shows.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::HasNormalisedLine;
using testing::ScratchDir;
using testing::SplitLines;

std::filesystem::path ProjectRoot() {
  return std::filesystem::path(CORVINET_TEST_DATA) / ".." / "..";
}

std::string ReadWhole(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream all;
  all << in.rdbuf();
  return all.str();
}

// One fenced block of the guide: ```lang key=value word ...
struct Block {
  std::string lang;
  std::map<std::string, std::string> attributes;
  std::set<std::string> words;
  std::vector<std::string> lines;
};

// The blocks of a sample, with the attributes and words of all of them.
struct Sample {
  std::map<std::string, std::string> attributes;
  std::set<std::string> words;
  std::vector<Block> blocks;
};

// The languages whose blocks are files of the job, by their extension.
const std::set<std::string> kFileLanguages = {"pcr", "dat", "uxd", "bac"};

Block OpenBlock(const std::string& info) {
  Block block;
  std::istringstream words(info);
  words >> block.lang;
  std::string w;
  while (words >> w) {
    const std::size_t eq = w.find('=');
    if (eq == std::string::npos) {
      block.words.insert(w);
    } else {
      block.attributes[w.substr(0, eq)] = w.substr(eq + 1);
    }
  }
  return block;
}

std::vector<Block> FencedBlocks(const std::string& text) {
  std::vector<Block> blocks;
  bool inside = false;
  Block current;
  for (const std::string& line : SplitLines(text)) {
    if (line.rfind("```", 0) != 0) {
      if (inside) current.lines.push_back(line);
      continue;
    }
    if (inside) {
      blocks.push_back(current);
      inside = false;
    } else {
      current = OpenBlock(line.substr(3));
      inside = true;
    }
  }
  return blocks;
}

// The samples of the guide, in the order of their first block.
struct Guide {
  std::map<std::string, Sample> samples;
  std::vector<std::string> order;
  bool read = false;
};

const Guide& TheGuide() {
  static const Guide guide = [] {
    Guide g;
    const std::filesystem::path path = ProjectRoot() / "docs" / "guide.md";
    if (!std::filesystem::exists(path)) return g;
    g.read = true;
    for (const Block& block : FencedBlocks(ReadWhole(path))) {
      const auto name = block.attributes.find("sample");
      if (name == block.attributes.end()) continue;
      if (g.samples.find(name->second) == g.samples.end()) g.order.push_back(name->second);
      Sample& s = g.samples[name->second];
      for (const auto& [key, value] : block.attributes) {
        if (key != "sample") s.attributes[key] = value;
      }
      s.words.insert(block.words.begin(), block.words.end());
      s.blocks.push_back(block);
    }
    return g;
  }();
  return guide;
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

const Sample& SampleNamed(const std::string& name) {
  const Guide& g = TheGuide();
  const auto found = g.samples.find(name);
  if (found == g.samples.end()) throw std::runtime_error("no sample " + name);
  return found->second;
}

std::string Attribute(const Sample& s, const std::string& key) {
  const auto found = s.attributes.find(key);
  return found == s.attributes.end() ? std::string() : found->second;
}

// Applies the pairs "- old" / "+ new" of an edit block in order: each old
// line is looked for from the line after the previous replacement on.
std::vector<std::string> ApplyEdit(std::vector<std::string> lines, const Block& edit) {
  std::size_t from = 0;
  for (std::size_t k = 0; k + 1 < edit.lines.size(); k += 2) {
    const std::string& minus = edit.lines[k];
    const std::string& plus = edit.lines[k + 1];
    if (minus.rfind("- ", 0) != 0 || plus.rfind("+ ", 0) != 0) {
      throw std::runtime_error("edit pair without - and +: " + minus);
    }
    std::size_t at = from;
    while (at < lines.size() && lines[at] != minus.substr(2)) ++at;
    if (at == lines.size()) throw std::runtime_error("edit line not found: " + minus);
    lines[at] = plus.substr(2);
    from = at + 1;
  }
  if (edit.lines.size() % 2 != 0) throw std::runtime_error("edit block with an odd line");
  return lines;
}

// The control file of a sample: its own pcr block, or that of `control=`
// with the sample's edit blocks applied.
std::string ControlText(const std::string& name) {
  const Sample& s = SampleNamed(name);
  for (const Block& b : s.blocks) {
    if (b.lang == "pcr") return Joined(b.lines);
  }
  const std::string base = Attribute(s, "control");
  if (base.empty()) throw std::runtime_error("sample without a control file: " + name);
  std::vector<std::string> lines = SplitLines(ControlText(base));
  for (const Block& b : s.blocks) {
    if (b.lang == "edit") lines = ApplyEdit(lines, b);
  }
  return Joined(lines);
}

// A data file of a sample: its extension and its text.
struct SampleFile {
  std::string extension;
  std::string text;
};

std::vector<SampleFile> DataFiles(const std::string& name) {
  const Sample& s = SampleNamed(name);
  std::vector<SampleFile> files;
  for (const Block& b : s.blocks) {
    if (b.lang != "pcr" && kFileLanguages.count(b.lang) != 0) {
      files.push_back({b.lang, Joined(b.lines)});
    }
  }
  if (!files.empty() || s.words.count("nodata") != 0) return files;
  const std::string data = Attribute(s, "data");
  if (data.find('/') != std::string::npos) {
    const std::filesystem::path path = ProjectRoot() / data;
    if (!std::filesystem::exists(path)) throw std::runtime_error("no file " + data);
    return {{"dat", ReadWhole(path)}};
  }
  if (!data.empty()) return DataFiles(data);
  const std::string base = Attribute(s, "control");
  if (!base.empty()) return DataFiles(base);
  return files;
}

std::vector<std::string> SampleNames() {
  return TheGuide().order;
}

TEST(GuideSamples, TheGuideHoldsTheSamplesItPromises) {
  const Guide& g = TheGuide();
  ASSERT_TRUE(g.read) << "docs/guide.md is missing";
  // The bundled example, as it stands in examples/.
  ASSERT_EQ(g.samples.count("anglesite"), 1u);
  EXPECT_EQ(ControlText("anglesite"),
            ReadWhole(ProjectRoot() / "examples" / "anglesite-xray" / "anglesite.pcr"));
  EXPECT_EQ(Attribute(SampleNamed("anglesite"), "data"), "examples/anglesite-xray/anglesite.dat");
  // A pattern calculation that needs no data file.
  ASSERT_EQ(g.samples.count("quartz_calc"), 1u);
  EXPECT_EQ(SampleNamed("quartz_calc").words.count("nodata"), 1u);
  EXPECT_TRUE(DataFiles("quartz_calc").empty());
  // The free format and the X, Y, sigma format read by a short job.
  ASSERT_EQ(g.samples.count("quartz_free"), 1u);
  ASSERT_EQ(g.samples.count("quartz_xy"), 1u);
  ASSERT_EQ(DataFiles("quartz_xy").size(), 1u);
  EXPECT_EQ(DataFiles("quartz_xy")[0].text.rfind("XYDATA", 0), 0u);
}

class GuideSample : public ::testing::TestWithParam<std::string> {};

TEST_P(GuideSample, RunsAsTheGuideSays) {
  const std::string name = GetParam();
  const Sample& s = SampleNamed(name);
  ScratchDir dir;
  dir.Write(name + ".pcr", ControlText(name));
  for (const SampleFile& f : DataFiles(name)) dir.Write(name + "." + f.extension, f.text);

  const testing::BinaryRun run = testing::RunBinary(dir.path, name);
  const std::string out = dir.Exists(name + ".out") ? dir.Read(name + ".out") : "";
  const bool finished = out.find("\n => Run finished at:") != std::string::npos;
  if (s.words.count("stop") != 0) {
    EXPECT_FALSE(finished) << name << " was meant to stop";
  } else {
    EXPECT_EQ(run.exitCode, 0) << run.output;
    EXPECT_TRUE(finished) << name << " did not end normally:\n" << run.output;
  }

  for (const Block& b : s.blocks) {
    std::string shown;
    if (b.lang == "out") {
      shown = out;
    } else if (b.lang == "sum") {
      shown = dir.Read(name + ".sum");
    } else if (b.lang == "console") {
      shown = run.output;
    } else if (b.lang == "files") {
      for (const std::string& file : b.lines) {
        if (file.empty()) continue;
        EXPECT_TRUE(dir.Exists(file)) << name << ": no file " << file;
      }
      continue;
    } else {
      continue;
    }
    for (const std::string& line : b.lines) {
      EXPECT_TRUE(HasNormalisedLine(shown, line))
          << name << ": the " << b.lang << " shows no line \"" << line << "\"";
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Guide, GuideSample, ::testing::ValuesIn(SampleNames()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                           return info.param;
                         });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(GuideSample);

}  // namespace
}  // namespace corvinet
