#include "movie/inflater.h"

#include <algorithm>

namespace qel {
namespace {

constexpr int rawWindowBits = -15;  // no zlib header: the largest window that a header may announce
constexpr unsigned blockHeaderBits = 3;
constexpr unsigned lastBlockBit = 1;
constexpr unsigned dynamicHeader = 2u << 1;  // not the last block, with dynamic codes
enum class BlockType : std::uint8_t { stored = 0, fixed = 1, dynamic = 2, invalid = 3 };

// What zlib's data_type says after a call.
constexpr int unusedBitsMask = 63;
constexpr int atBlockBoundary = 128;
constexpr int behindTables = 256;

voidpf allocateForZlib(voidpf opaque, uInt items, uInt size) {
    const InflateMemory& memory = *static_cast<const InflateMemory*>(opaque);
    return memory.allocate(memory.context, std::size_t{items} * size);
}

void freeForZlib(voidpf opaque, voidpf block) {
    const InflateMemory& memory = *static_cast<const InflateMemory*>(opaque);
    memory.free(memory.context, block);
}

void setInput(z_stream& zlib, std::span<const std::uint8_t> input) {
    zlib.next_in = const_cast<Bytef*>(input.data());  // zlib only reads it
    zlib.avail_in = static_cast<uInt>(input.size());
}

// zlib wants to be pointed somewhere even where there is no room.
void setOutput(z_stream& zlib, std::span<std::uint8_t> output) {
    static std::uint8_t nowhere;
    zlib.next_out = output.empty() ? &nowhere : output.data();
    zlib.avail_out = static_cast<uInt>(output.size());
}

bool prime(z_stream& zlib, std::uint32_t bits, unsigned count) {
    return count == 0 || inflatePrime(&zlib, static_cast<int>(count), static_cast<int>(bits)) == Z_OK;
}

// What the caller hands in, as far as it is used.
struct Call {
    std::span<const std::uint8_t> input;
    std::span<std::uint8_t> output;
    std::size_t consumed = 0, produced = 0;

