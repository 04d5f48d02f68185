// Fast Fourier transforms, the low-pass smoothing built on them, and the Fourier-filter background.
#pragma once

#include <span>

#include "records/job.h"

namespace corvinet {

// In-place radix-2 transform of n complex numbers stored as 2n reals
// (re, im, re, im, ...); n is a power of two. sign +1 gives
// F[k] = sum over j of f[j] exp(+2 pi i j k / n); sign -1 the same with
// exp(-2 pi i j k / n), which is n times the inverse: the caller divides.
void ComplexTransform(std::span<float> data, int n, int sign);

// In-place transform of 2n real values (n a power of two). sign +1: on return
// data[1] holds F[0], data[2] the Nyquist term F[n] (both real), and
// data[2k+1], data[2k+2] the real and imaginary parts of F[k], k = 1..n-1, where
// F[k] = sum over j of y[j] exp(+2 pi i j k / (2n)) (indices 1-based as the
// program numbers them). sign -1 takes that packing back to n times the values.
void RealTransform(std::span<float> data, int n, int sign);

// Low-pass filter of y[1..n] with a window in points: the spectrum of the
// array, padded with zeros to m (the smallest power of two not below n, at
// least 2), is damped by max(0, 1 - (window j / m)^2) at frequency j. The span
// is the work array: its size is the capacity, and an m above it stops the
// run with "=> Too many points for Fourier filtering!". A constant array of
// length m stays constant; window 0 leaves the array as it was.
void Smooth(Job& job, std::span<float> y, int n, float window);

// One pass of the Fourier-filter background of pattern ip: the residual
// Ytotal - Bragg - Backg, with the excluded regions set to 0, is smoothed over
// twice the number of points and twice of it is added to Backg. `bragg`
// points at the calculated Bragg intensity of point 1 of a per-point array
// (nullptr: no calculated intensity yet). More than 10000 points stop the run
// with " Too many points for Fourier filtering".
void FourierFilter(Job& job, int ip, const float* bragg);

}  // namespace corvinet
