// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/reports/ReportCommand.h"

#include "data/DataError.h"
#include "data/reports/FolderReport.h"
#include "data/reports/ReportPage.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace orvane::kestrum::tools {

void addReportCommand(CLI::App& data, std::ostream& out) {
    struct Request {
        std::filesystem::path data;
        std::filesystem::path out;
    };
    CLI::App* const command =
        data.add_subcommand("report", "Shows on one page what a data folder sounds like (needs gnuplot).");
    const auto request = std::make_shared<Request>();
    command->add_option("DIR", request->data, "The data folder")->required()->type_name("");
    command->add_option("OUT", request->out, "Folder for the page and its plots; made when missing")
        ->required()
        ->type_name("");
    command->footer("Example:\n"
                    "  kestrum data report /opt/Tenmarsh/OrvaneVSTPlugin/data my-report");
    command->callback([request, &out] {
        if (!std::filesystem::is_directory(request->data))
            throw DataError("\"" + request->data.string() +
                            "\" is no folder: \"kestrum doctor\" names the command that installs the data.");
        requireGnuplot();
        writeFolderReport(request->data, request->out, {}, out);
    });
}

} // namespace orvane::kestrum::tools
