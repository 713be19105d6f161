// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "SyntheticHead.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

/// A SOFA file as text; what a test wants wrong is changed in place.
struct SofaText {
    std::string convention = "SimpleFreeFieldHRIR";
    double sampleRate = 44100;
    std::vector<Direction> directions;
    std::vector<std::string> responses; ///< Numbers of one receiver after the other, direction by direction.
    std::size_t tapCount = 0;
    std::size_t receiverCount = 2;
    double delaySamples = 0; ///< Of every receiver.
};

inline std::string numbersOf(const Samples& samples) {
    std::ostringstream text;
    text.precision(9);
    for (std::size_t index = 0; index < samples.size(); ++index)
        text << (index > 0 ? ", " : "") << samples[index];
    return text.str();
}

/// A computed head as its file holds it. The convention counts azimuth to the left.
inline SofaText sofaOf(const SyntheticHead& head, const std::vector<Direction>& directions) {
    SofaText sofa{
        .sampleRate = head.sampleRate, .directions = directions, .responses = {}, .tapCount = head.tapCount};
    for (const Direction& direction : directions)
        for (const int side : {-1, 1})
            sofa.responses.push_back(numbersOf(head.response(side, direction)));
    return sofa;
}

/// Writes the file by the tool that turns text into the container of SOFA.
inline void writeSofa(const SofaText& sofa, const std::string& file) {
    using orvane::kestrum::tools::azimuthDegrees;
    using orvane::kestrum::tools::elevationDegrees;
    {
        std::ofstream text(file + ".cdl");
        text << "netcdf head {\ndimensions:\n M = " << sofa.directions.size()
             << " ; R = " << sofa.receiverCount << " ; N = " << sofa.tapCount
             << " ; E = 1 ; C = 3 ; I = 1 ;\nvariables:\n"
             << " double SourcePosition(M, C) ; SourcePosition:Type = \"spherical\" ;\n"
             << " SourcePosition:Units = \"degree, degree, metre\" ;\n"
             << " double ListenerPosition(I, C) ; ListenerPosition:Type = \"cartesian\" ; "
                "ListenerPosition:Units = \"metre\" ;\n"
             << " double ReceiverPosition(R, C, I) ; ReceiverPosition:Type = \"cartesian\" ; "
                "ReceiverPosition:Units = \"metre\" ;\n"
             << " double EmitterPosition(E, C, I) ; EmitterPosition:Type = \"cartesian\" ; "
                "EmitterPosition:Units = \"metre\" ;\n"
             << " double Data.IR(M, R, N) ;\n double Data.SamplingRate(I) ; Data.SamplingRate:Units = "
                "\"hertz\" ;\n"
             << " double Data.Delay(I, R) ;\n :Conventions = \"SOFA\" ; :Version = \"1.0\" ; "
                ":SOFAConventions = \""
             << sofa.convention
             << "\" ;\n :SOFAConventionsVersion = \"1.0\" ; :DataType = \"FIR\" ; :RoomType = \"free field\" "
                ";\n";
        // A reader of small files wants more attributes than these.
        for (const char* name :
             {"APIName", "APIVersion", "AuthorContact", "Comment", "DatabaseName", "History", "License",
              "ListenerShortName", "Organization", "References", "Title"})
            text << " :" << name << " = \"computed\" ;\n";
        text << "data:\n ListenerPosition = 0, 0, 0 ; EmitterPosition = 0, 0, 0 ; Data.SamplingRate = "
             << sofa.sampleRate << " ;\n Data.Delay = " << sofa.delaySamples;
        for (std::size_t receiver = 1; receiver < sofa.receiverCount; ++receiver)
            text << ", " << sofa.delaySamples;
        text << " ; ReceiverPosition = 0, 0.09, 0";
        for (std::size_t receiver = 1; receiver < sofa.receiverCount; ++receiver)
            text << ", 0, -0.09, 0";
        text << " ;\n SourcePosition = ";
        for (std::size_t index = 0; index < sofa.directions.size(); ++index)
            text << (index > 0 ? ",\n  " : "") << -azimuthDegrees(sofa.directions[index]) << ", "
                 << elevationDegrees(sofa.directions[index]) << ", 1.5";
        text << " ;\n Data.IR = ";
        for (std::size_t index = 0; index < sofa.responses.size(); ++index)
            text << (index > 0 ? ",\n  " : "") << sofa.responses[index];
        text << " ;\n}\n";
    }
    if (std::system(("ncgen -k nc4 -o '" + file + "' '" + file + ".cdl'").c_str()) != 0)
        throw std::runtime_error("ncgen failed: is the package netcdf-bin installed?");
}

} // namespace test