    bool inputLeft() const { return consumed < input.size(); }
};

InflateProgress stop(Inflater& inflater, const Call& call, InflateStatus status) {
    if (status == InflateStatus::broken || status == InflateStatus::outOfMemory)
        inflater.stage = Inflater::Stage::broken;
    return {status, call.consumed, call.produced};
}

bool goodStreamHeader(std::uint8_t method, std::uint8_t flags) {
    constexpr unsigned deflate = 8, largestWindow = 7, checkModulus = 31;
    return (method & 15) == deflate && method >> 4 <= largestWindow && (method * 256u + flags) % checkModulus == 0;
}

// Hands zlib the kept header and description. The whole bytes go as input, with no room for output; the odd bits are
// primed. To zlib no such block is the last: it stops behind the block all the same.
bool spliceTables(Inflater& inflater) {
    const std::size_t wholeBytes = inflater.keptBits / 8;
    setInput(inflater.zlib, {inflater.kept.data(), wholeBytes});
    setOutput(inflater.zlib, {});
    const int result = inflate(&inflater.zlib, Z_NO_FLUSH);
    if ((result != Z_OK && result != Z_BUF_ERROR) || inflater.zlib.avail_in != 0) return false;
    const unsigned oddBits = inflater.keptBits % 8;
    return prime(inflater.zlib, inflater.kept[wholeBytes] & ((1u << oddBits) - 1), oddBits);
}

// Reads the header of the next block and makes zlib ready for what follows. False: broken.
bool enterBlock(Inflater& inflater) {
    const unsigned header = inflater.bits & 7;
    inflater.lastBlock = (header & lastBlockBit) != 0;
    const auto type = static_cast<BlockType>(header >> 1);
    if (type == BlockType::invalid) return false;
    const bool splice = type == BlockType::dynamic && inflater.keptBits != 0;
    if (splice ? !spliceTables(inflater) : !prime(inflater.zlib, header, blockHeaderBits)) return false;
    const std::uint32_t rest = inflater.bits >> blockHeaderBits;
    const unsigned restCount = inflater.bitCount - blockHeaderBits;
    inflater.bits = inflater.bitCount = 0;
    inflater.stage = Inflater::Stage::block;
    return prime(inflater.zlib, rest, restCount);
}

// At the end of a block: takes the bits back that zlib has not used.
bool leaveBlock(Inflater& inflater) {
    const auto unused = static_cast<unsigned>(inflater.zlib.data_type & unusedBitsMask);
    if (unused > 7) return false;
    inflater.bits = static_cast<std::uint32_t>(inflater.lastByte >> (8 - unused));
    inflater.bitCount = unused;
    inflater.stage = inflater.lastBlock ? Inflater::Stage::checksum : Inflater::Stage::blockHeader;
    return inflatePrime(&inflater.zlib, -1, 0) == Z_OK;
}

// Lets zlib work within a block. When the output is full it is called all the same, so that the end of the block is
// found.
InflateStatus runBlock(Inflater& inflater, Call& call) {
    z_stream& zlib = inflater.zlib;
    setInput(zlib, call.input.subspan(call.consumed));
    setOutput(zlib, call.output.subspan(call.produced));
    const std::size_t inputBefore = zlib.avail_in, outputBefore = zlib.avail_out;
    const int result = inflate(&zlib, Z_BLOCK);
    const std::size_t taken = inputBefore - zlib.avail_in, made = outputBefore - zlib.avail_out;
    if (taken > 0) inflater.lastByte = call.input[call.consumed + taken - 1];
    if (made > 0)
        inflater.adler = static_cast<std::uint32_t>(
            adler32(inflater.adler, call.output.data() + call.produced, static_cast<uInt>(made)));
    call.consumed += taken;
    call.produced += made;
    if (result == Z_MEM_ERROR) return InflateStatus::outOfMemory;
    if (result != Z_OK && result != Z_BUF_ERROR) return InflateStatus::broken;
    if ((zlib.data_type & atBlockBoundary) != 0)
        return leaveBlock(inflater) ? InflateStatus::streamEnd : InflateStatus::broken;
    return call.inputLeft() ? InflateStatus::needOutput : InflateStatus::needInput;
}

}  // namespace

bool createInflater(Inflater& inflater, const InflateMemory& memory) {
    inflater.memory = memory;
    inflater.zlib.opaque = &inflater.memory;
    inflater.zlib.zalloc = allocateForZlib;
    inflater.zlib.zfree = freeForZlib;
    inflater.created = inflateInit2(&inflater.zlib, rawWindowBits) == Z_OK;
    return inflater.created;
}

void destroyInflater(Inflater& inflater) {
    if (inflater.created) inflateEnd(&inflater.zlib);
    inflater.created = false;
}

bool keepCodeTables(Inflater& inflater, std::span<const std::uint8_t> description) {
    inflater.keptBits = 0;
    inflater.stage = Inflater::Stage::broken;
    const std::size_t size = std::min(description.size(), Inflater::maximumDescription);
    z_stream& zlib = inflater.zlib;
    if (inflateReset(&zlib) != Z_OK || !prime(zlib, dynamicHeader, blockHeaderBits)) return false;
    setInput(zlib, description.first(size));
    setOutput(zlib, {});
    const int result = inflate(&zlib, Z_TREES);
    if (result != Z_OK || (zlib.data_type & behindTables) == 0) return false;
    const std::size_t bytes = size - zlib.avail_in;
    const std::size_t bits = bytes * 8 - static_cast<std::size_t>(zlib.data_type & unusedBitsMask);

    unsigned carried = dynamicHeader;
    for (std::size_t i = 0; i < bytes; ++i) {
        carried |= unsigned{description[i]} << blockHeaderBits;
        inflater.kept[i] = static_cast<std::uint8_t>(carried);
        carried >>= 8;
    }
    inflater.kept[bytes] = static_cast<std::uint8_t>(carried);
    inflater.keptBits = static_cast<std::uint32_t>(blockHeaderBits + bits);
    return true;
}

void forgetCodeTables(Inflater& inflater) { inflater.keptBits = 0; }

void beginStream(Inflater& inflater) {
    const bool ready = inflateReset(&inflater.zlib) == Z_OK;
    inflater.stage = ready ? Inflater::Stage::method : Inflater::Stage::broken;
    inflater.bits = inflater.bitCount = 0;
    inflater.lastByte = 0;
    inflater.lastBlock = false;
    inflater.adler = static_cast<std::uint32_t>(adler32(0, nullptr, 0));
    inflater.checksum = 0;
    inflater.checksumBytes = 0;
}

InflateProgress inflateBytes(Inflater& inflater, std::span<const std::uint8_t> input, std::span<std::uint8_t> output) {
    using Stage = Inflater::Stage;
    constexpr unsigned checksumLength = 4;
    Call call{.input = input, .output = output};
    for (;;) {
        switch (inflater.stage) {
            case Stage::method:
                if (!call.inputLeft()) return stop(inflater, call, InflateStatus::needInput);
                inflater.method = input[call.consumed++];
                inflater.stage = Stage::flags;
                break;
            case Stage::flags: {
                if (!call.inputLeft()) return stop(inflater, call, InflateStatus::needInput);
                const std::uint8_t flags = input[call.consumed++];
                if (!goodStreamHeader(inflater.method, flags)) return stop(inflater, call, InflateStatus::broken);
                inflater.stage = Stage::blockHeader;
                break;
            }
            case Stage::blockHeader:
                if (inflater.bitCount < blockHeaderBits) {
                    if (!call.inputLeft()) return stop(inflater, call, InflateStatus::needInput);
                    inflater.lastByte = input[call.consumed++];
                    inflater.bits |= std::uint32_t{inflater.lastByte} << inflater.bitCount;
                    inflater.bitCount += 8;
                }
                if (!enterBlock(inflater)) return stop(inflater, call, InflateStatus::broken);
                break;
            case Stage::block: {
                const InflateStatus status = runBlock(inflater, call);
                if (status != InflateStatus::streamEnd) return stop(inflater, call, status);
                break;
            }
            case Stage::checksum:
                if (!call.inputLeft()) return stop(inflater, call, InflateStatus::needInput);
                inflater.checksum = inflater.checksum << 8 | input[call.consumed++];
                if (++inflater.checksumBytes < checksumLength) break;
                if (inflater.checksum != inflater.adler) return stop(inflater, call, InflateStatus::broken);
                inflater.stage = Stage::ended;
                break;
            case Stage::ended: return stop(inflater, call, InflateStatus::streamEnd);
            case Stage::broken: return stop(inflater, call, InflateStatus::broken);
        }
    }
}

}  // namespace qel
