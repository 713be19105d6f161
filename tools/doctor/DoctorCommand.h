// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "doctor/Finding.h"
#include "doctor/Places.h"

#include <CLI/App.hpp>

#include <iosfwd>

namespace orvane::kestrum::doctor {

/// One finding a line, with the command that mends it below; or one JSON object.
void tell(const Findings& findings, bool asJson, std::ostream& out);

/// @throws std::runtime_error with one sentence when a finding is a fault.
void requireNoFault(const Findings& findings);

/// Adds "doctor".
void addDoctorCommand(CLI::App& program, std::ostream& out);
void addDoctorCommand(CLI::App& program);

} // namespace orvane::kestrum::doctor
