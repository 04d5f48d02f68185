// The flags of one parameter-update pass and where its lines go.
#include "refine/update_pass.h"

#include "refine/reliability.h"
#include "surface/console.h"

namespace corvinet {

UpdatePass MakeUpdatePass(const Job& job, int cycle, int endMarker) {
  UpdatePass pass;
  pass.cycle = cycle;
  pass.converged = endMarker == kConvergedEndMarker;
  pass.lastPass = cycle == job.run.NCY || pass.converged;
  pass.writeOut = job.run.ISHOR == 0 || pass.lastPass;
  pass.writeSum = pass.lastPass;
  return pass;
}

void WritePassLine(Job& job, const UpdatePass& pass, std::string_view line) {
  if (pass.writeOut) WriteLine(job, Unit::Out, line);
  if (pass.writeSum) WriteLine(job, Unit::Sum, line);
}

void WritePassLines(Job& job, const UpdatePass& pass, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) WritePassLine(job, pass, line);
}

void WriteClampWarning(Job& job, const UpdatePass& pass, std::string_view line) {
  ConsoleLine(job, line);
  if (pass.writeOut) WriteLine(job, Unit::Out, line);
}

}  // namespace corvinet
