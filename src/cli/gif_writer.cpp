#include "cli/gif_writer.h"

#include <fcntl.h>
#include <gif_lib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <span>
#include <utility>

namespace qel::cli {
namespace {

constexpr std::size_t maximumColours = 256;
constexpr std::uint64_t longestDelay = 65535;  // hundredths of a second

// A colour of the picture and how many pixels have it.
struct Counted {
    std::uint16_t word = 0;
    std::uint64_t count = 0;
    Rgb rgb = {};
};

using Channel = std::uint8_t Rgb::*;
constexpr std::array<Channel, 3> channels = {&Rgb::red, &Rgb::green, &Rgb::blue};

// A part of the colours that will be shown as one.
struct Box {
    std::span<Counted> colours;
    Channel widest = &Rgb::red;
    std::uint64_t weight = 0;  // how much is gained by splitting it: its pixels times its extent, 0 for a single colour
};

Box makeBox(std::span<Counted> colours) {
    Box box{.colours = colours};
    int extent = -1;
    for (const Channel channel : channels) {
        const auto key = [channel](const Counted& colour) { return colour.rgb.*channel; };
        const auto [least, most] = std::ranges::minmax(colours, {}, key);
        if (key(most) - key(least) <= extent) continue;
        extent = key(most) - key(least);
        box.widest = channel;
    }
    std::uint64_t pixels = 0;
    for (const Counted& colour : colours) pixels += colour.count;
    box.weight = pixels * static_cast<std::uint64_t>(extent);
    return box;
}

// Splits at the middle pixel along the widest channel; both halves keep at least one colour.
std::pair<Box, Box> split(const Box& box) {
    std::ranges::sort(box.colours, {},
                      [&box](const Counted& colour) { return std::pair(colour.rgb.*box.widest, colour.word); });
    std::uint64_t pixels = 0, before = 0;
    for (const Counted& colour : box.colours) pixels += colour.count;
    std::size_t middle = 0;
    while (before < pixels / 2) before += box.colours[middle++].count;
    middle = std::clamp<std::size_t>(middle, 1, box.colours.size() - 1);
    return {makeBox(box.colours.first(middle)), makeBox(box.colours.subspan(middle))};
}

Rgb average(std::span<const Counted> colours) {
    std::uint64_t pixels = 0, sums[3] = {};
    for (const Counted& colour : colours) {
        pixels += colour.count;
        for (std::size_t i = 0; i < channels.size(); ++i) sums[i] += colour.count * (colour.rgb.*channels[i]);
    }
    const auto mean = [pixels](std::uint64_t sum) { return static_cast<std::uint8_t>((sum + pixels / 2) / pixels); };
    return {mean(sums[0]), mean(sums[1]), mean(sums[2])};
}

// Median cut: splits the box that gains most until there are as many as the palette has entries.
std::vector<Box> medianCut(std::span<Counted> colours) {
    std::vector<Box> boxes = {makeBox(colours)};
    while (boxes.size() < maximumColours) {
        const auto worst = std::ranges::max_element(boxes, {}, &Box::weight);
        if (worst->weight == 0) break;
        auto [low, high] = split(*worst);
        *worst = low;
        boxes.push_back(high);
    }
    return boxes;
}

}  // namespace

std::uint64_t GifClock::delayUntil(std::uint64_t ms) {
    const std::uint64_t end = std::max(rounded(ms), shownUntil_);
    return end - std::exchange(shownUntil_, end);
}

IndexedPicture reduceColours(const Picture& picture) {
    std::vector<std::uint64_t> counts(65536);
    for (const std::uint16_t word : picture.pixels) ++counts[word];
    std::vector<Counted> colours;
    for (std::size_t at = 0; at < counts.size(); ++at) {
        const auto word = static_cast<std::uint16_t>(at);
        if (counts[at] != 0) colours.push_back({word, counts[at], rgbFrom565(word)});
    }
    IndexedPicture result;
    std::vector<std::uint8_t> indexOf(65536);
    const auto addEntry = [&](std::span<const Counted> shownAsOne) {
        for (const Counted& colour : shownAsOne)
            indexOf[colour.word] = static_cast<std::uint8_t>(result.palette.size());
        result.palette.push_back(average(shownAsOne));
    };
    if (colours.size() <= maximumColours) {
        for (const Counted& colour : colours) addEntry({&colour, 1});
    } else {
        for (const Box& box : medianCut(colours)) addEntry(box.colours);
    }
    result.indexes.reserve(picture.pixels.size());
    for (const std::uint16_t word : picture.pixels) result.indexes.push_back(indexOf[word]);
    return result;
}

struct GifWriter::State {
    GifFileType* file = nullptr;
    std::uint32_t width = 0, height = 0;
    std::optional<GifClock> clock;
    std::optional<IndexedPicture> waiting;  // its delay is known when the next one comes
};

GifWriter::GifWriter() : state_(std::make_unique<State>()) {}

GifWriter::~GifWriter() {
    if (state_->file) EGifCloseFile(state_->file, nullptr);
}

bool GifWriter::open(const std::string& path) {
    // The library would make a file that nobody but its owner may read.
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor < 0) return false;
    state_->file = EGifOpenFileHandle(descriptor, nullptr);
    if (!state_->file) ::close(descriptor);
    return state_->file != nullptr;
}

