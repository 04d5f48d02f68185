#!/usr/bin/env python3
"""Independent recalculation of every number of the cycle reports of a
profile-matching job, compared with the expected report lines.

Usage: check_cycle_numbers.py JOB.pcr JOB.dat EXPECTED.out EXPECTED.sum

The job is one X-ray pattern in free format, one phase on profile matching
(Jbt 2, Gaussian peaks, one wavelength, no asymmetry, no texture) of a
primitive cubic cell, and a polynomial background whose coefficients are
refined. From the control values and the counts alone this script builds the
reflections, the calculated pattern of each cycle, the normal equations and
their solution, the residual sums of both point sets and every derived value,
the correlated-residuals factor and the Bragg factors of the Rietveld
partition, which also give the intensities the next cycle starts from.
With the divergence test switched on (IDUM 2) profile matching stops after
the first cycle with a results pass of zero shifts, recalculated as well.

Every number printed in the expected files must agree with the recalculation
within half a unit of its last printed digit, widened only by what 32-bit
storage explains:
- REL_SLACK (two 32-bit units in the last place) for every number;
- SUM_SLACK for the values derived from the residual sums: each point term
  is a 32-bit value and the sums are formed in double precision and stored
  in 32 bits, so a few units in the last place;
- for the refined values and their shifts, STORAGE_BOUND: the change of the
  recalculated shifts when the 32-bit quantities stored per reflection
  (position, width, intensity) move by one or two units in the last place.
The point terms that the program computes in 32-bit reals are computed here
in emulated 32-bit arithmetic; the normal equations and the residual sums are
accumulated as the program does: the normal equations in blocks of
POINTS_PER_BLOCK points summed in 32 bits and added in double precision, the
residual sums in double precision. Any line with a digit
that no rule recognises fails the check. Exit status 0 when all agree, 1
otherwise.

With --rewrite as a fifth argument, every number of the expected files that
disagrees is replaced by the recalculated value in the printed form of the
number it replaces: this is how the expected lines are made.
"""
import math
import re
import struct
import sys

REL_SLACK = 2.4e-7
SUM_SLACK = 6e-7
ULP = 2.0**-23
POINTS_PER_BLOCK = 16
NUM = r"([-+]?(?:\d+\.?\d*|\.\d+)(?:E[-+]\d\d)?|\*+)"


def f32(x):
    return struct.unpack("f", struct.pack("f", x))[0]


# ---------------------------------------------------------------- input


def control_values(path):
    """The fields of the control file that this job uses, by line order."""
    with open(path) as f:
        lines = [ln.rstrip("\n") for ln in f if not ln.startswith("!")]
    nums = lambda i: [float(t) for t in lines[i].split("!")[0].split()]
    job = nums(1)
    lam = nums(3)
    run = nums(4)
    c = {
        "JOBTYP": int(job[0]), "NPROF": int(job[1]), "NPHASE": int(job[2]), "IDUM": int(job[7]),
        "NBCKGD": int(job[3]), "NEXCRG": int(job[4]), "NORI": int(job[6]),
        "IWGT": int(job[8]), "ILOR": int(job[9]),
        "LAMBDA1": lam[0], "LAMBDA2": lam[1], "RATIO": lam[2], "BKPOS": lam[3],
        "WDT": lam[4], "CTHM": lam[5], "MUR": lam[6], "ASYLIM": lam[7],
        "NCY": int(run[0]), "EPS": run[1], "R_GL": run[5],
        "MAXS": int(nums(5)[0]),
        "ZERO": nums(6)[0], "SYCOS": nums(6)[2], "SYSIN": nums(6)[4],
        "BACK": nums(7), "BACK_CODES": nums(8),
    }
    flags = lines[10].split()
    c["JBT"] = int(flags[6])
    c["NPR"] = int(flags[13])
    c["SYMBOL"] = lines[11][:20].strip()
    c["SCALE"] = nums(12)[0]
    c["BOV"] = nums(12)[2]
    c["UVW"] = nums(14)[:3]
    c["CELL"] = nums(16)
    c["PREF_ASY"] = nums(18)
    return c


