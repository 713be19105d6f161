// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <initializer_list>

namespace orvane::kestrum {

/// What is declared to the framework, (inputs, outputs); the first pair is the default bus layout.
/// Deliberate: the pairs with as many outputs as inputs stay listed, although only stereo outputs are
/// accepted.
inline constexpr std::initializer_list<const short[2]> channelConfigurations{
    {2, 2},  {1, 2},   {4, 2},  {4, 4},   {5, 2},  {5, 5},   {6, 2},  {6, 6},
    {7, 2},  {7, 7},   {8, 2},  {8, 8},   {9, 2},  {9, 9},   {10, 2}, {10, 10},
    {11, 2}, {11, 11}, {12, 2}, {12, 12}, {14, 2}, {14, 14}, {16, 2}, {16, 16}};

} // namespace orvane::kestrum
