// The movie engine's state, one for each content that plays. It owns everything below it; members are destroyed from
// the last to the first, so whoever uses another stands behind it.
#pragma once

#include <array>
#include <cstdint>

#include "format/file_header.h"
#include "movie/command_list.h"
#include "movie/content_reader.h"
#include "movie/dictionary.h"
#include "movie/display_object.h"
#include "movie/expansion.h"
#include "movie/frame_cache.h"
#include "movie/inflater.h"
#include "movie/key_queue.h"
#include "movie/pool.h"
#include "movie/redraw_region.h"
#include "movie/sounds.h"
#include "movie/state_word.h"
#include "movie/streamed_definition.h"
#include "player/player_instance.h"
#include "render/render_context.h"
#include "script/script_context.h"

namespace qel {

// The fields of the file header and of record 1.
struct MovieHeader {
    static constexpr std::uint16_t firstBackground = 255;

    std::uint8_t version = 0;
    bool scanDefinitions = false;  // else the character directory lists them
    bool dropFrames = false;       // pacing at a fixed rate
    bool fitToScreen = false;      // scale the stage to the frame buffer
    FontMode fontMode = FontMode::builtIn;
    bool trailer = false;       // a font block lies in front of the extension block
    bool hasExtension = false;  // an extension block follows the movie data
    bool hasBackground = false;
    std::uint16_t frameCount = 0;
    std::uint16_t frameDuration = 0;          // milliseconds; 0: frameDurations gives one for each frame
    PoolArray<std::uint16_t> frameDurations;  // milliseconds
    std::uint16_t dictionarySize = 0;
    std::uint16_t backgroundColour = firstBackground;  // RGB565: what the frame buffer is cleared to
    std::uint16_t initialBackground = 0;               // RGB565: what the host is told
    std::uint32_t contentLength = 0;                   // bytes of movie data: the trailer blocks begin here
    Rect stage;                                        // x and y, then width and height in the maxima
    PoolArray<std::uint8_t> blob, reserved52;          // kept for nobody
};

// Playing some frames again and again: begun by a command, ended by their count or by another goto.
struct FrameLoop {
    std::uint16_t firstKeyFrame = noCharacter;  // the frame cache to go back to
    std::uint16_t lastFrame = 0;                // 0-based
    std::uint8_t count = 0;                     // times still to play; wraps, so 0 means 256
    std::uint16_t afterKeyFrame = noCharacter;  // where it goes on
};

// What the content asks its host for when it ends.
struct EndRequest {
    PoolText address;  // to open
    PoolText number;   // to call
};

// When frames are shown. Times are tick counts.
struct Pacing {
    std::uint32_t frameStart = 0;  // when the current frame began
    std::uint32_t presented = 0;   // when the previous frame was shown
    std::uint32_t deadline = 0;    // fixed rate: when the current frame is due
    bool resynchronise = true;     // the clock starts again with the next frame
    bool firstFrame = true;        // nothing was shown in this pass
    bool draining = false;         // nothing waits any more
};

struct Movie {
    PlayerInstance* player;
    StateWord state;
    LoadStatus loadStatus;
    Pool heap;  // charges nobody
    Pool pool;
    CharacterDictionary dictionary;
    Inflater inflater;
    bool inflaterReady = false;
    MovieHeader header;

    // The fed bytes, and where they lie in the content.
    ContentReader reader;
    std::uint32_t position = 0;
    PoolArray<std::uint8_t> section;  // a record that did not fit one chunk, as it is collected
    std::uint32_t sectionLength = 0;  // of that record; 0: nothing is being collected
    std::uint32_t sectionOffset = 0;  // of that record in the content
    std::uint8_t sectionType = 0;     // of that record, on the timeline
    StreamedDefinition streamed;      // the definition that the timeline's records bring at the moment

    // Loading.
    PoolPtr<Expansion> expansion;
    PoolPtr<MovieInformation> information;  // while the host looks at it
    bool awaitsRecord = false;              // the leading record behind previousRecord has not arrived
    std::uint8_t previousRecord = 0;        // its type; 0: the file header
    std::uint32_t firstFramePosition = 0;
    CommandList globalCommands;
    PoolArray<std::uint8_t> fontBlock, extensionBlock;
    bool deviceText = false;

    // Playing.
    ScriptContext scripts;
    std::uint32_t frameIndex = 0;               // of the current frame, 0 before the first
    PoolArray<std::uint16_t> keyFrames;         // frames that are always shown, ascending
    std::uint16_t firstKeyFrame = noCharacter;  // its frame cache
    CharacterHold<FrameCache> gotoFrame;        // the key frame that the cycle goes on with
    std::uint32_t instanceCounter = 0;          // clips that got their name by number
    std::uint32_t workLeft = 0;                 // of the cycle's share for clips
    Pacing pacing;

    // Keys and commands.
    static constexpr std::int16_t noTarget = -1;
    KeyQueue keys;
    std::uint8_t lastKey = 0;        // handed in
    CommandList frameCommands;       // of the current frame
    std::int16_t target = noTarget;  // position on the root list that commands act on
    FrameLoop frameLoop;
    std::uint16_t refocusId = noCharacter;  // the button that gets the focus back
    EndRequest endRequest;
    std::uint32_t immediateFramesLeft = 0;  // how often the cycle may still draw between its frames

    // Sound.
    std::array<ChannelRecord, 2> channels;
    std::uint8_t volume = 100;  // 0 to 255
    bool muted = false;

    // What the screen shows.
    Matrix stageToScreen = identityMatrix;
    Matrix view = identityMatrix;  // of the root list, in screen pixels, behind the stage's
    bool viewMoved = true;         // every object of the root list finds its place anew
    RenderContext render;
    RedrawRegion changedAreas;
    bool fullRedraw = true;
    DisplayObject* drawingAt = nullptr;  // the object that is drawn next; null: none is left
    PlacementNumber nextPlacement;       // of the root timeline
    ButtonList buttons;
    DisplayList root;
    DisplayList rootKept;
    DisplayList waiting;  // clips off every list, until the actions of the cycle have run

    Movie(PlayerInstance& itsPlayer, std::uint32_t budget);
    Movie(const Movie&) = delete;
    ~Movie();
};

// Leaves a status for the front end.
inline void answer(Movie& movie, LoadCode code) { movie.loadStatus.code = code; }
inline void answerFailure(Movie& movie, Result failure) { movie.loadStatus.code = failureCode(failure); }
inline void answerWait(Movie& movie, std::uint32_t milliseconds) {
    movie.loadStatus.code = LoadCode::wait;
    movie.loadStatus.length = milliseconds;
}

// Asks for bytes at a content offset; length 0 means as many as fit a chunk.
inline void askForBytes(Movie& movie, std::uint32_t offset, std::uint32_t length = 0) {
    movie.loadStatus.code = LoadCode::needBytes;
    movie.loadStatus.offset = offset;
    movie.loadStatus.length = length;
}

}  // namespace qel