def check_job_kind(c):
    """The recalculation covers this kind of job only."""
    assert c["JOBTYP"] == 0 and c["NPROF"] == 0 and c["NPHASE"] == 1
    assert c["NBCKGD"] == 0 and c["NEXCRG"] == 0 and c["IWGT"] == 0
    assert c["ILOR"] == 0 and c["MUR"] == 0 and c["ASYLIM"] == 0
    assert c["RATIO"] == 0 and c["LAMBDA1"] == c["LAMBDA2"]
    assert c["ZERO"] == 0 and c["SYCOS"] == 0 and c["SYSIN"] == 0
    assert c["JBT"] == 2 and c["NPR"] == 0 and c["BOV"] == 0
    assert all(v == 0 for v in c["PREF_ASY"])
    assert c["SYMBOL"] == "P m 3 m" and c["CELL"][0] == c["CELL"][1] == c["CELL"][2]
    assert c["R_GL"] == 1.0


def observed(path):
    with open(path) as f:
        head = f.readline().split()
        counts = [float(t) for t in f.read().split()]
    thmin, step, thmax = (float(t) for t in head[:3])
    npts = int((thmax - thmin) / step + 1.5)
    assert len(counts) == npts
    # Positions are 32-bit: first position plus the point number times the
    # 32-bit step; the point spacings enter the Rietveld partition.
    x = [f32(f32(thmin) + f32(i * f32(step))) for i in range(npts)]
    return thmin, step, x, counts


# ---------------------------------------------------------------- model


def cubic_multiplicity(h, k, l):
    """Number of distinct signed permutations of (h, k, l): the form of m3m."""
    forms = set()
    for p in {(h, k, l), (h, l, k), (k, h, l), (k, l, h), (l, h, k), (l, k, h)}:
        for sx in (1, -1):
            for sy in (1, -1):
                for sz in (1, -1):
                    forms.add((sx * p[0], sy * p[1], sz * p[2]))
    return len(forms)


def reflections(c, thmin, thmax):
    """Reflections of the primitive cubic cell inside the range, by position."""
    a, lam = c["CELL"][0], c["LAMBDA1"]
    u, v, w = c["UVW"]
    # P m 3 m: one lattice point and a centre of symmetry, so the reduced
    # operator set undercounts the intensity by (1*2)^2.
    phase_mult = 4
    out = []
    n = int(2 * a / lam) + 1
    for h in range(n + 1):
        for k in range(h + 1):
            for l in range(k + 1):
                if h == 0:
                    continue
                s2 = (h * h + k * k + l * l) / (a * a) * lam * lam / 4.0
                if s2 >= 1.0:
                    continue
                tt = 2.0 * math.degrees(math.asin(math.sqrt(s2)))
                if not thmin <= tt <= thmax:
                    continue
                cos_t = math.sqrt(1.0 - s2)
                tan_t = math.sqrt(s2) / cos_t
                lp = (1.0 + c["CTHM"] * (1.0 - 2.0 * s2) ** 2) / (2.0 * s2 * cos_t)
                m = cubic_multiplicity(h, k, l)
                fwhm = math.sqrt((u * tan_t + v) * tan_t + w)
                # Position, width and intensity factors are stored 32-bit.
                out.append({"hkl": (h, k, l), "pos": f32(tt), "H": f32(fwhm),
                            "LpM": f32(phase_mult * m * lp), "F2": 1.0})
    out.sort(key=lambda r: r["pos"])
    return out


def gauss(delta, fwhm):
    return (0.9394373 / fwhm) * math.exp(-2.772589 * (delta / fwhm) ** 2)


def point_index(value, thmin, step):
    t = (value - thmin) / step + 1.5
    # A reach that falls too near an index boundary could round either way
    # in 32-bit arithmetic; the job is chosen so that none does.
    assert abs(t - round(t)) > 1e-3, "ambiguous reach %r" % value
    return int(t)


def order_codes(refl, c, thmin, step, npts):
    k11 = [0] * (npts + 1)
    k21 = [0] * (npts + 1)
    for k, r in enumerate(refl, start=1):
        reach = c["WDT"] * r["H"]
        lo = point_index(r["pos"] - reach, thmin, step)
        hi = point_index(r["pos"] + reach, thmin, step)
        lo = 1 if lo < 2 else min(lo, npts)
        hi = min(hi, npts)
        for i in range(lo, hi + 1):
            k21[i] = k
            if k11[i] == 0:
                k11[i] = k
    return k11, k21


def powers(x, bkpos, count):
    u = x / bkpos - 1.0
    return [u ** j for j in range(count)]


