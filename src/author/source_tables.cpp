#include "author/source_tables.h"

#include <stdexcept>

namespace qel::author {
namespace {

// The identifier that a record defines, or noCharacter.
std::uint16_t definedId(const Bytes& record) {
    const RecordType type{record[0]};
    if (definedKind(record[0]) == CharacterKind::none) return noCharacter;
    constexpr std::size_t spriteHeadLength = 2;
    const std::size_t at = 1 + recordLengthBytes(record[0]) + (type == RecordType::sprite ? spriteHeadLength : 0);
    return static_cast<std::uint16_t>(record[at] | record[at + 1] << 8);
}

Bytes directoryOf(const MovieFile& movie, std::uint16_t size) {
    std::vector<DirectoryEntry> entries(size);
    const std::vector<Location> locations = recordLocations(movie);
    for (std::size_t i = 0; i < locations.size(); ++i) {
        const std::uint16_t id = definedId(movie.records[i]);
        if (id >= size || entries[id].length != 0) continue;
        entries[id] = {locations[i], definedKind(movie.records[i][0])};
    }
    return characterDirectory(entries);
}

Bytes blocksOf(const MovieFile& movie, const std::vector<CallableFrame>& callables) {
    std::vector<Block> blocks;
    const std::vector<Location> locations = recordLocations(movie);
    for (const CallableFrame& each : callables)
        blocks.push_back({{locations[each.record].offset + each.items.offset, each.items.length}, each.frame});
    return blockTable(blocks);
}

}  // namespace

void addLeadingTables(MovieFile& movie, const LeadingTables& tables) {
    // The tables lie in front of what they point at, so their own size moves it. Offsets only grow from round to round,
    // and with them the fields, which soon are wide enough.
    constexpr int mostRounds = 40;
    for (int round = 0; round < mostRounds; ++round) {
        std::vector<Bytes> leading;
        if (tables.hasDirectory) leading.push_back(directoryOf(movie, tables.directorySize));
        if (!tables.callables.empty()) leading.push_back(blocksOf(movie, tables.callables));
        if (!tables.names.empty()) leading.push_back(nameTable(tables.names));
        if (leading == movie.leading) return;
        movie.leading = std::move(leading);
    }
    throw std::length_error("tables that point at nothing certain");
}

}  // namespace qel::author
