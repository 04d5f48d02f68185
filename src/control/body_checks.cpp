// Checks that close the reading of the control file: parameter holes, zero counts, capacity,
// corrections.
#include "control/body_checks.h"

#include <cmath>
#include <vector>

#include "format/fortran_format.h"
#include "surface/console.h"

namespace corvinet {

namespace {

bool UsedByGlobals(const Job& job, int n) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    const Pattern& p = job.patterns[ip];
    for (const Codeword& w : p.GLBword) {
      if (w.parameterNumber == n) return true;
    }
    for (int j = 1; j <= p.NBCKGD && j <= DimensionLimits::IBACP + 1; ++j) {
      if (p.backPointWord[j].parameterNumber == n) return true;
    }
  }
  return false;
}

bool UsedByProfiles(const Job& job, int n) {
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    for (int ip = 1; ip <= job.run.NPATT; ++ip) {
      const PhasePattern& c = job.phases[k].pat[ip];
      if (c.Contribution == 0) continue;
      for (const Codeword& w : c.PAC) {
        if (w.parameterNumber == n) return true;
      }
    }
  }
  return false;
}

bool UsedByVectors(const Job& job, int n) {
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    const Phase& ph = job.phases[k];
    for (int v = 1; v <= ph.Nvk && v <= DimensionLimits::NEQV; ++v) {
      for (const Codeword& w : ph.vectors[v].KCODE) {
        if (w.parameterNumber == n) return true;
      }
    }
  }
  return false;
}

// The phase whose atom rows hold parameter n, or 0.
int PhaseUsingInAtoms(const Job& job, int n) {
  int row = 0;
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    for (int a = 1; a <= job.phases[k].Nat; ++a) {
      ++row;
      if (row > DimensionLimits::NATS) return 0;
      for (const Codeword& w : job.atoms[row].ATC) {
        if (w.parameterNumber == n) return k;
      }
    }
  }
  return 0;
}

}  // namespace

void CheckParameterHoles(Job& job) {
  for (int k = 1; k <= job.run.NPHASE; ++k) job.phases[k].refinedAtomParameters = 0;
  bool missing = false;
  for (int n = 1; n <= job.run.MAXS; ++n) {
    if (UsedByGlobals(job, n) || UsedByProfiles(job, n)) continue;
    const int k = PhaseUsingInAtoms(job, n);
    if (k > 0) {
      ++job.phases[k].refinedAtomParameters;
      continue;
    }
    if (UsedByVectors(job, n)) continue;
    missing = true;
    ConsoleLine(job, Fmt("(A,I4)", " => Hole in the matrix!, missing element:", n));
    WriteLine(
        job, Unit::Out,
        Fmt("(A,I4,A)", " => Hole in the matrix!, element ", n, "in the Normal matrix is missing"));
  }
  if (missing) StopBox(job, " Hole(s) in the Normal Matrix ");
}

void FixZeroCounts(Job& job) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    Pattern& p = job.patterns[ip];
    for (int i = 1; i <= p.NPTS; ++i) {
      if (p.Variance[i] > 1.0e-6f) continue;
      WriteLine(job, Unit::Out,
                Fmt("(A,I6,A,F12.4)", " => Zero counts at step no.", i,
                    " at 2theta/TOF/E(KeV): ", p.X[i]));
      ConsoleLine(job, Fmt("(A,I6)", " Zero counts al point no. ", i));
      ConsoleLine(job, " Program fix intensity at 1.0 and Variance at 1E6");
      p.Ytotal[i] = 1.0f;
      p.Variance[i] = 1.0e6f;
    }
  }
}

void CheckPointCapacity(Job& job, int ip, int reflections, int extraReflections) {
  // In a large run points and reflections have tables of their own, each
  // bounded by its capacity (IDSZ and IRS); by default they share IDSZ places.
  if (IsLarge(job.dimensions)) return;
  const int points = job.patterns[ip].NPTS;
  if (job.dimensions.IDSZ - (reflections + extraReflections) > points) return;
  // Say what does not fit and what brings it inside, before the box.
  const std::string line =
      Fmt("(A,I2,A,I6,A,I6,A,I6,A)", " => Pattern", ip, ":", points, " points +",
          reflections + extraReflections, " reflections reach the", job.dimensions.IDSZ,
          " places of a pattern: raise Ste or shorten the data range");
  ConsoleLine(job, line);
  WriteLine(job, Unit::Out, line);
  StopBox(job, " Too many reflections or too many points! ");
}

void ApplyIntensityCorrection(Pattern& p) {
  const auto& a = p.corrY;
  const auto& s = p.corrX;
  const int n = p.corrCount;
  if (p.corrForm != 1 && p.corrForm != 2) return;
  for (int i = 1; i <= p.NPTS; ++i) {
    const float x = p.X[i];
    float c = 0.0f;
    float S = 0.0f;
    if (p.corrForm == 1) {
      float power = 1.0f;
      for (int j = 1; j <= n; ++j) {
        c += a[j] * power;
        S += s[j] * s[j] * power * power;
        power *= x;
      }
    } else {
      const float t = std::exp(-a[3] / (x * x)) / (x * x * x * x * x);
      c = a[1] + a[2] * t;
      // The minus signs inside S are the program's own form and are kept.
      S = s[1] * s[1] + t * t * (s[2] * s[2] - s[3] * s[3] * a[2] * a[2] / (x * x));
      for (int j = 4; j <= n && j + 1 <= DimensionLimits::NPRC; j += 2) {
        const float e = std::exp(-a[j + 1] * x * x);
        c += a[j] * e;
        S += e * e * (s[j] * s[j] - (a[j] * x) * (a[j] * x));
      }
    }
    const float intensity = p.Ytotal[i];
    p.Variance[i] = S / intensity + p.Variance[i] / (c * c);
    p.Ytotal[i] = intensity / c;
  }
}

}  // namespace corvinet
