#!/usr/bin/env python3
"""Writes structure_factor_cases.txt, the expected squared structure factors of the tests.

Two sources, both independent of the program:
  * the structure-factor oracle's examples (../shared/oracle/examples/*.out), whose F2red
    column is the reduced-operator F^2 the program sums;
  * a direct summation written here over every operator of the general position
    (../shared/tables/sg_ops.txt), with complex form factors f0 + f' + i f'' and
    anisotropic displacement factors, for the cases the oracle does not cover.
For a reflection h the whole-cell sum gives F2avg = (|F(h)|^2 + |F(-h)|^2)/2, and the
program's reduced sum is F2avg / (ncentring * (2 if the inversion is at the origin else 1))^2.

Run from the project root:  python3 tests/data/model/make_structure_factor_cases.py
"""
import cmath
import math
import os
import sys
from fractions import Fraction

HERE = os.path.dirname(os.path.abspath(__file__))
SHARED = os.path.join(HERE, "..", "..", "..", "..", "shared")


def read_ops(symbol):
    ops, block = [], None
    for line in open(os.path.join(SHARED, "tables", "sg_ops.txt")):
        if line.startswith("#"):
            continue
        parts = line.split()
        if parts[0] == "SG":
            block = " ".join(parts[3:])
            continue
        if block == symbol:
            v = [int(x) for x in parts]
            ops.append(([v[0:3], v[3:6], v[6:9]], [v[9] / 12.0, v[10] / 12.0, v[11] / 12.0]))
    return ops


def group_facts(symbol):
    for line in open(os.path.join(SHARED, "tables", "sg_list.txt")):
        if line.startswith("#"):
            continue
        p = line.split()
        if " ".join(p[10:]) == symbol:
            return int(p[3]), int(p[5]), int(p[6])  # ncentring, invorigin, order
    raise SystemExit("symbol not found: " + symbol)


def site_multiplicity(ops, x):
    images = set()
    for R, t in ops:
        y = [sum(R[i][j] * x[j] for j in range(3)) + t[i] for i in range(3)]
        images.add(tuple(round((v % 1.0) * 1e6) % 1000000 for v in y))
    return len(images)


def whole_cell_f(ops, atoms, h, s2):
    F = 0j
    for a in atoms:
        f = a["coef"][8] + a["fp"] + sum(
            a["coef"][2 * j] * math.exp(-a["coef"][2 * j + 1] * s2) for j in range(4))
        f = complex(f, a["fpp"])
        E = math.exp(-a["B"] * s2)
        b = a["beta"]
        for R, t in ops:
            # the image at R x + t carries the factor exp(-h R beta R^T h^T)
            hp = [sum(h[i] * R[i][j] for i in range(3)) for j in range(3)]
            q = (b[0] * hp[0] ** 2 + b[1] * hp[1] ** 2 + b[2] * hp[2] ** 2 +
                 2 * (b[3] * hp[0] * hp[1] + b[4] * hp[0] * hp[2] + b[5] * hp[1] * hp[2]))
            phase = 2 * math.pi * (sum(hp[j] * a["x"][j] for j in range(3)) +
                                   sum(h[i] * t[i] for i in range(3)))
            F += f * a["occ"] * E * math.exp(-q) * cmath.exp(1j * phase)
    return F


def reciprocal_s2(cell, h):
    a, b, c, al, be, ga = cell
    ca, cb, cg = (math.cos(math.radians(v)) for v in (al, be, ga))
    sa, sb, sg = (math.sin(math.radians(v)) for v in (al, be, ga))
    V = a * b * c * math.sqrt(1 - ca * ca - cb * cb - cg * cg + 2 * ca * cb * cg)
    astar, bstar, cstar = b * c * sa / V, a * c * sb / V, a * b * sg / V
    cas = (cb * cg - ca) / (sb * sg)
    cbs = (ca * cg - cb) / (sa * sg)
    cgs = (ca * cb - cg) / (sa * sb)
    hh, kk, ll = h
    q = (hh * hh * astar ** 2 + kk * kk * bstar ** 2 + ll * ll * cstar ** 2 +
         2 * kk * ll * bstar * cstar * cas + 2 * hh * ll * astar * cstar * cbs +
         2 * hh * kk * astar * bstar * cgs)
    return q / 4.0


def direct_case(name, symbol, cell, atoms, hkls, out):
    ops = read_ops(symbol)
    ncent, invorigin, order = group_facts(symbol)
    assert len(ops) == order, (symbol, len(ops), order)
    for a in atoms:
        a["occ"] = a["chem"] * site_multiplicity(ops, a["x"]) / order
    out.append("case %s" % name)
    out.append("group %s" % symbol)
    for a in atoms:
        out.append("atom %s %r %r %r %r %r %s %r %r %s" % (
            a["label"], *a["x"], a["B"], a["occ"], " ".join(repr(v) for v in a["coef"]),
            a["fp"], a["fpp"], " ".join(repr(v) for v in a["beta"])))
    div = (ncent * (2 if invorigin else 1)) ** 2
    for h in hkls:
        s2 = reciprocal_s2(cell, h)
        Fp = whole_cell_f(ops, atoms, h, s2)
        Fm = whole_cell_f(ops, atoms, [-v for v in h], s2)
        avg = (abs(Fp) ** 2 + abs(Fm) ** 2) / 2
        out.append("hkl %d %d %d %r %r" % (*h, s2, avg / div))
    out.append("end")


