#!/usr/bin/env python3
"""A constant-wavelength powder pattern calculated point by point, independently of corvinet.

Usage:  python3 calculate_pattern.py JOB.calc SHARED_DIR > pattern.txt

JOB.calc holds the numbers of a pattern-calculation control file, one keyword per line
('#' starts a comment):

  radiation xray | neutron
  wavelengths L1 L2 RATIO       second wavelength used when RATIO > 0 and |L2 - L1| > 0.001
  range THMIN STEP THMAX        degrees 2theta; the points are THMIN + (i-1) STEP
  zero ZERO                     zero shift of 2theta, degrees
  monochromator CTHM            polarisation constant (X-rays only)
  peak_range WDT                a peak reaches WDT full widths at half maximum on each side
  background BKPOS B0 .. B5     polynomial sum_j Bj (x/BKPOS - 1)^j
  spacegroup SYMBOL             as in tables/sg_list.txt
  cell a b c alpha beta gamma
  atom LABEL TYPE x y z Biso Occ     Occ as in the control file: the chemical occupancy times
                                     site multiplicity / general multiplicity
  scale S
  uvw U V W                     H^2 = U tan^2(theta) + V tan(theta) + W
  eta ETA0 X                    pseudo-Voigt mixing eta = ETA0 + X * 2theta (Bragg angle)
  anomalous energy              (X-rays) f', f'' of each atom at the energy of L1, interpolated
                                linearly in log E in tables/anomalous_energy.txt (never across
                                an absorption edge); without it, the oracle's reference columns

The geometry is Bragg-Brentano (or Debye-Scherrer) with no absorption, no low-angle
correction, no asymmetry, no preferred orientation, no overall displacement factor, and
sample displacement and transparency terms zero.

SHARED_DIR is the directory that holds tables/ (space-group facts) and oracle/sf_oracle.py
(structure factors). The structure factors come from the oracle, run with this interpreter.

Model, per point x:
  y(x) = background(x) + sum over reflections r and wavelengths w of
         S * m_r * Lp(theta_rw) * F2_r * R_w * Omega(x - 2theta_rw - ZERO)
with m_r the number of distinct hkl of the form {+-(hkl)R}, F2_r the oracle's whole-cell
|F|^2 averaged over the Friedel pair (the program sums over a reduced operator set, without
lattice centring and, for a group with the inversion at the origin, without the inversion,
and multiplies by the phase factor (ncentring * icent)^2, which makes up the same whole-cell
value), R_1 = 1, R_2 = RATIO, and
  Lp = 1 / (2 sin^2(theta) cos(theta)) * (1 + CTHM cos^2(2 theta))   X-rays
  Lp = 1 / (2 sin^2(theta) cos(theta))                               neutrons
  Omega = eta L + (1 - eta) G, the normalised Lorentzian and Gaussian of full width H at half
          maximum (unit area over 2theta in degrees), zero where |x - position| > WDT * H.
A reflection is in the pattern when its position 2theta + ZERO lies in [THMIN, THMAX + R],
R = WDT * H(THMAX), with H(THMAX) the width of a peak at 2theta = THMAX: a peak beyond THMAX
still adds its tail to the last points.

Output: a comment header, then one line per point: x, y, y_low, y_high, background.
y_low and y_high bound y when a peak cut-off falls within 2e-4 degrees of the point, or a
position within 2e-4 degrees of THMIN or THMAX + R, so that a rounding of the peak position
could take the reflection in or out; elsewhere they equal y.

Exit status 77 (skip) when numpy or the oracle's packages are missing, or SHARED_DIR is absent.
"""
import importlib.util
import math
import os
import subprocess
import sys
import tempfile

try:
    import numpy as np
except ImportError:
    np = None

SKIP = 77
CUT_MARGIN = 2.0e-4  # degrees: a position this close to a cut edge could fall either side
NEUTRON_GAIN = 100.0  # scattering lengths go to the oracle in fm


def skip(reason):
    print('SKIP: ' + reason, file=sys.stderr)
    sys.exit(SKIP)


# ------------------------------------------------------------------ input ---
def read_job(path):
    job = {'atoms': []}
    for raw in open(path):
        line = raw.split('#', 1)[0].strip()
        if not line:
            continue
        w = line.split()
        key = w[0].lower()
        if key == 'atom':
            job['atoms'].append((w[1], w[2], *[float(v) for v in w[3:8]]))
        elif key in ('radiation', 'anomalous'):
            job[key] = w[1].lower()
        elif key == 'spacegroup':
            job[key] = ' '.join(w[1:])
        else:
            job[key] = [float(v) for v in w[1:]]
    return job


