// The report of the table capacities that closes a run.
#include "results/dimension_report.h"

#include <vector>

#include "format/fortran_format.h"
#include "records/dimension_limits.h"
#include "records/reflection.h"
#include "surface/console.h"

namespace corvinet {
namespace {

struct LimitRow {
  const char* name;
  int value;
  const char* text;
};

// The array memory of the default capacities.
constexpr long long kDefaultArrayMemory = 7928230;

// The most the tables of the three chosen capacities add beyond their
// defaults: per point nine reals of each pattern and two order entries, per
// reflection a slot of each pattern, per parameter the square tables (a real
// and two doubles) and a row of the derivative ring.
long long ArrayMemory(const DimensionLimits& d) {
  const long long points = d.IDSZ - DimensionLimits::kDefaultIDSZ;
  const long long reflections = d.IRS - DimensionLimits::kDefaultIRS;
  const long long side = d.MSZ, defaultSide = DimensionLimits::kDefaultMSZ;
  const long long perPoint = DimensionLimits::NPATT * 9 * 4 + 2 * 4;
  const long long perReflection =
      DimensionLimits::NPATT * static_cast<long long>(sizeof(Reflection));
  const long long squares = 20 * (side * side - defaultSide * defaultSide);
  const long long ring = 4LL * DimensionLimits::NOV * (side - defaultSide);
  return kDefaultArrayMemory + points * perPoint + reflections * perReflection + squares + ring;
}

std::vector<LimitRow> LimitRows(const DimensionLimits& d) {
  return {
      {"NPATT", DimensionLimits::NPATT,
       " Max.num. of powder diffraction patterns                    "},
      {"IDSZ", d.IDSZ, " Max.num. of points(+int. Inten.)/diffraction pattern       "},
      {"IRS", d.IRS, " Max.num. of reflections/diffraction pattern                "},
      {"NATS", DimensionLimits::NATS,
       " Max.num. of atoms in asymmetric unit                       "},
      {"MPAR", DimensionLimits::MPAR,
       " Max.num. of non atomic parameters/phase                    "},
      {"MSZ", d.MSZ, " Max.num. of refinable parameters                           "},
      {"NOV", DimensionLimits::NOV, " Max.num. of overlapping reflections                        "},
      {"IEXCL", DimensionLimits::IEXCL,
       " Max.num. of excluded regions                               "},
      {"IBACP", DimensionLimits::IBACP,
       " Max.num. of background points for interpolation            "},
      {"NPHT", DimensionLimits::NPHT,
       " Max.num. of phases (<=8)                                   "},
      {"NMAGM", DimensionLimits::NMAGM,
       " Max.num. of rotation-matrices sets for magnetic structure  "},
      {"NATM", DimensionLimits::NATM,
       " Max.num. of magnetic atoms (NATM+nonmag-atoms <=NATS)      "},
      {"NEQV", DimensionLimits::NEQV,
       " Max.num. of user-supplied symmetry operators/propagation vectors"},
      {"NGL", DimensionLimits::NGL, " Max.num. of global parameters/diffraction pattern          "},
      {"NAT_P", DimensionLimits::NAT_P,
       " Max.num. of atomic parameters per atom                     "},
      {"NCONST", DimensionLimits::NCONST,
       " Max.num. of slack constraints per phase                    "},
      {"N_SPE", DimensionLimits::N_SPE,
       " Max.num. of different chemical species                     "},
      {"N_FORM", DimensionLimits::N_FORM,
       " Max.num. of scattering factor values in a table            "},
      {"NPR", DimensionLimits::NPR, " Max.num. of points defining a numerical profile            "},
      {"INPR", DimensionLimits::INPR,
       " Max.num. of different numerical peak shapes                "},
      {"NPRC", DimensionLimits::NPRC,
       " Max.num. of terms in the table for correcting intensities  "},
      {"NSOL", DimensionLimits::NSOL,
       " Max.num. of solutions to be stored in Montecarlo searchs   "},
  };
}

}  // namespace

void ReportDimensions(Channels& channels, const DimensionLimits& limits, int unit) {
  const char* rule = " ----------------------------------------------------";
  WriteLine(channels, unit, rule);
  WriteLine(channels, unit, " => Dimensions of arrays in this release of Corvinet:");
  WriteLine(channels, unit, rule);
  // A figure wider than its eight columns is written whole after a blank.
  const long long memory = ArrayMemory(limits);
  const char* memoryFormat = memory <= 99999999 ? "(A,I8,A)" : "(A,1X,I0,A)";
  WriteLine(channels, unit, Fmt(memoryFormat, " => Approximate array memory: ", memory, " bytes"));
  for (const LimitRow& row : LimitRows(limits)) {
    WriteLine(channels, unit, Fmt("(A,I8,A)", FixedText(row.name, 12), row.value, row.text));
  }
}

}  // namespace corvinet