class Cycle:
    """One cycle of the program: calculated pattern, equations, sums."""

    def __init__(self, c, data, refl, back):
        self.c, self.refl, self.back = c, refl, list(back)
        thmin, step, x, yobs = data
        self.x, self.yobs, self.npts = x, yobs, len(x)
        self.k11, self.k21 = order_codes(refl, c, thmin, step, self.npts)
        codes = c["BACK_CODES"]
        self.refined = [j for j in range(6) if codes[j] != 0]
        assert [int(codes[j] / 10) for j in self.refined] == list(range(1, len(self.refined) + 1))
        self.points()
        self.sums()
        self.solve()

    def bragg(self, i):
        return self.k11[i] != 0 and self.k21[i] != 0

    def points(self):
        c, n = self.c, self.npts
        wdt2 = c["WDT"] ** 2
        self.ycalc = [0.0] * (n + 1)
        self.backg = [0.0] * (n + 1)
        P = len(self.refined)
        A = [[0.0] * P for _ in range(P)]
        B = [0.0] * P
        blockA = [[0.0] * P for _ in range(P)]
        blockB = [0.0] * P
        pending = 0
        for i in range(1, n + 1):
            x = self.x[i - 1]
            pw = powers(x, c["BKPOS"], 6)
            self.backg[i] = f32(sum(b * p for b, p in zip(self.back, pw)))
            y = 0.0
            if self.bragg(i):
                for k in range(self.k11[i], self.k21[i] + 1):
                    r = self.refl[k - 1]
                    d = x - r["pos"]
                    if (d / r["H"]) ** 2 > wdt2:
                        continue
                    y = f32(y + f32(c["SCALE"] * r["LpM"] * gauss(d, r["H"])) * r["F2"])
            self.ycalc[i] = f32(y)
            # Every point reaches the equations through the polynomial rows.
            # The rows of POINTS_PER_BLOCK points are summed in 32 bits, and
            # each such block is added to the double-precision sums.
            res = f32(f32(self.yobs[i - 1] - self.backg[i]) - self.ycalc[i])
            der = [f32(pw[j]) for j in self.refined]
            wgt = f32(1.0 / self.yobs[i - 1])
            for L in range(P):
                u = f32(wgt * der[L])
                blockB[L] = f32(blockB[L] + f32(u * res))
                for m in range(L, P):
                    blockA[L][m] = f32(blockA[L][m] + f32(u * der[m]))
            pending += 1
            if pending == POINTS_PER_BLOCK or i == n:
                for L in range(P):
                    B[L] += blockB[L]
                    blockB[L] = 0.0
                    for m in range(L, P):
                        A[L][m] += blockA[L][m]
                        blockA[L][m] = 0.0
                pending = 0
        for L in range(P):
            for m in range(L):
                A[L][m] = A[m][L]
        self.A, self.B = A, B

    def sums(self):
        """Residual sums over all points (set A), over the non-Bragg points and
        over the Bragg points (set B): 32-bit terms summed in double precision,
        each sum kept in 32 bits."""
        keys = ("ydif", "yobs", "ycal", "wyobs2", "res", "ynet", "wynet2", "dw", "dev", "inv")
        total = dict.fromkeys(keys, 0.0)
        nonb = dict.fromkeys(keys, 0.0)
        brag = dict.fromkeys(keys, 0.0)
        prev_s = None
        self.nbragg = 0
        for i in range(1, self.npts + 1):
            yo, yb = self.yobs[i - 1], self.backg[i]
            yc = f32(yb + self.ycalc[i])
            d = f32(yo - yc)
            w = f32(1.0 / yo)
            s = f32(d * math.sqrt(w))
            yn = f32(yo - yb)
            terms = {
                "ydif": abs(d), "yobs": yo, "ycal": yc, "wyobs2": f32(w * yo * yo),
                "res": f32(w * d * d), "ynet": yn, "wynet2": f32(w * yn * yn),
                "dw": 0.0 if prev_s is None else f32((s - prev_s) ** 2),
                "dev": 0.0 if abs(yo) <= 1e-10 or abs(yc) <= 1e-10
                else f32(yo * math.log(abs(yo / yc)) - d),
                "inv": f32(1.0 / yc),
            }
            prev_s = s
            for key in keys:
                total[key] += terms[key]
                if self.bragg(i):
                    brag[key] += terms[key]
                else:
                    nonb[key] += terms[key]
            if self.bragg(i):
                self.nbragg += 1
        stored = lambda sums: {k: f32(v) for k, v in sums.items()}
        self.total, self.nonb, self.brag = stored(total), stored(nonb), stored(brag)

    def derived(self, bragg_set):
        t, P = self.total, len(self.refined)
        if bragg_set:
            s = dict(self.brag)
            inv6 = s["inv"] / 6
            n = self.nbragg
        else:
            s = dict(t)
            inv6 = t["inv"] / 6
            n = self.npts
        np_ = n - P
        v = {"N": n, "NP": np_}
        v["Rp"] = 100 * s["ydif"] / s["yobs"]
        v["Rwp"] = 100 * math.sqrt(s["res"] / s["wyobs2"])
        v["Rexp"] = 100 * math.sqrt(np_ / s["wyobs2"])
        v["Chi2"] = ((1 / v["Rexp"]) * v["Rwp"]) ** 2
        v["cRp"] = 100 * s["ydif"] / s["ynet"]
        v["cRwp"] = 100 * math.sqrt(s["res"] / s["wynet2"])
        v["cRexp"] = 100 * math.sqrt(np_ / s["wynet2"])
        v["cChi2"] = (v["cRwp"] / v["cRexp"]) ** 2
        v["DW"] = s["dw"] / s["res"]
        v["DWexp"] = 2 * ((n - 1) / np_ - 3.0902 / math.sqrt(n + 2))
        v["Dev"] = 2 * s["dev"]
        v["Dev*"] = v["Dev"] / (inv6 + np_)
        v["GoF"] = math.sqrt(s["res"] / n)
        v["Nsigma"] = math.sqrt(0.5 * np_) * (v["Chi2"] - 1)
        v["sums"] = [s["ydif"], s["yobs"], s["ycal"], s["wyobs2"], s["res"], self.condition]
        v["ynet"] = [s["ynet"], s["wynet2"]]
        return v

    def solve(self):
        """Normal equations in double precision; covariance scaled by the
        chi2 of the cycle, whose divisor is the Bragg-point count."""
        A = self.A
        P = len(A)
        inv = invert(A)
        self.shift = [sum(inv[i][j] * self.B[j] for j in range(P)) for i in range(P)]
        self.condition = max(sum(abs(v) for v in row) for row in A) * \
            max(sum(abs(v) for v in row) for row in inv)
        self.chi2 = self.total["res"] / (self.nbragg - P)
        self.sigma = [math.sqrt(abs(inv[i][i] * self.chi2)) for i in range(P)]


