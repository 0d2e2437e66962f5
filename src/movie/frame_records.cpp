#include "movie/frame_records.h"

#include "movie/record_header.h"

namespace qel {

FrameHead readFrameHead(ContentReader& body) {
    FrameHead head;
    head.cacheId = body.u16();
    if (head.cacheId != noCharacter) head.frameNumber = body.u16();
    return head;
}

bool findFrame(const Sprite& sprite, std::uint32_t offset, std::uint32_t most, SpriteFrame& frame) {
    ContentReader reader(sprite.timeline.span());
    reader.seek(offset);
    RecordHeader header;
    for (frame.looked = 0; frame.looked < most;) {
        ++frame.looked;
        frame.start = static_cast<std::uint32_t>(reader.cursor());
        if (!readRecordHeader(reader, header) || !reader.available(header.bodyLength)) return false;
        frame.bodyOffset = static_cast<std::uint32_t>(reader.cursor());
        frame.body = reader.section(header.bodyLength);
        frame.end = static_cast<std::uint32_t>(reader.cursor());
        if (RecordType{header.type} == RecordType::frame) return true;
    }
    return false;
}

}  // namespace qel
