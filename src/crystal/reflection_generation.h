// The reflection list of a phase in a pattern: generated, read from a file, sorted.
#pragma once

#include "crystal/reflection_slots.h"
#include "records/job.h"
#include "records/reflection.h"

namespace corvinet {

// Sort selector of SortReflections for the whole pattern, all phases.
constexpr int kWholePattern = 1000;

// Index limits of a generation for s²max = (sin theta/lambda)²max:
// trunc(factor · a · sqrt(s²max)), factor 2 (a/dmin), or 4 when the phase has
// propagation vectors; cut to 127.
struct IndexLimits {
  int hMax = 0, kMax = 0, lMax = 0;
  bool cut = false;  // a limit was above what the key holds
};
IndexLimits GenerationIndexLimits(const Table1<float, 6>& coefficients, double sHigh,
                                  bool withVectors);

// Whether the selection rule of PREF lets (h, k, l) through; used when Pref1
// (PAR[ProfileSlot::Pref1]) of the phase in the pattern is above 99.
bool SelectedByPreferredVector(const Table1<float, 3>& pref, int h, int k, int l);

// Generates the reflections of phase k in pattern ip over the wedge of its
// Laue class, with the satellites of its propagation vectors, into the table
// of the pattern; writes the report of the generation. Returns the slots taken.
int GenerateReflections(Job& job, int k, int ip, LorentzFactor lorentz, const HklShift& shift = {});

// Reads the reflections of phase k for pattern ip from its reflection file
// (Irf 1 to 3, also -2 and -3) and stores those inside the range.
int ReflectionsFromFile(Job& job, int k, int ip, LorentzFactor lorentz, const HklShift& shift = {});

// Sorts the block of `phase` (or the whole table for kWholePattern) by
// position, ascending and stable, by odd-even transposition of an index list;
// at most `passLimit` passes.
void SortReflections(ReflectionTable& table, int passLimit, int phase);

// The reflections of phase k in pattern ip, as the pattern block makes them:
// by Irf, generation or file; then the sort of the phase's block, and of the
// whole pattern after its last phase.
void MakeReflections(Job& job, int k, int ip, LorentzFactor lorentz);

}  // namespace corvinet
