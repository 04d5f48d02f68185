#!/usr/bin/env python3
"""Writes a large simulated job: a P 1 structure of many atoms on a long X-ray pattern.

    make_large_job.py DIR [--points N] [--atoms M]

writes DIR/sim.pcr (the pattern calculation, run first: it leaves sim.sim)
and DIR/large.pcr (the refinement of that pattern from displaced atoms; copy
sim.sim to large.dat). With the defaults the pattern has 200 000 points,
about 9 000 reflections and the refinement 300 parameters, which needs the
large capacities (`corvinet --large large`).
"""
import argparse
import os
import random

HEAD = """COMM {title}
!Job Npr Nph Nba Nex Nsc Nor Dum Iwg Ilo Ias Res Ste Nre Cry Uni Cor
   {job}   5   1   0   0   0   0   1   0   0   0   0   0   0   0   0   0
!Ipr Ppl Ioc Mat Pcr Ls1 Ls2 Ls3 Syo Prf Ins Rpa Sym Hkl Fou Sho Ana
   0   0   0   0   1   0   0   0   0   0   0   0   0   0   0   1   0
! Lambda1  Lambda2    Ratio    Bkpos    Wdt    Cthm     muR   AsyLim   Rpolarz
 1.540560 1.540560  0.00000   50.000  8.0000  0.0000  0.0000    0.00    0.0000
!NCY  Eps  R_at  R_an  R_pr  R_gl     Thmin       Step       Thmax    PSD    Sent0
 {ncy:>2}  0.10  1.00  1.00  1.00  1.00      5.0000 {step:10.6f} {thmax:10.4f}   0.000   0.000
 {maxs:>4}    !Number of refined parameters
!  Zero    Code    Sycos    Code   Sysin    Code  Lambda     Code MORE
  0.0000 {c_zero:7.2f}  0.0000    0.00  0.0000    0.00 0.000000    0.00   0
!   Background coefficients/codes
   400.0   -100.0     50.0      0.0      0.0      0.0
 {bkg}
!-------------------------------------------------------------------------------
P1 test structure
!Nat Dis Ang Pr1 Pr2 Pr3 Jbt Irf Isy Str Furth       ATZ    Nvk Npr More
 {nat:>3}   0   0 0.0 0.0 1.0   0   0   0   0   0          0.000   0   5   0
P 1                      <--Space group symbol
"""

TAIL = """!  Scale        Shape1      Bov      Str1      Str2      Str3   Strain-Model
  0.0010000    0.4000    0.0000    0.0000    0.0000    0.0000       0
 {c_scale:8.2f} {c_eta:8.2f}    0.0000    0.0000    0.0000    0.0000
!       U         V          W           X          Y        GauSiz   LorSiz Size-Model
  0.004000 -0.002000  0.002000  0.001000  0.000000  0.000000  0.000000    0
 {c_u:8.2f} {c_v:8.2f} {c_w:8.2f} {c_x:8.2f}  0.000     0.000     0.000
!     a          b         c        alpha      beta       gamma
  15.000000 16.000000 17.000000 85.000000 95.000000 100.000000
 {cell}
!  Pref1    Pref2      Asy1     Asy2     Asy3     Asy4
  0.00000  0.00000  0.00000  0.00000  0.00000  0.00000
   0.00     0.00     0.00     0.00     0.00     0.00
"""

SPECIES = ["FE", "S", "P", "O", "N", "C"]


def write(path, points, atoms, refine):
    rng = random.Random(12345)
    step = 0.0005
    thmax = 5.0 + step * (points - 1)
    counter = [0]

    def code():
        if not refine:
            return 0.0
        counter[0] += 1
        return 10.0 * counter[0] + 1.0

    c_zero = code()
    bkg = " ".join("%8.2f" % code() for _ in range(3)) + "     0.00     0.00     0.00"
    lines = []
    for n in range(atoms):
        x, y, z = rng.random(), rng.random(), rng.random()
        b = 0.5 + rng.random()
        if refine:
            x, y, z = x + 0.002, y - 0.002, z + 0.001
        label = "%s%d" % (SPECIES[n % len(SPECIES)].capitalize(), n + 1)
        lines.append("%-5s %-4s %8.5f %8.5f %8.5f %5.2f 1.0000  0 0 0" %
                     (label, SPECIES[n % len(SPECIES)], x, y, z, b))
        lines.append(" %7.2f %7.2f %7.2f %7.2f    0.00" % (code(), code(), code(), code()))
    profile = {name: code() for name in ["c_scale", "c_eta", "c_u", "c_v", "c_w", "c_x"]}
    cell = " ".join("%9.2f" % code() for _ in range(6))
    maxs = counter[0] if refine else 0
    text = HEAD.format(title="large P 1 job" + (" refinement" if refine else " simulation"),
                       job=0 if refine else 2, ncy=2 if refine else 1, step=step,
                       thmax=thmax, maxs=maxs, c_zero=c_zero, bkg=bkg, nat=atoms)
    text += "\n".join(lines) + "\n" + TAIL.format(cell=cell, **profile)
    with open(path, "w") as out:
        out.write(text)
    return maxs


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("dir")
    parser.add_argument("--points", type=int, default=200000)
    parser.add_argument("--atoms", type=int, default=71)
    args = parser.parse_args()
    os.makedirs(args.dir, exist_ok=True)
    write(os.path.join(args.dir, "sim.pcr"), args.points, args.atoms, False)
    maxs = write(os.path.join(args.dir, "large.pcr"), args.points, args.atoms, True)
    print("points %d, atoms %d, refined parameters %d" % (args.points, args.atoms, maxs))


if __name__ == "__main__":
    main()
