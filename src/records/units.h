// Logical unit numbers of the file set: one number for each kind of open file.
#pragma once

namespace corvinet {

// Logical unit numbers of the file set.
namespace Unit {
constexpr int Control = 1;
constexpr int Rpa = 2;
constexpr int Sym = 3;
constexpr int Data = 4;
constexpr int Console = 6;
constexpr int Out = 7;
constexpr int Sum = 8;
constexpr int Fourier = 9;
constexpr int HklOut = 10;
constexpr int Sav = 11;
constexpr int Background = 12;
constexpr int Resolution = 13;
constexpr int Simulated = 14;
constexpr int HklIn = 15;
constexpr int HklBack = 16;
constexpr int Profile = 17;
constexpr int Schakal = 18;
constexpr int NewControl = 19;
constexpr int Shelx = 21;
constexpr int Atoms = 22;
constexpr int PhasePattern = 23;
constexpr int Shape = 24;
constexpr int Corrections = 25;
constexpr int IntensitiesOut = 26;
constexpr int Cif = 27;
constexpr int Json = 28;
constexpr int DirMemory = 33;
constexpr int CyclicLog = 34;
constexpr int Count = 40;
}  // namespace Unit

}  // namespace corvinet
