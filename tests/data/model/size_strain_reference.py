#!/usr/bin/env python3
"""Reference values of the size, strain and shift models, computed independently.

Cartesian route: the reciprocal vector h* = B h is built from the reciprocal
basis (a* = b x c / V, ...), lengths and angles are taken in Cartesian space,
1/d^2 = |h*|^2, and the derivatives of 1/d^2 with respect to the cell
constants are central differences of that function. Nothing here shares code
with the program. Prints the rows the tests in tests/model/size_strain_test.cpp
hold.
"""
import math

P2 = (180.0 / math.pi * math.sqrt(8.0 * math.log(2.0)) * 1.0e-3) ** 2


def direct_basis(a, b, c, al, be, ga):
    al, be, ga = (math.radians(x) for x in (al, be, ga))
    va = (a, 0.0, 0.0)
    vb = (b * math.cos(ga), b * math.sin(ga), 0.0)
    cx = c * math.cos(be)
    cy = c * (math.cos(al) - math.cos(be) * math.cos(ga)) / math.sin(ga)
    vc = (cx, cy, math.sqrt(c * c - cx * cx - cy * cy))
    return va, vb, vc


def cross(u, v):
    return (u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0])


def dot(u, v):
    return sum(x * y for x, y in zip(u, v))


def recip_vector(cell, h):
    va, vb, vc = direct_basis(*cell)
    vol = dot(va, cross(vb, vc))
    ra, rb, rc = (tuple(x / vol for x in cross(vb, vc)), tuple(x / vol for x in cross(vc, va)),
                  tuple(x / vol for x in cross(va, vb)))
    return tuple(h[0] * ra[i] + h[1] * rb[i] + h[2] * rc[i] for i in range(3))


def Q(cell, h):
    v = recip_vector(cell, h)
    return dot(v, v)


def cos2(cell, h, v):
    x, y = recip_vector(cell, h), recip_vector(cell, v)
    return dot(x, y) ** 2 / (dot(x, x) * dot(y, y))


MONO = (5.1, 6.3, 7.2, 90.0, 103.5, 90.0)
ORTH = (4.05, 4.30, 3.90, 90.0, 90.0, 90.0)
HEX = (4.7, 4.7, 7.9, 90.0, 90.0, 120.0)


