// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/Tracker.h"

#include "track/GridCentre.h"
#include "track/LinkClaim.h"
#include "track/LinkWriter.h"
#include "track/Mounting.h"
#include "track/MountingFile.h"
#include "track/PlayedInput.h"
#include "track/Readiness.h"
#include "track/Signals.h"
#include "track/StatusFile.h"
#include "track/Terminal.h"
#include "track/TrackError.h"
#include "track/View.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include <unistd.h>

namespace orvane::kestrum::track {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds viewInterval{100};
constexpr milliseconds statusInterval{1000};

HeadTrackSettings settingsOf(const TrackOptions& options) {
    HeadTrackSettings settings = options.head;
    settings.biasDegrees = options.gridCentre ? gridCentreDegrees() : 0;
    return settings;
}

/// All that belongs to one run. What is made first dies last: the name in the status file outlives the link.
class Tracker {
public:
    explicit Tracker(const TrackOptions& options)
        : mountings(readMountings(mountingFile())),
          movement(options.replay ? readReplay(*options.replay) : std::vector<ReplayLine>{}),
          left(readStatus(statusPath())),
          statusFile(statusPath()),
          network(options.network),
          link(options.takeOver, left),
          writer(link.server()),
          signals(link.server()),
          settings(settingsOf(options)),
          head(settings),
          start(Clock::now()),
          played(options.demo, movement, start) {
        for (const auto& [kind, mounting] : mountings)
            head.setMounting(kind, mounting);
        status.pid = getpid();
        status.started = unixTime();
    }

    void run() {
        tellStatus(); // before the link becomes active, so that the next tracker knows whose link a killed one has left
        sayHello();
        for (Instant now = Clock::now(); !done; now = Clock::now()) {
            takeSignals(now);
            takeKeys(now);
            takeSamples(now);
            writeDirection(now);
            tell(now);
            if (!done)
                wait();
        }
        writer.release();
        tellStatus();
    }

private:
    void sayHello();
    void takeSignals(Instant now);
    void takeKeys(Instant now);
    void takeSamples(Instant now);
    void take(const Sample& sample, Instant now);
    void takePose(Instant now);
    void writeDirection(Instant now);
    void tell(Instant now);
    void tellStatus();
    void wait();
    void end(Instant now);
    void stop();

