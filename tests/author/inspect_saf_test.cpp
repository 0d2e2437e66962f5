#include <gtest/gtest.h>

#include "author/byte_writer.h"
#include "author/inspect.h"
#include "author/inspect_listing_lines.h"

namespace qel::author {
namespace {

// Two objects of 4 x 3 pixels, the second with a mask, and one frame that places both.
Bytes smallSaf() {
    return {
        'S', 'A', 'F',  0,    2,    0,  83,                         // version 2, 83 bytes
        7,   0,   23,                                               // at 7: content header
        1,   6,   40,   30,   8,    0,  0,  0,                      // 40 x 30 at 8 bits
        2,   2,   2,    0x00,                                       // 2 objects, no table
        3,   3,   1,    0,    0,                                    // 1 frame
        10,  4,   0,    0,    1,    44,                             // a duration of its own: 300 ms
        4,   0,   5,    0,    4,    3,  1,  0,   0, 2, 0xAA, 0xBB,  // at 33: object 0, its image
        14,  0,   6,    0x81, 4,    3,  3,  0,   9, 0, 1,    0xCC,
        0,   1,   0xDD,                           // at 45: object 1, its image and its mask
        6,   0,   17,                             // at 60: the frame
        5,   2,                                   // background, placements
        0,   5,   0,    0x80, 0x01, 10, 20,       // object 0 at -10, 20, keyed
        0,   6,   1,    0x04, 0x00, 30, 2,  128,  // object 1 at 30, 2, half transparent
        8,   0,   0,                              // at 80
    };
}

Bytes changed(std::size_t at, std::uint8_t value) {
    Bytes content = smallSaf();
    content[at] = value;
    return content;
}

TEST(InspectSaf, SaysInWordsWhatPartsHold) {
    const std::vector<std::string> expected = {
        "movie: SAF, 83 bytes",
        "",
        "offset length part",
        "0 7 header version 2 contentLength 83",
        "7 26 contentHeader (7)",
        "10 8 surface (1) width 40 height 30 bitsPerPixel 8",
        "18 4 objects (2) objectCount 2 colourTable none",
        "22 5 frames (3) frameCount 1",
        "27 6 frameDurations (10) duration 0 durations (300)",
        "33 12 object (4) object 0 width 4 height 3 encoding deflated attribute 0 imageBytes 2",
        "45 15 maskedObject (14) object 1 width 4 height 3 encoding jpeg attribute 9 imageBytes 1 maskBytes 1",
        "60 20 frame (6) frameNumber 0 background 5 placements 2",
        "65 7 placement object 0 x -10 y 20 keyed yes",
        "72 8 placement object 1 x 30 y 2 alpha 128",
        "80 3 end (8)",
        "",
        "no problems",
    };
    EXPECT_EQ(listingLines(smallSaf()), expected);
}

TEST(InspectSaf, StatesWhatIsBroken) {
    const std::pair<Bytes, const char*> cases[] = {
        {changed(3, 1), "the byte after \"SAF\" is 1"},
        {changed(4, 4), "version 4 is not played"},
        {changed(14, 16), "16 bits per pixel are not drawn"},
        {changed(24, 127), "127 frames are more than the 126"},
        {changed(24, 2), "2 frames are announced, 1 are there"},
        {changed(11, 60), "the sub-record of 60 bytes runs past the end of its record at 33"},
        {changed(7, 9), "the content header is missing"},
        {changed(37, 0), "an object of 0 x 3 pixels"},
        {changed(39, 16), "image encoding 16 is refused"},
        {changed(41, 9), "the image is cut off"},
        {changed(62, 200), "the record of 200 bytes runs past the end of the content at 83"},
        {changed(66, 40), "placement 0 of 2 runs past the end of its frame at 80"},
        {changed(74, 5), "object 5 is defined nowhere"},
        {changed(80, 5), "without a record of type 8"},
        {changed(37, 2), "a variant that the player refuses"},
    };
    for (const auto& [content, text] : cases) {
        const Inspection inspection = inspectContent(content);
        std::string all;
        for (const InspectionProblem& problem : inspection.problems) all += problem.text + "\n";
        EXPECT_NE(all.find(text), std::string::npos) << "missing: " << text << "\nfound: " << all;
        EXPECT_GT(inspection.errorCount, 0u) << text;
    }
}

TEST(InspectSaf, StatesAReasonWhereverContentIsCut) {
    const Bytes whole = smallSaf();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_GT(inspectContent(std::span{whole}.first(length)).errorCount, 0u) << "cut to " << length << " bytes";
    }
}

}  // namespace
}  // namespace qel::author
