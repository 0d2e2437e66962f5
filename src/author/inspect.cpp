#include "author/inspect.h"

#include <algorithm>

#include "author/inspect_fields.h"
#include "author/inspect_inflate.h"
#include "author/inspect_movie.h"
#include "author/inspect_saf.h"

namespace qel::author {
namespace inspector {
namespace {

struct CompressedFacts {
    std::uint32_t expandedLength = 0, chunkCount = 0, tableLength = 0;
    bool consistent = false;  // the expanded length fits the number of chunks
};

// The header is whole when this is called.
CompressedFacts inspectCompressedHeader(Listing& list) {
    CompressedFacts facts;
    PartScope scope(list, "header", -1, 0, zvis::headerSize);
    FieldReader fields(list, zvis::expandedLengthOffset, zvis::headerSize);
    facts.expandedLength = fields.u32("expandedLength");
    const std::uint32_t fileLength = fields.u32("fileLength");
    fields.skip(2, nullptr);
    fields.u16("width");
    fields.u16("height");
    facts.chunkCount = fields.u8("chunkCount");
    facts.tableLength = fields.u8("tableLength");
    if (fileLength > list.content.size()) {
        addError(list, list.content.size(), "the content has %u bytes, the file ends after %zu", fileLength,
                 list.content.size());
    } else if (fileLength < list.content.size()) {
        addWarning(list, fileLength, "%zu bytes from %u on belong to nothing", list.content.size() - fileLength,
                   fileLength);
    }
    if (facts.chunkCount == 0) {
        addError(list, zvis::chunkCountOffset, "there are no chunks");
        return facts;
    }
    facts.consistent = facts.expandedLength > (facts.chunkCount - 1) * zvis::chunkSize &&
                       facts.expandedLength <= facts.chunkCount * zvis::chunkSize;
    if (!facts.consistent) {
        addError(list, zvis::expandedLengthOffset, "%u chunks of %u bytes cannot hold %u bytes, the last chunk begun",
                 facts.chunkCount, unsigned{zvis::chunkSize}, facts.expandedLength);
    }
    return facts;
}

// Lists the chunks and answers what they expand to, up to the first that is broken. Without tables none is expanded.
std::vector<std::uint8_t> expandChunks(Listing& list, const CompressedFacts& facts, const SharedTables* tables) {
    std::vector<std::uint8_t> expanded, chunk;
    const std::size_t sizes = zvis::headerSize + facts.tableLength;
    std::size_t at = sizes + std::size_t{facts.chunkCount} * 2;
    const bool expands = tables && facts.consistent;
    bool whole = expands;
    for (std::uint32_t i = 0; i < facts.chunkCount; ++i) {
        const std::size_t size = list.content[sizes + 2 * i] + 256u * list.content[sizes + 2 * i + 1];
        const std::uint32_t due =
            i + 1 < facts.chunkCount ? zvis::chunkSize : facts.expandedLength - i * zvis::chunkSize;
        PartScope scope(list, "chunk", -1, at, size);
        addNumber(list, "index", i);
        addNumber(list, "compressedSize", static_cast<std::int64_t>(size));
        if (facts.consistent) addNumber(list, "expandedSize", due);
        if (size > list.content.size() - at) {
            addError(list, at, "chunk %u of %zu bytes runs past the end of the file at %zu", i, size,
                     list.content.size());
            return expanded;
        }
        const char* wrong = expands ? inflateShared(list.content.subspan(at, size), *tables, due, chunk) : nullptr;
        if (wrong)
            addError(list, at, "chunk %u does not expand to its %u bytes: %s (after %zu bytes)", i, due, wrong,
                     chunk.size());
        whole = whole && !wrong;
        if (whole) expanded.insert(expanded.end(), chunk.begin(), chunk.end());
        at += size;
    }
    return expanded;
}

void inspectExpanded(Listing& list, const std::vector<std::uint8_t>& expanded, std::uint32_t due) {
    if (expanded.empty() || list.full) return;
    Listing inner{.out = list.out, .content = expanded, .wishes = list.wishes};
    PartScope scope(inner, "expandedContent", -1, 0, expanded.size());
    if (inner.full) return;
    list.out.expandedPart = scope.index();
    if (expanded.size() < due)
        addError(inner, expanded.size(), "only %zu of %u bytes could be expanded", expanded.size(), due);
    switch (contentFamily(expanded)) {
        case ContentFamily::vis: inspectMovie(inner, MovieSource::expanded); break;
        case ContentFamily::saf: inspectSaf(inner); break;
        case ContentFamily::zvis:
        case ContentFamily::stream:
        case ContentFamily::unknown:
            addError(inner, 0, "the expanded content begins neither with \"VIS\" nor with \"SAF\"");
            break;
    }
}

void inspectCompressed(Listing& list) {
    if (list.content.size() < zvis::headerSize) {
        PartScope scope(list, "header", -1, 0, list.content.size());
        addError(list, list.content.size(), "the header is cut off: %zu of %u bytes", list.content.size(),
                 unsigned{zvis::headerSize});
        return;
    }
    const CompressedFacts facts = inspectCompressedHeader(list);
    const std::size_t chunks = zvis::headerSize + facts.tableLength + std::size_t{facts.chunkCount} * 2;
    if (chunks > list.content.size()) {
        addError(list, list.content.size(), "the code tables and chunk sizes end at %zu, the file after %zu bytes",
                 chunks, list.content.size());
        return;
    }
    SharedTables tables;
    const char* wrong = parseSharedTables(list.content.subspan(zvis::headerSize, facts.tableLength), tables);
    {
        PartScope scope(list, "codeTables", -1, zvis::headerSize, facts.tableLength);
        addNumber(list, "tableBytes", facts.tableLength);
        if (wrong) addError(list, zvis::headerSize, "the code tables do not parse: %s", wrong);
    }
    const std::vector<std::uint8_t> expanded = expandChunks(list, facts, wrong ? nullptr : &tables);
    inspectExpanded(list, expanded, facts.expandedLength);
}

}  // namespace
}  // namespace inspector

Inspection inspectContent(std::span<const std::uint8_t> bytes, InspectionWishes wishes) {
    using namespace inspector;
    Inspection inspection;
    inspection.family = contentFamily(bytes);
    inspection.fileLength = static_cast<std::uint32_t>(bytes.size());
    Listing list{.out = inspection, .content = bytes, .wishes = wishes};
    switch (inspection.family) {
        case ContentFamily::vis: inspectMovie(list, MovieSource::file); break;
        case ContentFamily::zvis: inspectCompressed(list); break;
        case ContentFamily::saf: inspectSaf(list); break;
        case ContentFamily::stream:
        case ContentFamily::unknown: {
            PartScope scope(list, "header", -1, 0, bytes.size());
            addError(list, 0,
                     inspection.family == ContentFamily::stream
                         ? "stream content (\"MSF\", \"MSS\") has no records that could be listed"
                         : "the first bytes are none of \"VIS\", \"ZVIS\", \"SAF\"");
            break;
        }
    }
    std::stable_sort(inspection.problems.begin(), inspection.problems.end(),
                     [](const InspectionProblem& a, const InspectionProblem& b) { return a.part < b.part; });
    return inspection;
}

std::span<const InspectionField> fieldsOf(const Inspection& inspection, std::uint32_t part) {
    const std::span<const InspectionField> all{inspection.fields};
    const std::size_t begin = inspection.parts[part].firstField;
    const std::size_t end = part + 1 < inspection.parts.size() ? inspection.parts[part + 1].firstField : all.size();
    return all.subspan(begin, end - begin);
}

std::string_view familyName(ContentFamily family) {
    switch (family) {
        case ContentFamily::vis: return "VIS";
        case ContentFamily::zvis: return "ZVIS";
        case ContentFamily::saf: return "SAF";
        case ContentFamily::stream: return "MSF/MSS";
        case ContentFamily::unknown: break;
    }
    return "unknown";
}

}  // namespace qel::author
