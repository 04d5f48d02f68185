// The starting template: two console answers, one of two built-in jobs, the normal writer.
#include "run/starting_template.h"

#include <optional>
#include <string>

#include "control/control_writer.h"
#include "records/profile_slots.h"
#include "surface/console.h"
#include "surface/prompts.h"

namespace corvinet {

namespace {

namespace Slot = ProfileSlot;

// The first character of the next console answer; blank for an empty answer
// or at the end of the input.
char FirstCharacter(Job& job) {
  const std::optional<std::string> answer = ReadConsoleAnswer(job.console);
  if (!answer || answer->empty()) return ' ';
  return (*answer)[0];
}

struct TemplateAtom {
  const char* label;
  const char* species;
  float x, y, z, biso, occ;
  float Rx, Ry, Rz;  // moment along the cell axes, for the magnetic atoms
  bool magnetic;
};

void SetAtom(Job& job, int n, const TemplateAtom& t) {
  AtomSite& a = job.atoms[n];
  a.label = t.label;
  a.species = t.species;
  a.ATP[1] = t.x;
  a.ATP[2] = t.y;
  a.ATP[3] = t.z;
  a.ATP[4] = t.biso;
  a.ATP[5] = t.occ;
  if (!t.magnetic) return;
  a.Mag = 1;
  a.N_t = 1;
  a.ATP[6] = t.Rx;
  a.ATP[7] = t.Ry;
  a.ATP[8] = t.Rz;
}

void SetCell(PhasePattern& c, float a, float b, float cc) {
  const float cell[6] = {a, b, cc, 90.0f, 90.0f, 90.0f};
  for (int i = 1; i <= 6; ++i) {
    c.CellConstants[i] = cell[i - 1];
    c.PAR[Slot::FirstCell + i - 1] = cell[i - 1];
  }
}

// The peak parameters and the shape of the one phase in the one pattern.
void SetProfile(PhasePattern& c, float scale, float bov, float U, float V, float W, float shape,
                float asy) {
  c.Contribution = 1;
  c.Npr = 6;  // stored code of the pseudo-Voigt
  c.PREF[3] = 1.0f;
  c.PAR[Slot::Scale] = scale;
  c.PAR[Slot::Bov] = bov;
  c.PAR[Slot::U] = U;
  c.PAR[Slot::V] = V;
  c.PAR[Slot::W] = W;
  c.PAR[Slot::Shape1] = shape;
  c.PAR[Slot::Asy1] = asy;
}

void SetExclusions(Pattern& p, float low1, float high1, float low2, float high2) {
  // NEXCRG stays 0: the table is filled and not written.
  p.ExclLow[1] = low1;
  p.ExclHigh[1] = high1;
  p.ExclLow[2] = low2;
  p.ExclHigh[2] = high2;
}

void FillCeria(Job& job) {
  ConsoleLine(job, "  Template File 'STARTING.PCR': CALCULATION PATTERN OF CEO2  ");
  job.run.Title = "Calculation of the X-ray pattern of CeO2";
  job.run.IDUM = 1;
  Pattern& p = job.patterns[1];
  p.JOBTYP = 2;
  p.GLB[2] = 200.0f;
  // Cu K-alpha 1 and 2 and a range, so that the file runs as a calculation as it is.
  p.LAMBDA[1] = 1.54056f;
  p.LAMBDA[2] = 1.54439f;
  p.RATIO[1] = 1.0f;
  p.RATIO[2] = 0.5f;
  p.Wdt = 8.0f;
  p.Bkpos = 70.0f;
  p.THMIN = 10.0f;
  p.STEP = 0.02f;
  p.THMAX = 150.0f;
  SetExclusions(p, 0.0f, 3.0f, 175.0f, 180.0f);
  Phase& ph = job.phases[1];
  ph.PhaseTitle = " CeO2 (X-ray diffraction) Cu-Kalpha";
  ph.Nat = 2;
  ph.SpaceGroupSymbol = "F m 3 m";
  ph.ATZ = 688.46f;  // Z = 4 formula units of 172.11 g/mol
  SetProfile(ph.pat[1], 0.00001f, 0.0f, 0.00783f, -0.00788f, 0.00943f, 0.45f, 0.021f);
  SetCell(ph.pat[1], 5.4113f, 5.4113f, 5.4113f);
  SetAtom(job, 1, {"Ce", "CE", 0.0f, 0.0f, 0.0f, 0.39f, 0.125f, 0.0f, 0.0f, 0.0f, false});
  SetAtom(job, 2, {"O", "O", 0.25f, 0.25f, 0.25f, 0.96f, 0.25f, 0.0f, 0.0f, 0.0f, false});
}

// The four operators of the holmium phase, as text lines, each with the
// identity acting on the moments.
void SetTextOperators(SpaceGroup& g) {
  static constexpr const char* kOperators[] = {"SYMM    X,Y,Z", "SYMM   -X,Y,-Z", "SYMM   -X,-Y,-Z",
                                               "SYMM    X,-Y,Z"};
  g.Isy = -1;
  g.NSYM = 4;
  g.ICENT = 1;
  g.LAUE = 1;
  g.NMAGM = 1;
  for (int n = 1; n <= 4; ++n) {
    g.operatorText[n] = kOperators[n - 1];
    g.magneticRotation(1, n) = 1;
    g.magneticPhase(1, n) = 0.0f;
  }
}

void FillHolmiumNickelate(Job& job) {
  ConsoleLine(job, "  Template File 'STARTING.PCR': HO2BANIO5-LOW TEMPERATURE  ");
  job.run.Title = "Ho2BaNiO5 at low temperature, nuclear and magnetic";
  job.run.IDUM = 0;
  Pattern& p = job.patterns[1];
  p.JOBTYP = 3;
  p.THMIN = 10.0f;
  p.STEP = 0.1f;
  p.THMAX = 90.0f;
  p.GLB[2] = 7000.0f;
  p.LAMBDA[1] = 2.52f;
  p.LAMBDA[2] = 2.52f;
  p.RATIO[1] = 1.0f;
  p.RATIO[2] = 1.0f;
  p.Wdt = 8.0f;  // peak range in half widths, so that the calculation has peaks
  p.Bkpos = 50.0f;
  SetExclusions(p, 0.0f, 10.0f, 90.0f, 180.0f);
  Phase& ph = job.phases[1];
  ph.PhaseTitle = " Ho2BaNiO5-Low temperature";
  ph.Nat = 6;
  ph.Jbt = 10;
  ph.Isy = -1;
  ph.Nvk = 1;
  ph.vectors[1].KVEC[1] = 0.5f;
  ph.vectors[1].KVEC[3] = 0.5f;
  ph.SpaceGroupSymbol = "I -1     ";
  ph.ATZ = 1211.75f;  // Z = 2 formula units of 605.88 g/mol
  SetTextOperators(ph.group);
  SetProfile(ph.pat[1], 930.0f, 0.45f, 1.63075f, -1.07796f, 0.35968f, 0.03f, 0.02f);
  SetCell(ph.pat[1], 3.754824f, 5.733367f, 11.274480f);
  SetAtom(job, 1, {"Ba", "BA", 0.5f, 0.5f, 0.0f, 0.0f, 0.125f, 0.0f, 0.0f, 0.0f, false});
  SetAtom(job, 2, {"Ho", "JHO3", 0.5f, 0.0f, 0.2026f, 0.0f, 0.25f, 0.123f, 0.0f, 8.9f, true});
  SetAtom(job, 3, {"Ni", "MNI2", 0.0f, 0.0f, 0.0f, 0.0f, 0.125f, 0.6f, -1.3f, 0.0f, true});
  SetAtom(job, 4, {"O1", "O", 0.0f, 0.24367f, 0.14909f, 0.0f, 0.25f, 0.0f, 0.0f, 0.0f, false});
  SetAtom(job, 5, {"O1p", "O", 0.0f, 0.24367f, -0.14909f, 0.0f, 0.25f, 0.0f, 0.0f, 0.0f, false});
  SetAtom(job, 6, {"O2", "O", 0.5f, 0.0f, 0.0f, 0.0f, 0.125f, 0.0f, 0.0f, 0.0f, false});
}

}  // namespace

void FillTemplateJob(Job& job, TemplateJob which) {
  if (which == TemplateJob::kCeriaXray) {
    FillCeria(job);
  } else {
    FillHolmiumNickelate(job);
  }
}

void MakeStartingTemplate(Job& job) {
  job.run.commentedOutput = 1;
  ConsoleLine(job, " => Create standard template (s=<cr>) or detailed *.pcr (d): ");
  const char form = FirstCharacter(job);
  if (form == 'd' || form == 'D') {
    WarningBox(job, " Sorry!, option not available yet.");
    // A model of defaults only: a form to fill in, which cannot run (it has
    // no wavelength), so it is written without the check that it reads back.
    const auto accept = [](const Job&, const std::string&, const ControlLines&,
                           const ControlEndValues&) {
      return ReadBackResult{true, ""};
    };
    WriteControlFile(job, ControlEndValues{}, accept);
    return;
  } else {
    ConsoleLine(job, " => Options: ");
    ConsoleLine(job, "              (1) Simple X-ray powder diffraction ");
    ConsoleLine(job, "              (2) Neutrons + magnetic structure");
    ConsoleLine(job, " => Enter option: ");
    const char option = FirstCharacter(job);
    FillTemplateJob(job, option == '1' ? TemplateJob::kCeriaXray : TemplateJob::kHolmiumNickelate);
  }
  WriteControlFile(job, 0, 0, 0.0f, 0.0f);
}

}  // namespace corvinet
