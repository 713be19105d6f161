// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/LayoutTable.h"

#include <ostream>

namespace orvane::kestrum::identify {

/// The product's layouts and Scenes in the order of their menus, from the product's own tables: printed for a person,
/// or as JSON for a program.
void printLayouts(std::ostream& out);
void printLayoutsJson(std::ostream& out);
void printScenes(std::ostream& out);
void printScenesJson(std::ostream& out);

/// One layout, a line per channel of the bus.
void printLayout(const core::LayoutRow& layout, std::ostream& out);
void printLayoutJson(const core::LayoutRow& layout, std::ostream& out);

} // namespace orvane::kestrum::identify
