// Any bytes as action code, in a movie that has what code works on: clips in clips, a button, labels, callable frames,
// variables, objects and functions. The first byte says where the code stands, the second how the movie is played.
// Runs are kept short: a fuzzer that waits for loops finds little else.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "author/action_listing.h"
#include "author/assembler.h"
#include "author/character_records.h"
#include "author/frame_items.h"
#include "author/source_tables.h"
#include "host/headless_run.h"
#include "movie/movie.h"

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

// A function "f" with that body, and its calls.
Bytes functionOf(const Bytes& body) {
    Bytes code = assembleActions("DefineFunction 'f' 'a' 'b' {\n}");
    const Bytes calls = assembleActions(callsOfF);
    code[code.size() - 2] = static_cast<std::uint8_t>(body.size());
    code[code.size() - 1] = static_cast<std::uint8_t>(body.size() >> 8);
    code.insert(code.end(), body.begin(), body.end());
    code.insert(code.end(), calls.begin(), calls.end());
    return code;
}

// Listings bring back the bytes that they were made of.
void checkListing(const Bytes& code) {
    constexpr std::size_t plenty = 1 << 20;
    const std::string listing = qel::author::listActions(code, plenty);
    if (listing.size() < plenty && assembleActions(listing) != code) __builtin_trap();
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

Bytes contentOf(Place place, const Bytes& code) {
    static const Bytes calls =
        assembleActions("Push 'page'\nCall\nPush 1 '/hero:n'\nSetVariable\nSetTarget 'hero'\nPush 1\nCall");
    Codes codes{.root = calls, .event = {}, .condition = {}, .called = {}, .clipFrame = {}};
    switch (place) {
        case Place::rootFrame: codes.root = code; break;
        case Place::clipEvent: codes.event = code; break;
        case Place::condition: codes.condition = code; break;
        case Place::function: codes.root = functionOf(code); break;
        case Place::calledFrame: codes.called = code; break;
        case Place::clipFrame: codes.clipFrame = code; break;
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
    if (session.open("content") == OpenResult::opened) {
        constexpr std::uint32_t fewActions = 20'000;
        ScriptContext& scripts = session.context().player->movie->scripts;
        scripts.actionLimit = scripts.memory.actionsLeft = fewActions;
        runToEnd(session, platform, schedule);
    }
    if (watch.blocks != 0) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t head = 2, mostCode = 2000;
    if (size < head || size > head + mostCode) return 0;
    const Bytes code(data + head, data + size);
    if ((data[0] & 0x80) != 0) checkListing(code);  // which takes as long as to play
    const auto place = static_cast<Place>((data[0] & 0x7F) % static_cast<unsigned>(Place::count));
    play(contentOf(place, code), data[1]);
    return 0;
}
