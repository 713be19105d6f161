// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/CabinetDrawing.h"

#include <cmath>
#include <numbers>

namespace orvane::kestrum::pictures {

namespace {

constexpr double degree = std::numbers::pi / 180;

/// A box turned to the listener: `front` towards him, `side` along its width, both on the floor.
class TurnedBox {
public:
    explicit TurnedBox(const StagedSpeaker& staged) : place(staged.place), size(staged.cabinet) {
        const double azimuth = staged.speaker.azimuth * degree;
        frontX = -std::sin(azimuth);
        frontZ = -std::cos(azimuth);
    }

    /// A place in the box. @param across -1 to 1 along the width, ahead -1 to 1 to the front, up 0 to 1.
    Point at(double across, double ahead, double up) const {
        const double halfWidth = size.width / 2 * across, halfDepth = size.depth / 2 * ahead;
        const double x = frontX * halfDepth - frontZ * halfWidth, z = frontZ * halfDepth + frontX * halfWidth;
        const Point offset = stage::drawn(x, z, up * size.height);
        return {place.x + offset.x, place.y + offset.y};
    }

    /// How squarely the front is seen, 1 from straight ahead, below 0 not at all.
    double frontSeen() const { return -frontZ; }

    /// The same for the side towards which `across` grows.
    double sideSeen() const { return -frontX; }

    /// A circle on the front. @param radius in points; middle in shares as in `at`.
    Path circleOnFront(double across, double up, double radius) const {
        std::vector<Point> points;
        constexpr int corners = 48;
        for (int i = 0; i < corners; ++i) {
            const double angle = 2 * std::numbers::pi * i / corners;
            points.push_back(at(across + std::cos(angle) * radius / (size.width / 2), 1.0,
                                up + std::sin(angle) * radius / size.height));
        }
        return polygon(std::move(points));
    }

    const Cabinet& dimensions() const { return size; }

private:
    Point place;
    Cabinet size;
    double frontX;
    double frontZ;
};

struct Faces {
    std::vector<Point> front, back, growing, shrinking, top;
};

Faces facesOf(const TurnedBox& box) {
    return {{box.at(-1, 1, 0), box.at(1, 1, 0), box.at(1, 1, 1), box.at(-1, 1, 1)},
            {box.at(-1, -1, 0), box.at(1, -1, 0), box.at(1, -1, 1), box.at(-1, -1, 1)},
            {box.at(1, -1, 0), box.at(1, 1, 0), box.at(1, 1, 1), box.at(1, -1, 1)},
            {box.at(-1, -1, 0), box.at(-1, 1, 0), box.at(-1, 1, 1), box.at(-1, -1, 1)},
            {box.at(-1, -1, 1), box.at(1, -1, 1), box.at(1, 1, 1), box.at(-1, 1, 1)}};
}

void drawFace(Canvas& canvas, const std::vector<Point>& corners, const Colour& upper, const Colour& lower,
              const Colour& edge) {
    const Path outline = polygon(corners);
    canvas.fill(outline, along(0, corners[3].y, 0, corners[0].y, {{0, upper}, {1, lower}}));
    canvas.stroke(outline, 0.7, edge);
}

/// A driver: dark cone, lit rim.
void drawDriver(Canvas& canvas, const TurnedBox& box, double up, double radius, const Colour& accent) {
    canvas.fill(box.circleOnFront(0, up, radius), fromBytes(3, 8, 10));
    canvas.stroke(box.circleOnFront(0, up, radius), 1.1, accent.withAlpha(0.9f));
    canvas.fill(box.circleOnFront(0, up, radius * 0.55), accent.withAlpha(0.16f));
    canvas.fill(box.circleOnFront(0, up, radius * 0.26), accent.withAlpha(0.8f));
}

void drawDrivers(Canvas& canvas, const TurnedBox& box, bool lowFrequency, const Colour& accent) {
    const Cabinet& size = box.dimensions();
    if (lowFrequency) {
        drawDriver(canvas, box, 0.5, size.height * 0.40, accent);
        return;
    }
    drawDriver(canvas, box, 0.34, size.width * 0.33, accent);
    drawDriver(canvas, box, 0.78, size.width * 0.155, accent);
}

void drawOverhead(Canvas& canvas, const StagedSpeaker& staged, const Colour& accent) {
    // What it throws down on the listener.
    const Point& place = staged.place;
    const Path beam = polygon({{place.x - 9, place.y},
                               {place.x + 9, place.y},
                               {stage::middle.x + 24, 262},
                               {stage::middle.x - 24, 262}});
    canvas.glow(beam, 3, along(0, place.y, 0, 262, {{0, accent.withAlpha(0.26f)}, {1, accent.withAlpha(0)}}));
}

} // namespace

Colour accentOf(const core::SpeakerRow& speaker) noexcept {
    return speaker.lowFrequency ? palette::amber : speaker.elevation > 0 ? raisedAccent : palette::lit;
}

void drawCabinet(Canvas& canvas, const StagedSpeaker& staged) {
    const TurnedBox box(staged);
    const Faces faces = facesOf(box);
    const Colour accent = accentOf(staged.speaker);
    const bool overhead = staged.speaker.elevation > 80;
    const Colour body = mix(fromBytes(12, 24, 28), accent, 0.05f),
                 shade = mix(fromBytes(6, 13, 16), accent, 0.03f);
    const Colour crown = mix(fromBytes(30, 50, 55), accent, 0.28f), edge = accent.withAlpha(0.55f);

    if (staged.speaker.elevation == 0) { // it stands on the floor
        const Point middle = staged.place;
        canvas.glow(ellipse(middle.x, middle.y, staged.cabinet.width * 0.9, staged.cabinet.width * 0.34), 5,
                    accent.withAlpha(0.30f));
    } else if (overhead) {
        drawOverhead(canvas, staged, accent);
    } else {
        canvas.glow(polygon(faces.front), 5, accent.withAlpha(0.22f));
    }

    const bool frontSeen = box.frontSeen() > 0;
    drawFace(canvas, frontSeen ? faces.front : faces.back, mix(body, grey(1), 0.10f), body, edge);
    if (std::abs(box.sideSeen()) > 1e-3) {
        const bool growing = box.sideSeen() > 0;
        drawFace(canvas, growing ? faces.growing : faces.shrinking, mix(shade, grey(1), 0.06f), shade, edge);
    }
    drawFace(canvas, faces.top, crown, crown, edge);
    if (frontSeen && !overhead)
        drawDrivers(canvas, box, staged.speaker.lowFrequency, accent);
}

} // namespace orvane::kestrum::pictures
