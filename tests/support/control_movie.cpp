#include "support/control_movie.h"

#include "author/character_records.h"
#include "author/structures.h"
#include "format/key_codes.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using author::joined;
using author::move;
using author::place;

constexpr std::uint8_t everyFrame = 255, unhandled = 254, anyKey = 253;
constexpr std::uint8_t key1 = 129, key2 = 130, key3 = 131, key4 = 132;
constexpr auto selectKey = static_cast<std::uint8_t>(KeyCode::select);

Bytes run(CommandNumber number, std::uint8_t event, const Bytes& fields = {}) {
    Bytes body{event};
    body.insert(body.end(), fields.begin(), fields.end());
    return author::command(number, body);
}

template <class Write>
Bytes packed(Write write) {
    author::ByteWriter writer;
    write(writer);
    return writer.take();
}
Bytes matrix(const Matrix& m) {
    return packed([&](author::ByteWriter& writer) { author::writeMatrix(writer, m); });
}
Bytes point(Point p) {
    return packed([&](author::ByteWriter& writer) { author::writePoint(writer, p); });
}

// Key 1: what acts on the target. Key 2: the view. Key 3: the focus. Key 4: the way out of the loop.
Bytes globalCommands() {
    const Bytes colours = packed([](author::ByteWriter& writer) {
        author::writeCompactColourTransform(writer, {.redMultiplier = 100, .blueOffset = 200});
    });
    return joined({run(CommandNumber::selectTarget, key1, {255, 255, 1}),
                   run(CommandNumber::placeTarget, key1, joined({Bytes{20, 0, 1}, matrix(at(1, 1))})),
                   run(CommandNumber::setMatrix, key1, matrix(at(2, 0))),
                   run(CommandNumber::moveBy, key1, matrix({.a = 70000, .d = 70000, .tx = 1, .ty = 1})),
                   run(CommandNumber::colourTransform, key1, colours),
                   run(CommandNumber::alpha, key1, {90}),
                   run(CommandNumber::fade, key1, {20, 0}),
                   run(CommandNumber::ratio, key1, {1, 2}),
                   run(CommandNumber::removeTarget, key1),
                   run(CommandNumber::scrollTo, key2, point({1, 1})),
                   run(CommandNumber::scrollBy, key2, point({-1, 0})),
                   run(CommandNumber::zoom, key2, {4}),
                   run(CommandNumber::resetView, key2),
                   run(CommandNumber::focusNext, key3),
                   run(CommandNumber::focusPrevious, key3),
                   run(CommandNumber::focusNext, key3),
                   run(CommandNumber::stop, unhandled),
                   run(CommandNumber::play, anyKey),
                   run(CommandNumber::gotoKeyFrame, key4, {42, 0}),
                   run(CommandNumber::gotoFirstKeyFrame, 7),
                   author::textCommand(CommandNumber::callNumber, 140, "555"),
                   author::textCommand(CommandNumber::openUrl, 140, "http://example.invalid/"),
                   run(CommandNumber::requestStop, 141)});
}

Bytes frameCommands() {
    return author::commands(
        joined({run(CommandNumber::vibrate, everyFrame, {2}), run(CommandNumber::soundOff, everyFrame),
                run(CommandNumber::startSound, everyFrame, {31, 0}), run(CommandNumber::soundOn, everyFrame),
                run(CommandNumber::stopSound, everyFrame, {31, 0}),
                run(CommandNumber::frameLoop, everyFrame, {41, 0, 2, 0, 2, 42, 0})}));
}

std::vector<Bytes> characters() {
    const std::vector<author::ButtonCondition> conditions = {
        {.focusLost = true, .focusedKey = selectKey, .code = {6, 0}},
        {.focusGained = true, .key = std::uint8_t{152}, .code = {9}}};
    const Bytes inner =
        joined({author::keyFrame(50, 0, joined({place(10, 0), move(0, at(1, 1))})),
                frameOf({author::alpha(0, 80), author::actions(Bytes{6, 0})}), author::keyFrame(51, 2, place(11, 0))});
    return {rectangle(10, 1, 3, 2),
            rectangle(11, 2, 2, 3),
            author::sound({.id = 30, .format = 8, .data = Bytes(9, 1)}),
            author::sound({.id = 31, .format = 4, .data = Bytes(5, 2)}),
            author::sprite({.id = 20,
                            .frameCount = 3,
                            .keyFrameCount = 2,
                            .blocks = {{{2, 4}, 1}},
                            .labels = {{1, "one"}},
                            .keyFrames = {0, 2},
                            .timeline = inner}),
            author::button(21, {.up = 10, .over = 11, .down = 20}, conditions),
            author::commandButton(22, {.up = 11, .over = 10, .down = 65535}, selectKey,
                                  run(CommandNumber::vibrate, 1, {1})),
            author::textField({.id = 23, .bounds = {0, 0, 4, 4}, .variable = "v", .extraValue = 1, .text = "t"}),
            author::compressionTable(24, Bytes{1, 2, 3, 4})};
}

Bytes namedClip() {
    return author::placeClip(
        {.characterId = 20,
         .depth = 1,
         .name = "clip",
         .handlers = {{.onLoad = true, .code = {1}}, {.onUnload = true, .onFrame = true, .code = {2}}}});
}

}  // namespace

author::MovieFile controlMovie() {
    author::MovieFile movie = smallMovie(12, 8, {});
    const std::vector<Bytes> defined = characters();
    movie.records.insert(movie.records.end(), defined.begin(), defined.end());
    const std::vector<Bytes> timeline = {
        author::keyFrameList(std::vector<std::uint16_t>{1, 3}),
        author::purgeOrder(std::vector<std::uint16_t>{20, 10}),
        author::keyFrame(40, 0,
                         joined({place(21, 0), place(22, 1), move(1, at(4, 0)), author::instanceNumber(5), namedClip(),
                                 place(23, 3), author::startSound(30)})),
        author::keyFrame(41, 1,
                         joined({place(21, 0), place(10, 1), author::colour(1, {.greenOffset = 90}),
                                 author::ratio(1, 3), author::volume(30), frameCommands()})),
        frameOf({author::removeAt(1), author::stopSound(30), author::instanceNumber(5), place(20, 1),
                 author::purgeOrderUpdate(std::vector<author::PurgePosition>{{11, 1}}), author::actions(Bytes{9})}),
        author::releaseCharacters(std::vector<std::uint16_t>{10, 30}),
        author::keyFrame(42, 3, joined({author::instanceNumber(5), place(20, 0), move(0, at(5, 2)), place(22, 1)})),
        frameOf({move(0, {.a = 40000, .b = 9000, .c = -9000, .d = 40000, .tx = 3, .ty = 3}), author::removeAt(1)})};
    movie.records.insert(movie.records.end(), timeline.begin(), timeline.end());
    const Bytes commands = globalCommands();
    movie.properties.commands(commands)
        .keyFrameIndex(std::vector<author::Properties::KeyFrame>{{0, 40}, {1, 41}, {3, 42}})
        .labels(std::vector<author::Label>{{3, "end"}});
    movie.dropFrames = true;
    return movie;
}

std::vector<KeyPress> controlKeys() {
    std::vector<KeyPress> keys;
    const std::uint8_t codes[] = {key1, selectKey, key3, selectKey, 152, key2, key4, 99};
    for (std::size_t i = 0; i < 24; ++i) keys.push_back({.atMs = 15 * i, .code = codes[i % std::size(codes)]});
    return keys;
}

}  // namespace qel::test
