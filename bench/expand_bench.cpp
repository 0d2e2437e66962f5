// Expanding the chunks of compressed content: with code tables kept from chunk to chunk, and as ordinary streams that
// each bring their own.
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "author/deflate.h"
#include "movie/inflater.h"

namespace qel {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t chunkSize = 2048, chunkCount = 64;

// Records as movies have them: few types, small numbers, edges that differ from one to the next.
Bytes sampleContent() {
    std::minstd_rand random(4);
    Bytes content;
    while (content.size() < chunkSize * chunkCount) {
        content.insert(content.end(), {9, 40, 0, static_cast<std::uint8_t>(content.size() >> 6), 0, 1, 0x55, 0x80});
        for (int edge = 0; edge < 32; ++edge)
            content.push_back(static_cast<std::uint8_t>((random() & 0x3F) + (random() & 0x3F)));
    }
    content.resize(chunkSize * chunkCount);
    return content;
}

std::span<const std::uint8_t> chunkOf(const Bytes& content, std::size_t index) {
    return std::span(content).subspan(index * chunkSize, chunkSize);
}

Bytes ordinaryStream(std::span<const std::uint8_t> chunk) {
    Bytes stream(compressBound(chunkSize));
    uLongf size = stream.size();
    compress2(stream.data(), &size, chunk.data(), chunk.size(), 9);
    stream.resize(size);
    return stream;
}

void* allocate(void*, std::size_t size) { return std::malloc(size); }
void release(void*, void* block) { std::free(block); }

struct BenchInflater {
    Inflater inflater;
    BenchInflater() { createInflater(inflater, {.allocate = allocate, .free = release}); }
    ~BenchInflater() { destroyInflater(inflater); }
};

void expandAll(benchmark::State& state, Inflater& inflater, const std::vector<Bytes>& streams) {
    Bytes output(chunkSize);
    for (auto _ : state) {
        for (const Bytes& stream : streams) {
            beginStream(inflater);
            const InflateProgress progress = inflateBytes(inflater, stream, output);
            if (progress.status != InflateStatus::streamEnd) state.SkipWithError("a chunk did not expand");
            benchmark::DoNotOptimize(output.data());
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(streams.size() * chunkSize));
}

void expandWithKeptTables(benchmark::State& state) {
    const Bytes content = sampleContent();
    const author::CodeTables tables = author::chooseCodeTables(content, chunkSize);
    std::vector<Bytes> streams;
    for (std::size_t i = 0; i < chunkCount; ++i)
        streams.push_back(author::deflateWithTables(chunkOf(content, i), tables));
    BenchInflater bench;
    keepCodeTables(bench.inflater, tables.description);
    expandAll(state, bench.inflater, streams);
}

void expandWithOwnTables(benchmark::State& state) {
    const Bytes content = sampleContent();
    std::vector<Bytes> streams;
    for (std::size_t i = 0; i < chunkCount; ++i) streams.push_back(ordinaryStream(chunkOf(content, i)));
    BenchInflater bench;
    expandAll(state, bench.inflater, streams);
}

// The same streams in zlib's own hands: what the two above are measured against.
void expandWithPlainZlib(benchmark::State& state) {
    const Bytes content = sampleContent();
    std::vector<Bytes> streams;
    for (std::size_t i = 0; i < chunkCount; ++i) streams.push_back(ordinaryStream(chunkOf(content, i)));
    z_stream zlib{};
    inflateInit(&zlib);
    Bytes output(chunkSize);
    for (auto _ : state) {
        for (Bytes& stream : streams) {
            inflateReset(&zlib);
            zlib.next_in = stream.data();
            zlib.avail_in = static_cast<uInt>(stream.size());
            zlib.next_out = output.data();
            zlib.avail_out = static_cast<uInt>(output.size());
            if (inflate(&zlib, Z_FINISH) != Z_STREAM_END) state.SkipWithError("a chunk did not expand");
            benchmark::DoNotOptimize(output.data());
        }
    }
    inflateEnd(&zlib);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(streams.size() * chunkSize));
}

void keepTables(benchmark::State& state) {
    const author::CodeTables tables = author::chooseCodeTables(sampleContent(), chunkSize);
    BenchInflater bench;
    for (auto _ : state) benchmark::DoNotOptimize(keepCodeTables(bench.inflater, tables.description));
}

BENCHMARK(expandWithKeptTables);
BENCHMARK(expandWithOwnTables);
BENCHMARK(expandWithPlainZlib);
BENCHMARK(keepTables);

}  // namespace
}  // namespace qel
