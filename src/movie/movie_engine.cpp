#include "movie/movie_engine.h"

#include <new>

#include "movie/drawing.h"
#include "movie/event_dispatch.h"
#include "movie/loading.h"
#include "movie/movie.h"
#include "movie/pacing.h"
#include "movie/play_records.h"
#include "player/engine_services.h"
#include "render/legacy_decoder.h"
#include "render/matrix.h"
#include "script/machine.h"

namespace qel {
namespace {

Result runPacing(Movie& movie) {
    switch (static_cast<PaceStep>(movie.state.step)) {
        case PaceStep::wait: return paceFrame(movie);
        case PaceStep::draw: return drawNextObject(movie);
        case PaceStep::present: return presentDrawnFrame(movie);
    }
    return Result::badContent;
}

Result runPhase(Movie& movie, std::span<const std::uint8_t> bytes) {
    switch (movie.state.phase) {
        case Phase::sniff: return sniffContent(movie);
        case Phase::reopen: return reopenContent(movie);
        case Phase::load: return loadMovie(movie);
        case Phase::legacy: return feedLegacyDecoder(bytes);
        case Phase::play: return playRecords(movie);
        case Phase::frameActions: return runScripts(movie, ScriptRun::frameActions);
        case Phase::pace: return runPacing(movie);
        case Phase::dispatch: return dispatchEvents(movie);
        case Phase::queuedActions: return runScripts(movie, ScriptRun::queuedActions);
        case Phase::finish: return finishPass(movie);
    }
    return Result::badContent;
}

PlayerWork workOf(const StateWord& state) {
    switch (state.phase) {
        case Phase::sniff:
        case Phase::reopen:
        case Phase::load:
        case Phase::legacy: return PlayerWork::loading;
        case Phase::play: return PlayerWork::reading;
        case Phase::frameActions:
        case Phase::dispatch:
        case Phase::queuedActions: return PlayerWork::scripts;
        case Phase::pace:
            return state.at(Phase::pace, PaceStep::present) ? PlayerWork::presenting : PlayerWork::drawing;
        case Phase::finish: return PlayerWork::finishing;
    }
    return PlayerWork::loading;
}

bool broughtBytes(LoadCode code) {
    return code == LoadCode::needBytes || code == LoadCode::paletteContentOpened || code == LoadCode::newPass;
}

}  // namespace

Movie* createMovie(PlayerInstance& player, std::uint32_t budget, bool loop, bool startMuted) {
    void* memory = allocateFromHeap(player, sizeof(Movie));
    if (!memory) return nullptr;
    auto* movie = new (memory) Movie(player, budget);
    movie->state.loop = loop;
    movie->state.startMuted = startMuted;
    if (movie->inflaterReady && !failed(initScripts(*movie))) return movie;
    destroyMovie(movie);
    return nullptr;
}

void destroyMovie(Movie* movie) {
    if (!movie) return;
    PlayerInstance& player = *movie->player;
    std::destroy_at(movie);
    freeToHeap(player, movie);
}

LoadStatus* feedMovie(Movie& movie, std::span<const std::uint8_t> bytes) {
    if (broughtBytes(movie.loadStatus.code)) {
        movie.reader = ContentReader(bytes);
        movie.position = movie.loadStatus.offset;
    }
    const Result result = runPhase(movie, bytes);
    if (failed(result)) answerFailure(movie, result);
    return &movie.loadStatus;
}

void requestMovieStop(Movie& movie) { movie.state.stopRequested = true; }

void restartMovie(Movie& movie) {
    if (movie.header.version < vis::firstRecordVersion) return;
    movie.state.restartRequested = true;
    movie.pacing.resynchronise = true;
}

void resynchroniseMovieClock(Movie& movie) { movie.pacing.resynchronise = true; }

void prepareMovieDrain(Movie& movie) { movie.pacing.draining = true; }

void handKeyToMovie(Movie& movie, std::uint32_t keyCode) {
    movie.lastKey = static_cast<std::uint8_t>(keyCode);
    movie.keys.append(movie.lastKey);
}

void pauseMovieSounds(Movie& movie) { pauseSounds(movie); }
void resumeMovieSounds(Movie& movie) { resumeSounds(movie); }
void muteMovie(Movie& movie, bool mute) { setMute(movie, mute); }

PlayerStatistics movieStatistics(const Movie& movie) {
    return {.next = workOf(movie.state), .budgetInUse = movie.pool.inUse, .budgetPeak = movie.pool.peak};
}

void attachMovieFrameBuffer(Movie& movie, std::uint16_t* pixels, std::uint16_t width, std::uint16_t height) {
    movie.render.pixels = pixels;
    movie.render.rowLength = width;
    movie.render.height = height;
    movie.changedAreas.setScreen(screenRect(movie.render));
    movie.fullRedraw = true;

    const std::int32_t stageWidth = static_cast<std::uint16_t>(movie.header.stage.xMax);
    const std::int32_t stageHeight = static_cast<std::uint16_t>(movie.header.stage.yMax);
    const bool hasStage = stageWidth != 0 && stageHeight != 0;
    movie.stageToScreen =
        hasStage ? stageToScreen(stageWidth, stageHeight, width, height, movie.header.fitToScreen) : identityMatrix;
    movie.viewMoved = true;
}

}  // namespace qel
