// Writes the records of the stream. Every function gives the bytes of one whole record, header included; `record`
// itself takes any type and body, also such as no movie should have.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "author/byte_writer.h"
#include "format/colour_formats.h"
#include "format/geometry.h"
#include "format/record_types.h"

namespace qel::author {

// Throws std::length_error when the body does not fit the length field of its type.
Bytes record(std::uint8_t type, std::span<const std::uint8_t> body);
inline Bytes record(RecordType type, std::span<const std::uint8_t> body) {
    return record(static_cast<std::uint8_t>(type), body);
}
inline Bytes endRecord() { return record(RecordType::end, {}); }

// A colour and how opaque it is (255: wholly), as styles hold it.
struct Paint {
    std::uint32_t colour = 0;  // 0xRRGGBB
    std::uint8_t alpha = 255;
    ColourFormat format = ColourFormat::rgb565;
};
Bytes solidFill(std::uint16_t id, const Paint& paint);
Bytes lineStyle(std::uint16_t id, const Paint& paint, unsigned width);  // width 0 to 63 pixels

struct GradientStop {
    std::uint8_t ratio = 0;
    std::uint32_t colour = 0;  // 0xRRGGBB
    std::uint8_t alpha = 255;
};
enum class GradientType : std::uint8_t { linear = 0, radial = 1 };
Bytes gradientFill(std::uint16_t id, GradientType type, const Matrix& matrix, std::span<const GradientStop> stops,
                   ColourFormat format = ColourFormat::rgb565);
Bytes bitmapFill(std::uint16_t id, unsigned flags, std::uint16_t bitmapId, const Matrix& matrix);

// The outline of a shape, path record by path record.
class Outline {
  public:
    // The styles of what follows; one that is not given stays as it is.
    struct Styles {
        std::optional<std::uint16_t> line, fill0, fill1;
    };
    Outline& style(const Styles& styles);
    Outline& moveTo(Point to);
    Outline& moveBy(Point by);
    Outline& lineTo(Point to);
    Outline& lineBy(Point by);
    Outline& curveBy(Point control, Point end);  // control from the pen, end from the control
    // Any kind and body, also a body that is longer than the 31 bytes its header can announce.
    Outline& pathRecord(unsigned kind, std::span<const std::uint8_t> body);

    const Bytes& bytes() const { return bytes_; }
    unsigned recordCount() const { return recordCount_; }
    unsigned groupCount() const { return groupCount_; }

  private:
    Bytes bytes_;
    unsigned recordCount_ = 0, groupCount_ = 0;
};

struct ShapeRecord {
    std::uint16_t id = 0;
    Rect bounds;
    Outline outline;
    bool hasFill = true;
    std::vector<std::uint16_t> bitmapFills, gradientFills;  // of those that the outline uses
};
Bytes shape(const ShapeRecord& fields);

struct StylePair {
    std::uint16_t start = 0, end = 0;
};
Bytes morphShape(std::uint16_t id, std::uint16_t startShape, std::uint16_t endShape, std::span<const StylePair> pairs);

struct Label {
    std::uint16_t frame = 0;  // 0-based
    std::string name;
};

// Where something lies in the content.
struct Location {
    std::uint32_t offset = 0, length = 0;
};
// Action items of a frame, found by the frame's number when a script calls it.
struct Block : Location {
    std::uint16_t id = 0;
};

struct SpriteRecord {
    std::uint16_t id = 0;
    std::uint16_t frameCount = 0;
    std::uint16_t keyFrameCount = 0;
    std::vector<Block> blocks = {};  // offsets count from the timeline's start; 65535 at the most, as lengths
    std::vector<Label> labels = {};  // names of at most 39 bytes are kept whole
    std::vector<std::uint16_t> keyFrames = {};  // frames that are always shown
    Bytes timeline;                             // frame records
};
Bytes sprite(const SpriteRecord& fields);

// A frame: an ordinary one, or a key frame with a cache identifier and its number (0-based).
Bytes frame(std::span<const std::uint8_t> items);
Bytes keyFrame(std::uint16_t cacheId, std::uint16_t number, std::span<const std::uint8_t> items);

Bytes backgroundColour(std::uint32_t colour, ColourFormat format = ColourFormat::rgb565);
Bytes keyFrameList(std::span<const std::uint16_t> frames);  // ascending
Bytes purgeOrder(std::span<const std::uint16_t> ids);       // at most 255
Bytes releaseCharacters(std::span<const std::uint16_t> ids);

struct Name {
    std::uint16_t id = 0;
    std::string name;
};
Bytes nameTable(std::span<const Name> names);

struct DirectoryEntry : Location {
    CharacterKind kind = CharacterKind::solidFill;
};
Bytes characterDirectory(std::span<const DirectoryEntry> entries);  // entry i describes character i
Bytes blockTable(std::span<const Block> blocks);

// Record 1, sub-record by sub-record.
class Properties {
  public:
    Properties& property(std::uint8_t type, std::span<const std::uint8_t> body);
    Properties& property(PropertyType type, std::span<const std::uint8_t> body) {
        return property(static_cast<std::uint8_t>(type), body);
    }
    Properties& commands(std::span<const std::uint8_t> list) { return property(PropertyType::commands, list); }
    struct KeyFrame {
        std::uint16_t frame = 0, cacheId = 0;
    };
    Properties& keyFrameIndex(std::span<const KeyFrame> keyFrames);
    Properties& labels(std::span<const Label> labels);
    Properties& frameCount(std::uint16_t count);
    Properties& background(std::uint32_t colour, ColourFormat format = ColourFormat::rgb565);
    Properties& frameDuration(std::uint16_t milliseconds);
    Properties& frameDurations(std::span<const std::uint16_t> milliseconds);  // of all frames but the last; at most 126
    Properties& contentLength(std::uint32_t bytes);
    Properties& stage(const Rect& rect);  // the maxima are the width and height
    Properties& dictionarySize(std::uint16_t count);

    Bytes record() const;

  private:
    Bytes body_;
};

}  // namespace qel::author
