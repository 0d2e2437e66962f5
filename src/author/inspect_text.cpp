// The listing for people: one line a part, its problems below it.
#include <charconv>
#include <cstdio>

#include "author/inspect.h"

namespace qel::author {
namespace {

constexpr std::size_t lineWidth = 110;
constexpr std::size_t codeColumn = 20;
constexpr std::size_t fieldColumn = 46;  // where fields begin, and go on when a line is full

std::string quoted(std::string_view bytes) {
    std::string text = "\"";
    for (const char c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            text += '\\';
            text += c;
        } else if (code >= 0x20 && code < 0x7F) {
            text += c;
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X", unsigned{code});
            text += escape;
        }
    }
    return text + "\"";
}

std::string decimal(double value) {
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

std::string valueText(const Inspection& inspection, const InspectionField& field) {
    const auto begin = static_cast<std::size_t>(field.value);
    switch (field.kind) {
        case FieldKind::number: return std::to_string(field.value);
        case FieldKind::hex: {
            char digits[16];
            std::snprintf(digits, sizeof digits, "0x%04X", static_cast<unsigned>(field.value));
            return digits;
        }
        case FieldKind::yesNo: return field.value ? "yes" : "no";
        case FieldKind::word: return inspection.texts.substr(begin, field.count);
        case FieldKind::lines: return "below";
        case FieldKind::text: return quoted(std::string_view{inspection.texts}.substr(begin, field.count));
        case FieldKind::numbers:
        case FieldKind::matrix: break;
    }
    std::string text = "(";
    for (std::size_t i = 0; i < field.count; ++i) {
        const std::int32_t number = inspection.numbers[begin + i];
        const bool isFixed = field.kind == FieldKind::matrix && i < 4;
        text += (i ? ", " : "") + (isFixed ? decimal(number / 65536.0) : std::to_string(number));
    }
    return text + ")";
}

// Writes words one after another, on a new line wherever one would pass the edge.
struct Line {
    std::string& out;
    std::size_t column = 0;

    void newLine() {
        out += '\n';
        out.append(fieldColumn, ' ');
        column = fieldColumn;
    }

    void word(std::string_view text, std::size_t gap) {
        if (column + gap + text.size() > lineWidth && column > fieldColumn) {
            newLine();
            gap = 0;
        }
        out.append(gap, ' ');
        out += text;
        column += gap + text.size();
    }

    // A value that is a list may break behind its commas.
    void field(std::string_view name, std::string_view value, std::size_t gap) {
        const bool breaks = name.size() + 1 + value.size() > lineWidth - fieldColumn && value.front() == '(';
        if (!breaks) return word(std::string(name) + ' ' + std::string(value), gap);
        word(name, gap);
        for (std::size_t at = 0; at < value.size();) {
            const std::size_t comma = value.find(", ", at);
            const std::size_t end = comma == std::string_view::npos ? value.size() : comma + 1;
            word(value.substr(at, end - at), 1);
            at = comma == std::string_view::npos ? value.size() : comma + 2;
        }
    }
};

// Lines of a field of their own stand below the part.
void writeLines(std::string& out, const Inspection& inspection, const InspectionField& field, std::size_t column) {
    std::string_view lines =
        std::string_view{inspection.texts}.substr(static_cast<std::size_t>(field.value), field.count);
    while (!lines.empty()) {
        const std::size_t end = lines.find('\n') + 1;
        out.append(column, ' ').append(lines.substr(0, end));
        lines.remove_prefix(end);
    }
}

void writePart(std::string& out, const Inspection& inspection, std::uint32_t index) {
    const InspectionPart& part = inspection.parts[index];
    char numbers[32];
    std::snprintf(numbers, sizeof numbers, "%9u %8u  ", part.offset, part.length);
    std::string head = numbers + std::string(std::size_t{2} * part.depth, ' ') + part.name;
    if (part.type >= 0) head += " (" + std::to_string(part.type) + ")";
    const std::span<const InspectionField> fields = fieldsOf(inspection, index);
    if (!fields.empty() && head.size() + 2 < fieldColumn) head.append(fieldColumn - 2 - head.size(), ' ');
    out += head;
    Line line{out, head.size()};
    for (const InspectionField& field : fields) line.field(field.name, valueText(inspection, field), 2);
    out += '\n';
    for (const InspectionField& field : fields)
        if (field.kind == FieldKind::lines)
            writeLines(out, inspection, field, codeColumn + std::size_t{2} * part.depth);
}

std::string counted(std::uint32_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

std::string inspectionText(const Inspection& inspection, std::string_view title) {
    std::string out = std::string(title) + ": " + std::string(familyName(inspection.family)) + ", " +
                      counted(inspection.fileLength, "byte") + "\n\n   offset   length  part\n";
    std::size_t problem = 0;
    for (std::uint32_t part = 0; part < inspection.parts.size(); ++part) {
        if (part == inspection.expandedPart) out += "\nExpanded content; offsets count from its start:\n";
        writePart(out, inspection, part);
        for (; problem < inspection.problems.size() && inspection.problems[problem].part == part; ++problem) {
            const InspectionProblem& found = inspection.problems[problem];
            out += found.severity == Severity::error ? "  ! broken at " : "  ? warning at ";
            out += std::to_string(found.offset) + ": " + found.text + "\n";
        }
    }
    const std::uint32_t found = inspection.errorCount + inspection.warningCount;
    if (found > inspection.problems.size()) {
        out += "\n" + counted(found - static_cast<std::uint32_t>(inspection.problems.size()), "more problem") +
               " not listed\n";
    }
    if (found == 0) return out + "\nno problems\n";
    return out + "\n" + (inspection.errorCount ? "broken: " : "") + counted(inspection.errorCount, "error") + ", " +
           counted(inspection.warningCount, "warning") + "\n";
}

}  // namespace qel::author
