// The profile file as a list of IGOR commands (IPL2 2): waves of the profile, the ticks and the
// excluded regions, then the commands that draw them.
#include <algorithm>
#include <cstdlib>
#include <string>

#include "format/text.h"
#include "io/file_set.h"
#include "records/reflection.h"
#include "results/plot_geometry.h"
#include "results/profile_files.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// The integer geometry of the IGOR plot.
struct IgorScale {
  int TickHeight = 0;  // negative: ticks hang below the axis
  int TickGap = 0;
  int DiffShift = 0;
  int ExclTop = 0;
};

bool InsideLimits(const Pattern& p, float x) {
  return x >= p.THMIN && x <= p.THMAX;
}

IgorScale ScaleOf(const Job& job, const Pattern& p, bool refinement) {
  float dmax = -99999.0f;
  float dmin = 99999.0f;
  float imax = 0.0f;
  for (int i = 1; i <= p.NPTS; ++i) {
    if (!InsideLimits(p, p.X[i])) continue;
    const float d = p.Ytotal[i] - p.Ycalc[i];
    dmax = std::max(dmax, d);
    dmin = std::min(dmin, d);
    if (refinement) imax = std::max(imax, p.Ytotal[i]);
    imax = std::max(imax, p.Ycalc[i]);
  }
  const int phases = job.run.NPHASE;
  IgorScale s;
  s.TickHeight = static_cast<int>(imax / 30.0f);
  s.TickGap = s.TickHeight / 4;
  s.DiffShift = -static_cast<int>(static_cast<float>((s.TickHeight + s.TickGap) * phases) + dmax);
  s.ExclTop = -(phases * s.TickHeight + s.TickGap * (phases - 1));
  s.TickHeight = -s.TickHeight;
  return s;
}

std::string PhaseLabel(int f) {
  return Fmt("(A,I1)", "Phase", f);
}

bool RegionInside(const Pattern& p, int r) {
  return p.ExclLow[r] >= p.THMIN && p.ExclHigh[r] <= p.THMAX;
}

void Line(Job& job, std::string_view text) {
  WriteLine(job, Unit::Profile, text);
}

void WriteProfileWaves(Job& job, const Pattern& p, bool refinement, const char* axis) {
  Line(job, "IGOR");
  Line(job, std::string("WAVES     ") + axis +
                (refinement ? ",       Iobs,   Icalc,  Diff" : ",       Icalc"));
  Line(job, "BEGIN");
  for (int i = 1; i <= p.NPTS; ++i) {
    if (!InsideLimits(p, p.X[i])) continue;
    Line(job, refinement
                  ? Fmt("(F12.3,3F12.2)", p.X[i], p.Ytotal[i], p.Ycalc[i], p.Ytotal[i] - p.Ycalc[i])
                  : Fmt("(F12.3,F12.2)", p.X[i], p.Ycalc[i]));
  }
  Line(job, "END");
}

void WriteTickWaves(Job& job, int ip, const IgorScale& s) {
  const ReflectionTable& table = job.patterns[ip].reflections;
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    Line(job, Fmt("(A,A,A,I0)", "WAVES     ", PhaseLabel(f), ", tik", f));
    Line(job, "BEGIN");
    for (int k = 1; k <= table.total; ++k) {
      if (KeyPhase(table.slot[k].key) != f) continue;
      Line(job, Fmt("(F12.3,1X,I10)", PlottedPosition(job, ip, k), s.TickHeight));
    }
    Line(job, "END");
  }
}

void WriteRegionWaves(Job& job, const Pattern& p, const IgorScale& s) {
  for (int r = 1; r <= p.NEXCRG; ++r) {
    if (!RegionInside(p, r)) continue;
    Line(job, Fmt("(A,I0,A,I0)", "WAVES Excrg", r, ", excl", r));
    Line(job, "BEGIN");
    Line(job, Fmt("(F12.3,1X,I10)", p.ExclLow[r], s.ExclTop));
    Line(job, Fmt("(F12.3,1X,I10)", p.ExclHigh[r], s.ExclTop));
    Line(job, "END");
  }
}

