// The keywords of a UXD header: the table of each keyword with what it sets in the experiment
// block.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace corvinet {

// The experiment block of the header, for the report.
struct UxdExperiment {
  std::string date, fileName, sample, runTime, anode, stepMode, rotation;
  float wave1 = 0, wave2 = 0, wave3 = 0, waveRatio = 0;
  float stepTime = 0, step = 0, start = 0, twoTheta = 0, omega = 0, chi = 0, phi = 0;
  float tr1 = 0, tr2 = 0, kiloVolt = 0, milliAmpere = 0, highVoltage = 0, gain = 0;
  float lowerLevel = 0, upperLevel = 0, temperature = 0;
  bool stepGiven = false, startGiven = false, twoThetaGiven = false, temperatureGiven = false;
};

// The value of a keyword line as an action takes it: its text, and its
// reading as a number (`required` numbers stop the reading when they are bad).
struct UxdValue {
  std::string text;
  std::function<float(bool required)> number;
};

// What a keyword does with its value; none for keywords recognised but not used.
using UxdAction = void (*)(UxdExperiment&, const UxdValue&);

struct UxdKeyword {
  const char* word;  // the start of the keyword, upper case
  UxdAction action;
};

// The entry of the first keyword (longer words first) that opens `text`, in
// any case; nullptr for a line no keyword opens.
const UxdKeyword* FindUxdKeyword(std::string_view text);

}  // namespace corvinet
