#!/usr/bin/env python3
"""Reference values of |F_perp|^2 for the magnetic structure-factor tests.

Independent of the program: every case lists the moments of a magnetic
supercell atom by atom, in Cartesian axes (a along x, b in the xy plane), and
sums them by brute force,

    F(Q) = (1/Ncells) sum_j p f_j(s) occ_j exp(-B_j s^2) m_j exp(2 pi i Q.r_j),

then projects F on the plane normal to Q in Cartesian axes. p = gamma_n r_e / 2
from CODATA; f is the <j0> form factor read from ../shared/tables/magnetic_j0.txt.

The modulated moments follow the convention of the program's input: an atom
image n (position R_n x + t_n, not brought into the cell) in cell L carries
    m = 2 Fact Re[ M_n (R - i I) exp(2 pi i (MagPh + psi_n - k.L)) ]
with R, I along the unit vectors of the cell axes, Fact 1/2 when k is not
equivalent to -k; and a conical moment (cone axis e from the polar angles
Phi, Theta; e1 = de/dTheta, e2 = e x e1; half-angle beta, phase P8 in degrees)
    m = mu cos(beta) e + mu sin(beta) (e1 cos(t) + e2 sin(t)),
    t = 2 pi (P8/360 - k.L).

Run:  python3 magnetic_reference.py [path to magnetic_j0.txt]
"""
import sys

import numpy as np

GAMMA_N = 1.91304276  # neutron magnetic moment in nuclear magnetons (CODATA)
R_E = 2.8179403262  # classical electron radius in fm (CODATA)
P = GAMMA_N * R_E / 2.0 / 10.0  # 1E-12 cm per Bohr magneton


def read_j0(path):
    table = {}
    for line in open(path):
        if line.startswith("#") or not line.strip():
            continue
        f = line.split()
        table[f[1]] = [float(x) for x in f[2:9]]
    return table


def lattice(a, b, c, al, be, ga):
    al, be, ga = np.radians([al, be, ga])
    ax = np.array([a, 0.0, 0.0])
    bx = np.array([b * np.cos(ga), b * np.sin(ga), 0.0])
    cy = (np.cos(al) - np.cos(be) * np.cos(ga)) / np.sin(ga)
    cx = np.array([c * np.cos(be), c * cy, c * np.sqrt(1 - np.cos(be) ** 2 - cy**2)])
    return np.column_stack([ax, bx, cx])  # columns: a, b, c in Cartesian axes


def axes_to_cartesian(A, m):
    """Components along the unit vectors of the axes to Cartesian."""
    units = A / np.linalg.norm(A, axis=0)
    return units @ np.asarray(m, dtype=float)


def f_perp2(A, j0, atoms, Q, ncells):
    """atoms: (r fractional, m Cartesian, form key, Biso, occ)."""
    Q = np.asarray(Q, dtype=float)
    qc = np.linalg.inv(A).T @ Q  # Cartesian, in 1/A without 2 pi
    s = np.linalg.norm(qc) / 2.0
    F = np.zeros(3, dtype=complex)
    for r, m, key, biso, occ in atoms:
        A1, a1, B1, b1, C1, c1, D1 = j0[key]
        f = A1 * np.exp(-a1 * s * s) + B1 * np.exp(-b1 * s * s) + C1 * np.exp(-c1 * s * s) + D1
        F += P * f * occ * np.exp(-biso * s * s) * np.asarray(m) * np.exp(2j * np.pi * Q @ r)
    F /= ncells
    e = qc / np.linalg.norm(qc)
    Fp = F - e * (e @ F)
    return float(np.real(np.vdot(Fp, Fp)))


def antiferro_pnma(j0):
    """LaMnO3-like A-type order in Pnma, moments of 3.7 along a."""
    A = lattice(5.7327, 7.6738, 5.5354, 90, 90, 90)
    m = 3.7
    sites = [((0, 0, 0.5), +1), ((0.5, 0, 0), +1), ((0, 0.5, 0.5), -1), ((0.5, 0.5, 0), -1)]
    atoms = [(np.array(r), axes_to_cartesian(A, [s * m, 0, 0]), "MMN3", 0.18, 1.0) for r, s in sites]
    hkls = [(0, 1, 0), (1, 0, 0), (0, 1, 2), (1, 1, 1), (2, 1, 1), (0, 3, 0), (1, 0, 1)]
    return [(h, f_perp2(A, j0, atoms, h, 1)) for h in hkls]


