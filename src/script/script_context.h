// The script machine's side of a movie: the tables that loading hands over to it, and everything that scripts have
// made.
#pragma once

#include <array>
#include <cstdint>

#include "movie/pool.h"
#include "script/action_list.h"
#include "script/random.h"
#include "script/value_stack.h"

namespace qel {

struct NameEntry {  // a name for a character
    std::uint16_t id = 0;
    PoolText name;
};

struct BlockEntry {  // an action block in the content, loaded when it is called
    std::uint16_t id = 0;
    std::uint32_t offset = 0, length = 0;
};

struct KeyFrameEntry {  // a frame of the main timeline and its frame cache
    std::uint16_t frame = 0, cacheId = 0;
};

struct LabelEntry {
    std::uint16_t frame = 0;  // 0-based
    PoolText label;
};

// Members are destroyed from the last to the first: whoever holds others stands behind them.
struct ScriptContext {
    static constexpr std::uint32_t mostLevels = 30;
    static constexpr std::uint32_t registerCount = 4;

    std::uint32_t actionLimit = 20'000'000;                 // of one run, which fails when they are used up
    std::uint8_t nextButtonKey = 0, previousButtonKey = 0;  // the navigation keys; 0: none
    bool gotoMark = false;                                  // a goto passes over frames: their actions are not queued
    PoolArray<NameEntry> names;
    PoolArray<BlockEntry> blocks;
    PoolArray<std::uint8_t> blockBuffer;  // as large as the largest block
    PoolArray<KeyFrameEntry> keyFrames;   // ascending frames
    PoolArray<LabelEntry> labels;

    ScriptMemory memory;
    NameTable nameTable;
    Name lengthName, valueName;  // what objects of the device call their own properties
    ObjectTable objects;
    ScriptObject math, string, number, key;  // reached by name, never freed
    ScriptFunction* firstFunction = nullptr;
    ScriptFunction* lastFunction = nullptr;
    VariableList variables;  // of the root timeline
    ValueStack stack{memory};
    std::array<Value, registerCount> registers;
    std::uint32_t startTime = 0;  // milliseconds of the host's clock
    RandomState random;

    // Code that was made lately, for the next time.
    static constexpr std::uint32_t recentCodes = 64;
    std::array<Shared<ActionCode>, recentCodes> recentCode;

    // The run.
    std::array<ActionLevel, mostLevels> levels;
    std::uint32_t level = 0;        // 0: nothing runs; levels are counted from 1
    bool frameRun = false;          // the run behind a frame, not the one behind the keys
    bool returned = false;          // the list ends with its action Return
    Result failure = Result::done;  // what the run ends with
    bool redraw = false;            // something has changed that the frame shown does not show
    Target target, savedTarget;
    bool targetSaved = false;

    ScriptContext() = default;
    ScriptContext(const ScriptContext&) = delete;
    ~ScriptContext();
};

}  // namespace qel
