// Any bytes as action code, in a movie that has what code works on: clips in clips, a button, labels, callable frames,
// variables, objects and functions. The first byte says where the code stands, the second how the movie is played.
//
// Code may loop as long as a run may last, and a fuzzer would find little else. So it is taken apart into a listing,
// which gets a check in front of every branch and at the beginning of every body: code ends when its fuel is used up.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "author/action_listing.h"
#include "author/assembler.h"
#include "author/character_records.h"
#include "author/frame_items.h"
#include "author/source_tables.h"
#include "host/headless_run.h"

namespace {

using qel::author::assembleActions;
using qel::author::Bytes;

struct Watch : qel::SessionObserver {
    std::int64_t blocks = 0;  // of the general heap, that have not come back
    void eventRaised(const qel::EventNotice&) override {}
    void serviceCalled(const qel::ServiceCall& call) override {
        if (const auto* allocated = std::get_if<qel::calls::Allocate>(&call)) blocks += allocated->result ? 1 : 0;
        if (std::holds_alternative<qel::calls::Free>(call)) --blocks;
    }
};

// --- code

const char* const definitionsListing = R"(
    ConstantPool 'zero' 'one' 'two'
    Push 'fuel' 2000
    SetVariable
    Push 'n' 3
    SetVariable
    Push 'text' 'some text'
    SetVariable
    Push 'list' 'c' 2 'a' 3
    InitArray
    SetVariable
DefineFunction 'half' 'x' {
    Push 'x'
    GetVariable
    Push 2
    Divide
    Return
}
DefineFunction 'Thing' 'x' {
    Push 'this'
    GetVariable
    Push 'x' 'x'
    GetVariable
    SetMember
}
    Push 'Thing'
    GetVariable
    Push 'prototype'
    GetMember
    Push 'half' 'half'
    GetVariable
    SetMember
    Push 'thing' 7 1 'Thing'
    NewObject
    SetVariable
    Push 'hero:own' 'thing'
    GetVariable
    SetVariable
)";

// Code that runs the code under test, as a function "f", in every way that functions are run.
const char* const callsOfF = R"(
    Push 'x' 1 2 'f'
    CallFunction
    Pop
    Push 'made' 'x' 1 'f'
    NewObject
    SetVariable
    Push 'thing'
    GetVariable
    Push 'f' 'f'
    GetVariable
    SetMember
    Push 3 1 'thing'
    GetVariable
    Push 'f'
    CallMethod
    Pop
)";

bool startsWith(const std::string& line, const char* action) {
    const std::size_t begin = line.find_first_not_of(' ');
    return begin != std::string::npos && line.compare(begin, std::string(action).size(), action) == 0;
}

std::string withFuel(const std::string& listing) {
    int checks = 0;
    const auto check = [&checks] {
        const std::string label = "fuel" + std::to_string(++checks);
        return "Push 'fuel' 'fuel'\nGetVariable\nDecrement\nSetVariable\nPush 0 'fuel'\nGetVariable\nLess2\nIf " +
               label + "\nEnd\n" + label + ":\n";
    };
    std::string fuelled = check(), line;
    std::istringstream lines(listing);
    while (std::getline(lines, line)) {
        if (startsWith(line, "Jump ") || startsWith(line, "If ")) fuelled += check();
        fuelled += line + '\n';
        if (startsWith(line, "DefineFunction ") && line.ends_with('{')) fuelled += check();
    }
    return fuelled;
}

// The code as a listing with fuel. Listings have to bring back the bytes that they were made of; to see it takes as
// long as to play them.
std::string fuelledListing(const Bytes& code, bool checked) {
    constexpr std::size_t plenty = 1 << 20;
    const std::string listing = qel::author::listActions(code, plenty);
    if (checked && listing.size() < plenty && assembleActions(listing) != code) __builtin_trap();
    return withFuel(listing);
}

// --- the movie

enum class Place : std::uint8_t { rootFrame, clipEvent, condition, function, calledFrame, clipFrame, count };

// Of a frame record: type, length, cache identifier. Its items follow.
constexpr std::uint32_t headOfFrame = 5;

Bytes frameOf(std::initializer_list<Bytes> items) { return qel::author::frame(qel::author::joined(items)); }
Bytes spriteOf(std::uint16_t id, const std::vector<Bytes>& frames) {
    qel::author::SpriteRecord sprite{.id = id, .labels = {{0, "one"}, {1, "two"}}, .keyFrames = {}, .timeline = {}};
    for (const Bytes& frame : frames) {
        const auto at = static_cast<std::uint32_t>(sprite.timeline.size()) + headOfFrame;
        sprite.blocks.push_back({{at, static_cast<std::uint32_t>(frame.size()) - headOfFrame}, sprite.frameCount++});
        sprite.timeline.insert(sprite.timeline.end(), frame.begin(), frame.end());
    }
    return qel::author::sprite(sprite);
}

