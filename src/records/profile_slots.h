// The profile slots PAR[1..] of a phase in a pattern: their numbers, report names and families.
#pragma once

#include "records/parameter_family.h"
#include "records/profile_code.h"

namespace corvinet {

// Slots of PAR that the program reads by number. With |Irf| 4 (integrated
// intensities) slots 1..5 and 12 hold the scales Sc1..Sc6 and 13..19 the
// extinction terms instead.
namespace ProfileSlot {
constexpr int Scale = 1;
constexpr int Bov = 2;  // overall temperature factor
constexpr int U = 3;
constexpr int V = 4;
constexpr int W = 5;
constexpr int FirstCell = 6;  // a, b, c, alpha, beta, gamma as read; A..F of the metric in a run
constexpr int LastCell = 11;
constexpr int Pref1 = 12;  // Sc6 with |Irf| 4
constexpr int Pref2 = 13;
constexpr int Asy1 = 14;
constexpr int X = 15;
constexpr int Y = 16;
constexpr int Shape1 = 17;  // the extinction with time of flight
constexpr int Str1 = 18, Str2 = 19, Str3 = 20, Str4 = 21, Str5 = 22;  // strain terms
constexpr int Str6 = 23, Str7 = 24, Str8 = 25, Str9 = 26, Str10 = 27;
constexpr int GauSiz = 28;
constexpr int LorSiz = 29;
constexpr int Size2 = 30, Size3 = 31, Size4 = 32, Size5 = 33, Size6 = 34;  // generalized size
constexpr int Asy2 = 35;
constexpr int Asy3 = 36;
constexpr int Asy4 = 37;
constexpr int AsyP = 38;  // hkl-dependent asymmetry
constexpr int Shift1 = 39;
constexpr int Shift2 = 40;
constexpr int Shp1 = 41;
constexpr int Shp2 = 42;
constexpr int U2 = 43;  // U, V, W of the second wavelength
constexpr int V2 = 44;
constexpr int W2 = 45;
constexpr int Ur = 46;  // right side of the split pseudo-Voigt
constexpr int Vr = 47;
constexpr int Wr = 48;
constexpr int Etar = 49;
constexpr int Xr = 50;
// Spherical-harmonics size coefficients.
constexpr int SizeSH1 = 51, SizeSH2 = 52, SizeSH3 = 53, SizeSH4 = 54, SizeSH5 = 55;
constexpr int SizeSH6 = 56, SizeSH7 = 57, SizeSH8 = 58, SizeSH9 = 59;
constexpr int Last = SizeSH9;  // last slot of the table; further parameters follow
}  // namespace ProfileSlot

// The same slots of a phase with |Irf| 4: scales and extinction terms.
namespace IntegratedSlot {
constexpr int Sc1 = 1, Sc2 = 2, Sc3 = 3, Sc4 = 4, Sc5 = 5, Sc6 = 12;
constexpr int Ext1 = 13, Ext2 = 14, Ext3 = 15, Ext4 = 16, Ext5 = 17, Ext6 = 18, Ext7 = 19;
}  // namespace IntegratedSlot

// One slot of the table.
struct ProfileSlotRow {
  int slot = 0;                    // number of the slot in PAR
  const char* name = "";           // report name for constant wavelength (and energy)
  const char* timeOfFlight = "";   // report name for time of flight
  Family family = kWidth;          // family of the parameter under most profile codes
  ProfileCode otherCode{};         // the code under which the family differs, if any
  Family otherFamily = kNoFamily;  // the family under otherCode
};

// The row of slot 1..ProfileSlot::Last; nullptr for any other number.
const ProfileSlotRow* ProfileSlotRowOf(int slot);

// The family of slot s for a peak of code `code`: that of the row, or
// kWidth past the table (further parameters broaden the peak).
Family ProfileSlotFamily(int slot, ProfileCode code);

}  // namespace corvinet
