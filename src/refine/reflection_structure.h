// The structure factor of a reflection: the nuclear and magnetic parts that its phase gives it,
// their derivatives, and the intensity slopes of a magnetic satellite in its vector.
#pragma once

#include "model/magnetic_structure_factor.h"
#include "records/cell_metric.h"
#include "records/job.h"
#include "records/reflection.h"
#include "refine/cycle_work.h"

namespace corvinet {

// Which structure factors a phase adds to a reflection: crystal phases the
// nuclear one, magnetic phases the magnetic one; a |Jbt| 10 phase the
// magnetic one on satellites, and on the other reflections the nuclear one
// and, when it has moment matrices and no vectors, the magnetic one.
struct StructureParts {
  bool nuclear = false;
  bool magnetic = false;
};
StructureParts PartsOf(const Phase& ph, const Reflection& r);

// The Cartesian-to-fractional matrix of the cell of a phase in one pattern,
// built in `metric`, for the objects that have a direction; null when the
// phase holds no object.
const Table2<double, 3, 3>* ObjectFrameOf(const PhasePattern& c, CellMetric& metric);

// F^2 of reflection r of `phase` in pattern ip at working vector h (h + k of
// a satellite), nuclear and magnetic parts added with no interference term;
// their derivatives go to work.dF2[1..fitted]. dF2dH receives the slope of
// the magnetic part in h when the reflection's vector has refined components.
float ReflectionStructureF2(Job& job, CycleWork& work, int ip, int phase, const RealVector& h,
                            Reflection& r, int fitted, RealVector& dF2dH);

// The same into a working store of its own and dF2[0..fitted), so that
// reflections may be computed side by side; every phase has its structure
// factor now, and it returns true.
bool StructureF2Into(const Job& job, StructureScratch& scratch, float* dF2, int ip, int phase,
                     const RealVector& h, Reflection& r, int fitted, RealVector& dF2dH, float& F2);

// d ln(F2)/dk of a magnetic satellite for each refined component of its
// vector, from dF2/dH: the component moves the phases, the projection and
// (sin(theta)/lambda)^2 alike. Kept on the ring entry beside the position row.
void VectorIntensitySlopes(const Phase& ph, const Reflection& r, const RealVector& dF2dH,
                           int fitted, RingEntry& entry);

}  // namespace corvinet