def data_lines(path):
    with open(path) as f:
        for line in f:
            if line.strip() and not line.startswith('#'):
                yield line.split()


def read_group(tables, symbol):
    """The operators [(R rows, t in twelfths)] of the general position of a symbol."""
    want = ' '.join(symbol.split()).lower()
    rec = next((w for w in data_lines(os.path.join(tables, 'sg_list.txt'))
                if ' '.join(w[10:]).lower() == want), None)
    if rec is None:
        sys.exit('space group not in sg_list.txt: ' + symbol)
    sid = int(rec[0])
    ops, inside = [], False
    for w in data_lines(os.path.join(tables, 'sg_ops.txt')):
        if w[0] == 'SG':
            if inside:
                break
            inside = int(w[1]) == sid
            continue
        if inside:
            v = [int(x) for x in w]
            ops.append(((tuple(v[0:3]), tuple(v[3:6]), tuple(v[6:9])), tuple(v[9:12])))
    return ops


# ------------------------------------------------------------ reflections ---
def reciprocal_metric(cell):
    a, b, c = cell[:3]
    ca, cb, cg = (math.cos(math.radians(x)) for x in cell[3:])
    g = [[a * a, a * b * cg, a * c * cb], [a * b * cg, b * b, b * c * ca],
         [a * c * cb, b * c * ca, c * c]]
    det = (g[0][0] * (g[1][1] * g[2][2] - g[1][2] * g[2][1])
           - g[0][1] * (g[1][0] * g[2][2] - g[1][2] * g[2][0])
           + g[0][2] * (g[1][0] * g[2][1] - g[1][1] * g[2][0]))
    inv = [[0.0] * 3 for _ in range(3)]
    for i in range(3):
        for j in range(3):
            i1, i2, j1, j2 = (i + 1) % 3, (i + 2) % 3, (j + 1) % 3, (j + 2) % 3
            inv[j][i] = (g[i1][j1] * g[i2][j2] - g[i1][j2] * g[i2][j1]) / det
    return inv


def inverse_d2(gstar, h):
    return sum(gstar[i][j] * h[i] * h[j] for i in range(3) for j in range(3))


def image(h, rot):
    return tuple(sum(h[i] * rot[i][j] for i in range(3)) for j in range(3))


def is_absent(h, ops):
    return any(image(h, r) == h and sum(h[i] * t[i] for i in range(3)) % 12 for r, t in ops)


def forms(job, ops, smax2):
    """One representative per form {+-(hkl)R} with 1/d^2 <= smax2, absences left out, with
    the size of the form."""
    rots = set()
    for r, _ in ops:
        rots.add(r)
        rots.add(tuple(tuple(-x for x in row) for row in r))
    gstar = reciprocal_metric(job['cell'])
    n = [int(math.sqrt(smax2) * job['cell'][i]) + 1 for i in range(3)]
    seen, found = set(), []
    for h in range(-n[0], n[0] + 1):
        for k in range(-n[1], n[1] + 1):
            for l in range(-n[2], n[2] + 1):
                hkl = (h, k, l)
                if hkl == (0, 0, 0) or hkl in seen or inverse_d2(gstar, hkl) > smax2:
                    continue
                orbit = {image(hkl, r) for r in rots}
                seen |= orbit
                if not is_absent(hkl, ops):
                    found.append((max(orbit), len(orbit)))
    return gstar, found


def neutron_lengths(tables):
    """The scattering lengths (1e-12 cm) the program uses, by upper-case key."""
    lengths = {}
    for w in data_lines(os.path.join(tables, 'neutron_b.txt')):
        lengths.setdefault(w[1], float(w[2]))
    return lengths


