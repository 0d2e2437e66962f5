// qel info: what a content file holds and where it is broken.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "author/inspect.h"
#include "cli/command_line.h"

namespace qel::cli {
namespace {

struct InfoOptions {
    std::string path;
    bool json = false;
    author::InspectionWishes wishes;
};

// False, with the reason said, when the file cannot be had or is larger than the inspector takes.
bool readWhole(const std::string& path, std::vector<std::uint8_t>& bytes) {
    std::ifstream file(path, std::ios::binary);
    constexpr std::size_t blockBytes = 64 * 1024;
    while (file) {
        const std::size_t before = bytes.size();
        bytes.resize(before + blockBytes);
        file.read(reinterpret_cast<char*>(bytes.data() + before), blockBytes);
        bytes.resize(before + static_cast<std::size_t>(file.gcount()));
        if (bytes.size() > author::maxInspectedBytes) {
            std::cerr << "qel info: " << path << ": larger than " << (author::maxInspectedBytes >> 20) << " MiB\n";
            return false;
        }
    }
    if (file.eof() && !file.bad()) return true;
    std::cerr << "qel info: " << path << ": cannot be read\n";
    return false;
}

int showInfo(const InfoOptions& options) {
    std::vector<std::uint8_t> bytes;
    if (!readWhole(options.path, bytes)) return badUsage;
    const author::Inspection inspection = author::inspectContent(bytes, options.wishes);
    if (inspection.family == ContentFamily::stream) {
        std::cerr << "qel info: " << options.path << ": stream content (MSF, MSS) is not listed\n";
        return badUsage;
    }
    std::cout << (options.json ? author::inspectionJson(inspection, options.path)
                               : author::inspectionText(inspection, options.path));
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "qel info: the listing cannot be written\n";
        return badUsage;
    }
    return inspection.errorCount ? failed : success;
}

}  // namespace

void addInfoCommand(CLI::App& app, int& status) {
    const auto options = std::make_shared<InfoOptions>();
    CLI::App* info = app.add_subcommand("info", "Lists what a VIS, ZVIS or SAF file holds and where it is broken.");
    info->add_option("FILE", options->path, "the content file")->required();
    info->add_flag("--json", options->json, "one JSON object instead of a table");
    info->add_flag("--actions", options->wishes.actions, "with the action code, as 'qel build' takes it");
    info->footer("Exit status: 0 the file is whole, 1 it is broken, 2 it cannot be read or is stream content.");
    info->callback([options, &status] { status = showInfo(*options); });
}

}  // namespace qel::cli
