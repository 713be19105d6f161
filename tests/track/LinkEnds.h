// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "DatagramSender.h"

#include "base/SpatialPosition.h"
#include "ipc/OrvaneParameterFactory.h"

#include <memory>

#include <sys/mman.h>

namespace test {

/// No link before a test and none after it, as a program that was killed leaves its own, and a test that ends in the
/// middle kills its programs.
class CleanLink {
public:
    CleanLink() { remove(); }
    ~CleanLink() { remove(); }
    CleanLink(const CleanLink&) = delete;
    CleanLink& operator=(const CleanLink&) = delete;

private:
    static void remove() { shm_unlink("/OrvaneSharedMemory"); }
};

/// The plug-in's end of the link.
class Listener {
public:
    Listener() : client(OrvaneIPC::OrvaneParameterFactory().createClient()) {}

    bool connected() const { return client->isConnected(); }
    bool active() const { return client->getHeadRotationClient().isActive(); }

    /// Where a source straight ahead is heard.
    double azimuthOfAhead() const { return seen({0, 0, 1}).azimuth; }
    double elevationOfAhead() const { return seen({0, 0, 1}).elevation; }
    double elevationOfRight() const { return seen({0, 90, 1}).elevation; }

    orvane::HeadRotationMatrix matrix() const { return client->getHeadRotationClient().getRotation(); }

private:
    orvane::SpatialPosition seen(orvane::SpatialPosition position) const {
        position.rotate(client->getHeadRotationClient().getRotation());
        return position;
    }

    std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> client;
};

} // namespace test
