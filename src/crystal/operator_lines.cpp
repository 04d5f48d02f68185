// Operator lines of the control file: count line, operators, magnetic matrices, signs.
#include <cstdlib>
#include <string>
#include <vector>

#include "crystal/operator_text.h"
#include "crystal/phase_symmetry.h"
#include "crystal/space_group_symbol.h"
#include "crystal/symmetry_operators.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/field_reader.h"
#include "surface/console.h"

namespace corvinet {
namespace {

constexpr std::size_t kOperatorTextLength = 80;
constexpr int kOperatorTextColumn = 6;

void ReadCountLine(Job& job, Phase& ph) {
  SpaceGroup& g = ph.group;
  ReadMaskedLine(job, Unit::Control, "iiii", job.LINE, {&g.NSYM, &g.ICENT, &g.LAUE, &g.NMAGM});
  if (!IsMagneticPhase(ph)) g.NMAGM = 0;
  if (g.NMAGM > DimensionLimits::NMAGM) {
    const std::string text = Fmt("(A,I4,A,I2)", " => Magnetic matrices per operator:", g.NMAGM,
                                 "  at most ", DimensionLimits::NMAGM);
    WriteLine(job, Unit::Out, text);
    ConsoleLine(job, text);
    StopBox(job, " Too many magnetic rotation matrices ");
  }
  if (g.NSYM > SpaceGroupLimits::kOperators) {
    ConsoleLine(job, Fmt("(A,I4,A,I3)", " => Symmetry operators:", g.NSYM, "  at most ",
                         SpaceGroupLimits::kOperators));
    StopBox(job, " Too many symmetry operators ");
  }
  g.Isy = ph.Isy;
  g.isAcentric = g.ICENT == 1 ? 1 : 0;
  g.multiplicityFactor = 1;
  LatticeFromSymbol(ph.SpaceGroupSymbol, g);
}

// The next text line of the control file without "!" in its first column.
std::string ReadTextLine(Job& job) {
  std::string line;
  do {
    if (ReadRecord(job.files.units[Unit::Control], line, kOperatorTextLength) != RecordRead::Ok) {
      ConsoleLine(job, Fmt("(A,I6)", " Please check your *.PCR file at line: ", job.LINE));
      StopBox(job, " End of file reading symmetry operators ");
    }
    ++job.LINE;
  } while (!line.empty() && line[0] == '!');
  return line;
}

// The rows of IROT for the operators of a class: 25..36 for the trigonal and
// hexagonal classes on hexagonal axes, 1..24 for the others and for the
// classes on rhombohedral axes (6 and 7), whose three-fold runs along [111].
RotationRange OperatorRows(int laue) {
  return RotationRangeOfSymbol(laue);
}

void StoreOperator(Job& job, SpaceGroup& g, int n, const IntMatrix3& rotation,
                   const Table1<float, 3>& translation, const std::string& text) {
  const RotationRange range = OperatorRows(g.LAUE);
  ShowSymmetryMessages(job, MatchRotation(rotation, range.first, range.last, g.isl[n]));
  for (int axis = 1; axis <= 3; ++axis) g.translation(axis, n) = translation[axis];
  g.operatorText[n] = CutText(text, kOperatorTextLength);
}

void StoreMagneticMatrix(Job& job, SpaceGroup& g, int m, int n, const IntMatrix3& rotation,
                         float phase) {
  const RotationRange range = OperatorRows(g.LAUE);
  ShowSymmetryMessages(job,
                       MatchRotation(rotation, range.first, range.last, g.magneticRotation(m, n)));
  g.magneticPhase(m, n) = phase;
}

void ReadNumericOperator(Job& job, SpaceGroup& g, int n) {
  IntMatrix3 r;
  Table1<float, 3> t;
  std::string line;
  ReadMaskedLine(job, Unit::Control, "iiifiiifiiif", job.LINE,
                 {&r(1, 1), &r(1, 2), &r(1, 3), &t[1], &r(2, 1), &r(2, 2), &r(2, 3), &t[2],
                  &r(3, 1), &r(3, 2), &r(3, 3), &t[3]},
                 &line);
  StoreOperator(job, g, n, r, t, line);
  for (int m = 1; m <= g.NMAGM; ++m) {
    IntMatrix3 mr;
    float phase = 0.0f;
    ReadMaskedLine(job, Unit::Control, "iiiiiiiiif", job.LINE,
                   {&mr(1, 1), &mr(1, 2), &mr(1, 3), &mr(2, 1), &mr(2, 2), &mr(2, 3), &mr(3, 1),
                    &mr(3, 2), &mr(3, 3), &phase});
    StoreMagneticMatrix(job, g, m, n, mr, phase);
  }
}

void ReadTextOperator(Job& job, SpaceGroup& g, int n) {
  const std::string line = ReadTextLine(job);
  IntMatrix3 r;
  Table1<float, 3> t;
  ShowSymmetryMessages(job, ParseOperatorText(line, kOperatorTextColumn, r, t,
                                              static_cast<int>(kOperatorTextLength)));
  StoreOperator(job, g, n, r, t, line);
  for (int m = 1; m <= g.NMAGM; ++m) {
    const std::string magnetic = ReadTextLine(job);
    IntMatrix3 mr;
    float phase = 0.0f;
    ShowSymmetryMessages(job, ParseMagneticText(magnetic, mr, phase));
    StoreMagneticMatrix(job, g, m, n, mr, phase);
  }
}

// The time-reversal signs of the operators of a symbol, and the extra entry
// that tells whether the magnetic structure is centric.
void ReadTimeReversalSigns(Job& job, Phase& ph) {
  SpaceGroup& g = ph.group;
  const int count = g.ICENT == 1 ? g.NSYM : g.NSYM + 1;
  std::vector<ReadTarget> targets;
  for (int n = 1; n <= count; ++n) targets.emplace_back(&g.magneticSign[n]);
  ReadMaskedLineList(job, Unit::Control, std::string(static_cast<std::size_t>(count), 'i'),
                     job.LINE, targets);
  MagneticRotationsFromSigns(g);
  if (g.ICENT == 1) return;
  const std::string_view centricity = MagneticCentricityText(g.magneticSign[g.NSYM + 1]);
  if (!centricity.empty()) WriteLine(job, Unit::Out, centricity);
}

}  // namespace

void ReadOperatorLines(Job& job, int k) {
  Phase& ph = job.phases[k];
  if (ph.Isy == 0) {
    if (std::abs(ph.Jbt) == 10 && ph.magneticSymmetry == 1) ReadTimeReversalSigns(job, ph);
    return;
  }
  ReadCountLine(job, ph);
  for (int n = 1; n <= ph.group.NSYM; ++n) {
    if (ph.Isy > 0) {
      ReadNumericOperator(job, ph.group, n);
    } else {
      ReadTextOperator(job, ph.group, n);
    }
  }
}

}  // namespace corvinet
