// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>

namespace orvane::kestrum::tools {

/// Runs work(0) to work(count - 1), shared out over the machine's cores as each gets free; over fewer threads where the
/// machine gives no more.
/// @throws what the work throws, after all cores have stopped.
void onAllCores(std::size_t count, const std::function<void(std::size_t)>& work);

} // namespace orvane::kestrum::tools
