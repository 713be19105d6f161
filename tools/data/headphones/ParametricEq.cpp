// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/headphones/ParametricEq.h"

#include "data/DataError.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <complex>
#include <numbers>
#include <optional>

namespace orvane::kestrum::tools {

namespace {

constexpr double equaliserRate = 48000;
constexpr double lowestHz = 5;
constexpr double highestHz = 23500; ///< Just below the Nyquist frequency of the formulae.
constexpr double largestGainDb = 40;
constexpr double lowestQ = 0.01;
constexpr double highestQ = 200;
constexpr std::size_t mostFilters = 200;

/// A text as it may be shown in a terminal: one sign for every letter that is not ASCII's or would steer it, and no more
/// than a line of it.
std::string shown(std::string_view text) {
    constexpr std::size_t longest = 80;
    std::string result;
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        if ((byte & 0xc0U) == 0x80U) // goes on with a letter of UTF-8
            continue;
        if (result.size() == longest)
            return result + "...";
        result += byte >= 0x20 && byte < 0x7f ? letter : '?';
    }
    return result;
}

/// What the sentences of one line begin with.
struct Line {
    std::size_t number = 0;
    std::string text;

    [[noreturn]] void refuse(const std::string& reason) const {
        throw DataError("line " + std::to_string(number) + ", \"" + shown(text) + "\", " + reason);
    }
};

/// In small letters, with plain spaces for tabs; the spaces that keep a number's thousands together are left out.
std::string plain(std::string_view text) {
    constexpr std::string_view noBreakSpace = "\xc2\xa0";
    const auto digitAt = [&](std::size_t index) {
        return index < text.size() && text[index] >= '0' && text[index] <= '9';
    };
    std::string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char letter = text[index];
        if (text.substr(index).starts_with(noBreakSpace)) {
            if (!(index > 0 && digitAt(index - 1) && digitAt(index + noBreakSpace.size())))
                result += ' ';
            ++index;
        } else
            result +=
                letter == '\t' ? ' ' : static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    }
    return result;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t from = text.find_first_not_of(blanks);
    return from == std::string_view::npos ? std::string_view()
                                          : text.substr(from, text.find_last_not_of(blanks) + 1 - from);
}

/// Words and numbers, parted at blanks and between a number and the unit that touches it.
std::vector<std::string> wordsOf(std::string_view text) {
    const auto inNumber = [](char letter) {
        return (letter >= '0' && letter <= '9') || letter == '.' || letter == ',' || letter == '-' ||
               letter == '+';
    };
    std::vector<std::string> words;
    bool open = false;
    for (const char letter : text) {
        if (letter == ' ') {
            open = false;
            continue;
        }
        if (!open || (inNumber(words.back().back()) && !inNumber(letter)))
            words.emplace_back();
        words.back() += letter;
        open = true;
    }
    return words;
}

