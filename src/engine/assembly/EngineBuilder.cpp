// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/assembly/EngineBuilder.h"

#include "engine/Engine.h"

namespace orvane::kestrum::core {

std::unique_ptr<Engine> EngineBuilder::build(const ISupportedLayouts::Properties& properties,
                                             std::unique_ptr<Engine> engine) {
    for (std::size_t channel = 0; channel < properties.speakers.size(); ++channel) {
        const Speaker& speaker = properties.speakers[channel];
        switch (speaker.type) {
        case Speaker::Type::loudspeaker:
            engine->addSpeaker(speaker, channel);
            break;
        case Speaker::Type::lowFrequency:
            engine->addLowFrequencyChannel(channel);
            break;
        }
    }
    engine->takeChannelsIn(properties.busOrder);
    return engine;
}

} // namespace orvane::kestrum::core
