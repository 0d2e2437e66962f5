// Animated GIF files with the timing of a run. The format counts time in hundredths of a second and colours in 256 a
// frame: delays are rounded so that their sum stays true, and a frame with more colours gets the 256 that suit it best.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cli/picture.h"

namespace qel::cli {

// Turns times in milliseconds into delays in hundredths of a second. What rounding takes from one delay goes to the
// next.
class GifClock {
  public:
    explicit GifClock(std::uint64_t startMs) : shownUntil_(rounded(startMs)) {}
    std::uint64_t delayUntil(std::uint64_t ms);

  private:
    static std::uint64_t rounded(std::uint64_t ms) { return (ms + 5) / 10; }
    std::uint64_t shownUntil_;  // hundredths of a second
};

// A picture as colour indexes. Exact when it has at most 256 colours.
struct IndexedPicture {
    std::vector<Rgb> palette;           // 1 to 256 entries
    std::vector<std::uint8_t> indexes;  // one a pixel
};
IndexedPicture reduceColours(const Picture& picture);

class GifWriter {
  public:
    GifWriter();
    ~GifWriter();  // without finish the file is left incomplete

    // Each picture is shown from its time until the next one's. All have the size of the first. False when the file
    // could not be written, or a picture differs in size; nothing more can be added then.
    bool open(const std::string& path);
    bool add(Picture picture, std::uint64_t atMs);
    bool finish(std::uint64_t endMs);  // how long the last picture is shown

  private:
    struct State;
    bool writeHeader(const Picture& first);
    bool writeWaiting(std::uint64_t untilMs, bool last);
    bool writeImage(const IndexedPicture& image, std::uint64_t delay);

    std::unique_ptr<State> state_;
};

}  // namespace qel::cli
