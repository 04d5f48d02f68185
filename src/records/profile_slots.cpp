// The table of the profile slots: report names for constant wavelength and time of flight, and
// the family of each slot.
#include "records/profile_slots.h"

#include <array>

namespace corvinet {

namespace {

// Row s - 1 describes slot s. The strain terms add to the square of the
// Gaussian widths; the size terms add to Y, which only the TCH profile reads. The cell slots are
// not reported by name: they print as Par006..Par011 like any slot without one.
constexpr std::array<ProfileSlotRow, ProfileSlot::Last> kRows = {{
    {1, "Scale", "Scale", kIntensity},
    {2, "Bov", "Bov", kIntensity},
    {3, "U", "Sig-2", kWidth, ProfileCode::kTchPseudoVoigt, kGaussWidth},
    {4, "V", "Sig-1", kWidth, ProfileCode::kTchPseudoVoigt, kGaussWidth},
    {5, "W", "Sig-0", kWidth, ProfileCode::kTchPseudoVoigt, kGaussWidth},
    {6, "Par006", "Par006", kBraggAngle},
    {7, "Par007", "Par007", kBraggAngle},
    {8, "Par008", "Par008", kBraggAngle},
    {9, "Par009", "Par009", kBraggAngle},
    {10, "Par010", "Par010", kBraggAngle},
    {11, "Par011", "Par011", kBraggAngle},
    {12, "Pref1", "Pref1", kIntensity},
    {13, "Pref2", "Pref2", kIntensity},
    {14, "Asy1", "alph0", kAsym1},
    {15, "X", "Xt", kShapeX},
    {16, "Y", "Yt", kShapeY},
    {17, "Shape1", "Extinc", kShape1},
    {18, "Str1", "Str1", kWidthSquare},
    {19, "Str2", "Str2", kWidthSquare},
    {20, "Str3", "Str3", kWidthSquare},
    {21, "Str4", "Str4", kWidthSquare},
    {22, "Str5", "Str5", kWidthSquare},
    {23, "Str6", "Str6", kWidthSquare},
    {24, "Str7", "Str7", kWidthSquare},
    {25, "Str8", "Str8", kWidthSquare},
    {26, "Str9", "Str9", kWidthSquare},
    {27, "Str10", "Str10", kWidthSquare},
    {28, "GauSiz", "Z1", kWidth, ProfileCode::kTchPseudoVoigt, kGaussWidth},
    {29, "LorSiz", "Z0", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {30, "Size2", "Size2", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {31, "Size3", "Size3", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {32, "Size4", "Size4", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {33, "Size5", "Size5", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {34, "Size6", "Size6", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {35, "Asy2", "beta0", kAsym2},
    {36, "Asy3", "alph1", kAsym3},
    {37, "Asy4", "beta1", kAsym4},
    {38, "AsyP", "AsyP", kWidth},
    {39, "Shift1", "Shift1", kPosition},
    {40, "Shift2", "Shift2", kPosition},
    {41, "Shp1", "Abs1", kShp1, ProfileCode::kSplitPseudoVoigt, kWidth},
    {42, "Shp2", "Abs2", kShp2, ProfileCode::kSplitPseudoVoigt, kWidthRight},
    {43, "U2", "U2", kWidth, ProfileCode::kTchPseudoVoigt, kGaussWidth},
    {44, "V2", "V2", kWidth, ProfileCode::kTchPseudoVoigt, kGaussWidth},
    {45, "W2", "W2", kWidth, ProfileCode::kTchPseudoVoigt, kGaussWidth},
    {46, "Ur", "Gam-2", kWidthRight},
    {47, "Vr", "Gam-1", kWidthRight},
    {48, "Wr", "Gam-0", kWidthRight},
    {49, "Etar", "LStr", kEtar},
    {50, "Xr", "LSiz", kXr},
    {51, "SizeSH1", "SizeSH1", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {52, "SizeSH2", "SizeSH2", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {53, "SizeSH3", "SizeSH3", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {54, "SizeSH4", "SizeSH4", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {55, "SizeSH5", "SizeSH5", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {56, "SizeSH6", "SizeSH6", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {57, "SizeSH7", "SizeSH7", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {58, "SizeSH8", "SizeSH8", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
    {59, "SizeSH9", "SizeSH9", kWidth, ProfileCode::kTchPseudoVoigt, kShapeY},
}};

}  // namespace

const ProfileSlotRow* ProfileSlotRowOf(int slot) {
  if (slot < 1 || slot > ProfileSlot::Last) return nullptr;
  return &kRows[static_cast<std::size_t>(slot - 1)];
}

Family ProfileSlotFamily(int slot, ProfileCode code) {
  const ProfileSlotRow* row = ProfileSlotRowOf(slot);
  if (row == nullptr) return kWidth;
  return row->otherFamily != kNoFamily && code == row->otherCode ? row->otherFamily : row->family;
}

}  // namespace corvinet
