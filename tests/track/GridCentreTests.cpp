// SPDX-License-Identifier: GPL-3.0-or-later
// The error is measured on the plug-in's own parts: its direct renderer turns the source and asks the store, whose own
// grid answers. Means are those of the truncation: 2.5 degrees on one side of the head, 1.5 on the other.
#include "track/GridCentre.h"

#include "binaural/BinauralComponentFactory.h"
#include "data/TenmarshHrir.h"
#include "room/SpeakerDirectFilterRenderer.h"
#include "track/Rotation.h"

#include "../room/SourceView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using namespace orvane::kestrum::track;

/// Notes which column of the product's own grid the renderer takes its response from.
class AskedHrir final : public orvane::IHrir {
public:
    void load(std::int32_t, const std::string&) override {}
    std::int32_t bandLimitFactor() const noexcept override { return 1; }
    std::uint64_t length() const noexcept override { return 16; }
    std::uint64_t generation() const noexcept override { return 1; }
    std::uint32_t cell(std::int32_t azimuth, std::int32_t elevation) const noexcept override {
        return store.cell(azimuth, elevation);
    }
    std::uint64_t getResponse(orvane::SampleBuffer&, std::int32_t azimuth, std::int32_t elevation,
                              bool) const noexcept override {
        column = static_cast<int>(store.cell(azimuth, elevation) / 37);
        return 1;
    }

    mutable int column = -1;

private:
    orvane::TenmarshHrir store{nullptr}; ///< Never loaded: only its grid is asked.
};

/// Where a source straight ahead of the room is heard, and where it should be, for a head that has turned.
struct Direction {
    double heard, meant;
};

Direction directionFor(double headYaw, double bias) {
    AskedHrir hrir;
    test::SourceView view;
    view.rotation = linkMatrix(rotationOf(HeadAngles{headYaw, 0, 0}) * rotationOf(HeadAngles{bias, 0, 0}));
    orvane::kestrum::core::DirectFilterRenderer renderer(&view, &hrir, false,
                                                         orvane::BinauralComponentFactory());
    orvane::SampleBuffer response(2, 16);
    renderer.process(response);
    return {180.0 - 5 * hrir.column, std::remainder(-headYaw, 360)}; // the store's azimuths are mirrored
}

/// Of the error over a full turn, in degrees to the right.
struct Errors {
    double mean = 0, rootMeanSquare = 0, widest = 0;
};

Errors measured(double bias) {
    constexpr int steps = 7200; // 0.05 degrees; the half step keeps clear of the grid's edges
    Errors errors;
    for (int step = 0; step < steps; ++step) {
        const auto [heard, meant] = directionFor((step + 0.5) * 360 / steps, bias);
        const double error = std::remainder(heard - meant, 360);
        errors.mean += error / steps;
        errors.rootMeanSquare += error * error / steps;
        errors.widest = std::max(errors.widest, std::abs(error));
    }
    errors.rootMeanSquare = std::sqrt(errors.rootMeanSquare);
    return errors;
}

TEST(GridCentre, IsTwoDegreesByCalculation) { EXPECT_NEAR(gridCentreDegrees(), 2, 1e-9); }

TEST(GridCentre, CalculatesWithTheAzimuthsThatThePlugInTakes) {
    for (int step = 0; step < 3600; ++step) {
        const auto [heard, meant] = directionFor(step * 0.1 + 0.05, 0);
        EXPECT_EQ(std::remainder(heard - heardAzimuth(meant), 360), 0) << meant;
    }
}

TEST(GridCentre, MakesTheMeanErrorOverAFullTurnZero) {
    const Errors before = measured(0), after = measured(gridCentreDegrees());
    EXPECT_NEAR(before.mean, 2, 0.03); // of 7200 steps, in 32-bit floats
    EXPECT_NEAR(after.mean, 0, 0.03);
    EXPECT_LT(after.rootMeanSquare, before.rootMeanSquare - 0.9);

    std::ifstream file(KESTRUM_DOCS "/tools/kestrum-track.md");
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    for (const auto& [name, errors] : {std::pair{"off", before}, std::pair{"on", after}}) {
        char row[100];
        std::snprintf(row, sizeof(row), "| %s | %.1f | %.2f | %.1f |", name, std::abs(errors.mean) + 1e-9,
                      errors.rootMeanSquare, errors.widest);
        EXPECT_THAT(page, ::testing::HasSubstr(row));
    }
}

} // namespace
