#!/usr/bin/env python3
"""Writes cycle.dat: a simulated X-ray pattern of a primitive cubic cell.

The counts follow a known quadratic background and Gaussian peaks whose
intensities differ from the unit intensities a profile-matching job starts
from, with Gaussian-approximated Poisson noise from a fixed seed.
Run once; the committed cycle.dat is what the tests read.
"""
import math
import random

from check_cycle_numbers import cubic_multiplicity as multiplicity

LAMBDA = 1.54056
CELL = 4.0
THMIN, STEP, THMAX = 15.0, 0.02, 60.0
U, V, W = 0.10, -0.05, 0.05
CTHM = 0.8
SCALE = 0.1
BKPOS = 40.0
BACKGROUND = (180.0, 25.0, 40.0)
TRUE_F2 = (1.4, 0.8, 1.9, 0.6, 1.2, 0.9)




def reflections():
    out = []
    for h in range(0, 6):
        for k in range(0, h + 1):
            for l in range(0, k + 1):
                if h == 0:
                    continue
                s2 = (h * h + k * k + l * l) / CELL**2 * LAMBDA**2 / 4.0
                if s2 >= 1.0:
                    continue
                tt = 2.0 * math.degrees(math.asin(math.sqrt(s2)))
                if THMIN <= tt <= THMAX:
                    out.append((tt, s2, multiplicity(h, k, l)))
    return sorted(out)


def main():
    rng = random.Random(20260321)
    refl = reflections()
    assert len(refl) == len(TRUE_F2)
    npts = int((THMAX - THMIN) / STEP + 1.5)
    counts = []
    for i in range(npts):
        x = THMIN + i * STEP
        u = x / BKPOS - 1.0
        y = BACKGROUND[0] + BACKGROUND[1] * u + BACKGROUND[2] * u * u
        for (tt, s2, m), f2 in zip(refl, TRUE_F2):
            cos_t = math.sqrt(1.0 - s2)
            lp = (1.0 + CTHM * (1.0 - 2.0 * s2) ** 2) / (2.0 * s2 * cos_t)
            tan_t = math.sqrt(s2 / (1.0 - s2))
            h = math.sqrt((U * tan_t + V) * tan_t + W)
            x2 = ((x - tt) / h) ** 2
            y += SCALE * 4 * m * lp * f2 * 0.9394373 / h * math.exp(-2.772589 * x2)
        counts.append(max(1, int(round(rng.gauss(y, math.sqrt(y))))))
    with open("cycle.dat", "w") as f:
        f.write("%8.3f %8.4f %8.3f\n" % (THMIN, STEP, THMAX))
        for i in range(0, npts, 10):
            f.write("".join("%8d" % c for c in counts[i:i + 10]) + "\n")


if __name__ == "__main__":
    main()
