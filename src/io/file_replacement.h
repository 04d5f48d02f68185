// Replacing a file whole: the new text goes to a temporary file beside it, which is then renamed
// over it, so that the file is always either the old text or the new one.
#pragma once

#include <cstdio>
#include <functional>
#include <span>
#include <string>

namespace corvinet {

// How a replacement ended.
enum class ReplaceResult {
  kReplaced,         // the file holds the new text
  kNotARegularFile,  // the path names something else than a file; nothing was done
  kCannotCreate,     // the temporary file could not be created
  kWriteFailed,      // writing the temporary file failed; it was removed
  kCannotRename,     // the rename failed; the temporary file was removed
  kRefused,          // the check of the temporary file refused it; it was removed
};

// A check of the written temporary file (its path) before it replaces the file.
using ReplacementCheck = std::function<bool(const std::string& temporary)>;

// The temporary name used beside `path`.
std::string TemporaryNameOf(const std::string& path);

// Writes the body through `writeBody` (false when its writing failed) into the
// temporary file and, when `check` (if given) accepts it, renames it over
// `path`. On any failure or refusal the file at `path` is as it was and no
// temporary file remains. A replaced file keeps its permissions.
ReplaceResult ReplaceFile(const std::string& path, const std::function<bool(std::FILE*)>& writeBody,
                          const ReplacementCheck& check = {});

// The same with the records `lines`, each followed by a line end.
ReplaceResult ReplaceFileLines(const std::string& path, std::span<const std::string> lines,
                               const ReplacementCheck& check = {});

}  // namespace corvinet
