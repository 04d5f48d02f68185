// Symmetry of a phase at reading: symbol, operator lines, report, the symbol of generation.
#include "crystal/phase_symmetry.h"

#include <cstdlib>
#include <string>

#include "crystal/space_group_symbol.h"
#include "crystal/symbol_forms.h"
#include "crystal/symmetry_operators.h"
#include "surface/console.h"

namespace corvinet {
namespace {

// No contribution generates its reflections.
constexpr int kNoGeneration = 1;

// The whole group of the symbol: words, centring and operators.
void DecodeSymbol(Job& job, Phase& ph, std::string& banner) {
  SpaceGroup& g = ph.group;
  ShowSymmetryMessages(job, InterpretSymbol(ph.SpaceGroupSymbol, 0, g, &banner));
  LatticeFromSymbol(ph.SpaceGroupSymbol, g);
  ShowSymmetryMessages(job, OperatorsFromGenerators(g));
  ph.hasSymbol = 1;
}

// The Irf of the first contribution that generates reflections from a
// symbol (0 or below, and not -4).
int GeneratingIrf(const Job& job, const Phase& ph) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    const PhasePattern& c = ph.pat[ip];
    if (c.Contribution != 0 && c.Irf <= 0 && c.Irf != -4) return c.Irf;
  }
  return kNoGeneration;
}

// Takes from the symbol what the generation uses (Laue class, unique axis,
// generator words and their point group) and keeps the operators read.
void AdoptGenerationWords(SpaceGroup& g, const SpaceGroup& symbol) {
  g.LAUE = symbol.LAUE;
  g.UniqueAxis = symbol.UniqueAxis;
  g.generatorWords = symbol.generatorWords;
  g.generatorCount = symbol.generatorCount;
  g.rotationWords = symbol.rotationWords;
  g.rotationWordCount = symbol.rotationWordCount;
  g.generatorTable = symbol.generatorTable;
  g.generatorTableCount = symbol.generatorTableCount;
  g.polarAxisMask = symbol.polarAxisMask;
}

// Reads the form of the symbol: an alias is replaced by the program's symbol
// and reported; a symbol that fits no form stops the run.
void ReadPhaseSymbolForm(Job& job, Phase& ph) {
  const std::string typed = ph.SpaceGroupSymbol;
  const SymbolForm form = ReadSymbolForm(typed);
  ShowSymmetryMessages(job, SymbolFormMessages(typed, form));
  if (!form.renamed) return;
  ph.SpaceGroupSymbol = form.symbol;
  WriteLine(job, Unit::Out, RenamedSymbolLine(typed, form));
}

void DecodeGenerationSymbol(Job& job, Phase& ph, int irf) {
  SpaceGroup symbol;
  std::string banner;
  ShowSymmetryMessages(job, InterpretSymbol(ph.SpaceGroupSymbol, 1, symbol, &banner));
  PointGroupWords(symbol);
  AdoptGenerationWords(ph.group, symbol);
  ph.hasSymbol = 1;
  WriteLine(job, Unit::Out, banner);
  if (irf == 0) {
    ConsoleLine(job, " Sym.Op. read from file but H,K,L generated from: " + ph.SpaceGroupSymbol);
    ConsoleLine(job, " Output a file with a reduced hkl-set ");
  } else {
    ConsoleLine(job,
                "Sym.Op. read from file, hkl-progenitors generated from: " + ph.SpaceGroupSymbol);
    ConsoleLine(job, " A file with hkl-satellites will be created!!");
  }
}

}  // namespace

void ShowSymmetryMessages(Job& job, const SymmetryMessages& messages) {
  for (const std::string& line : messages.console) ConsoleLine(job, line);
  if (!messages.ok()) StopBox(job, messages.stop);
}

void BuildPhaseSymmetry(Job& job, int k) {
  Phase& ph = job.phases[k];
  std::string banner;
  if (ph.Isy == 0 || GeneratingIrf(job, ph) != kNoGeneration) ReadPhaseSymbolForm(job, ph);
  if (ph.Isy == 0) DecodeSymbol(job, ph, banner);
  const int jbt = std::abs(ph.Jbt);
  if (jbt != 2 && jbt != 3) {
    ReadOperatorLines(job, k);
    SymmetryReport(job, k, banner);
  }
  if (ph.Isy == 0) return;
  const int irf = GeneratingIrf(job, ph);
  if (irf != kNoGeneration) DecodeGenerationSymbol(job, ph, irf);
}

}  // namespace corvinet