def energy_terms(tables, kind, wavelength):
    """f', f'' of the element of an X-ray key at the energy of a wavelength (A)."""
    energy = 12.398419843 / wavelength
    rows = {}
    for w in data_lines(os.path.join(tables, 'anomalous_energy.txt')):
        rows.setdefault(w[1].lower(), []).append((float(w[2]), float(w[3]), float(w[4]),
                                                  w[5] if len(w) > 5 else ''))
    letters = ''
    for ch in kind:
        if not ch.isalpha():
            break
        letters += ch.lower()
    symbol = next((letters[:n] for n in (2, 1) if letters[:n] in rows), None)
    if symbol is None:
        sys.exit('no element for the X-ray key ' + kind)
    r = rows[symbol]
    if energy <= r[0][0]:
        return r[0][1], r[0][2]
    if energy >= r[-1][0]:
        return r[-1][1], r[-1][2]
    for lo, hi in zip(r, r[1:]):
        if lo[0] <= energy < hi[0]:
            if lo[3].endswith('b') and hi[3].endswith('a'):
                side = lo if energy < (lo[0] + hi[0]) / 2 else hi
                return side[1], side[2]
            t = math.log(energy / lo[0]) / math.log(hi[0] / lo[0])
            return lo[1] + t * (hi[1] - lo[1]), lo[2] + t * (hi[2] - lo[2])
    sys.exit('energy %g keV not bracketed for %s' % (energy, kind))


def oracle_f2(job, shared, reps):
    """Friedel-averaged whole-cell |F|^2 and form size of each hkl, from the oracle.

    The oracle prints |F|^2 with four decimals. Neutron values in (1e-12 cm)^2 are of order
    one, so the lengths are given to it in fm (times NEUTRON_GAIN) and the result scaled back:
    |F|^2 is quadratic in the lengths."""
    lines = ['spacegroup ' + job['spacegroup'],
             'cell ' + ' '.join('%.6f' % v for v in job['cell'])]
    gain = 1.0
    if job['radiation'] == 'xray':
        explicit = job.get('anomalous') == 'energy'  # the atom lines carry f' and f''
        lines += ['radiation xray %.6f' % job['wavelengths'][0],
                  'anomalous none' if explicit else 'anomalous auto']
    else:
        lines += ['radiation neutron', 'anomalous none']
        lengths = neutron_lengths(os.path.join(shared, 'tables'))
        gain = NEUTRON_GAIN
    lines.append('occupancy site')
    for label, kind, x, y, z, biso, occ in job['atoms']:
        if job['radiation'] == 'xray':
            kind = kind.lower()
        else:
            kind = 'b=%.6f' % (lengths[kind.upper()] * gain)
        terms = ''
        if job['radiation'] == 'xray' and job.get('anomalous') == 'energy':
            fp, fpp = energy_terms(os.path.join(shared, 'tables'), kind, job['wavelengths'][0])
            terms = ' %.6f %.6f' % (fp, fpp)
        lines.append('atom %s %s %.6f %.6f %.6f %.6f %.6f%s'
                     % (label, kind, x, y, z, biso, occ, terms))
    lines += ['hkl %d %d %d' % h for h in reps]
    with tempfile.NamedTemporaryFile('w', suffix='.in', delete=False) as f:
        f.write('\n'.join(lines) + '\n')
        name = f.name
    try:
        out = subprocess.run([sys.executable, os.path.join(shared, 'oracle', 'sf_oracle.py'),
                              name, '--tables', os.path.join(shared, 'tables')],
                             capture_output=True, text=True)
    finally:
        os.unlink(name)
    if out.returncode != 0:
        sys.exit('structure-factor oracle failed:\n' + out.stderr)
    result = {}
    for line in out.stdout.splitlines():
        if line.startswith('#'):
            continue
        w = line.split()
        result[tuple(int(v) for v in w[:3])] = (float(w[8]) / gain ** 2, int(w[5]))
    return result


# ---------------------------------------------------------------- physics ---
def lorentz_polarisation(job, theta):
    s, c = math.sin(theta), math.cos(theta)
    lp = 1.0 / (2.0 * s * s * c)
    if job['radiation'] == 'xray':
        lp *= 1.0 + job['monochromator'][0] * math.cos(2.0 * theta) ** 2
    return lp


