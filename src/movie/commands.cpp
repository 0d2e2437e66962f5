#include "movie/commands.h"

#include <algorithm>

#include "format/integers.h"
#include "movie/buttons.h"
#include "movie/drawing.h"
#include "movie/gotos.h"
#include "movie/movie.h"
#include "movie/placement.h"
#include "movie/structures.h"
#include "player/engine_services.h"
#include "render/matrix.h"

namespace qel {
namespace {

// A change that is to be seen at once.
Result seenAtOnce(Movie& movie, Result changed) { return changed == Result::done ? drawNow(movie) : changed; }

// The end of playback, with a text for the host in the place of an earlier one. The body's copy ends with a zero.
Result requestEnd(Movie& movie, const Command& command, PoolText& text) {
    const auto* begin = reinterpret_cast<const char*>(command.body.begin() + 1);
    const std::size_t length = std::char_traits<char>::length(begin);
    PoolText copy;
    if (failed(copy.assign(movie.pool, {begin, length + 1}))) return Result::outOfMemory;
    text = std::move(copy);
    movie.state.stopRequested = true;
    return Result::done;
}

void playOn(Movie& movie) {
    movie.state.rootStopped = false;
    movie.pacing.resynchronise = true;
    rememberFocus(movie);
}

void stop(Movie& movie) {
    movie.state.rootStopped = true;
    movie.pacing.resynchronise = true;
}

Result gotoAndClearLoop(Movie& movie, std::uint16_t cacheId) {
    movie.state.frameLoopActive = false;
    return gotoKeyFrame(movie, cacheId);
}

Result stopAtFirstKeyFrame(Movie& movie) {
    const Result went = gotoAndClearLoop(movie, movie.firstKeyFrame);
    movie.state.rootStopped = true;
    return went;
}

Result startFrameLoop(Movie& movie, ContentReader body) {
    FrameLoop loop;
    loop.firstKeyFrame = body.u16();
    loop.lastFrame = body.u16();
    loop.count = body.u8();
    loop.afterKeyFrame = body.u16();
    if (!body.ok() || movie.state.frameLoopActive) return Result::nothing;
    movie.frameLoop = loop;
    movie.state.frameLoopActive = true;
    return gotoKeyFrame(movie, loop.firstKeyFrame);
}

// The root view matrix.

Result setView(Movie& movie, const Matrix& view) {
    movie.view = view;
    movie.viewMoved = true;
    return Result::done;
}

Result scroll(Movie& movie, ContentReader body, Point from) {
    const Point by = readPoint(body);
    if (!body.ok()) return Result::nothing;
    Matrix view = movie.view;
    view.tx = wrap16(from.x + by.x);
    view.ty = wrap16(from.y + by.y);
    return setView(movie, view);
}

// What keeps the middle of the stage in place at a scale.
std::int16_t centring(std::int32_t scale, std::int16_t stageMaximum) {
    const std::int32_t half = (std::int32_t{static_cast<std::uint16_t>(stageMaximum)} + 1) >> 1;
    return wrap16(-((((scale - fixedOne) >> 12) * half) >> 4));
}

Result zoom(Movie& movie, ContentReader body) {
    constexpr std::int32_t step = 4096, least = 256, most = 16 * fixedOne;
    const auto by = static_cast<std::int8_t>(body.u8());
    const std::int32_t scale = movie.view.a + by * step;
    if (!body.ok() || scale <= least || scale >= most) return Result::nothing;
    Matrix view = movie.view;
    view.a = view.d = scale;
    view.tx = centring(scale, movie.header.stage.xMax);
    view.ty = centring(scale, movie.header.stage.yMax);
    return setView(movie, view);
}

// The target: an object of the root list, by its position.

DisplayObject* targetOf(const Movie& movie) {
    return movie.target < 0 ? nullptr : objectAt(movie.root, static_cast<std::uint8_t>(movie.target));
}

Result selectTarget(Movie& movie, ContentReader body) {
    const std::uint16_t id = body.u16();
    const std::uint8_t position = body.u8();
    if (!body.ok()) return Result::nothing;
    const DisplayObject* object = objectAt(movie.root, position);
    const bool fits = id == noCharacter || (object && object->characterId == id);
    movie.target = fits ? position : Movie::noTarget;
    return Result::done;
}

Result placeObject(Movie& movie, ContentReader body) {
    Placement placement;
    placement.id = body.u16();
    const std::uint32_t position = body.u8();
    const Matrix matrix = readMatrix(body);
    if (!body.ok()) return Result::nothing;
    placement.depth = static_cast<std::uint8_t>(std::min(position, objectCount(movie.root)));
    DisplayObject* placed = nullptr;
    const Result result = placeCharacter(movie, rootTimeline(movie), placement, placed);
    if (result != Result::done) return result;
    setMatrix(*placed, matrix);
    if (ClipInstance* clip = asClip(placed)) clip->stepping = ClipStepping::due;
    constexpr std::int16_t lastPosition = 255;
    // What leaves the positions that a command can name is no target any more.
    if (movie.target >= placement.depth)
        movie.target = movie.target < lastPosition ? static_cast<std::int16_t>(movie.target + 1) : Movie::noTarget;
    return Result::done;
}

Result removeTarget(Movie& movie) {
    const auto position = static_cast<std::uint8_t>(movie.target);
    movie.target = Movie::noTarget;
    return removeObject(movie, rootTimeline(movie), position);
}

void moveBy(DisplayObject& target, const Matrix& by) {
    Matrix matrix = target.matrix;
    if (by.a != 0 || by.b != 0 || by.c != 0 || by.d != 0) matrix = product(matrix, by);
    matrix.tx = wrap16(target.matrix.tx + by.tx);
    matrix.ty = wrap16(target.matrix.ty + by.ty);
    setMatrix(target, matrix);
}

void fade(DisplayObject& target, std::int16_t by) {
    constexpr int opaque = 255;
    ColourTransform colours = target.colours;
    colours.alphaOffset = static_cast<std::int16_t>(std::clamp(colours.alphaOffset + by, 0, opaque));
    setColours(target, colours);
}

Result changeTarget(Movie& movie, CommandCode code, ContentReader body) {
    DisplayObject* target = targetOf(movie);
    if (!target) return Result::nothing;
    switch (code) {
        case CommandCode::removeTarget: return removeTarget(movie);
        case CommandCode::colourTransform: {
            const ColourTransform colours = readColourTransform(body, ColourTransformForm::compact);
            if (body.ok()) setColours(*target, colours);
            break;
        }
        case CommandCode::setMatrix:
        case CommandCode::moveBy: {
            const Matrix matrix = readMatrix(body);
            if (!body.ok()) break;
            if (code == CommandCode::setMatrix)
                setMatrix(*target, matrix);
            else
                moveBy(*target, matrix);
            break;
        }
        case CommandCode::alpha: {
            const std::uint8_t alpha = body.u8();
            if (body.ok()) setAlpha(*target, alpha);
            break;
        }
        case CommandCode::fade: {
            const auto by = static_cast<std::int16_t>(body.u16());
            if (body.ok()) fade(*target, by);
            break;
        }
        case CommandCode::ratio: {
            const std::uint16_t ratio = body.u16();
            if (!asMorph(target)) return Result::nothing;
            if (body.ok()) setRatio(*target, ratio);
            break;
        }
        default: return Result::nothing;
    }
    return body.ok() ? Result::done : Result::nothing;
}

Result changeSound(Movie& movie, CommandCode code, ContentReader body) {
    const std::uint16_t id = body.u16();
    if (!body.ok()) return Result::nothing;
    if (code == CommandCode::startSound) return startSound(movie, id, movie.volume);
    stopSound(movie, id);
    return Result::done;
}

Result vibrate(Movie& movie, ContentReader body) {
    constexpr std::uint32_t unit = 100;  // milliseconds
    const std::uint32_t count = body.u8();
    if (body.ok()) services(*movie.player).vibrate(*movie.player->host, count * unit);
    return Result::done;
}

Result gotoGiven(Movie& movie, ContentReader body) {
    const std::uint16_t cacheId = body.u16();
    return body.ok() ? gotoAndClearLoop(movie, cacheId) : Result::nothing;
}

template <class Act>
Result after(Act act) {
    act();
    return Result::done;
}

}  // namespace

Result runCommand(Movie& movie, const Command& command) {
    // The body as it was stored: behind the event code, without the zero that ends its copy.
    const ContentReader body(command.body.span().subspan(1, command.body.size() - 2));
    const Point viewAt{movie.view.tx, movie.view.ty};
    switch (command.code) {
        case CommandCode::requestStop: return after([&] { movie.state.stopRequested = true; });
        case CommandCode::openUrl: return requestEnd(movie, command, movie.endRequest.address);
        case CommandCode::callNumber: return requestEnd(movie, command, movie.endRequest.number);
        case CommandCode::soundOn: return after([&] { setMute(movie, false); });
        case CommandCode::soundOff: return after([&] { setMute(movie, true); });
        case CommandCode::scrollTo: return seenAtOnce(movie, scroll(movie, body, {}));
        case CommandCode::scrollBy: return seenAtOnce(movie, scroll(movie, body, viewAt));
        case CommandCode::resetView: return seenAtOnce(movie, setView(movie, identityMatrix));
        case CommandCode::zoom: return seenAtOnce(movie, zoom(movie, body));
        case CommandCode::gotoKeyFrame: return gotoGiven(movie, body);
        case CommandCode::play: return after([&] { playOn(movie); });
        case CommandCode::gotoFirstKeyFrame: return stopAtFirstKeyFrame(movie);
        case CommandCode::stop: return after([&] { stop(movie); });
        case CommandCode::frameLoop: return startFrameLoop(movie, body);
        case CommandCode::selectTarget: return selectTarget(movie, body);
        case CommandCode::placeTarget: return seenAtOnce(movie, placeObject(movie, body));
        case CommandCode::removeTarget:
        case CommandCode::ratio:
        case CommandCode::colourTransform:
        case CommandCode::setMatrix:
        case CommandCode::moveBy:
        case CommandCode::alpha:
        case CommandCode::fade: return seenAtOnce(movie, changeTarget(movie, command.code, body));
        case CommandCode::startSound:
        case CommandCode::stopSound: return changeSound(movie, command.code, body);
        case CommandCode::vibrate: return vibrate(movie, body);
        case CommandCode::focusNext: return focusNext(movie);
        case CommandCode::focusPrevious: return focusPrevious(movie);
    }
    return Result::nothing;
}

}  // namespace qel
