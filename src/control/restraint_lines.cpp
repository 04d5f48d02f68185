// Reading and echo of the distance and moment restraints of a phase.
#include "control/restraint_lines.h"

#include <cstdlib>

#include "crystal/rotation_table.h"
#include "crystal/symmetry_texts.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/field_range.h"
#include "io/field_reader.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr float kSmallestSigma = 1.0e-8f;
constexpr float kSigmaOfZero = 0.001f;

void ReadDistance(Job& job, int k, int n) {
  DistanceRestraint& d = job.phases[k].restraints.distances[n];
  const FieldLine line =
      ReadFieldLine(job, Unit::Control, "44ifffff", job.LINE,
                    {&d.Atom1, &d.Atom2, &d.ITnum, &d.T[1], &d.T[2], &d.T[3], &d.Dist, &d.Sigma});
  // The operation names a row of the rotation table, with its sign for the inversion.
  if (d.ITnum == 0) StopOnField(job, line, 3, " => The operation ITnum may not be 0");
  CheckIntegerField(job, line, 3, "ITnum", d.ITnum, -kRotationTableSize, kRotationTableSize);
  d.Atom1 = TrimmedCopy(d.Atom1);
  d.Atom2 = TrimmedCopy(d.Atom2);
  d.Sigma = RestraintSigma(d.Sigma);
  d.Dcalc = 0.0f;
  WriteReports(job, Fmt("(A,A,A,A,A,F8.4,A,F8.4)", "    Distance between ", d.Atom1, " and ",
                        d.Atom2, " is ", d.Dist, " with standard error: ", d.Sigma));
}

void ReadDistances(Job& job, int k) {
  const Phase& ph = job.phases[k];
  WriteReports(job, Fmt("(A,I2)", " => Constraints on distances for phase", k));
  for (int n = 1; n <= ph.Dis; ++n) ReadDistance(job, k, n);
  WriteReports(job, " -> The following operation will be applied to the second atom:");
  WriteReports(job, "    ITnum  Rotation part       Associated Translation");
  for (int n = 1; n <= ph.Dis; ++n) {
    const DistanceRestraint& d = ph.restraints.distances[n];
    WriteReports(job, RestraintOperationLine(d.ITnum, d.T));
  }
  WriteReports(job, "    (See output file *.OUT for symmetry details)");
}

void ReadMoments(Job& job, int k) {
  Phase& ph = job.phases[k];
  WriteReports(job, Fmt("(A,I2)", " => Constraints on magnetic moments for phase", k));
  for (int n = 1; n <= ph.Mom; ++n) {
    MomentRestraint& m = ph.restraints.moments[n];
    ReadFieldLine(job, Unit::Control, "2ff", job.LINE, {&m.MomentAtom, &m.Moment, &m.MomentSigma});
    m.MomentAtom = TrimmedCopy(m.MomentAtom);
    m.MomentSigma = RestraintSigma(m.MomentSigma);
    WriteReports(job, Fmt("(A,A,A,F8.4,A,F8.4)", "    Moment of ", m.MomentAtom, " is ", m.Moment,
                          " with standard error: ", m.MomentSigma));
  }
}

}  // namespace

float RestraintSigma(float typed) {
  return typed < kSmallestSigma ? kSigmaOfZero : typed;
}

std::string RestraintOperationLine(int ITnum, const Table1<float, 3>& T) {
  return Fmt("(A,I2,A)", "     (", SymbolTableIndex(ITnum), ") ") + RotationText(ITnum) +
         Fmt("(A,F7.4,A,F7.4,A,F7.4,A)", " + {", T[1], ",", T[2], ",", T[3], "}");
}

void ReadRestraints(Job& job, int k) {
  const Phase& ph = job.phases[k];
  if (ph.Dis != 0) ReadDistances(job, k);
  if (ph.Mom != 0) ReadMoments(job, k);
}

}  // namespace corvinet
