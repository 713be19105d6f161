// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "assembly/Product.h"
#include "base/IEngine.h"
#include "base/IHrir.h"
#include "binaural/RenderOptions.h"
#include "engine/assembly/EngineBuilder.h"
#include "engine/assembly/EngineFactory.h"
#include "room/ReverbFilterFactory.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace test {

/// The product with its engines made by hand, so that the caller fixes the block in which each change begins.
/// The product's own manager stays unprepared.
class EngineRig {
public:
    /// Sets what no control of the product reaches; runs whenever the mappers have set the rest, in a change also
    /// on the thread that plays.
    using Settle = std::function<void(const Product&)>;

    explicit EngineRig(orvane::IHrir* head = nullptr, const std::string& dataDirectory = reverbFolder(),
                       const orvane::RenderOptions& options = {}, Settle settle = {})
        : product(head, dataDirectory, options),
          settleProduct(std::move(settle)),
          engines(product.speakerSetup.get(), product.layouts.get(), &product.factory,
                  product.parameterSet.get(), product.hrir, dataDirectory,
                  std::make_unique<orvane::kestrum::core::EngineBuilder>(),
                  std::make_unique<orvane::ReverbFilterFactory>(), [this] { update(); }) {}

    /// A first engine for what is chosen.
    void start(std::uint64_t blockSize, double sampleRate) {
        internalBlock = blockSize;
        rate = sampleRate;
        update();
        engine = engines.createEngine(internalBlock, rate);
    }

    /// A second engine for what is chosen by now, and the crossfade to it.
    void change() {
        if (settleProduct) // the Scene's values come with the new engine's first block, but what it is built for does not
            settleProduct(product);
        engine = engines.createCrossfadedEngine(std::move(engine), internalBlock, rate);
    }

    Product product;
    std::shared_ptr<orvane::IEngine> engine;

private:
    void update() const {
        product.updateMappers();
        if (settleProduct)
            settleProduct(product);
    }

    Settle settleProduct;
    orvane::kestrum::core::EngineFactory engines;
    std::uint64_t internalBlock = 0;
    double rate = 0;
};

} // namespace test
