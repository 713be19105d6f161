// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace orvane {

/// Samples that several engines and plug-in instances may hold together.
using SharedSamples = std::shared_ptr<const std::vector<float>>;

/// Keeps what many have read alike only once.
///
/// @param entry of the reverb file; only samples of the same one are compared.
/// @return samples of the same bits that somebody still holds, or else the given ones.
/// Thread  building threads: takes a mutex of the module. The last holder frees them, where engines are destroyed.
/// Errors  std::bad_alloc.
SharedSamples shareSamples(std::uint32_t entry, std::vector<float>&& samples);

} // namespace orvane
