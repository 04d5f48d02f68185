// The banner of the program on the console and at the head of the report and the summary.
#include "run/banner.h"

#include <string>

#include "surface/console.h"

namespace corvinet {

void WriteConsoleBanner(Job& job) {
  ConsoleLine(job, std::string("   ") + kStarLine);
  ConsoleLine(job, std::string("   ") + kVersionLine);
  ConsoleLine(job, std::string("   ") + kStarLine);
  ConsoleLine(job, "                 M U L T I -- P A T T E R N                ");
  ConsoleLine(job, "      Rietveld, Profile Matching & Integrated Intensity");
  ConsoleLine(job, "           Refinement of X-ray and/or Neutron Data");
  ConsoleLine(job, "              (Multi_Pattern: Windows-version)");
  ConsoleLine(job, "");
}

void WriteReportBanner(Job& job) {
  WriteReports(job, "");
  WriteReports(job, "");
  WriteReports(job, std::string("        ") + kStarLine);
  WriteReports(job, std::string("        ") + kVersionLine);
  WriteReports(job, std::string("        ") + kStarLine);
  WriteReports(job, "                      M U L T I -- P A T T E R N                ");
  WriteReports(job, "           Rietveld, Profile Matching & Integrated Intensity");
  WriteReports(job, "                Refinement of X-ray and/or Neutron Data");
  WriteReports(job, "");
  WriteReports(job, "");
}

}  // namespace corvinet
