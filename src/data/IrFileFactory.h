// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IIrFileFactory.h"

namespace orvane {

/// Seven running rates over three stored ones. Cheap, made on the stack where it is needed.
class IrFileFactory final : public IIrFileFactory {
public:
    std::unique_ptr<IIrFile> create(double sampleRate, const std::string& stem,
                                    const std::string& dataDirectory) const override;
};

} // namespace orvane
