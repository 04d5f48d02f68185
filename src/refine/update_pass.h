// The flags of one parameter-update pass and where its lines go.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "records/job.h"

namespace corvinet {

struct UpdatePass {
  int cycle = 0;
  bool lastPass = false;   // cycle = NCY, or the pass after a detected convergence
  bool converged = false;  // endMarker = 123
  bool writeOut = false;   // ISHOR = 0 or the last pass
  bool writeSum = false;   // the last pass
};

// The flags of the pass for a cycle and end marker.
UpdatePass MakeUpdatePass(const Job& job, int cycle, int endMarker);

// A report line: on the .out file when the pass writes it, on the .sum file in the last pass.
void WritePassLine(Job& job, const UpdatePass& pass, std::string_view line);
void WritePassLines(Job& job, const UpdatePass& pass, const std::vector<std::string>& lines);

// A clamp warning: on the console, and on the .out file when the pass writes it.
void WriteClampWarning(Job& job, const UpdatePass& pass, std::string_view line);

}  // namespace corvinet
