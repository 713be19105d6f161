// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>

namespace orvane {

// What can be wrong with the data folder, one class per kind of damage, each with one fixed text.
// Deliberate: lower-case initials, the odd spelling and the 19200 of the first text are part of the product.

class sampleRateNotSupportedException final : public std::exception {
public:
    const char* what() const noexcept override {
        return "Orvane only supports the following sample rates: 19200, 176400, 96000, 88200, 48000, 44100 "
               "and 24000!";
    }
};

class sampleRateFileNotFoundException final : public std::exception {
public:
    const char* what() const noexcept override { return "Data files not found for the given sample rate"; }
};

class wavNotReadableException final : public std::exception {
public:
    const char* what() const noexcept override { return "Wave file not readable"; }
};

class numberOfChannelsMismatchException final : public std::exception {
public:
    const char* what() const noexcept override { return "The data file has wrong number of channels"; }
};

class wavChunckSizeShortException final : public std::exception {
public:
    const char* what() const noexcept override { return "Wave file is too short for frames!"; }
};

class wavBitWrongException final : public std::exception {
public:
    const char* what() const noexcept override { return "Wave file not 32 or 16 Bit"; }
};

class notEnoughSpaceForHRTFsException final : public std::exception {
public:
    const char* what() const noexcept override { return "Not Enough space for HRTFs"; }
};

} // namespace orvane
