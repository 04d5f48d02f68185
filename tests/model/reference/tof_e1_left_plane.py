# Reference values of exp(z)E1(z) in the left half-plane at moduli from 10 to 80, where the
# power series loses its digits to cancellation, from mpmath at 40 digits.
import mpmath as mp

mp.mp.dps = 40
for re in [-0.001, -0.5, -3.0, -10.0, -25.0, -40.0, -60.0]:
    for im in [12.0, 20.0, 32.0, 45.0, 58.0]:
        z = mp.mpc(re, im)
        f = mp.exp(z) * mp.e1(z)
        print("{{%r, %r}, {%s, %s}}," % (re, im, mp.nstr(f.real, 17), mp.nstr(f.imag, 17)))