def invert(a):
    """Gauss-Jordan inverse with partial pivoting, in double precision."""
    n = len(a)
    m = [list(row) + [1.0 if i == j else 0.0 for j in range(n)] for i, row in enumerate(a)]
    for col in range(n):
        piv = max(range(col, n), key=lambda r: abs(m[r][col]))
        m[col], m[piv] = m[piv], m[col]
        p = m[col][col]
        m[col] = [v / p for v in m[col]]
        for r in range(n):
            if r != col:
                f = m[r][col]
                m[r] = [v - f * w for v, w in zip(m[r], m[col])]
    return [row[n:] for row in m]


def scor(cy):
    """Correlated-residuals factor over the Bragg points."""
    last, prev_d, prev_v, in_run, run_sum, s = -1, 0.0, 1.0, False, 0.0, 0.0
    for i in range(1, cy.npts + 1):
        if not cy.bragg(i):
            continue
        d = cy.yobs[i - 1] - cy.backg[i] - cy.ycalc[i]
        v = cy.yobs[i - 1]
        if i - last != 1 or d * prev_d <= 0:
            s += run_sum ** 2
            run_sum = abs(prev_d) / math.sqrt(prev_v)
            in_run = False
        else:
            if not in_run:
                s += run_sum ** 2
                in_run = True
                run_sum = 0.0
            t = prev_d ** 2 / prev_v
            u = d * d / v + t
            q = math.sqrt(6.2831855 * u)
            r = q / (2 + q)
            run_sum += math.sqrt(t) * r
            s += (1 - r * r) * t
        last, prev_d, prev_v = i, d, v
    s += run_sum ** 2
    return math.sqrt(s / cy.brag["res"])