    Mountings mountings;
    std::vector<ReplayLine> movement;
    std::optional<TrackStatus> left; ///< By the tracker before.
    StatusFile statusFile;
    NetworkInput network;
    LinkClaim link;
    LinkWriter writer;
    Signals signals;
    HeadTrackSettings settings;
    HeadTrack head;
    Instant start;
    PlayedInput played;
    Terminal terminal;
    Readiness readiness; ///< Of the signals, the keys and the ports.
    std::optional<PoseCalibration> calibration;
    std::optional<Instant> nextChange; ///< When the direction changes without any sample.
    bool fresh = false;                ///< A sample came in since the last write.
    bool ending = false;
    bool done = false;
    View view;
    TrackStatus status;
    Instant nextView{};
    Instant nextStatus{};
    bool toldUnknown = false;
};

void Tracker::sayHello() {
    std::string ways;
    if (const auto port = network.oscPort())
        ways += "OSC on UDP port " + std::to_string(*port) + ", ";
    if (const auto port = network.openTrackPort())
        ways += "opentrack on UDP port " + std::to_string(*port) + ", ";
    if (!ways.empty())
        terminal.say(
            "Listening: " + ways.substr(0, ways.size() - 2) +
            (network.reach() == Reach::network ? ", to the whole network." : ", to this machine only."));
    if (left && !left->alive)
        terminal.say("The last tracker was ended by force: what it left is cleared away.");
    if (link.freedOthers())
        terminal.say("Instances that followed the link before have their dial back: load them again.");
    terminal.say(
        "The link is up. Load the plug-in now: an instance looks for the link once, when it is made.");
    if (terminal.keyDescriptor() >= 0)
        terminal.say("Keys: r makes ahead where you look, c calibrates a sensor that sits askew, q ends.");
}

void Tracker::takeSignals(Instant now) {
    if (!readiness.has(signals.descriptor()))
        return;
    while (const auto request = signals.next()) {
        switch (*request) {
        case Signals::Request::recentre:
            head.recentre(now);
            break;
        case Signals::Request::stop:
            stop();
            break;
        case Signals::Request::end:
            end(now);
            break;
        case Signals::Request::nothing:
            break;
        }
    }
}

void Tracker::takeKeys(Instant now) {
    constexpr char escape = 27;
    if (!readiness.has(terminal.keyDescriptor()))
        return;
    terminal.follow(); // what was typed for the shell is not ours to read
    while (const auto key = terminal.key()) {
        switch (*key) {
        case 'r':
            head.recentre(now);
            break;
        case 'q':
            end(now);
            break;
        case 'c':
            calibration.emplace();
            break;
        case ' ':
            takePose(now);
            break;
        case escape:
            calibration.reset();
            break;
        default:
            break;
        }
    }
}

void Tracker::takePose(Instant now) {
    if (!calibration)
        return;
    if (!head.direction(now)) {
        terminal.say("No sender is heard: let one send, then press space.");
        return;
    }
    try {
        if (!calibration->add(*head.source(), head.raw()))
            return;
        const Mounting mounting = calibration->result();
        calibration.reset();
        const std::string kind = head.source()->kind();
        head.setMounting(kind, mounting.sensorToHead);
        head.setReference(mounting.reference, now);
        mountings[kind] = mounting.sensorToHead;
        writeMountings(mountingFile(), mountings);
        terminal.say("Calibrated " + kind + "; kept in " + mountingFile().string() + ".");
    } catch (const TrackError& error) {
        calibration.reset();
        terminal.say(error.what());
    }
}

void Tracker::takeSamples(Instant now) {
    const Received received = network.receive(readiness);
    for (const Sample& sample : received.samples)
        take(sample, now);
    for (const Sample& sample : played.samples(now))
        take(sample, now);
    if (received.recentre)
        head.recentre(now);
    view.countUnusable(received.unusable);
    if (!toldUnknown && !received.unknownAddress.empty()) {
        toldUnknown = true;
        terminal.say(
            "Messages to \"" + received.unknownAddress +
            "\" tell no direction that is known here; kestrum track --dialects lists those that do.");
    }
    if (!ending && played.finished())
        end(now);
}

void Tracker::take(const Sample& sample, Instant now) {
    const auto before = head.source();
    if (!head.take(sample, now))
        return;
    fresh = true;
    view.countSample();
    status.lastPacket = unixTime();
    if (before == sample.source)
        return;
    status.source = sample.source.describe();
    terminal.say("Source: " + status.source + ".");
    nextStatus = now;
}

void Tracker::writeDirection(Instant now) {
    writer.flush(now);
    const auto direction = head.direction(now);
    if (!direction) {
        if (writer.active()) {
            writer.release();
            nextStatus = now;
        }
        done = done || ending;
    } else if (fresh || (nextChange && now >= *nextChange)) {
        writer.write(*direction, now);
    }
    fresh = false;
    nextChange = head.nextChange(now);
}

void Tracker::tell(Instant now) {
    if (terminal.attached() && now >= nextView) {
        nextView = now + viewInterval;
        terminal.follow();
        const auto direction = head.direction(now);
        const Rotation withoutBias = rotationOf(HeadAngles{-settings.biasDegrees, 0, 0});
        view.advance(now);
        terminal.show(calibration ? std::string(calibration->prompt())
                                  : view.line(head.source(),
                                              direction ? std::optional(anglesOf(*direction * withoutBias))
                                                        : std::nullopt,
                                              now - head.lastSample()));
    }
    if (now >= nextStatus) {
        nextStatus = now + statusInterval;
        tellStatus();
    }
}

void Tracker::tellStatus() {
    status.active = writer.active();
    statusFile.write(status);
}

void Tracker::wait() {
    Instant until = terminal.attached() ? std::min(nextStatus, nextView) : nextStatus;
    for (const auto& moment : {writer.due(), nextChange, played.due()})
        if (moment)
            until = std::min(until, *moment);
    std::vector<int> descriptors = network.descriptors();
    descriptors.push_back(signals.descriptor());
    if (terminal.keyDescriptor() >= 0)
        descriptors.push_back(terminal.keyDescriptor());
    readiness.wait(descriptors, until - Clock::now());
}

/// The first wish glides, a second one ends at once.
void Tracker::end(Instant now) {
    done = done || ending;
    ending = true;
    head.end(now);
    nextChange = now;
}

/// A stopped tracker must not hold the heads of all plug-ins fast.
void Tracker::stop() {
    terminal.suspend();
    writer.release();
    tellStatus();
    Signals::stopProcess();
    terminal.follow();
}

} // namespace

void runTracker(const TrackOptions& options) { Tracker(options).run(); }

} // namespace orvane::kestrum::track