def ferro_triclinic(j0, spherical):
    A = lattice(4.1, 5.2, 6.3, 80, 95, 105)
    if spherical:
        mu, phi, theta = 2.5, np.radians(40.0), np.radians(70.0)
        m = mu * np.array([np.sin(theta) * np.cos(phi), np.sin(theta) * np.sin(phi), np.cos(theta)])
    else:
        m = axes_to_cartesian(A, [1.5, -0.8, 2.2])
    atoms = [(np.array(r), m, "MFE3", 0.4, 1.0) for r in [(0.1, 0.2, 0.3), (0.65, 0.45, 0.7)]]
    hkls = [(1, 0, 0), (0, 1, 1), (1, -1, 2), (2, 1, -1), (0, 0, 1)]
    return [(h, f_perp2(A, j0, atoms, h, 1)) for h in hkls]


def helix(j0):
    """k = (0, 0, 0.3): R along a, I along b, two operators, the second a 2-fold
    screw along c whose moment matrix is the 2-fold rotation, with phase 0.1."""
    A = lattice(5.0, 6.0, 4.0, 90, 90, 90)
    k = np.array([0.0, 0.0, 0.3])
    x = np.array([0.1, 0.2, 0.3])
    R, I, magph = np.array([2.0, 0, 0]), np.array([0, 2.0, 0]), 0.05
    ops = [(np.eye(3), np.zeros(3), np.eye(3), 0.0),
           (np.diag([-1.0, -1.0, 1.0]), np.array([0, 0, 0.5]), np.diag([-1.0, -1.0, 1.0]), 0.1)]
    atoms = []
    moments = []
    for Lz in range(10):
        L = np.array([0, 0, Lz])
        for rot, t, M, psi in ops:
            arg = 2 * np.pi * (magph + psi - k @ L)
            m_axes = np.real(M @ (R - 1j * I) * np.exp(1j * arg))  # 2 Fact = 1
            moments.append(np.linalg.norm(axes_to_cartesian(A, m_axes)))
            atoms.append((rot @ x + t + L, axes_to_cartesian(A, m_axes), "MCO2", 0.5, 1.0))
    assert np.allclose(moments, 2.0), "a helix keeps the size of its moment"
    out = []
    for h, sign in [((0, 0, 0), 1), ((1, 0, 0), 1), ((1, 0, 0), -1), ((1, 1, 0), 1),
                    ((0, 1, 1), -1), ((2, 1, 1), 1)]:
        Q = np.array(h, dtype=float) + sign * k
        out.append(((h, sign), f_perp2(A, j0, atoms, Q, 10)))
    return out


def cone(j0):
    """A ferromagnetic cone in a monoclinic cell, two operators (1 and 2 along b)."""
    A = lattice(6.0, 5.0, 7.0, 90, 100, 90)
    k = np.array([0.2, 0.0, 0.125])
    x = np.array([0.15, 0.25, 0.35])
    mu, beta, p8 = 2.0, np.radians(35.0), 20.0
    Phi, Theta = np.radians(30.0), np.radians(60.0)
    e = np.array([np.sin(Theta) * np.cos(Phi), np.sin(Theta) * np.sin(Phi), np.cos(Theta)])
    e1 = np.array([np.cos(Theta) * np.cos(Phi), np.cos(Theta) * np.sin(Phi), -np.sin(Theta)])
    e2 = np.cross(e, e1)
    ops = [(np.eye(3), np.zeros(3)), (np.diag([-1.0, 1.0, -1.0]), np.zeros(3))]
    atoms = []
    for La in range(5):
        for Lc in range(8):
            L = np.array([La, 0, Lc])
            t = 2 * np.pi * (p8 / 360.0 - k @ L)
            m = mu * np.cos(beta) * e + mu * np.sin(beta) * (e1 * np.cos(t) + e2 * np.sin(t))
            for rot, tr in ops:
                atoms.append((rot @ x + tr + L, m, "MNI2", 0.2, 1.0))
    out = []
    for h, sign in [((1, 0, 0), 0), ((0, 1, 1), 0), ((1, 1, -1), 0), ((1, 0, 0), 1),
                    ((0, 1, 1), -1), ((1, 1, -1), 1)]:
        Q = np.array(h, dtype=float) + sign * k
        out.append(((h, sign), f_perp2(A, j0, atoms, Q, 40)))
    return out


def main():
    path = sys.argv[1] if len(sys.argv) > 1 else "../../../../shared/tables/magnetic_j0.txt"
    j0 = read_j0(path)
    print(f"# p = {P:.6f} (1E-12 cm per Bohr magneton)")
    for name, rows in [("antiferromagnet Pnma", antiferro_pnma(j0)),
                       ("ferromagnet P1", ferro_triclinic(j0, False)),
                       ("ferromagnet P1 spherical", ferro_triclinic(j0, True)),
                       ("helix", helix(j0)), ("cone", cone(j0))]:
        print("#", name)
        for h, v in rows:
            print(f"{h}: {v:.9g}")


if __name__ == "__main__":
    main()
