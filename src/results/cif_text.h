// Pieces of CIF text: numbers with their standard uncertainties, quoted strings, symmetry
// operators in the x,y,z form.
#pragma once

#include <string>

#include "crystal/symmetry_operators.h"

namespace corvinet {

// A number with its standard uncertainty in parentheses, the uncertainty written with two
// digits when they are 19 or less and with one otherwise, the number to the same last place
// ("8.47880(12)", "0.1879(2)"). Without an uncertainty (zero or negative), the number to
// `plainDigits` significant digits.
std::string CifNumber(double value, double sigma, int plainDigits = 6);

// A text value: bare when it is one word that cannot be taken for anything else, otherwise in
// single quotes (or double quotes when it holds a single quote).
std::string CifText(const std::string& text);

// The x,y,z form of an operator x' = R x + t, with fractions of twelfths ("-x+1/2,y,-z").
std::string OperatorXyz(const SymmetryOperator& op);

}  // namespace corvinet
