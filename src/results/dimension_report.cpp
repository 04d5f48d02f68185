// The report of the table capacities that closes a run.
#include "results/dimension_report.h"

#include "format/fortran_format.h"
#include "records/dimension_limits.h"
#include "surface/console.h"

namespace corvinet {
namespace {

struct LimitRow {
  const char* name;
  int value;
  const char* text;
};

constexpr LimitRow kLimitRows[] = {
    {"NPATT", DimensionLimits::NPATT,
     " Max.num. of powder diffraction patterns                    "},
    {"IDSZ", DimensionLimits::IDSZ, " Max.num. of points(+int. Inten.)/diffraction pattern       "},
    {"IRS", DimensionLimits::IRS, " Max.num. of reflections/diffraction pattern                "},
    {"NATS", DimensionLimits::NATS, " Max.num. of atoms in asymmetric unit                       "},
    {"MPAR", DimensionLimits::MPAR, " Max.num. of non atomic parameters/phase                    "},
    {"MSZ", DimensionLimits::MSZ, " Max.num. of refinable parameters                           "},
    {"NOV", DimensionLimits::NOV, " Max.num. of overlapping reflections                        "},
    {"IEXCL", DimensionLimits::IEXCL,
     " Max.num. of excluded regions                               "},
    {"IBACP", DimensionLimits::IBACP,
     " Max.num. of background points for interpolation            "},
    {"NPHT", DimensionLimits::NPHT, " Max.num. of phases (<=8)                                   "},
    {"NMAGM", DimensionLimits::NMAGM,
     " Max.num. of rotation-matrices sets for magnetic structure  "},
    {"NATM", DimensionLimits::NATM, " Max.num. of magnetic atoms (NATM+nonmag-atoms <=NATS)      "},
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
    {"INPR", DimensionLimits::INPR, " Max.num. of different numerical peak shapes                "},
    {"NPRC", DimensionLimits::NPRC, " Max.num. of terms in the table for correcting intensities  "},
    {"NSOL", DimensionLimits::NSOL, " Max.num. of solutions to be stored in Montecarlo searchs   "},
};

}  // namespace

void ReportDimensions(Channels& channels, int unit) {
  const char* rule = " ----------------------------------------------------";
  WriteLine(channels, unit, rule);
  WriteLine(channels, unit, " => Dimensions of arrays in this release of Corvinet:");
  WriteLine(channels, unit, rule);
  WriteLine(channels, unit, Fmt("(A,I8,A)", " => Approximate array memory: ", 7928230, " bytes"));
  for (const LimitRow& row : kLimitRows) {
    WriteLine(channels, unit, Fmt("(A,I8,A)", FixedText(row.name, 12), row.value, row.text));
  }
}

}  // namespace corvinet