bool GifWriter::add(Picture picture, std::uint64_t atMs) {
    State& state = *state_;
    if (!state.file || picture.pixels.empty()) return false;
    if (!state.clock) {
        if (!writeHeader(picture)) return false;
        state.clock.emplace(atMs);
    }
    if (picture.width != state.width || picture.height != state.height || !writeWaiting(atMs, false)) return false;
    state.waiting = reduceColours(picture);
    return true;
}

bool GifWriter::finish(std::uint64_t endMs) {
    const bool written = state_->file && writeWaiting(endMs, true);
    GifFileType* const file = std::exchange(state_->file, nullptr);
    return file && EGifCloseFile(file, nullptr) == GIF_OK && written;
}

bool GifWriter::writeHeader(const Picture& first) {
    GifFileType* const file = state_->file;
    state_->width = first.width;
    state_->height = first.height;
    constexpr int bitsPerChannel = 8;
    constexpr unsigned char loopForever[] = {1, 0, 0};
    EGifSetGifVersion(file, true);
    return EGifPutScreenDesc(file, static_cast<int>(first.width), static_cast<int>(first.height), bitsPerChannel, 0,
                             nullptr) == GIF_OK &&
           EGifPutExtensionLeader(file, APPLICATION_EXT_FUNC_CODE) == GIF_OK &&
           EGifPutExtensionBlock(file, 11, "NETSCAPE2.0") == GIF_OK &&
           EGifPutExtensionBlock(file, sizeof loopForever, loopForever) == GIF_OK &&
           EGifPutExtensionTrailer(file) == GIF_OK;
}

// A picture that is shown longer than one delay can say is written again for the rest.
bool GifWriter::writeWaiting(std::uint64_t untilMs, bool last) {
    if (!state_->waiting) return true;
    std::uint64_t delay = state_->clock->delayUntil(untilMs);
    // Replaced within the hundredth in which it came: nobody saw it, while viewers show a delay of 0 for a tenth.
    if (delay == 0 && !last) return true;
    for (; delay > longestDelay; delay -= longestDelay) {
        if (!writeImage(*state_->waiting, longestDelay)) return false;
    }
    return writeImage(*state_->waiting, delay);
}

bool GifWriter::writeImage(const IndexedPicture& image, std::uint64_t delay) {
    GifFileType* const file = state_->file;
    const GraphicsControlBlock control = {.DisposalMode = DISPOSE_DO_NOT,
                                          .UserInputFlag = false,
                                          .DelayTime = static_cast<int>(delay),
                                          .TransparentColor = NO_TRANSPARENT_COLOR};
    GifByteType block[4];
    EGifGCBToExtension(&control, block);
    if (EGifPutExtension(file, GRAPHICS_EXT_FUNC_CODE, sizeof block, block) != GIF_OK) return false;

    const auto width = static_cast<int>(state_->width), height = static_cast<int>(state_->height);
    const std::size_t mapSize = std::max<std::size_t>(std::bit_ceil(image.palette.size()), 2);
    const std::unique_ptr<ColorMapObject, void (*)(ColorMapObject*)> map(
        GifMakeMapObject(static_cast<int>(mapSize), nullptr), GifFreeMapObject);
    if (!map) return false;
    for (std::size_t at = 0; at < image.palette.size(); ++at) {
        const Rgb colour = image.palette[at];
        map->Colors[at] = {.Red = colour.red, .Green = colour.green, .Blue = colour.blue};
    }
    if (EGifPutImageDesc(file, 0, 0, width, height, false, map.get()) != GIF_OK) return false;
    std::vector<GifByteType> row(state_->width);
    for (std::size_t y = 0; y < state_->height; ++y) {
        std::copy_n(image.indexes.begin() + static_cast<std::ptrdiff_t>(y * row.size()), row.size(), row.begin());
        if (EGifPutLine(file, row.data(), width) != GIF_OK) return false;
    }
    return true;
}

}  // namespace qel::cli
