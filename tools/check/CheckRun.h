// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckOptions.h"

#include <ostream>

namespace orvane::kestrum::check {

/// Renders a mix through all Scenes, matches their loudness and writes the page, or lists the jobs.
///
///     mix ─┬─ "kestrum render" per Scene, one process each ─► rendered/*.wav ─┐
///          └─ downmix ────────────────────────────────────► rendered/*.wav ─┤
///                       ┌─────────────────────────────────────────────────┘
///                       ├─ loudness, peaks, spectrum ─► gains ─► matched/*.flac
///                       └─────────────────────────────────────► index.html
///
/// Copies and page of an earlier check stay until all the new ones are whole.
///
/// @param out what was chosen and made; with --list-jobs the commands alone.
/// @throws CheckError and render::RenderError with the remedy.
void runCheck(const CheckOptions& options, std::ostream& out);

} // namespace orvane::kestrum::check
