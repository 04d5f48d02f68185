// Write-then-rename replacement of a whole file.
#include "io/file_replacement.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace corvinet {

namespace {

// Flushes the stream and its file to the disk; false on any error met so far.
bool FlushToDisk(std::FILE* file) {
  if (std::fflush(file) != 0 || std::ferror(file) != 0) return false;
  return ::fsync(::fileno(file)) == 0;
}

}  // namespace

std::string TemporaryNameOf(const std::string& path) {
  return path + ".tmp";
}

ReplaceResult ReplaceFile(const std::string& path, const std::function<bool(std::FILE*)>& writeBody,
                          const ReplacementCheck& check) {
  struct stat old {};
  const bool exists = ::stat(path.c_str(), &old) == 0;
  if (exists && !S_ISREG(old.st_mode)) return ReplaceResult::kNotARegularFile;
  const std::string temporary = TemporaryNameOf(path);
  std::FILE* file = std::fopen(temporary.c_str(), "w");
  if (file == nullptr) return ReplaceResult::kCannotCreate;
  bool written = writeBody(file) && FlushToDisk(file);
  if (written && exists) written = ::fchmod(::fileno(file), old.st_mode & 07777) == 0;
  written = std::fclose(file) == 0 && written;
  if (!written) {
    std::remove(temporary.c_str());
    return ReplaceResult::kWriteFailed;
  }
  if (check && !check(temporary)) {
    std::remove(temporary.c_str());
    return ReplaceResult::kRefused;
  }
  if (std::rename(temporary.c_str(), path.c_str()) != 0) {
    std::remove(temporary.c_str());
    return ReplaceResult::kCannotRename;
  }
  return ReplaceResult::kReplaced;
}

ReplaceResult ReplaceFileLines(const std::string& path, std::span<const std::string> lines,
                               const ReplacementCheck& check) {
  return ReplaceFile(
      path,
      [lines](std::FILE* file) {
        for (const std::string& line : lines) {
          if (std::fwrite(line.data(), 1, line.size(), file) != line.size()) return false;
          if (std::fputc('\n', file) == EOF) return false;
        }
        return true;
      },
      check);
}

}  // namespace corvinet
