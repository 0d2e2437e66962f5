#include "author/source_code.h"

#include <algorithm>

#include "author/assembler.h"

namespace qel::author {
namespace {

bool isText(const SourceValue& value) { return value.kind == SourceValue::Kind::text; }

Bytes assembleLines(const SourceValue& lines) {
    std::string listing;
    for (const SourceValue& line : lines.items) {
        if (textOf(line).find('\n') != std::string::npos) fail(line, "each line of a listing stands on its own here");
        listing += line.text + "\n";
    }
    try {
        return assembleActions(listing);
    } catch (const ListingError& error) {
        fail(lines.items.at(error.line - 1), error.what());
    }
}

Bytes assembleFile(const SourceValue& name, const ReadSourceFile& readFile) {
    const Bytes text = fileOf(name, readFile);
    try {
        return assembleActions({reinterpret_cast<const char*>(text.data()), text.size()});
    } catch (const ListingError& error) {
        fail(name, name.text + ":" + std::to_string(error.line) + ": " + error.what());
    }
}

Bytes assembleText(const SourceValue& value) {
    const bool oneLine = value.text.find('\n') == std::string::npos;
    try {
        return assembleActions(value.text);
    } catch (const ListingError& error) {
        fail(value, oneLine ? error.what() : "line " + std::to_string(error.line) + ": " + error.what());
    }
}

}  // namespace

Bytes codeOf(const SourceValue& value, const ReadSourceFile& readFile) {
    if (isText(value)) return assembleText(value);
    if (value.kind == SourceValue::Kind::list) return assembleLines(value);
    if (value.kind != SourceValue::Kind::object)
        fail(value, "action code belongs here: a listing, a list of its lines, { \"file\": … } or { \"hex\": … }");
    if (const SourceValue* hex = value.find("hex")) {
        allowOnly(value, {"hex"});
        return hexOf(*hex);
    }
    allowOnly(value, {"file", "hex"});
    return assembleFile(memberOf(value, "file"), readFile);
}

std::vector<Bytes> codesOf(const SourceValue& value, const ReadSourceFile& readFile) {
    if (value.kind != SourceValue::Kind::list || std::ranges::all_of(value.items, isText))
        return {codeOf(value, readFile)};
    std::vector<Bytes> codes;
    for (const SourceValue& code : value.items) codes.push_back(codeOf(code, readFile));
    return codes;
}

}  // namespace qel::author