Bytes rectangle(std::uint16_t id) {
    qel::author::Outline outline;
    outline.style({.line = {}, .fill0 = 1, .fill1 = {}}).moveTo({0, 0});
    outline.lineTo({9, 0}).lineTo({9, 6}).lineTo({0, 6}).lineTo({0, 0});
    return qel::author::shape(
        {.id = id, .bounds = {0, 0, 9, 6}, .outline = outline, .bitmapFills = {}, .gradientFills = {}});
}

// What stands where: the code under test in its place, little code in the others.
struct Codes {
    Bytes root, event, condition, called, clipFrame;
};

qel::author::MovieFile movieOf(const Codes& codes) {
    static const Bytes definitions = assembleActions(definitionsListing);
    using namespace qel::author;
    constexpr std::uint16_t shapeId = 10, innerId = 20, heroId = 21, buttonId = 30, calledFrame = 3;
    const std::vector<ButtonCondition> conditions{{.focusGained = true, .code = codes.condition},
                                                  {.focusedKey = 155, .key = 133, .code = codes.condition}};
    const PlacedClip inner{.characterId = innerId, .depth = 0, .name = "inner", .handlers = {}};
    const PlacedClip hero{.characterId = heroId,
                          .depth = 0,
                          .name = "hero",
                          .handlers = {{.onLoad = true, .onUnload = true, .onFrame = true, .code = codes.event}}};
    const PlacedClip other{.characterId = innerId, .depth = 1, .name = "other", .handlers = {}};
    const Bytes called = frameOf({actions(codes.called)});
    MovieFile movie;
    movie.width = 40;
    movie.height = 30;
    movie.properties.frameDuration(40).dictionarySize(64).labels(
        std::vector<Label>{{1, "start"}, {calledFrame, "page"}, {4, "last"}});
    movie.records = {solidFill(1, {.colour = 0xFF0000}),
                     rectangle(shapeId),
                     spriteOf(innerId, {frameOf({place(shapeId, 0)}), frameOf({})}),
                     spriteOf(heroId, {frameOf({actions(codes.clipFrame)}), frameOf({placeClip(inner)}), frameOf({})}),
                     button(buttonId, {.up = shapeId, .over = innerId}, conditions),
                     frameOf({placeClip(hero), placeClip(other), actions(definitions)}),
                     frameOf({place(buttonId, 2)}),
                     frameOf({actions(codes.root)}),
                     called,
                     qel::author::keyFrame(40, 4, joined({place(shapeId, 0), placeClip(other)})),
                     frameOf({removeAt(0)}),
                     frameOf({})};
    LeadingTables tables;
    tables.callables = {{8, calledFrame, {headOfFrame, static_cast<std::uint32_t>(called.size()) - headOfFrame}}};
    movie.properties.keyFrameIndex(std::vector<Properties::KeyFrame>{{4, 40}});
    addLeadingTables(movie, tables);
    return movie;
}

Bytes contentOf(Place place, const std::string& listing) {
    static const Bytes calls =
        assembleActions("Push 'page'\nCall\nPush 1 '/hero:n'\nSetVariable\nSetTarget 'hero'\nPush 1\nCall");
    Codes codes{.root = calls, .event = {}, .condition = {}, .called = {}, .clipFrame = {}};
    switch (place) {
        case Place::rootFrame: codes.root = assembleActions(listing); break;
        case Place::clipEvent: codes.event = assembleActions(listing); break;
        case Place::condition: codes.condition = assembleActions(listing); break;
        case Place::function:
            codes.root = assembleActions("DefineFunction 'f' 'a' 'b' {\n" + listing + "}\n" + callsOfF);
            break;
        case Place::calledFrame: codes.called = assembleActions(listing); break;
        case Place::clipFrame: codes.clipFrame = assembleActions(listing); break;
        case Place::count: break;
    }
    return visFile(movieOf(codes));
}

void play(const Bytes& content, std::uint8_t how) {
    using namespace qel;
    HeadlessPlatform platform;
    platform.provideContent("content", content);
    Watch watch;
    SessionOptions options;
    options.player.loop = (how & 1) != 0;
    options.player.budget = (how & 2) != 0 ? 12000 : 60000;
    options.maximumFrames = 16;
    if ((how & 4) != 0) options.faults.failedAllocations = {20u + (std::uint64_t{how} >> 3)};
    Session session(platform, options, &watch);
    Schedule schedule;
    schedule.keys = {{200, 155}, {260, 133}, {320, 151}, {400, 155}};
    schedule.endAtMs = 1000;
    if (session.open("content") == OpenResult::opened) runToEnd(session, platform, schedule);
    if (watch.blocks != 0) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t head = 2, mostCode = 2000;
    if (size < head || size > head + mostCode) return 0;
    Bytes content;
    try {
        const bool checked = (data[0] & 0x80) != 0;
        const auto place = static_cast<Place>((data[0] & 0x7F) % static_cast<unsigned>(Place::count));
        content = contentOf(place, fuelledListing(Bytes(data + head, data + size), checked));
    } catch (const qel::author::ListingError&) {
        return 0;  // with fuel, a branch leads too far
    } catch (const std::length_error&) {
        return 0;  // or a record grows too long
    }
    play(content, data[1]);
    return 0;
}
