// The blocks behind the movie data: the clock's glyphs and the overlay.
#include <algorithm>

#include "author/inspect_fields.h"
#include "author/inspect_movie.h"

namespace qel::author::inspector {
namespace {

constexpr std::size_t overlayHeaderBytes = 64;

// What an element of the overlay is, by its kind; nullptr for a kind that ends the list.
const char* overlayElementName(unsigned kind) {
    switch (kind) {
        case 17: return "handElement";
        case 18: return "hourHand";
        case 19: return "minuteHand";
        case 20: return "secondHand";
        case 33: return "dayPositions";
        case 34: return "pictureOfTheDay";
        case 35: return "repeatedPicture";
        case 36: return "picture";
        case 48:
        case 49: return "keptData";
        default: return nullptr;
    }
}

const char* overlayItemName(unsigned type) {
    switch (type) {
        case 3:
        case 4: return "image8";
        case 7: return "image16";
        case 32: return "primitive8";
        case 33: return "primitive16";
        default: return "unknown";
    }
}

void inspectOverlayItem(Listing& list, FieldReader& fields) {
    const unsigned type = fields.u8(nullptr);
    if (!fields.broken()) addWord(list, "item", overlayItemName(type));
    fields.skip(1 + 3, "the key colour");
    for (const char* name : {"frameCount", "width", "height", "pivotX", "pivotY", "x", "y"}) fields.u16(name);
}

// The elements up to the byte that ends them. Content that breaks off here still plays with what came before.
void inspectOverlayElements(Listing& list, std::size_t at, std::size_t end) {
    constexpr std::size_t headBytes = 7, itemBytes = 19, dayTableBytes = 125;
    while (end - at >= headBytes && !list.full) {
        const unsigned kind = list.content[at];
        const char* name = overlayElementName(kind);
        if (!name) {
            if (kind != 0 && kind != 31 && kind != 32)
                addWarning(list, at, "overlay elements of kind %u end the list", kind);
            return;
        }
        FieldReader sizes(list, at + 3, end);
        const std::size_t dataBytes = sizes.u32(nullptr);
        const std::size_t fixedBytes = kind == 33 ? dayTableBytes : kind >= 48 ? 1 : itemBytes;
        const std::size_t length = headBytes + fixedBytes + (kind == 33 ? 0 : dataBytes);
        PartScope scope(list, name, static_cast<int>(kind), at, std::min(length, end - at));
        if (length > end - at) {
            addWarning(list, at, "the element of %zu bytes runs past the end of its block at %zu", length, end);
            return;
        }
        FieldReader fields(list, at + headBytes, at + length);
        if (kind == 33) {
            fields.u8("days");
        } else if (fixedBytes == itemBytes) {
            inspectOverlayItem(list, fields);
        }
        if (kind != 33) addNumber(list, "dataBytes", static_cast<std::int64_t>(dataBytes));
        at += length;
    }
}

void inspectOverlay(Listing& list, std::size_t begin, std::size_t end) {
    if (end - begin < overlayHeaderBytes) {
        addWarning(list, begin, "an overlay begins with %zu bytes: nothing is drawn", overlayHeaderBytes);
        return;
    }
    FieldReader centre(list, begin + 21, end);
    centre.u16("clockX");
    centre.u16("clockY");
    FieldReader bound(list, begin + 57, end);
    const std::size_t length = bound.u32("sectionsLength");
    const std::size_t elements = begin + overlayHeaderBytes;
    if (length > 4) inspectOverlayElements(list, elements, std::min(end, elements + length - 4));
}

struct TrailerBlock {
    std::size_t body, end;  // the end that the block announces, wherever the file ends
    bool whole;
};

TrailerBlock trailerBlock(const Listing& list, std::size_t at, unsigned lengthBytes) {
    const std::size_t left = list.content.size() - std::min(at, list.content.size());
    if (left < lengthBytes) return {at, at + lengthBytes, false};
    std::size_t length = 0;
    for (unsigned i = lengthBytes; i-- > 0;) length = length << 8 | list.content[at + i];
    return {at + lengthBytes, at + lengthBytes + length, length <= left - lengthBytes};
}

// The block's own part. Its contents are listed while the scope lives.
void describeTrailer(Listing& list, const char* what, std::size_t at, const TrailerBlock& block) {
    if (block.body == at) {
        addError(list, at, "the file ends before the %s", what);
        return;
    }
    addNumber(list, "blockLength", static_cast<std::int64_t>(block.end - block.body));
    if (!block.whole)
        addError(list, at, "the %s of %zu bytes runs past the end of the file", what, block.end - block.body);
}

}  // namespace

std::size_t inspectTrailers(Listing& list, std::size_t at, TrailerFlags flags) {
    if (flags.fontBlock) {
        const TrailerBlock block = trailerBlock(list, at, 2);
        PartScope scope(list, "fontBlock", -1, at, block.end - at);
        describeTrailer(list, "font block", at, block);
        at = block.end;
    }
    if (flags.extensionBlock) {
        const TrailerBlock block = trailerBlock(list, at, 4);
        PartScope scope(list, "extensionBlock", -1, at, block.end - at);
        describeTrailer(list, "extension block", at, block);
        if (block.whole) inspectOverlay(list, block.body, block.end);
        at = block.end;
    }
    return at;
}

}  // namespace qel::author::inspector
