// The slots on each line of the profile block of a phase, shared by its reader and its writer.
#pragma once

#include <array>

#include "records/profile_slots.h"

namespace corvinet::profile_layout {

namespace Slot = ProfileSlot;
namespace Integrated = IntegratedSlot;

// Scale, shape (extinction for time of flight), Bov and the first strain terms.
inline constexpr std::array<int, 6> kScaleLine = {Slot::Scale, Slot::Shape1, Slot::Bov,
                                                  Slot::Str1,  Slot::Str2,   Slot::Str3};
// U, V, W, X, Y and the two size terms.
inline constexpr std::array<int, 7> kWidthLine = {Slot::U, Slot::V,      Slot::W,     Slot::X,
                                                  Slot::Y, Slot::GauSiz, Slot::LorSiz};
// The right side of the split pseudo-Voigt; the Lorentzian terms of time of flight.
inline constexpr std::array<int, 5> kRightWidthLine = {Slot::Ur, Slot::Vr, Slot::Wr, Slot::Etar,
                                                       Slot::Xr};
// The cell, a..gamma as read.
inline constexpr std::array<int, 6> kCellLine = {Slot::FirstCell,     Slot::FirstCell + 1,
                                                 Slot::FirstCell + 2, Slot::FirstCell + 3,
                                                 Slot::FirstCell + 4, Slot::LastCell};
// Preferred orientation and asymmetry.
inline constexpr std::array<int, 6> kOrientationLine = {Slot::Pref1, Slot::Pref2, Slot::Asy1,
                                                        Slot::Asy2,  Slot::Asy3,  Slot::Asy4};
// The line after the cell of an |Irf| 4 phase: slots kept but not used.
inline constexpr std::array<int, 5> kUnusedLine = {Slot::Asy2, Slot::Asy3, Slot::Asy4, Slot::AsyP,
                                                   Slot::Shift1};
// U, V, W of the second wavelength.
inline constexpr std::array<int, 3> kSecondWidthLine = {Slot::U2, Slot::V2, Slot::W2};
// The two further shape parameters.
inline constexpr std::array<int, 2> kShapePair = {Slot::Shp1, Slot::Shp2};
// The five strain terms of strain models above 8.
inline constexpr std::array<int, 5> kExtraStrain = {Slot::Str4, Slot::Str5, Slot::Str6, Slot::Str7,
                                                    Slot::Str8};
// Generalized strain, on two lines of five.
inline constexpr std::array<int, 5> kStrainFirst = {Slot::Str1, Slot::Str2, Slot::Str3, Slot::Str4,
                                                    Slot::Str5};
inline constexpr std::array<int, 5> kStrainSecond = {Slot::Str6, Slot::Str7, Slot::Str8, Slot::Str9,
                                                     Slot::Str10};
// All ten strain terms.
inline constexpr std::array<int, 10> kStrainTerms = {Slot::Str1, Slot::Str2, Slot::Str3, Slot::Str4,
                                                     Slot::Str5, Slot::Str6, Slot::Str7, Slot::Str8,
                                                     Slot::Str9, Slot::Str10};
// Generalized size.
inline constexpr std::array<int, 6> kSizeLine = {Slot::LorSiz, Slot::Size2, Slot::Size3,
                                                 Slot::Size4,  Slot::Size5, Slot::Size6};
// Spherical-harmonics size coefficients, on a line of six and one of three.
inline constexpr std::array<int, 6> kHarmonicsFirst = {Slot::SizeSH1, Slot::SizeSH2, Slot::SizeSH3,
                                                       Slot::SizeSH4, Slot::SizeSH5, Slot::SizeSH6};
inline constexpr std::array<int, 3> kHarmonicsSecond = {Slot::SizeSH7, Slot::SizeSH8,
                                                        Slot::SizeSH9};
// Scales and extinction of an |Irf| 4 phase.
inline constexpr std::array<int, 6> kIntegratedScales = {Integrated::Sc1, Integrated::Sc2,
                                                         Integrated::Sc3, Integrated::Sc4,
                                                         Integrated::Sc5, Integrated::Sc6};
inline constexpr std::array<int, 7> kIntegratedExtinction = {
    Integrated::Ext1, Integrated::Ext2, Integrated::Ext3, Integrated::Ext4,
    Integrated::Ext5, Integrated::Ext6, Integrated::Ext7};

}  // namespace corvinet::profile_layout
