// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/SphericalHead.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace orvane::kestrum::tools {

namespace {

using Complex = std::complex<double>;

/// What the series has before each Legendre polynomial, (2m + 1) h_m(mu rho) / h'_m(mu), without the common
/// factor. The spherical Hankel functions come from the upward recurrence, which is the stable way for them.
std::vector<Complex> radialTerms(double mu, double rho) {
    const auto hankelStart = [](double x) {
        const Complex i(0, 1);
        const Complex zero = std::exp(i * x) / (i * x);
        return std::pair<Complex, Complex>(zero, zero * (1 / x - i));
    };
    auto [farBefore, farNow] = hankelStart(mu * rho);
    auto [nearBefore, nearNow] = hankelStart(mu);
    std::vector<Complex> terms{farBefore / -nearNow}; // h'_0 = -h_1
    double largest = std::abs(terms.front());
    for (int order = 1; order < 400; ++order) {
        const double m = order;
        const Complex slope = nearBefore - (m + 1) / mu * nearNow;
        const Complex term = (2 * m + 1) * farNow / slope;
        terms.push_back(term);
        largest = std::max(largest, std::abs(term));
        constexpr double negligible = 1e-10;
        if (m > mu && std::abs(term) < negligible * largest)
            break;
        const Complex farNext = (2 * m + 1) / (mu * rho) * farNow - farBefore;
        const Complex nearNext = (2 * m + 1) / mu * nearNow - nearBefore;
        farBefore = farNow;
        farNow = farNext;
        nearBefore = nearNow;
        nearNow = nearNext;
        constexpr double overflowing = 1e280;
        if (std::abs(nearNow) > overflowing)
            break; // the far function is smaller by so much that the terms are long negligible
    }
    return terms;
}

double seriesLevel(const std::vector<Complex>& terms, double mu, double rho, double incidenceRadians) {
    const double x = std::cos(incidenceRadians);
    double before = 1;
    double now = x;
    Complex sum = terms[0];
    for (std::size_t order = 1; order < terms.size(); ++order) {
        sum += terms[order] * now;
        const double m = static_cast<double>(order);
        const double next = ((2 * m + 1) * x * now - m * before) / (m + 1);
        before = now;
        now = next;
    }
    return rho / mu * std::abs(sum);
}

} // namespace

double sphereLevel(double frequencyHz, double incidenceRadians, double distanceMetres) {
    constexpr double lowestHz = 1; // below it the series has reached its limit
    const double rho = distanceMetres / headRadiusMetres;
    const double mu =
        2 * std::numbers::pi * std::max(frequencyHz, lowestHz) * headRadiusMetres / speedOfSound;
    return seriesLevel(radialTerms(mu, rho), mu, rho, incidenceRadians);
}

SphericalHead::SphericalHead(double distanceMetres, double frequencyStepHz, std::size_t binCount)
    // A source inside the head has no meaning; sets that name no distance count as far.
    : distance(std::max(distanceMetres > 0 ? distanceMetres : 2.0, 2 * headRadiusMetres)),
      table(181, Samples(binCount)) {
    const double rho = distance / headRadiusMetres;
    for (std::size_t bin = 0; bin < binCount; ++bin) {
        const double frequencyHz = std::max(frequencyStepHz * static_cast<double>(bin), 1.0);
        const double mu = 2 * std::numbers::pi * frequencyHz * headRadiusMetres / speedOfSound;
        const std::vector<Complex> terms = radialTerms(mu, rho);
        for (std::size_t degree = 0; degree <= 180; ++degree)
            table[degree][bin] =
                seriesLevel(terms, mu, rho, static_cast<double>(degree) * std::numbers::pi / 180);
    }
}

namespace {

double incidence(const Direction& source, std::size_t ear) {
    return angleBetween(source, {ear == leftEar ? -1.0 : 1.0, 0, 0});
}

} // namespace

Samples SphericalHead::levels(const Direction& source, std::size_t ear) const {
    const double degrees = incidence(source, ear) * 180 / std::numbers::pi;
    const auto below = std::min<std::size_t>(static_cast<std::size_t>(degrees), 179);
    const double part = degrees - static_cast<double>(below);
    Samples result(table[below].size());
    for (std::size_t bin = 0; bin < result.size(); ++bin)
        result[bin] = table[below][bin] + part * (table[below + 1][bin] - table[below][bin]);
    return result;
}

double SphericalHead::arrivalSeconds(const Direction& source, std::size_t ear) const {
    const double angle = incidence(source, ear);
    const double horizon = std::acos(headRadiusMetres / distance);
    const double path = angle <= horizon
                            ? std::sqrt(distance * distance + headRadiusMetres * headRadiusMetres -
                                        2 * distance * headRadiusMetres * std::cos(angle))
                            : std::sqrt(distance * distance - headRadiusMetres * headRadiusMetres) +
                                  headRadiusMetres * (angle - horizon);
    return (path - distance) / speedOfSound;
}

} // namespace orvane::kestrum::tools