def rows():
    out = []
    h = (1.0, 2.0, 3.0)
    # Model 2: t = 2 S1 h^2/(a^2 Q).
    q = Q(ORTH, h)
    out.append(("strain 2 orth 123 S1=1.5", P2 * (1.5 * 2 * 1.0 / (4.05 ** 2 * q)) ** 2))
    # Model 5: x = h/a, y = k/b.
    x, y = 1.0 / 4.05, 2.0 / 4.30
    out.append(("strain 5 orth 123 S=1.5,0.5,0.25", 4 * P2 * (1.5 ** 2 * x ** 4 + 0.5 ** 2 * y ** 4
                                                               + 2 * 1.5 * 0.5 * 0.25 * x * x * y * y) / q ** 2))
    # Model 7: axis [1 1 0.5] as a reciprocal vector, monoclinic cell.
    qm = Q(MONO, h)
    c2 = cos2(MONO, h, (1.0, 1.0, 0.5))
    out.append(("strain 7 mono 123 S1=1.5 axis 1 1 0.5", P2 * (1.5 * c2) ** 2))
    # Model 10 on (2,-1,1).
    g = (2.0, -1.0, 1.0)
    qg = Q(ORTH, g)
    S1, S2, S3, C4, C5, C6 = 1.5, 0.5, 0.25, 0.75, -0.5, 0.125
    h2, k2, l2 = 4.0, 1.0, 1.0
    out.append(("strain 10 orth 2-11", P2 * (S1 * S1 * h2 * h2 + S2 * S2 * k2 * k2 + S3 * S3 * l2 * l2
                                              + 2 * S1 * S2 * C4 * h2 * k2 + 2 * S1 * S3 * C5 * h2 * l2
                                              + 2 * S2 * S3 * C6 * k2 * l2) / qg ** 2))
    # Generalized strain, monoclinic form: dQ/dp by central differences.
    s = (1.5, 0.5, 0.25, 2.0)
    phi = (30.0, -20.0, 10.0, 45.0, -5.0, 15.0)
    d = []
    for i in range(4):
        idx = (0, 1, 2, 4)[i]
        step = 1e-6
        up = list(MONO); dn = list(MONO)
        up[idx] += step; dn[idx] -= step
        d.append((Q(up, h) - Q(dn, h)) / (2 * step))
    total, pair = 0.0, 0
    for i in range(4):
        total += s[i] ** 2 * d[i] ** 2
        for j in range(i + 1, 4):
            total += 2 * s[i] * s[j] * math.sin(math.radians(phi[pair])) * d[i] * d[j]
            pair += 1
    out.append(("generalized strain mono 123", P2 * total / qm ** 2))
    # Generalized strain, hexagonal: a and b move together.
    qh = Q(HEX, h)
    step = 1e-6
    da = (Q((HEX[0] + step, HEX[1] + step) + HEX[2:], h) - Q((HEX[0] - step, HEX[1] - step) + HEX[2:], h)) / (2 * step)
    dc = (Q(HEX[:2] + (HEX[2] + step,) + HEX[3:], h) - Q(HEX[:2] + (HEX[2] - step,) + HEX[3:], h)) / (2 * step)
    sa, sc, ph = 1.5, 0.5, 30.0
    out.append(("generalized strain hex 123", P2 * (sa * sa * da * da + sc * sc * dc * dc
                                                     + 2 * sa * sc * math.sin(math.radians(ph)) * da * dc) / qh ** 2))
    # Platelet size model 1: LorSiz |cos phi|, needle sin phi.
    c2s = cos2(MONO, h, (0.0, 1.0, 0.0))
    out.append(("size 1 mono 123 axis 010 LorSiz=0.2", 0.2 * math.sqrt(c2s)))
    out.append(("size -1 mono 123 axis 010 LorSiz=0.2", 0.2 * math.sqrt(1 - c2s)))
    # Ellipsoid (Str 2): (180/pi) lambda / (pi Q) * sum p_ij h_i h_j.
    p = (0.01, 0.02, 0.005, 0.002, -0.003, 0.001)
    S = p[0] * 1 + p[1] * 4 + p[2] * 9 + p[3] * 2 * 2 + p[4] * 2 * 3 + p[5] * 2 * 6
    out.append(("ellipsoid mono 123 lambda 1.5406", S * 180 / math.pi * 1.5406 / qm / math.pi))
    # Harmonics, monoclinic b unique: Cartesian frame with z along b (the
    # direction of b* x (a*)... b is normal to a* and c*), x along c*.
    v = recip_vector(MONO, h)
    bdir = direct_basis(*MONO)[1]
    bn = tuple(t / math.sqrt(dot(bdir, bdir)) for t in bdir)
    cs = recip_vector(MONO, (0, 0, 1))
    cn = tuple(t / math.sqrt(dot(cs, cs)) for t in cs)
    yn = cross(bn, cn)
    r = math.sqrt(dot(v, v))
    z, u, w = dot(v, bn) / r, dot(v, cn) / r, dot(v, yn) / r
    # The program takes v = h sqrt(G11 G33 - G13^2)/(sqrt(G33) sqrt(Q)): its
    # sign is that of h, the sense of the third axis.
    w = abs(w) * (1 if h[0] >= 0 else -1)
    Y = [1.0, u * u - w * w, 2 * u * w, (3 * z * z - 1) / 2,
         math.cos(4 * math.atan2(w, u)) * (u * u + w * w) ** 2,
         math.sin(4 * math.atan2(w, u)) * (u * u + w * w) ** 2,
         0.77778 * (7 * z * z - 1) * (u * u - w * w), 0.77778 * (7 * z * z - 1) * 2 * u * w,
         (35 * z ** 4 - 30 * z * z + 3) / 8]
    coeff = (0.05, 0.01, -0.02, 0.03, 0.015, -0.01, 0.02, 0.005, -0.015)
    out.append(("harmonics 15 mono 123", sum(a * b for a, b in zip(coeff, Y))))
    # Trigonal harmonics: x along a*, z along c.
    vh = recip_vector(HEX, h)
    rh = math.sqrt(dot(vh, vh))
    astar = recip_vector(HEX, (1, 0, 0))
    an = tuple(t / math.sqrt(dot(astar, astar)) for t in astar)
    zn = (0.0, 0.0, 1.0)
    yh = cross(zn, an)
    z, u, w = dot(vh, zn) / rh, dot(vh, an) / rh, dot(vh, yh) / rh
    phi_ = math.atan2(w, u)
    s = math.sqrt(u * u + w * w)
    Yt = [1.0, (3 * z * z - 1) / 2, (35 * z ** 4 - 30 * z * z + 3) / 8, 3.0792 * z * math.sin(3 * phi_) * s ** 3,
          (231 * z ** 6 - 315 * z ** 4 + 105 * z * z - 5) / 16,
          1.41685 * (11 * z * z - 3) * z * math.sin(3 * phi_) * s ** 3, math.cos(6 * phi_) * s ** 6]
    out.append(("harmonics 16 hex 123", sum(a * b for a, b in zip(coeff[:7], Yt))))
    # Shift model 1: Shift1 |cos phi| with the axis [1 0 0] reciprocal.
    out.append(("shift 1 mono 123 axis 100 Shift1=0.04", 0.04 * math.sqrt(cos2(MONO, h, (1.0, 0.0, 0.0)))))
    out.append(("shift -1 mono 123 axis 100 Shift1=0.04", 0.04 * math.sqrt(1 - cos2(MONO, h, (1.0, 0.0, 0.0)))))
    return out


if __name__ == "__main__":
    for name, value in rows():
        print("%-45s %.10e" % (name, value))
