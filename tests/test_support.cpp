// Test helpers: scratch directories, captured consoles, runs of the program, normalised reports.
#include "test_support.h"

#include "control/control_reading.h"
#include "io/file_set.h"
#include "run/defaults.h"
#include "surface/console.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <sstream>

namespace corvinet::testing {

ScratchDir::ScratchDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "corvinet-XXXXXX").string();
  char* made = ::mkdtemp(pattern.data());
  path = made != nullptr ? std::filesystem::path(made) : std::filesystem::temp_directory_path();
  previous = std::filesystem::current_path();
  std::filesystem::current_path(path);
}

ScratchDir::~ScratchDir() {
  std::error_code ignored;
  std::filesystem::current_path(previous, ignored);
  std::filesystem::remove_all(path, ignored);
}

void ScratchDir::Write(const std::string& name, const std::string& text) const {
  std::filesystem::create_directories((path / name).parent_path());
  std::ofstream out(path / name, std::ios::binary);
  out << text;
}

std::string ScratchDir::Read(const std::string& name) const {
  std::ifstream in(path / name, std::ios::binary);
  std::stringstream all;
  all << in.rdbuf();
  return all.str();
}

bool ScratchDir::Exists(const std::string& name) const {
  return std::filesystem::exists(path / name);
}

CapturedJob::CapturedJob(const std::string& answers)
    : job(std::make_unique<Job>()), input(answers) {
  job->console.out = ::open_memstream(&buffer, &size);
  job->console.in =
      input.empty() ? std::fopen("/dev/null", "r") : ::fmemopen(input.data(), input.size(), "r");
}

CapturedJob::~CapturedJob() {
  for (TextUnit& unit : job->files.units) CloseUnit(unit);
  std::fclose(job->console.out);
  std::fclose(job->console.in);
  std::free(buffer);
}

std::string CapturedJob::Console() {
  std::fflush(job->console.out);
  return std::string(buffer, size);
}

BinaryRun RunBinary(const std::filesystem::path& dir, const std::string& arguments,
                    const std::string& input, const std::string& environment) {
  const std::filesystem::path in = dir / ".stdin";
  const std::filesystem::path out = dir / ".stdout";
  {
    std::ofstream file(in, std::ios::binary);
    file << input;
  }
  std::string command = "cd '" + dir.string() + "' && env -u CORVINET -u CORVINET_LIMITS " +
                        environment + " '" + CORVINET_BINARY + "' " + arguments + " < '" +
                        in.string() + "' > '" + out.string() + "' 2>&1";
  int status = std::system(command.c_str());
  BinaryRun run;
  run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  std::ifstream file(out, std::ios::binary);
  std::stringstream all;
  all << file.rdbuf();
  run.output = all.str();
  std::filesystem::remove(in);
  std::filesystem::remove(out);
  return run;
}

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::string line;
  std::istringstream in(text);
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

std::string NormaliseLine(const std::string& line) {
  static const std::regex date(R"(\d\d/\d\d/\d\d\d\d)");
  static const std::regex clock(R"(\d\d:\d\d:\d\d\.\d\d\d)");
  static const std::regex cpu(R"([ 0-9]{5}[0-9]\.[0-9]{3}( seconds| minutes)$)");
  std::string s = std::regex_replace(line, date, "dd/mm/yyyy");
  s = std::regex_replace(s, clock, "hh:mm:ss.sss");
  s = std::regex_replace(s, cpu, "<cpu time>$1");
  // Trailing blanks carry nothing and are not compared.
  s.erase(s.find_last_not_of(' ') + 1);
  return s;
}

std::vector<std::string> NormaliseLines(const std::vector<std::string>& lines) {
  std::vector<std::string> out;
  out.reserve(lines.size());
  for (const std::string& line : lines) out.push_back(NormaliseLine(line));
  return out;
}

int CountLines(const std::string& text, const std::string& line) {
  const auto lines = SplitLines(text);
  return static_cast<int>(std::count(lines.begin(), lines.end(), line));
}

bool HasLine(const std::string& text, const std::string& line) {
  const std::vector<std::string> lines = SplitLines(text);
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

bool HasNormalisedLine(const std::string& text, const std::string& line) {
  const std::vector<std::string> lines = NormaliseLines(SplitLines(text));
  return std::find(lines.begin(), lines.end(), NormaliseLine(line)) != lines.end();
}

void OpenControlText(const ScratchDir& dir, Job& job, const std::string& lines) {
  dir.Write("x.pcr", lines);
  job.driver.PcrCode = "x";
  ResetDefaults(job);
  OpenFiles(job, FileKind::kControl, 0, 0);
  OpenFiles(job, FileKind::kOutput, 0, 0);
}

bool ReadControlText(ScratchDir& dir, CapturedJob& job, const std::string& pcr, bool headOnly) {
  dir.Write("x.pcr", pcr);
  job->driver.PcrCode = "x";
  job->driver.DatCode = "x";
  bool finished = true;
  try {
    OpenFiles(*job, FileKind::kControl, 0, 0);
    OpenFiles(*job, FileKind::kOutput, 0, 0);
    ResetDefaults(*job);
    if (headOnly) {
      ReadControlHead(*job);
    } else {
      ReadControlFile(*job);
    }
  } catch (const ProcessStop&) {
    finished = false;
  }
  CloseUnit(job->files.units[Unit::Out]);
  CloseUnit(job->files.units[Unit::Sum]);
  return finished;
}

std::string FlushedReport(const ScratchDir& dir, Job& job, const std::string& name) {
  std::fflush(job.files.units[Unit::Out].file);
  return dir.Read(name);
}

std::string TestData(const std::string& relative) {
  std::ifstream in(std::string(CORVINET_TEST_DATA) + "/" + relative, std::ios::binary);
  std::stringstream all;
  all << in.rdbuf();
  return all.str();
}

std::string LineAfter(const std::string& text, const std::string& head) {
  const auto lines = SplitLines(text);
  for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
    if (lines[i].rfind(head, 0) == 0) return lines[i + 1];
  }
  return std::string();
}

std::vector<double> NumbersIn(const std::string& line) {
  static const std::regex number(R"([-+]?(\d+\.?\d*|\.\d+)([eE][-+]?\d+)?)");
  std::vector<double> values;
  for (auto it = std::sregex_iterator(line.begin(), line.end(), number);
       it != std::sregex_iterator(); ++it) {
    values.push_back(std::stod(it->str()));
  }
  return values;
}

std::vector<double> AtomLineValues(const std::string& control, const std::string& label) {
  for (const std::string& line : SplitLines(control)) {
    std::istringstream in(line);
    std::string name, species;
    if (!(in >> name >> species) || name != label) continue;
    std::vector<double> values;
    double v = 0.0;
    while (in >> v) values.push_back(v);
    if (values.size() >= 4) return values;  // x y z B at least: not the symbol line "F m 3 m"
  }
  return {};
}

int SimulateThenRefine(const ScratchDir& dir, const std::string& simulation,
                       const std::string& refinement, const std::string& name) {
  dir.Write("sim.pcr", TestData(simulation));
  dir.Write("sim.dat", "");
  if (RunBinary(dir.path, "sim").exitCode != 0 || !dir.Exists("sim.sim")) return -1;
  dir.Write(name + ".dat", dir.Read("sim.sim"));
  dir.Write(name + ".pcr", TestData(refinement));
  return RunBinary(dir.path, name).exitCode;
}

}  // namespace corvinet::testing
