// The keywords of a UXD header: the table of each keyword with what it sets in the experiment
// block.
#include "observations/uxd_keywords.h"

#include <iterator>

#include "io/field_reader.h"

namespace corvinet {

namespace {

using E = UxdExperiment;
using V = UxdValue;

void SetStep(E& e, const V& v) {
  e.step = v.number(true);
  e.stepGiven = true;
}

// Longer words first, so that STEPTIME is not taken for STE nor COUNTS for COU.
// Keywords without an action are recognised, but nothing the reader or its report uses.
constexpr UxdKeyword kKeywords[] = {
    {"STEPTIME", [](E& e, const V& v) { e.stepTime = v.number(false); }},
    {"STEPSIZE", SetStep},
    {"STEPMODE", [](E& e, const V& v) { e.stepMode = v.text; }},
    {"STEPCOUN", nullptr},
    {"COUNTS", nullptr},
    {"FIL", [](E& e, const V& v) { e.fileName = v.text; }},
    {"SAM", [](E& e, const V& v) { e.sample = v.text; }},
    {"SA", [](E& e, const V& v) { e.sample = v.text; }},
    {"DAT", [](E& e, const V& v) { e.date = v.text; }},
    {"RUN", [](E& e, const V& v) { e.runTime = v.text; }},
    {"WL1", [](E& e, const V& v) { e.wave1 = v.number(false); }},
    {"WL2", [](E& e, const V& v) { e.wave2 = v.number(false); }},
    {"WL3", [](E& e, const V& v) { e.wave3 = v.number(false); }},
    {"WLR", [](E& e, const V& v) { e.waveRatio = v.number(false); }},
    {"ANO", [](E& e, const V& v) { e.anode = v.text; }},
    {"DRI", nullptr},
    {"STE", SetStep},
    {"STA",
     [](E& e, const V& v) {
       e.start = v.number(true);
       e.startGiven = true;
     }},
    {"2TH",
     [](E& e, const V& v) {
       e.twoTheta = v.number(false);
       e.twoThetaGiven = true;
     }},
    {"THE", [](E& e, const V& v) { e.omega = v.number(false); }},
    {"KHI", [](E& e, const V& v) { e.chi = v.number(false); }},
    {"PHI", [](E& e, const V& v) { e.phi = v.number(false); }},
    {"X=", [](E& e, const V& v) { e.tr1 = v.number(false); }},
    {"Y=", [](E& e, const V& v) { e.tr2 = v.number(false); }},
    {"KV=", [](E& e, const V& v) { e.kiloVolt = v.number(false); }},
    {"MA=", [](E& e, const V& v) { e.milliAmpere = v.number(false); }},
    {"CHA", nullptr},
    {"HV=", [](E& e, const V& v) { e.highVoltage = v.number(false); }},
    {"GAI", [](E& e, const V& v) { e.gain = v.number(false); }},
    {"LLD", [](E& e, const V& v) { e.lowerLevel = v.number(false); }},
    {"ULD", [](E& e, const V& v) { e.upperLevel = v.number(false); }},
    {"ROT", [](E& e, const V& v) { e.rotation = v.text; }},
    {"COU", nullptr},
    {"DIV", nullptr},
    {"OSC", nullptr},
    {"TEM",
     [](E& e, const V& v) {
       e.temperature = v.number(false);
       e.temperatureGiven = true;
     }},
};

}  // namespace

const UxdKeyword* FindUxdKeyword(std::string_view text) {
  std::string upper(text);
  ToUpper(upper);
  for (const UxdKeyword& k : kKeywords) {
    if (upper.starts_with(k.word)) return &k;
  }
  return nullptr;
}

}  // namespace corvinet
