#include "author/source_data.h"

#include <algorithm>
#include <filesystem>

namespace qel::author {
namespace {

constexpr std::string_view digits = "0123456789abcdef";

int digitOf(char c) {
    if (c >= 'A' && c <= 'F') c = static_cast<char>(c - 'A' + 'a');
    const std::size_t value = digits.find(c);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// A source may come from somebody else: it reads what lies beside it and nothing else.
bool leadsOut(const std::string& name) {
    const std::filesystem::path path(name);
    return name.empty() || path.has_root_path() || std::ranges::find(path, std::filesystem::path("..")) != path.end();
}

}  // namespace

Bytes hexOf(const SourceValue& value) {
    const std::string& text = textOf(value);
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isSpace(text[i])) continue;
        const int high = digitOf(text[i]), low = i + 1 < text.size() ? digitOf(text[i + 1]) : -1;
        if (high < 0 || low < 0)
            fail(value, "pairs of hexadecimal digits belong here, not \"" + text.substr(i, 2) + "\" at character " +
                            std::to_string(i + 1));
        bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
        ++i;
    }
    return bytes;
}

Bytes fileOf(const SourceValue& name, const ReadSourceFile& readFile) {
    const std::string& text = textOf(name);
    if (leadsOut(text)) fail(name, "\"" + text + "\" is no file beside the source");
    std::optional<Bytes> bytes;
    if (readFile) bytes = readFile(text);
    if (!bytes) fail(name, "\"" + text + "\" cannot be read");
    return std::move(*bytes);
}

Bytes dataOf(const SourceValue& value, const ReadSourceFile& readFile) {
    if (value.kind != SourceValue::Kind::object) return hexOf(value);
    allowOnly(value, {"file"});
    return fileOf(memberOf(value, "file"), readFile);
}

std::string contentTextOf(const SourceValue& value, std::size_t mostBytes) {
    std::string text;
    if (value.kind == SourceValue::Kind::object) {
        allowOnly(value, {"hex"});
        const Bytes bytes = hexOf(memberOf(value, "hex"));
        text.assign(bytes.begin(), bytes.end());
    } else {
        text = textOf(value);
    }
    if (text.size() > mostBytes)
        fail(value, "a text of at most " + std::to_string(mostBytes) + " bytes belongs here; this has " +
                        std::to_string(text.size()));
    return text;
}

}  // namespace qel::author
