// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>

namespace orvane {

// One type and one fixed text per kind of damage.
// Deliberate: the texts stay as they are, their slips included (19200 stands for 192000), and so do the
// lower-case initials of the types.

struct sampleRateNotSupportedException final : std::exception {
    const char* what() const noexcept override {
        return "Orvane only supports the following sample rates: 19200, 176400, 96000, 88200, 48000, 44100 "
               "and 24000!";
    }
};

struct sampleRateFileNotFoundException final : std::exception {
    const char* what() const noexcept override { return "Data files not found for the given sample rate"; }
};

struct wavNotReadableException final : std::exception {
    const char* what() const noexcept override { return "Wave file not readable"; }
};

struct numberOfChannelsMismatchException final : std::exception {
    const char* what() const noexcept override { return "The data file has wrong number of channels"; }
};

struct wavChunckSizeShortException final : std::exception {
    const char* what() const noexcept override { return "Wave file is too short for frames!"; }
};

struct wavBitWrongException final : std::exception {
    const char* what() const noexcept override { return "Wave file not 32 or 16 Bit"; }
};

struct notEnoughSpaceForHRTFsException final : std::exception {
    const char* what() const noexcept override { return "Not Enough space for HRTFs"; }
};

} // namespace orvane
