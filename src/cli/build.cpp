// qel build: makes a movie from a readable source.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>

#include "author/source_movie.h"
#include "cli/command_line.h"

namespace qel::cli {
namespace {

struct BuildOptions {
    std::string source, output;
    bool compressed = false;
    double scale = 1;
};

// False, with the reason said, when there is no such text or it is too long to be one.
bool readText(const std::string& path, std::string& text) {
    std::ifstream file(path, std::ios::binary);
    constexpr std::size_t blockBytes = 64 * 1024, mostBytes = 64 * 1024 * 1024;
    while (file && text.size() <= mostBytes) {
        const std::size_t before = text.size();
        text.resize(before + blockBytes);
        file.read(text.data() + before, blockBytes);
        text.resize(before + static_cast<std::size_t>(file.gcount()));
    }
    const bool whole = file.eof() && !file.bad();
    if (!whole) std::cerr << "qel build: " << path << (file ? ": larger than 64 MiB\n" : ": cannot be read\n");
    return whole;
}

bool writeFile(const std::string& path, const author::Bytes& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    return file.good();
}

// The bytes of a file beside the source.
std::optional<author::Bytes> readBeside(const std::string& source, const std::string& name) {
    constexpr std::uintmax_t mostBytes = 16 * 1024 * 1024;
    const std::filesystem::path path = std::filesystem::path(source).parent_path() / name;
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error) || std::filesystem::file_size(path, error) > mostBytes)
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    author::Bytes bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file || file.bad()) return std::nullopt;
    return bytes;
}

bool isPicture(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    std::ranges::transform(extension, extension.begin(), [](unsigned char c) { return std::tolower(c); });
    return extension == ".svg";
}

author::MovieFile compile(const BuildOptions& options, const std::string& source, std::vector<std::string>& warnings) {
    if (isPicture(options.source))
        return author::buildPictureMovie(source, std::filesystem::path(options.source).filename().string(),
                                         options.scale, warnings);
    return author::buildMovie(
        source, [&options](const std::string& name) { return readBeside(options.source, name); }, &warnings);
}

int build(const BuildOptions& options) {
    std::string source;
    if (!readText(options.source, source)) return badUsage;
    try {
        std::vector<std::string> warnings;
        author::Bytes bytes = visFile(compile(options, source, warnings));
        for (const std::string& warning : warnings) std::cerr << "qel build: warning: " << warning << "\n";
        if (options.compressed || options.output.ends_with(".zvis")) bytes = author::zvisFile(bytes);
        if (writeFile(options.output, bytes)) return success;
        std::cerr << "qel build: " << options.output << ": cannot be written\n";
        return badUsage;
    } catch (const author::SourceError& error) {
        std::cerr << options.source << ":" << error.line << ": " << error.field << (error.field.empty() ? "" : ": ")
                  << error.what() << "\n";
    } catch (const std::exception& error) {
        std::cerr << options.source << ": " << error.what() << "\n";
    }
    return failed;
}

}  // namespace

void addBuildCommand(CLI::App& app, int& status) {
    auto options = std::make_shared<BuildOptions>();
    CLI::App* command = app.add_subcommand(
        "build", "Build a movie from a readable source (see docs/movie-source.md), or from one SVG picture");
    command->add_option("SOURCE", options->source, "movie source: JSON with comments; or a picture, NAME.svg")
        ->required();
    command->add_option("-o,--output", options->output, "file to write; a name in .zvis makes a compressed movie")
        ->required();
    command->add_flag("--zvis", options->compressed, "write a compressed movie whatever the file is called");
    command->add_option("--scale", options->scale, "of a picture: how much larger than it says it is")
        ->check(CLI::Range(0.01, 100.0))
        ->capture_default_str();
    command->footer(
        "A picture becomes a movie of one frame; what the format cannot express is listed in warnings.\n"
        "Exit status: 0 built; 1 the source is broken (the message names its line and field); 2 bad usage, or a file "
        "that cannot be read or written.");
    command->callback([options, &status] { status = build(*options); });
}

}  // namespace qel::cli
