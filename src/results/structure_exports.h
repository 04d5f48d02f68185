// The refined structure of a phase in the input forms of outside programs: the Schakal and
// STRUPLO plot files (.sch), the SHELX file (.ins), the map template (.inp) and the Fourier
// reflections (.fou).
#pragma once

#include <string>
#include <vector>

#include "records/job.h"

namespace corvinet {

// The lines of the .sch file of phase f, in pattern ip's cell: Schakal for Jvi 1, STRUPLO for 2.
std::vector<std::string> StructurePlotLines(const Job& job, int ip, int f);

// The lines of the SHELX file of the phases of pattern ip.
std::vector<std::string> ShelxLines(const Job& job, int ip);

// The lines of the map-program template of pattern ip (|JFOU| 3 or 4); `fourierName` and
// `binaryName` are the files it names.
std::vector<std::string> FourierTemplateLines(const Job& job, int ip,
                                              const std::string& fourierName,
                                              const std::string& binaryName);

// One reflection as the Fourier file gives it.
struct FourierRow {
  int h = 0, k = 0, l = 0;
  float Fobs = 0.0f, Fcalc = 0.0f;
  float sigmaF = 0.0f;       // from the counting statistics of Iobs
  float A = 0.0f, B = 0.0f;  // real and imaginary parts of the calculated structure factor
  float phase = 0.0f;        // of the calculated structure factor, degrees
};

// The row of the .fou file for |JFOU|: 1 and 2 h k l Fobs sigma (the SHELX HKLF 3 layout),
// 3 h k l Fobs Fcalc phase, 4 h k l A B Fobs.
std::string FourierFileRow(int jfou, const FourierRow& row);

}  // namespace corvinet
