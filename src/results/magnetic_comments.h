// The comments of the report on a conical magnetic phase: how its structure factor is formed and
// how its reflections are best generated.
#pragma once

#include <string>
#include <vector>

namespace corvinet {

// The lines for phase `phase` when its Jbt is 5, and none otherwise.
std::vector<std::string> ConicalComments(int phase, int Jbt);

}  // namespace corvinet
