// The JSON file of a run: what a script needs to know of its end and of its results.
#include "results/run_json.h"

#include <cmath>
#include <cstdio>

#include "format/text.h"
#include "io/file_set.h"
#include "refine/parameter_names.h"
#include "refine/reliability.h"
#include "results/phase_fractions.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr const char* kProgramVersion = "0.3";

std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
      out += escaped;
    } else {
      out += c;
    }
  }
  return out + "\"";
}

// A number as JSON has it: non-finite values are null.
std::string Number(double value) {
  if (!std::isfinite(value)) return "null";
  char text[32];
  std::snprintf(text, sizeof text, "%.8g", value);
  return text;
}

std::string Field(const std::string& key, const std::string& value) {
  return Quoted(key) + ": " + value;
}

std::string Joined(const std::vector<std::string>& items, const std::string& indent) {
  std::string out;
  for (std::size_t i = 0; i < items.size(); ++i) {
    out += indent + items[i] + (i + 1 < items.size() ? ",\n" : "\n");
  }
  return out;
}

std::string Object(const std::vector<std::string>& fields, const std::string& indent) {
  return "{\n" + Joined(fields, indent + "  ") + indent + "}";
}

std::string Patterns(const Job& job) {
  std::vector<std::string> items;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    const ReliabilityFactors& a = job.reliability.pattern[ip].setA;
    const ReliabilityFactors& b = job.reliability.pattern[ip].setB;
    items.push_back(Object(
        {Field("number", std::to_string(ip)), Field("points", std::to_string(a.N)),
         Field("Rp", Number(a.Rp)), Field("Rwp", Number(a.Rwp)), Field("Rexp", Number(a.Rexp)),
         Field("chi2", Number(a.Chi2)), Field("conventional_Rp", Number(a.conventionalRp)),
         Field("conventional_Rwp", Number(a.conventionalRwp)),
         Field("bragg_points_Rwp", Number(b.Rwp)), Field("durbin_watson", Number(a.DwStat))},
        "    "));
  }
  return "[\n" + Joined(items, "    ") + "  ]";
}

std::string Phases(const Job& job) {
  std::vector<std::string> items;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    const PhaseFractions fractions = ComputePhaseFractions(job, ip);
    for (int f = 1; f <= job.run.NPHASE; ++f) {
      if (job.phases[f].pat[ip].Contribution == 0) continue;
      const bool weighed = HasStructure(job.phases[f]) && fractions.ATZ[f] != 0.0f;
      items.push_back(
          Object({Field("number", std::to_string(f)),
                  Field("name", Quoted(TrimmedCopy(job.phases[f].PhaseTitle))),
                  Field("pattern", std::to_string(ip)),
                  Field("bragg_R", Number(job.reliability.pattern[ip].braggR[f])),
                  Field("RF", Number(job.reliability.pattern[ip].rfFactor[f])),
                  Field("fraction_percent", weighed ? Number(fractions.VolumeFraction[f]) : "null"),
                  Field("fraction_sigma", weighed ? Number(fractions.FractionSigma[f]) : "null")},
                 "    "));
    }
  }
  return "[\n" + Joined(items, "    ") + "  ]";
}

std::string Parameters(const Job& job) {
  std::vector<std::string> items;
  const int fitted = FittedCount(job);
  for (int L = 1; L <= fitted && L <= job.refinement.normal.A.rows(); ++L) {
    const ParameterHolder holder = ParameterHolderOf(job, L);
    const double sigma = holder.sigma >= 0.0f
                             ? holder.sigma
                             : std::sqrt(std::fabs(double(job.refinement.normal.A(L, L))));
    items.push_back(Object({Field("number", std::to_string(L)), Field("name", Quoted(holder.name)),
                            Field("value", Number(holder.value)), Field("sigma", Number(sigma)),
                            Field("shift", Number(job.refinement.LastShift[L]))},
                           "    "));
  }
  return "[\n" + Joined(items, "    ") + "  ]";
}

}  // namespace

std::string RunJsonText(const Job& job, const RunEnd& end) {
  const RefinementState& s = job.refinement;
  const std::vector<std::string> fields = {
      Field("program", Quoted("Corvinet")), Field("version", Quoted(kProgramVersion)),
      Field("job", Quoted(TrimmedCopy(job.driver.PcrCode))),
      Field("title", Quoted(TrimmedCopy(job.run.Title))),
      Field("exit_status", std::to_string(end.exitStatus)), Field("reason", Quoted(end.reason)),
      Field("cycles_run", std::to_string(s.CycleNumber)),
      Field("converged", s.EndMarker == kConvergedEndMarker ? "true" : "false"),
      Field("refined_parameters", std::to_string(FittedCount(job))),
      // After a stop on an error the records may hold what the stop refused: no results then.
      Field("patterns", end.exitStatus == 0 ? Patterns(job) : "[]"),
      Field("phases", end.exitStatus == 0 ? Phases(job) : "[]"),
      Field("parameters", end.exitStatus == 0 ? Parameters(job) : "[]")};
  return Object(fields, "") + "\n";
}

void WriteRunJson(Job& job, const RunEnd& end) {
  OpenFiles(job, FileKind::kJson, 0, 0);
  std::string text = RunJsonText(job, end);
  if (!text.empty() && text.back() == '\n') text.pop_back();
  WriteLine(job, Unit::Json, text);
  CloseUnit(job.files.units[Unit::Json]);
}

}  // namespace corvinet
