// The profile functions of a pattern or a phase (NPROF, Npr), stored as the typed number plus 1.
#pragma once

namespace corvinet {

// A profile function as stored. A value outside the list is kept as read: the
// peak setup refuses it as an illegal profile request.
enum class ProfileCode : int {
  kGaussian = 1,
  kLorentzian = 2,
  kModifiedLorentzian1 = 3,
  kModifiedLorentzian2 = 4,
  kTripledPseudoVoigt = 5,  // three pseudo-Voigt peaks, D = Shp1 tan(theta)
  kPseudoVoigt = 6,
  kPearsonVII = 7,
  kTchPseudoVoigt = 8,  // Thompson-Cox-Hastings pseudo-Voigt
  kNumerical = 9,       // numerical profile of the .shp file
  kTimeOfFlight1 = 10,  // time of flight: double exponential with pseudo-Voigt
  kTimeOfFlight2 = 11,
  kSplitPseudoVoigt = 12,  // own width and mixing on each side of the peak
  kAxialDivergence = 13,   // pseudo-Voigt with the axial-divergence asymmetry
};

// The code of a stored number (the control file's number plus 1).
constexpr ProfileCode ProfileCodeOf(int stored) {
  return static_cast<ProfileCode>(stored);
}

// The stored number of a code.
constexpr int StoredNumber(ProfileCode code) {
  return static_cast<int>(code);
}

// The code of the number as typed in the control file.
constexpr ProfileCode ProfileCodeFromTyped(int typed) {
  return ProfileCodeOf(typed + 1);
}

// The number the control file writes for a code.
constexpr int TypedNumber(ProfileCode code) {
  return StoredNumber(code) - 1;
}

// Codes whose profile block has the line of Shp1 and Shp2: the tripled
// pseudo-Voigt and every code from the numerical profile on.
constexpr bool HasShapeLine(ProfileCode code) {
  return code == ProfileCode::kTripledPseudoVoigt ||
         StoredNumber(code) >= StoredNumber(ProfileCode::kNumerical);
}

}  // namespace corvinet
