// The banner of the program on the console and at the head of the report and the summary.
#pragma once

#include "records/job.h"

namespace corvinet {

inline constexpr const char* kStarLine = "********************************************************";
inline constexpr const char* kVersionLine =
    "** PROGRAM CORVINET.99 (Version 0.3  - Apr99-QMV TRX) **";

// The banner on the console at the start of a job.
void WriteConsoleBanner(Job& job);

// The banner at the head of the report and the summary of a run.
void WriteReportBanner(Job& job);

}  // namespace corvinet