std::optional<double> numberIn(std::string word) {
    std::ranges::replace(word, ',', '.');
    if (word.starts_with('+'))
        word.erase(0, 1);
    double value = 0;
    const auto [end, failure] = std::from_chars(word.data(), word.data() + word.size(), value);
    const bool whole = failure == std::errc() && end == word.data() + word.size();
    return whole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// The words of one command, taken from the front.
class Words {
public:
    Words(std::vector<std::string> list, const Line& of) : words(std::move(list)), line(of) {}

    bool empty() const { return next == words.size(); }
    bool take(std::string_view word) {
        if (empty() || words[next] != word)
            return false;
        ++next;
        return true;
    }
    std::string word() { return empty() ? std::string() : words[next++]; }
    bool numberIsNext() const { return !empty() && numberIn(words[next]).has_value(); }
    double number(std::string_view of) {
        const std::optional<double> value = empty() ? std::nullopt : numberIn(words[next]);
        if (!value)
            line.refuse("has no number behind \"" + std::string(of) +
                        "\": write it as \"Filter 1: ON PK Fc 105 Hz Gain 5.5 dB Q 0.70\".");
        constexpr std::size_t thousands = 4; // a comma and three digits
        const std::size_t comma = words[next].find(',');
        if (of == "Fc" && comma != std::string::npos && words[next].size() == comma + thousands)
            line.refuse("has a comma in its frequency that may stand for a point or part thousands: write it "
                        "without.");
        ++next;
        return *value;
    }

private:
    std::vector<std::string> words;
    const Line& line;
    std::size_t next = 0;
};

double within(double value, double least, double most, const std::string& what, const Line& line) {
    if (!(value >= least && value <= most))
        line.refuse("has a " + what + " that no headphones need: is a point or a unit wrong?");
    return value;
}

std::optional<EqShape> shapeNamed(std::string_view name) {
    if (name == "pk" || name == "peq")
        return EqShape::peak;
    if (name == "lsc" || name == "lsq")
        return EqShape::lowShelf;
    if (name == "hsc" || name == "hsq")
        return EqShape::highShelf;
    return std::nullopt;
}

EqShape shapeOf(const std::string& name, const Line& line) {
    if (const std::optional<EqShape> shape = shapeNamed(name))
        return *shape;
    if (name == "ls" || name == "hs")
        line.refuse(
            "names a shelf by its corner, which programs understand differently: write LSC or HSC with the "
            "frequency in the middle of the slope.");
    line.refuse("is of a kind that cannot be folded in: use PK, LSC and HSC.");
}

/// The bilinear transform narrows a band towards the Nyquist frequency; this is the Q that makes up for it.
double qOfBandwidth(double octaves, double hertz) {
    const double centre = 2 * std::numbers::pi * hertz / equaliserRate;
    return 1 / (2 * std::sinh(std::numbers::ln2 / 2 * octaves * centre / std::sin(centre)));
}

double qOfSlope(double slope, double gainDecibels) {
    const double amplitude = std::pow(10.0, gainDecibels / 40);
    return 1 / std::sqrt((amplitude + 1 / amplitude) * (1 / slope - 1) + 2);
}

struct GivenFilter {
    std::optional<double> frequencyHz;
    std::optional<double> gainDecibels;
    std::optional<double> q;
    std::optional<double> octaves;
};

GivenFilter givenFilter(Words& words, const Line& line) {
    GivenFilter given;
    while (!words.empty()) {
        if (words.take("fc")) {
            given.frequencyHz = words.number("Fc");
            if (words.take("khz"))
                *given.frequencyHz *= 1000;
            else
                words.take("hz");
        } else if (words.take("gain")) {
            given.gainDecibels = words.number("Gain");
            words.take("db");
        } else if (words.take("q"))
            given.q = words.number("Q");
        else if (words.take("bw")) {
            words.take("oct");
            given.octaves = words.number("BW Oct");
        } else
            line.refuse("holds \"" + shown(words.word()) +
                        "\", which is no part of a filter: give Fc, Gain and Q, each with its number.");
    }
    return given;
}

double qOf(const GivenFilter& given, EqShape shape, std::optional<double> slopeDb, const Line& line) {
    constexpr double usualSlope = 0.9;
    constexpr double fullSlopeDb = 12;
    if (given.q)
        return *given.q;
    if (given.octaves)
        return within(qOfBandwidth(within(*given.octaves, 1e-3, 12, "bandwidth", line), *given.frequencyHz),
                      lowestQ, highestQ, "bandwidth at this frequency", line);
    if (shape == EqShape::peak)
        line.refuse("has no Q: add how wide it is, such as \"Q 1.41\".");
    return qOfSlope(slopeDb ? within(*slopeDb / fullSlopeDb, 0.05, 2, "slope", line) : usualSlope,
                    *given.gainDecibels);
}

std::optional<EqFilter> filterOf(Words words, const Line& line) {
    if (words.take("off"))
        return std::nullopt;
    if (!words.take("on"))
        line.refuse("says neither ON nor OFF behind the colon: write it as \"Filter 1: ON PK Fc 105 Hz Gain "
                    "5.5 dB Q 0.70\".");
    if (words.take("none"))
        return std::nullopt;
    EqFilter filter{shapeOf(words.word(), line), 0, 0, 0};
    std::optional<double> slopeDb;
    if (filter.shape != EqShape::peak && words.numberIsNext()) {
        slopeDb = words.number("slope");
        words.take("db");
    }
    const GivenFilter given = givenFilter(words, line);
    if (!given.frequencyHz)
        line.refuse("has no frequency: add it, such as \"Fc 105 Hz\".");
    if (!given.gainDecibels)
        line.refuse("has no gain: add it, such as \"Gain 5.5 dB\".");
    filter.frequencyHz = within(*given.frequencyHz, lowestHz, highestHz, "frequency", line);
    filter.gainDb = within(*given.gainDecibels, -largestGainDb, largestGainDb, "gain", line);
    filter.q = within(qOf(given, filter.shape, slopeDb, line), lowestQ, highestQ, "Q", line);
    return filter;
}

/// Commands of the same family of programs that change the sound in ways that no head can hold.
bool changesTheSound(std::string_view command) {
    constexpr std::array<std::string_view, 8> commands{
        "convolution", "copy", "delay", "eval", "graphiceq", "if", "include", "loudnesscorrection"};
    return std::ranges::find(commands, command) != commands.end();
}

class Reader {
public:
    void read(const Line& line) {
        const std::string lower = plain(line.text);
        if (lower.empty() || lower[0] == '#' || lower[0] == ';' || lower[0] == '*' || lower.starts_with("//"))
            return;
        const std::size_t colon = lower.find(':');
        const std::string command(trimmed(std::string_view(lower).substr(0, std::min(colon, lower.size()))));
        const std::string rest = colon == std::string::npos ? "" : lower.substr(colon + 1);
        if (colon != std::string::npos && (command == "filter" || command.starts_with("filter ")))
            readFilter({wordsOf(rest), line}, line);
        else if (command == "preamp" && colon != std::string::npos)
            readPreamp({wordsOf(rest), line}, line);
        else if (command == "channel" && trimmed(rest) != "all")
            line.refuse(
                "is about single channels: headphones are corrected alike at both ears, so give one that is "
                "for all of them.");
        else if (changesTheSound(command))
            line.refuse("cannot be folded in: export the correction as parametric filters.");
        else if (begun && command != "channel")
            line.refuse("is neither a filter nor a pre-amplification: take it out or begin it with #.");
        else
            ++eq.headingLines;
    }

    ParametricEq result() const {
        if (!begun)
            throw DataError(
                "it holds no line that begins with \"Preamp:\" or \"Filter\": give the parametric "
                "form, such as \"Filter 1: ON PK Fc 105 Hz Gain 5.5 dB Q 0.70\".");
        return eq;
    }

private:
    void readFilter(Words words, const Line& line) {
        begun = true;
        const std::optional<EqFilter> filter = filterOf(std::move(words), line);
        if (!filter) {
            ++eq.filtersOff;
            return;
        }
        if (eq.filters.size() == mostFilters)
            line.refuse("is the 201st filter: give at most 200.");
        eq.filters.push_back(*filter);
    }

    void readPreamp(Words words, const Line& line) {
        begun = true;
        const double gain = words.number("Preamp:");
        words.take("db");
        if (!words.empty())
            line.refuse("holds \"" + shown(words.word()) +
                        "\" behind the number: write it as \"Preamp: -6.2 dB\".");
        eq.preampDb += within(gain, -largestGainDb, largestGainDb, "gain", line);
    }

    ParametricEq eq;
    bool begun = false;
};

double filterGainDb(const EqFilter& filter, double frequencyHz) {
    const double amplitude = std::pow(10.0, filter.gainDb / 40);
    const double centre = 2 * std::numbers::pi * filter.frequencyHz / equaliserRate;
    const double cosine = std::cos(centre);
    const double alpha = std::sin(centre) / (2 * filter.q);
    const std::complex<double> z1 = std::polar(1.0, -2 * std::numbers::pi * frequencyHz / equaliserRate);
    const auto ratio = [z1](std::array<double, 3> b, std::array<double, 3> a) {
        return 20 * std::log10(std::abs((b[0] + z1 * (b[1] + z1 * b[2])) / (a[0] + z1 * (a[1] + z1 * a[2]))));
    };
    if (filter.shape == EqShape::peak)
        return ratio({1 + alpha * amplitude, -2 * cosine, 1 - alpha * amplitude},
                     {1 + alpha / amplitude, -2 * cosine, 1 - alpha / amplitude});
    const double more = amplitude + 1;
    const double less = amplitude - 1;
    const double slope = 2 * std::sqrt(amplitude) * alpha;
    const double sign = filter.shape == EqShape::lowShelf ? 1 : -1; // a high shelf is a low one mirrored
    return ratio({amplitude * (more - sign * less * cosine + slope),
                  sign * 2 * amplitude * (less - sign * more * cosine),
                  amplitude * (more - sign * less * cosine - slope)},
                 {more + sign * less * cosine + slope, -sign * 2 * (less + sign * more * cosine),
                  more + sign * less * cosine - slope});
}

} // namespace

ParametricEq parseParametricEq(std::string_view text) {
    if (text.starts_with("\xef\xbb\xbf")) // a byte order mark
        text.remove_prefix(3);
    Reader reader;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        reader.read({number, std::string(trimmed(text.substr(0, end)))});
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return reader.result();
}

double gainDb(const ParametricEq& eq, double frequencyHz) {
    double sum = eq.preampDb;
    for (const EqFilter& filter : eq.filters)
        sum += filterGainDb(filter, frequencyHz);
    return sum;
}

} // namespace orvane::kestrum::tools