def frac(text):
    return float(Fraction(text))


def oracle_case(name, out):
    base = os.path.join(SHARED, "oracle", "examples", name)
    positions = {}
    for line in open(base + ".in"):
        p = line.split("#")[0].split()
        if p and p[0] == "atom":
            positions[p[1]] = [frac(v) for v in p[3:6]]
    lines = open(base + ".out").read().splitlines()
    symbol = next(l for l in lines if l.startswith("# space group:")).split(":")[1].split("(")[0]
    order = int(next(l for l in lines if "operators in the general position" in l)
                .split(",")[-1].split()[0])
    out.append("case oracle_%s" % name)
    out.append("group %s" % symbol.strip())
    in_atoms = False
    for l in lines:
        if l.startswith("# atoms:"):
            in_atoms = True
            continue
        if in_atoms and l.startswith("#   "):
            p = l[1:].split()
            label, B, chem, site = p[0], float(p[5]), float(p[6]), int(p[8])
            coef, fp, fpp = [0.0] * 9, 0.0, 0.0
            for item in p[9:]:
                if item.startswith("coef="):
                    idx = p.index(item)
                    coef = [float(item[5:])] + [float(v) for v in p[idx + 1:idx + 9]]
                elif item.startswith("fp="):
                    fp = float(item[3:])
                elif item.startswith("fpp="):
                    fpp = float(item[4:])
                elif item.startswith("b="):
                    fp = float(item[2:])
            occ = chem * site / order
            x = positions[label]
            out.append("atom %s %r %r %r %r %r %s %r %r 0 0 0 0 0 0" % (
                label, *x, B, occ, " ".join(repr(v) for v in coef), fp, fpp))
            continue
        in_atoms = False
        if l and not l.startswith("#"):
            p = l.split()
            h = [int(v) for v in p[0:3]]
            s = float(p[4])
            out.append("hkl %d %d %d %r %s" % (*h, s * s, p[9]))
    out.append("end")


def main():
    out = ["# Expected reduced-operator F^2: written by make_structure_factor_cases.py; do not edit.",
           "# atom: label x y z Biso Occ a1 b1 a2 b2 a3 b3 a4 b4 c f' f'' b11 b22 b33 b12 b13 b23",
           "# hkl: h k l s2 F2"]
    for name in ["nacl_xray_noanom", "nacl_xray", "ceo2_neutron", "ceo2_xray_ions",
                 "zns_xray_anom", "pbso4_xray_anom", "quartz_xray_anom"]:
        oracle_case(name, out)
    # Anisotropic displacement in a monoclinic acentric and a centric group, with f''.
    zn = [14.0743, 3.2655, 7.0318, 0.2333, 5.1652, 10.3163, 2.41, 58.7097, 1.3041]
    o = [3.0485, 13.2771, 2.2868, 5.7011, 1.5463, 0.3239, 0.867, 32.9089, 0.2508]
    cell = [5.1, 6.3, 7.2, 90.0, 104.5, 90.0]
    atoms = [
        dict(label="Zn1", x=[0.1234, 0.2345, 0.3456], B=0.0, chem=1.0, coef=zn, fp=-1.613,
             fpp=0.678, beta=[0.010, 0.008, 0.006, 0.002, -0.001, 0.0015]),
        dict(label="O1", x=[0.3811, 0.0712, 0.1903], B=0.8, chem=0.9, coef=o, fp=0.047,
             fpp=0.032, beta=[0.004, 0.003, 0.005, 0.0, 0.001, -0.0008]),
    ]
    hkls = [[1, 0, 0], [0, 1, 1], [1, 1, -1], [2, 1, 3], [-2, 3, 1], [3, -1, 2], [0, 4, 2]]
    direct_case("aniso_p21", "P 1 21 1", cell, [dict(a) for a in atoms], hkls, out)
    direct_case("aniso_p21c", "P 1 21/c 1", cell, [dict(a) for a in atoms], hkls, out)
    # Neutron lengths with anisotropic atoms in an F-centred acentric group.
    ns = [dict(label="Zn1", x=[0.0, 0.0, 0.0], B=0.3, chem=1.0, coef=[0.0] * 9, fp=0.568, fpp=0.0,
               beta=[0.004, 0.004, 0.004, 0.0, 0.0, 0.0]),
          dict(label="S1", x=[0.27, 0.27, 0.27], B=0.0, chem=1.0, coef=[0.0] * 9, fp=0.2847,
               fpp=0.0, beta=[0.006, 0.006, 0.006, 0.001, 0.001, 0.001])]
    direct_case("aniso_f43m_neutron", "F -4 3 m", [5.41, 5.41, 5.41, 90, 90, 90], ns,
                [[1, 1, 1], [2, 0, 0], [2, 2, 0], [3, 1, 1], [3, 3, 1], [4, 2, 0]], out)
    path = os.path.join(HERE, "structure_factor_cases.txt")
    open(path, "w").write("\n".join(out) + "\n")
    print("wrote", path)


if __name__ == "__main__":
    sys.exit(main())
