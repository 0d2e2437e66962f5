// Inflating zlib streams, also those whose dynamic blocks carry no code tables: a code-table description is parsed
// once, kept, and used for the dynamic blocks of all later streams. Stock zlib does the work, block by block: in front
// of a dynamic block the kept description is spliced into its bits.
#pragma once

#include <zlib.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace qel {

// Where the inflater's memory comes from.
struct InflateMemory {
    void* context = nullptr;
    void* (*allocate)(void* context, std::size_t size) = nullptr;
    void (*free)(void* context, void* block) = nullptr;
};

enum class InflateStatus : std::uint8_t {
    streamEnd,    // the stream is complete and its checksum right
    needInput,    // all input was taken and the stream goes on; when the output is full, maybe without more input
    needOutput,   // the output is full and input is left
    broken,       // no zlib stream, or its data or checksum are wrong
    outOfMemory,  // the stream is lost
};

struct InflateProgress {
    InflateStatus status = InflateStatus::broken;
    std::size_t consumed = 0, produced = 0;  // bytes
};

// One inflater serves one stream after the other. Not to be copied or moved once created.
struct Inflater {
    // The longest description: a compression table record has at most as many bytes.
    static constexpr std::size_t maximumDescription = 2078;

    enum class Stage : std::uint8_t { method, flags, blockHeader, block, checksum, ended, broken };

    InflateMemory memory;
    z_stream zlib{};
    bool created = false;

    // The three bits of a dynamic block's header, then the description: what is spliced in. No bits: nothing is kept.
    std::array<std::uint8_t, maximumDescription + 1> kept{};
    std::uint32_t keptBits = 0;

    // The stream that is being inflated.
    Stage stage = Stage::broken;
    std::uint8_t method = 0;    // its first byte
    std::uint8_t lastByte = 0;  // the last byte that was taken; bits of it may belong to the next block
    std::uint32_t bits = 0;     // bits taken from the input and not yet used, the next one lowest
    unsigned bitCount = 0;
    bool lastBlock = false;
    std::uint32_t adler = 0;     // of the output so far
    std::uint32_t checksum = 0;  // as far as it was read
    unsigned checksumBytes = 0;
};

// False, with nothing left allocated, when there is no memory.
bool createInflater(Inflater& inflater, const InflateMemory& memory);
void destroyInflater(Inflater& inflater);

// Parses a description (the body of a dynamic block's header, from its counts to its code lengths) and keeps it for all
// later streams. False when it does not parse or does not lie whole in the bytes; then nothing is kept. Bytes behind it
// are ignored. The stream at hand is lost: going on with it gives `broken`.
bool keepCodeTables(Inflater& inflater, std::span<const std::uint8_t> description);

// Later streams bring their own tables.
void forgetCodeTables(Inflater& inflater);

// A new stream begins with the next input.
void beginStream(Inflater& inflater);

// Goes on with the stream. Input and output may be cut anywhere.
InflateProgress inflateBytes(Inflater& inflater, std::span<const std::uint8_t> input, std::span<std::uint8_t> output);

}  // namespace qel
