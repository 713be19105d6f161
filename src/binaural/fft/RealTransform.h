// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "binaural/fft/Complex.h"

#include <cstddef>
#include <memory>

namespace orvane::fft {

/// Discrete Fourier transform of real signals of one fixed, arbitrary length, in single precision.
///
/// Shape   time [length]; spectrum [length / 2 + 1], bin 0 to the middle, unpacked. Any alignment gives the same
///         bits; memory that starts at a cache line saves copies.
/// Units   both directions are unscaled: there and back multiplies by `length`.
/// Thread  made and destroyed on threads that may wait (plans are shared behind one mutex of the module);
///         forward() and backward() on one thread at a time per object: no allocation, no lock up to a
///         length of 131072, far above any block of a host.
/// Errors  std::bad_alloc at construction only.
///
/// Even lengths go through half as many complex values. Odd lengths and those with a prime factor above 13, for
/// which the library would allocate while it runs, go through ChirpTransform.
class RealTransform {
public:
    /// @param length samples, 1 or more.
    explicit RealTransform(std::size_t length);
    ~RealTransform();
    RealTransform(const RealTransform&) = delete;
    RealTransform& operator=(const RealTransform&) = delete;

    void forward(const float* time, Complex* spectrum) noexcept ORVANE_REALTIME;

    /// Reads no imaginary part of bin 0 and, for an even length, of the last bin.
    void backward(const Complex* spectrum, float* time) noexcept ORVANE_REALTIME;

    class Method;

private:
    std::unique_ptr<Method> method;
};

} // namespace orvane::fft