def bragg_factors(cy, thmin, step):
    """Bragg R-factors by the Rietveld partition; extracts the next F2."""
    c, n = cy.c, cy.npts
    wdt2 = c["WDT"] ** 2
    sum_abs_i = sum_iobs = sum_abs_f = sum_fobs = 0.0
    new_f2 = []
    for r in cy.refl:
        reach = c["WDT"] * r["H"]
        lo = max(1, min(n, point_index(r["pos"] - reach, thmin, step)))
        hi = max(1, min(n, point_index(r["pos"] + reach, thmin, step)))
        iobs = icalc = 0.0
        for i in range(lo, hi + 1):
            if not cy.bragg(i):
                continue
            d = cy.x[i - 1] - r["pos"]
            delta = cy.x[i] - cy.x[i - 1]
            if (d / r["H"]) ** 2 > wdt2:
                continue
            om = gauss(d, r["H"])
            icalc = f32(icalc + delta * om)
            y = cy.ycalc[i] if cy.ycalc[i] > 1.0 else 1.0
            iobs = f32(iobs + ((cy.yobs[i - 1] - cy.backg[i]) / y) * delta * om)
        if iobs < 0:
            iobs = 1e-6
        cc = r["LpM"] * c["SCALE"] * r["F2"]
        iobs *= cc
        icalc *= cc
        fcalc = math.sqrt(abs(icalc / (c["SCALE"] * r["LpM"])))
        fobs = math.sqrt(abs(iobs / (c["SCALE"] * r["LpM"])))
        sum_abs_i += abs(iobs - icalc)
        sum_iobs += iobs
        sum_abs_f += abs(fobs - fcalc)
        sum_fobs += fobs
        new_f2.append(f32(iobs / (c["SCALE"] * r["LpM"])))
    rb = 100 * sum_abs_i / (sum_iobs if sum_iobs >= 1.0 else 1.0)
    rf = 100 * sum_abs_f / (sum_fobs if sum_fobs >= 1.0 else 1.0)
    return rb, rf, new_f2


def storage_bound(c, data, refl, back, cy):
    """Spread of the shifts under one-unit changes of the 32-bit reflection
    quantities: all positions, all widths, all intensities (two units); and
    of the 32-bit background values, which the program evaluates in 32-bit
    arithmetic: all of them one unit larger."""
    bound = [0.0] * len(cy.shift)
    for key, factor in (("pos", 1 + ULP), ("H", 1 + ULP), ("F2", 1 + 2 * ULP), ("back", 1 + ULP)):
        moved = [dict(r) for r in refl]
        moved_back = list(back)
        if key == "back":
            moved_back = [b * factor for b in back]
        else:
            for r in moved:
                r[key] = r[key] * factor
        other = Cycle(c, data, moved, moved_back)
        for L, (a, b) in enumerate(zip(cy.shift, other.shift)):
            bound[L] += abs(a - b)
    return bound


def run_job(c, data):
    """All cycles of the job; returns per-cycle results."""
    thmin, step, x, _ = data
    refl = reflections(c, thmin, x[-1])
    back = list(c["BACK"])
    out = []
    for cycle in range(1, c["NCY"] + 1):
        cy = Cycle(c, data, refl, back)
        cy.bound = storage_bound(c, data, refl, back, cy)
        before = list(back)
        for j, L in zip(cy.refined, range(len(cy.refined))):
            # The coefficients are stored 32-bit, like every parameter value.
            back[j] = f32(back[j] + f32(cy.shift[L]) * c["R_GL"])
        cy.before, cy.after = before, list(back)
        cy.setA, cy.setB = cy.derived(False), cy.derived(True)
        # Profile matching switches the convergence test off; with the
        # divergence test (IDUM 2) the run then ends after this cycle with a
        # final pass: zero shifts, the sums of the same calculated pattern.
        final = c["IDUM"] == 2
        cy.scor = scor(cy) if cycle == c["NCY"] or final else None
        cy.rb, cy.rf, new_f2 = bragg_factors(cy, thmin, step)
        for r, f2 in zip(refl, new_f2):
            r["F2"] = f2
        out.append(cy)
        if final:
            out.append(final_pass(cy, thmin, step))
            break
    return out


def final_pass(cy, thmin, step):
    """The results pass after the stop: same pattern and sums, no shift, and
    the Bragg factors once more with the intensities just extracted."""
    last = Cycle.__new__(Cycle)
    last.__dict__.update(cy.__dict__)
    last.shift = [0.0] * len(cy.shift)
    last.bound = [0.0] * len(cy.shift)
    last.before = last.after = cy.after
    last.rb, last.rf, _ = bragg_factors(last, thmin, step)
    last.final = True
    return last


# ---------------------------------------------------------------- comparison