def peaks(job, shared, tables):
    """(position, H, eta, integrated intensity) of every reflection member in the range."""
    l1, l2, ratio = job['wavelengths']
    waves = [(l1, 1.0)]
    if ratio > 0 and abs(l2 - l1) > 0.001:
        waves.append((l2, ratio))
    thmin, _, thmax = job['range']
    zero = job['zero'][0]
    u, v, w = job['uvw']
    t_max = math.tan(math.radians(thmax / 2))
    h2_max = u * t_max * t_max + v * t_max + w
    top_position = thmax + (job['peak_range'][0] * math.sqrt(h2_max) if h2_max > 0.0 else 0.0)
    top = min(180.0, top_position - zero + 1.0)
    smax2 = (2.0 * math.sin(math.radians(top / 2)) / min(l for l, _ in waves)) ** 2
    ops = read_group(tables, job['spacegroup'])
    gstar, reps = forms(job, ops, smax2)
    f2 = oracle_f2(job, shared, [h for h, _ in reps])
    eta0, eta_x = job['eta']
    out = []
    for hkl, mult in reps:
        f2avg, oracle_mult = f2[hkl]
        if oracle_mult != mult:
            sys.exit('multiplicity of %s: %d here, %d from the oracle' % (hkl, mult, oracle_mult))
        for lam, weight in waves:
            sin_theta = lam * math.sqrt(inverse_d2(gstar, hkl)) / 2.0
            if sin_theta >= 1.0:
                continue
            theta = math.asin(sin_theta)
            two_theta = math.degrees(2.0 * theta)
            position = two_theta + zero
            if not thmin - CUT_MARGIN <= position <= top_position + CUT_MARGIN:
                continue
            t = math.tan(theta)
            fwhm2 = u * t * t + v * t + w
            if fwhm2 <= 0.0:
                continue
            unsure = min(abs(position - thmin), abs(position - top_position)) < CUT_MARGIN
            intensity = job['scale'][0] * mult * lorentz_polarisation(job, theta) * f2avg * weight
            out.append((position, math.sqrt(fwhm2), eta0 + eta_x * two_theta, intensity, unsure))
    return out


def pseudo_voigt(delta, fwhm, eta):
    x2 = (delta / fwhm) ** 2
    lorentz = 2.0 / (math.pi * fwhm) / (1.0 + 4.0 * x2)
    gauss = 2.0 * math.sqrt(math.log(2.0) / math.pi) / fwhm * np.exp(-4.0 * math.log(2.0) * x2)
    return eta * lorentz + (1.0 - eta) * gauss


def pattern(job, members):
    thmin, step, thmax = job['range']
    npts = int((thmax - thmin) / step + 1.5)
    x = thmin + step * np.arange(npts)
    bkpos, *coef = job['background']
    uu = x / bkpos - 1.0
    back = sum(c * uu ** j for j, c in enumerate(coef))
    y = np.zeros(npts)
    low = np.zeros(npts)
    high = np.zeros(npts)
    reach = job['peak_range'][0]
    for position, fwhm, eta, intensity, unsure_member in members:
        edge = reach * fwhm
        i0 = max(0, int((position - edge - CUT_MARGIN - thmin) / step))
        i1 = min(npts, int((position + edge + CUT_MARGIN - thmin) / step) + 2)
        delta = x[i0:i1] - position
        value = intensity * pseudo_voigt(delta, fwhm, eta)
        inside = np.abs(delta) <= edge
        unsure = np.abs(np.abs(delta) - edge) < CUT_MARGIN
        y[i0:i1] += np.where(inside, value, 0.0)
        if unsure_member:
            high[i0:i1] += np.where(inside | unsure, value, 0.0)
            continue
        low[i0:i1] += np.where(inside & ~unsure, value, 0.0)
        high[i0:i1] += np.where(inside | unsure, value, 0.0)
    return x, back + y, back + low, back + high, back


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    job_path, shared = sys.argv[1], sys.argv[2]
    tables = os.path.join(shared, 'tables')
    if not os.path.isfile(os.path.join(shared, 'oracle', 'sf_oracle.py')):
        skip('no structure-factor oracle under ' + shared)
    if np is None:
        skip('python module numpy is not installed')
    if importlib.util.find_spec('gemmi') is None:
        skip('python module gemmi (needed by the oracle) is not installed')
    job = read_job(job_path)
    members = peaks(job, shared, tables)
    x, y, low, high, back = pattern(job, members)
    print('# %s: %d reflection members, %d points, %d with an uncertain peak cut-off'
          % (os.path.basename(job_path), len(members), len(x), int(np.sum(low != high))))
    for row in zip(x, y, low, high, back):
        print('%.4f %.6f %.6f %.6f %.6f' % row)


if __name__ == '__main__':
    main()
