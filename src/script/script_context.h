// The script machine's side of a movie: the tables that loading hands over to it.
#pragma once

#include <cstdint>

#include "movie/pool.h"

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

struct ScriptContext {
    std::uint8_t nextButtonKey = 0, previousButtonKey = 0;  // the navigation keys; 0: none
    bool gotoMark = false;                                  // a goto passes over frames: their actions are not queued
    PoolArray<NameEntry> names;
    PoolArray<BlockEntry> blocks;
    PoolArray<std::uint8_t> blockBuffer;  // as large as the largest block
    PoolArray<KeyFrameEntry> keyFrames;   // ascending frames
    PoolArray<LabelEntry> labels;
};

}  // namespace qel