def half_unit(token):
    mant, _, exp = token.partition("E")
    dec = len(mant.split(".")[1]) if "." in mant else 0
    return 0.5 * 10.0 ** (-dec) * (10.0 ** int(exp) if exp else 1.0)


def printed_like(token, value):
    """The value in the printed form of token: the same decimals, the same
    exponent form (0.dddE+ee), a leading zero only where token has one."""
    mant, _, exp = token.partition("E")
    dec = len(mant.split(".")[1]) if "." in mant else 0
    if exp:
        e = 0 if value == 0 else math.floor(math.log10(abs(value))) + 1
        m = round(value / 10.0 ** e, dec)
        if abs(m) >= 1.0:
            e += 1
            m = round(value / 10.0 ** e, dec)
        text = "%.*fE%+03d" % (dec, m, e)
    else:
        text = "%.*f" % (dec, value)
    if mant.lstrip("-+").startswith("."):
        text = text.replace("0.", ".", 1)
    return text


class Token(str):
    """A matched number that knows where it stands in its line."""


class SpannedMatch:
    """A regex match whose groups are Tokens."""

    def __init__(self, m):
        self.m = m

    def group(self, i):
        t = Token(self.m.group(i))
        t.span = self.m.span(i)
        return t

    def groups(self):
        return tuple(self.group(i) for i in range(1, self.m.re.groups + 1))


class Checker:
    def __init__(self):
        self.failures = 0
        self.checked = 0
        self.replacements = []  # (line number, span, recalculated text)

    def num(self, token, value, what, line_no, rel=REL_SLACK, extra=0.0):
        self.checked += 1
        if token.startswith("*"):
            ok = False
        else:
            tol = half_unit(token) * (1 + 1e-9) + rel * abs(value) + extra
            ok = abs(float(token) - value) <= tol
        if not ok:
            self.failures += 1
            print("line %d: %s printed %s, recalculated %.9g" % (line_no, what, token, value))
            if isinstance(token, Token) and not token.startswith("*"):
                self.replacements.append((line_no, token.span, printed_like(token, value)))

    def exact(self, token, value, what, line_no):
        self.checked += 1
        if token.startswith("*") or float(token) != value:
            self.failures += 1
            print("line %d: %s printed %s, expected %s" % (line_no, what, token, value))


BACK_LABELS = ["Bck0", "Bck1", "Bck2", "Bck3", "Bck4", "Bck5"]


