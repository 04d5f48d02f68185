# Reference values of exp(z)E1(z) and erfc(x) for the time-of-flight peak tests, from mpmath at
# 30 digits. E1 on the negative real axis is taken on the upper side of the cut (z + 0i).
import mpmath as mp

mp.mp.dps = 30
points = [0.5, 3 + 4j, -2 + 0.5j, 12 + 1j, 15 - 3j, -25, -25 + 0.001j, 50 + 30j, -5, 0.01j,
          -12 + 15j, -0.3 + 8j, 300 + 2j, -45 + 3j, -30 + 0.5j, -55 + 1j, -70, -80 + 0.2j, 2.5, 7.5 + 0.5j, 1.5 + 1.5j]
for z in points:
    zz = mp.mpc(z.real if isinstance(z, complex) else z, z.imag if isinstance(z, complex) else 0)
    if zz.imag == 0 and zz.real < 0:
        e1 = mp.e1(mp.mpc(zz.real, mp.mpf('1e-40')))
    else:
        e1 = mp.e1(zz)
    f = mp.exp(zz) * e1
    print("{{{%r, %r}, {%s, %s}}}," % (float(zz.real), float(zz.imag), mp.nstr(f.real, 17),
                                       mp.nstr(f.imag, 17)))
for x in [-1.5, 0.3, 2.0, 5.0, 10.0, 26.5, 40.0]:
    print("{%r, %s, %s}," % (x, mp.nstr(mp.erfc(x), 17), mp.nstr(mp.exp(x * x) * mp.erfc(x), 17)))
