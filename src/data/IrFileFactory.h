// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IIrFileFactory.h"

namespace orvane {

/// Three native rates, and the doubled and fourfold rates that are derived from two of them.
/// Stateless: cheap to make on the stack, fit for several threads at once.
class IrFileFactory final : public IIrFileFactory {
public:
    std::unique_ptr<IIrFile> create(double sampleRate, const std::string& stem,
                                    const std::string& dataDirectory) const override;
};

} // namespace orvane