def line_rules(c, cycles):
    """(regex, handler) pairs; a handler gets the match, the line number,
    the checker and the state (current cycle, current point set)."""
    a = c["CELL"][0]
    unchanged = {"Scale": c["SCALE"], "U": c["UVW"][0], "V": c["UVW"][1], "W": c["UVW"][2],
                 "a": a, "b": a, "c": a, "alpha": 90.0, "beta": 90.0, "gamma": 90.0,
                 "Bk_a": 1.0}

    def cy(st):
        return cycles[st["cycle"] - 1]

    def vals(st):
        return cy(st).setB if st["set"] == "B" else cy(st).setA

    def cycle_line(m, n, ck, st):
        st["cycle"] += 1
        # The results pass after a stop reports the cycle it follows.
        ck.exact(m.group(1), st["cycle"] - (1 if getattr(cy(st), "final", False) else 0), "cycle", n)

    def converged(m, n, ck, st):
        if not getattr(cy(st), "final", False):
            ck.failures += 1
            print("line %d: convergence reported outside a final pass" % n)

    def ones(m, n, ck, st):
        for g in m.groups():
            ck.exact(g, 1, "pattern or phase number", n)

    def param(m, n, ck, st):
        label, value, shift, sigma = m.groups()
        if label in unchanged:
            ck.num(value, unchanged[label], label, n)
            ck.exact(shift, 0, label + " shift", n)
            ck.exact(sigma, 0, label + " sigma", n)
            return
        j = BACK_LABELS.index(label)
        L = cy(st).refined.index(j)
        ck.num(value, cy(st).after[j], label, n, extra=cy(st).bound[L])
        ck.num(shift, cy(st).shift[L], label + " shift", n, extra=cy(st).bound[L])
        ck.num(sigma, cy(st).sigma[L], label + " sigma", n)

    def volume(m, n, ck, st):
        ck.num(m.group(1), a ** 3, "volume", n)
        ck.exact(m.group(2), 0, "volume sigma", n)

    def title(set_name):
        def h(m, n, ck, st):
            st["set"] = set_name
            ck.exact(m.group(1), 1, "pattern", n)
        return h

    def named(*keys):
        def h(m, n, ck, st):
            v = vals(st)
            for g, k in zip(m.groups(), keys):
                if k == "patt":
                    ck.exact(g, 1, "pattern", n)
                elif k in ("NP", "N"):
                    ck.exact(g, v[k], k, n)
                else:
                    ck.num(g, v[k], k + " set " + st["set"], n, rel=SUM_SLACK)
        return h

    def sums_line(m, n, ck, st):
        for g, val, k in zip(m.groups(), vals(st)["sums"],
                             ("SumYdif", "SumYobs", "SumYcal", "SumwYobsSQ", "Residual", "Condition")):
            ck.num(g, val, k + " set " + st["set"], n, rel=SUM_SLACK)

    def ynet_line(m, n, ck, st):
        for g, val, k in zip(m.groups(), vals(st)["ynet"], ("SumYnet", "Sum(w Ynet**2)")):
            ck.num(g, val, k + " set " + st["set"], n, rel=SUM_SLACK)

    def chi2_line(m, n, ck, st):
        ck.num(m.group(1), cy(st).chi2, "global chi2", n, rel=SUM_SLACK)

    def rb_line(m, n, ck, st):
        ck.num(m.group(1), cy(st).rb, "Bragg R-factor", n)

    def rf_line(m, n, ck, st):
        ck.num(m.group(1), cy(st).rf, "RF-factor", n)

    def scor_out(m, n, ck, st):
        ck.num(m.group(1), cycles[-1].scor, "Scor", n)

    def fitted(m, n, ck, st):
        ck.exact(m.group(1), c["MAXS"], "fitted parameters", n)

    def sum_cycle(m, n, ck, st):
        ck.exact(m.group(1), len([cy for cy in cycles if not getattr(cy, "final", False)]), "cycle", n)
        ck.exact(m.group(2), c["NCY"], "max cycle", n)

    def results(m, n, ck, st):
        st["cycle"] = len(cycles)

    sp = r"\s*"
    return [
        (r" => CYCLE No\.:\s+(\d+)$", cycle_line),
        (r" =>  Convergence reached at this CYCLE !!!!$", converged),
        (r" => Phase No\.\s+(\d+)\s+Cubic phase$", ones),
        (r" => Profile parameters of phase\s+(\d+) in pattern\s+(\d+)$", ones),
        (r"\s+(Scale|U|V|W|a|b|c|alpha|beta|gamma|Bk_a|Bck\d)\s+" + NUM + sp + NUM + sp + NUM + sp + "$", param),
        (r" => Cell volume:\s+" + NUM + r" \(\s*" + NUM + r"\)$", volume),
        (r" => Global parameters of pattern\s+(\d+)$", ones),
        (r" ==> RELIABILITY FACTORS WITH ALL NON-EXCLUDED POINTS FOR PATTERN:\s+(\d+)$", title("A")),
        (r" ==> RELIABILITY FACTORS FOR POINTS WITH BRAGG CONTRIBUTIONS FOR PATTERN:\s+(\d+)$", title("B")),
        (r" => R-Factors:\s*" + NUM + sp + NUM + r"\s+Chi2:\s*" + NUM + r"\s+DW-Stat\.:\s*" + NUM + r"\s+Patt#:\s+(\d+)$",
         named("Rp", "Rwp", "Chi2", "DW", "patt")),
        (r" => Expected :\s+" + NUM + r"\s+" + NUM + "$", named("Rexp", "DWexp")),
        (r" => Deviance :\s*" + NUM + r"\s+Dev\*:\s*" + NUM + sp + "$", named("Dev", "Dev*")),
        (r" => GoF-index:\s*" + NUM + r"\s+Sqrt\(Residual/N\)$", named("GoF")),
        (r" => N-P\+C:\s+(\d+)$", named("NP")),
        (r" =>" + sp + NUM + sp + NUM + sp + NUM + sp + NUM + sp + NUM + sp + NUM + sp + "$", sums_line),
        (r" => Conventional Rietveld Rp,Rwp,Re and Chi2:\s*" + NUM + sp + NUM + sp + NUM + sp + NUM + sp + "$",
         named("cRp", "cRwp", "cRexp", "cChi2")),
        (r" =>  SumYnet, Sum\(w Ynet\*\*2\):\s*" + NUM + sp + NUM + sp + "$", ynet_line),
        (r" => N-sigma of the GoF:\s*" + NUM + "$", named("Nsigma")),
        (r" => Global user-weigthed Chi2 \(Bragg contrib\.\):\s*" + NUM + sp + "$", chi2_line),
        (r" => ---------> Pattern#\s+(\d+)$", ones),
        (r" => Phase:\s+(\d+)$", ones),
        (r" =>    Bragg R-factor:\s*" + NUM + sp + "$", rb_line),
        (r" =>    RF-factor     :\s*" + NUM + sp + "$", rf_line),
        (r"   Standard deviations have to be multiplied by:\s*" + NUM + "$", scor_out),
        (r" => Scor:\s*" + NUM + "$", scor_out),
        (r" ==> RESULTS OF REFINEMENT:$", results),
        (r" => No\. of fitted parameters:\s+(\d+)$", fitted),
        (r" => Cycle:\s+(\d+) => MaxCycle:\s+(\d+)$", sum_cycle),
        (r" =>  R-factors \(not corrected for background\) for Pattern:\s+(\d+)$", ones),
        (r" => Rp:\s*" + NUM + r"\s+Rwp:\s*" + NUM + r"\s+Rexp:\s*" + NUM + r"\s+Chi2:\s*" + NUM + r"\s+L\.S\. refinement$",
         named("Rp", "Rwp", "Rexp", "Chi2")),
        (r" => Conventional Rietveld R-factors for Pattern:\s+(\d+)$", ones),
        (r" => Rp:\s*" + NUM + r"\s*Rwp:\s*" + NUM + r"\s*Rexp:\s*" + NUM + r"\s*Chi2:\s*" + NUM + sp + "$",
         named("cRp", "cRwp", "cRexp", "cChi2")),
        (r" => Deviance:\s*" + NUM + r"\s+Dev\*  :\s*" + NUM + sp + "$", named("Dev", "Dev*")),
        (r" => DW-Stat\.:\s*" + NUM + r"\s+DW-exp:\s*" + NUM + "$", named("DW", "DWexp")),
        # Literature references and the clock lines hold no recalculated number.
        (r"   -J\.F\.Berar.*$", None),
        (r"\s+CPU Time:.*$", None),
        (r"\s+[0-9.]+ minutes$", None),
        (r" => Run finished at:.*$", None),
    ]


