// The listing for programs: one JSON object, one line a part, parts nested as they are in the file.
#include <charconv>
#include <cstdio>

#include "author/inspect.h"

namespace qel::author {
namespace {

void writeText(std::string& out, std::string_view bytes) {
    out += '"';
    for (const char c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (code >= 0x20 && code < 0x7F) {
            out += c;
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", unsigned{code});
            out += escape;
        }
    }
    out += '"';
}

// A list of the lines, without their newlines.
void writeLines(std::string& out, std::string_view lines) {
    char before = '[';
    while (!lines.empty()) {
        const std::size_t end = lines.find('\n');
        out += before;
        writeText(out, lines.substr(0, end));
        lines.remove_prefix(end + 1);
        before = ',';
    }
    out += ']';
}

void writeValue(std::string& out, const Inspection& inspection, const InspectionField& field) {
    const auto begin = static_cast<std::size_t>(field.value);
    switch (field.kind) {
        case FieldKind::number:
        case FieldKind::hex: out += std::to_string(field.value); return;
        case FieldKind::yesNo: out += field.value ? "true" : "false"; return;
        case FieldKind::word:
        case FieldKind::text: writeText(out, std::string_view{inspection.texts}.substr(begin, field.count)); return;
        case FieldKind::lines: return writeLines(out, std::string_view{inspection.texts}.substr(begin, field.count));
        case FieldKind::numbers:
        case FieldKind::matrix: break;
    }
    out += '[';
    for (std::size_t i = 0; i < field.count; ++i) {
        const std::int32_t number = inspection.numbers[begin + i];
        char digits[32];
        char* end = field.kind == FieldKind::matrix && i < 4
                        ? std::to_chars(digits, digits + sizeof digits, number / 65536.0).ptr
                        : std::to_chars(digits, digits + sizeof digits, number).ptr;
        if (i) out += ',';
        out.append(digits, end);
    }
    out += ']';
}

// Everything of a part but its children. `problem` is the next one to write.
void writePartHead(std::string& out, const Inspection& inspection, std::uint32_t index, std::size_t& problem) {
    const InspectionPart& part = inspection.parts[index];
    out += R"({"name":")" + std::string(part.name) + '"';
    if (part.type >= 0) out += R"(,"type":)" + std::to_string(part.type);
    out += R"(,"offset":)" + std::to_string(part.offset) + R"(,"length":)" + std::to_string(part.length);
    bool any = false;
    for (const InspectionField& field : fieldsOf(inspection, index)) {
        out += any ? ",\"" : R"(,"fields":{")";
        out += field.name;
        out += "\":";
        writeValue(out, inspection, field);
        any = true;
    }
    if (any) out += '}';
    any = false;
    for (; problem < inspection.problems.size() && inspection.problems[problem].part == index; ++problem) {
        const InspectionProblem& found = inspection.problems[problem];
        out += any ? "," : R"(,"problems":[)";
        out += found.severity == Severity::error ? R"({"severity":"error","offset":)"
                                                 : R"({"severity":"warning","offset":)";
        out += std::to_string(found.offset) + R"(,"text":)";
        writeText(out, found.text);
        out += '}';
        any = true;
    }
    if (any) out += ']';
}

}  // namespace

std::string inspectionJson(const Inspection& inspection, std::string_view title) {
    std::string out = R"({"file":)";
    writeText(out, title);
    out += R"(,"kind":")" + std::string(familyName(inspection.family)) + R"(","fileLength":)" +
           std::to_string(inspection.fileLength) + R"(,"broken":)" + (inspection.errorCount ? "true" : "false") +
           R"(,"errors":)" + std::to_string(inspection.errorCount) + R"(,"warnings":)" +
           std::to_string(inspection.warningCount) + R"(,"parts":[)";
    std::size_t problem = 0;
    for (std::uint32_t part = 0; part < inspection.parts.size(); ++part) {
        const unsigned depth = inspection.parts[part].depth;
        const unsigned next = part + 1 < inspection.parts.size() ? inspection.parts[part + 1].depth : 0;
        out.append("\n").append(depth + 1u, ' ');
        writePartHead(out, inspection, part, problem);
        if (next > depth) {
            out += R"(,"children":[)";
            continue;
        }
        out += '}';
        for (unsigned closed = depth; closed > next; --closed) out += "]}";
        if (part + 1 < inspection.parts.size()) out += ',';
    }
    return out + "\n]}\n";
}

}  // namespace qel::author