void WriteDisplayCommands(Job& job, const Pattern& p, bool refinement, const char* axis,
                          const IgorScale& s) {
  Line(job, "X Silent 1");
  Line(job, "X DefaultFont Times");
  if (!refinement) {
    Line(job, std::string("X Display Icalc vs ") + axis);
    return;
  }
  Line(job, std::string("X Display Iobs, Icalc, Diff vs ") + axis);
  Line(job, "X Modify mode(Iobs)=2, rgb(Iobs)=(0,0,0), rgb(Diff)=(3800,44400,4000)");
  Line(job, Fmt("(A,F10.3,A,F10.3)", "X SetAxis bottom ", p.THMIN, ", ", p.THMAX));
  Line(job, "X Modify lsize(Iobs)=2");
  Line(job, Fmt("(A,I0,A)", "X Modify offset(Diff)={0,", s.DiffShift, "}"));
}

void WriteRegionAndTickCommands(Job& job, const Pattern& p, const IgorScale& s) {
  for (int r = 1; r <= p.NEXCRG; ++r) {
    if (!RegionInside(p, r)) continue;
    Line(job, Fmt("(A,I0,A,I0)", "X Append excl", r, " vs Excrg", r));
    Line(job, Fmt("(A,I0,A,I0,A)", "X Modify mode(excl", r, ")=7, hbFill(excl", r, ")=4"));
    Line(job, Fmt("(A,I0,A)", "X Modify rgb(excl", r, ")=(6421,62320,64794)"));
  }
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    Line(job, Fmt("(A,I0,A,A)", "X Append tik", f, " vs ", PhaseLabel(f)));
    const int offset = -(f - 1) * (std::abs(s.TickHeight) + s.TickGap);
    Line(job, Fmt("(A,I0,A,I0,A)", "X Modify offset(tik", f, ")={0,", offset, "}"));
  }
}

// The first 30 characters of the title, then the name of each phase.
std::string TitleText(const Job& job) {
  std::string text = "\\r" + std::string(TrimRight(job.run.Title.substr(0, 30)));
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    text += "\\r" + std::string(TrimRight(job.phases[f].PhaseTitle));
  }
  return text;
}

void WriteTextBox(Job& job, const ProfileFileContext& c, bool refinement) {
  std::string box = "X TextBox /F=2/S=3/A=RT \"Files: " + TrimmedCopy(job.driver.PcrCode);
  box += refinement ? "\\rDate of fit: \\Z09 / " : "\\rPattern calculation: \\Z09 / ";
  box += c.date + "/ " + c.time + TitleText(job);
  if (refinement) {
    box += "\\rChi2 = " + TrimmedCopy(Fmt("(F12.2)", job.refinement.GlobalChi2));
  } else if (c.poissonNoise) {
    box += "\\Z12\\rRandomized with Poisson noise\\r";
  }
  Line(job, box + "\"");
}

void WriteClosingCommands(Job& job, bool timeOfFlight, const ProfileFileContext& c) {
  Line(job, "X Label left \"\\Z14Intensity\"");
  Line(job, timeOfFlight ? "X Label bottom \"\\Z14 TOF(in micro-seconds)\""
                         : "X Label bottom \"\\Z142-Theta (in degrees)\"");
  Line(job, "X TileWindows/O=1/C");
  Line(job, "X ShowInfo");
  Line(job, "X | Title of data set: " + std::string(TrimRight(job.run.Title)));
  Line(job, "X | Date: " + c.date + "  Time: " + c.time);
}

}  // namespace

void WriteIgorProfileFile(Job& job, int ip, const ProfileFileContext& context) {
  const Pattern& p = job.patterns[ip];
  const bool refinement = !IsCalculatedPattern(p);
  const bool timeOfFlight = p.JOBTYP < 0;
  const char* axis = timeOfFlight ? "TOF" : "TwoTheta";
  const IgorScale s = ScaleOf(job, p, refinement);
  OpenFiles(job, FileKind::kProfile, ip, 0);
  WriteProfileWaves(job, p, refinement, axis);
  WriteTickWaves(job, ip, s);
  WriteRegionWaves(job, p, s);
  WriteDisplayCommands(job, p, refinement, axis, s);
  WriteRegionAndTickCommands(job, p, s);
  WriteTextBox(job, context, refinement);
  WriteClosingCommands(job, timeOfFlight, context);
  CloseUnit(job.files.units[Unit::Profile]);
}

}  // namespace corvinet