def rewrite_file(path, lines, replacements):
    """Puts each recalculated text in the field of the number it replaces:
    the number and the blanks before it, right-aligned."""
    for n, (start, end), text in sorted(replacements, key=lambda r: (r[0], -r[1][0])):
        line = lines[n - 1]
        field_start = start
        while field_start > 0 and line[field_start - 1] == " ":
            field_start -= 1
        width = end - field_start
        assert len(text) <= width, "line %d: %s does not fit" % (n, text)
        lines[n - 1] = line[:field_start] + text.rjust(width) + line[end:]
    with open(path, "w") as f:
        f.write("".join(ln + "\n" for ln in lines))


def check_file(path, rules, ck, st, rewrite=False):
    with open(path) as f:
        lines = [ln.rstrip("\n") for ln in f]
    compiled = [(re.compile(rx), h) for rx, h in rules]
    ck.replacements = []
    for n, line in enumerate(lines, start=1):
        for rx, h in compiled:
            m = rx.match(line)
            if m:
                if h:
                    h(SpannedMatch(m), n, ck, st)
                break
        else:
            if re.search(r"\d", line):
                ck.failures += 1
                print("%s line %d: no rule for a line with numbers: %r" % (path, n, line))
    if rewrite and ck.replacements:
        rewrite_file(path, lines, ck.replacements)


def main(argv):
    rewrite = len(argv) == 6 and argv[5] == "--rewrite"
    if len(argv) != 5 and not rewrite:
        print(__doc__)
        return 2
    c = control_values(argv[1])
    check_job_kind(c)
    thmin, step, x, counts = observed(argv[2])
    cycles = run_job(c, (thmin, step, x, counts))
    ck = Checker()
    rules = line_rules(c, cycles)
    check_file(argv[3], rules, ck, {"cycle": 0, "set": "A"}, rewrite)
    check_file(argv[4], rules, ck, {"cycle": len(cycles), "set": "A"}, rewrite)
    print("%d numbers checked, %d disagree" % (ck.checked, ck.failures))
    return 1 if ck.failures or ck.checked == 0 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
