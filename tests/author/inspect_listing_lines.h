// The inspector's table as lines whose runs of blanks are one blank each: "offset length part fields ...".
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "author/inspect.h"

namespace qel::author {

inline std::vector<std::string> listingLines(std::span<const std::uint8_t> content) {
    std::vector<std::string> lines;
    std::istringstream text(inspectionText(inspectContent(content), "movie"));
    for (std::string line; std::getline(text, line);) {
        std::istringstream words(line);
        const bool goesOn = line.starts_with(std::string(46, ' '));  // a wrapped line belongs to the one before
        std::string joined = goesOn && !lines.empty() ? lines.back() : "";
        for (std::string word; words >> word;) joined += (joined.empty() ? "" : " ") + word;
        if (goesOn && !lines.empty())
            lines.back() = joined;
        else
            lines.push_back(joined);
    }
    return lines;
}

// The first line of a part of this name, from the name on; "" when there is none.
inline std::string partLine(std::span<const std::uint8_t> content, const std::string& name) {
    for (const std::string& line : listingLines(content)) {
        std::istringstream words(line);
        std::string offset, length, part;
        words >> offset >> length >> part;
        if (part == name) return line.substr(offset.size() + length.size() + 2);
    }
    return "";
}

}  // namespace qel::author
