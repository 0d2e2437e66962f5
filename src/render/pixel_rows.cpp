#include "render/pixel_rows.h"

#include "render/wide_registers.h"

namespace qel {
namespace {

using Lane = std::uint16_t;

// The blend without anything that leaves 16 bits, so that compilers turn the loops below into vector code. Every
// channel is (below * (256 - alpha) + source * alpha) >> 8 taken at its own place, which equals `blend565`'s difference
// form; red comes from the whole word, whose two bytes are mixed apart.
struct Source {
    Lane high, low, green, blue;  // the bytes of the word and two channels, each times alpha
};

[[gnu::always_inline]] inline Source weigh(unsigned colour, unsigned alpha) {
    return {static_cast<Lane>((colour >> 8) * alpha), static_cast<Lane>((colour & 0xFF) * alpha),
            static_cast<Lane>((colour >> 5 & 0x3F) * alpha), static_cast<Lane>((colour & 0x1F) * alpha)};
}

[[gnu::always_inline]] inline Lane mix(unsigned below, const Source& source, unsigned rest) {
    const auto low = static_cast<Lane>((below & 0xFF) * rest + source.low);
    const auto high = static_cast<Lane>((below >> 8) * rest + source.high);
    const auto green = static_cast<Lane>((below >> 5 & 0x3F) * rest + source.green);
    const auto blue = static_cast<Lane>((below & 0x1F) * rest + source.blue);
    const auto red = static_cast<Lane>(high + (low >> 8));
    return static_cast<Lane>((red & 0xF800) | (green >> 3 & 0x07E0) | (blue >> 8));
}

[[gnu::always_inline]] inline void blendColourLoop(PixelRun run, std::uint16_t colour, std::uint8_t alpha) {
    const Source source = weigh(colour, alpha);
    const unsigned rest = 256u - alpha;
    for (std::uint16_t& pixel : run) pixel = mix(pixel, source, rest);
}

[[gnu::always_inline]] inline void blendColoursLoop(PixelRun run, const std::uint16_t* colours,
                                                    const std::uint8_t* alphas) {
    std::uint16_t* const pixels = run.data();
    const std::size_t count = run.size();
    for (std::size_t i = 0; i < count; ++i) {
        const Lane blended = mix(pixels[i], weigh(colours[i], alphas[i]), 256u - alphas[i]);
        pixels[i] = alphas[i] == 255 ? colours[i] : blended;
    }
}

void blendColourPlain(PixelRun run, std::uint16_t colour, std::uint8_t alpha) { blendColourLoop(run, colour, alpha); }
void blendColoursPlain(PixelRun run, const std::uint16_t* colours, const std::uint8_t* alphas) {
    blendColoursLoop(run, colours, alphas);
}

QEL_WIDE void blendColourWide(PixelRun run, std::uint16_t colour, std::uint8_t alpha) {
    blendColourLoop(run, colour, alpha);
}
QEL_WIDE void blendColoursWide(PixelRun run, const std::uint16_t* colours, const std::uint8_t* alphas) {
    blendColoursLoop(run, colours, alphas);
}

const auto blendColourHere = chooseWide(blendColourPlain, blendColourWide);
const auto blendColoursHere = chooseWide(blendColoursPlain, blendColoursWide);

}  // namespace

void blendColour(PixelRun run, std::uint16_t colour, std::uint8_t alpha) {
    if (alpha == 255) return storeColour(run, colour);
    blendColourHere(run, colour, alpha);
}

void blendColours(PixelRun run, const std::uint16_t* colours, const std::uint8_t* alphas) {
    blendColoursHere(run, colours, alphas);
}

}  // namespace qel
