#include "host/help_panel.h"

#include <SDL.h>

#include <algorithm>
#include <string_view>

#include "host/bitmap_font.h"
#include "host/keyboard.h"

namespace qel {
namespace {

constexpr int cellWidth = glyphWidth + 1, cellHeight = glyphHeight + 4;  // of a character, in pixels of the font
constexpr int gap = 2;                                                   // characters between the columns
constexpr std::string_view heading = "Paused", closing = "Any other key goes on";
constexpr int lines = static_cast<int>(keyboardHelp.size()) + 4;  // heading and closing, an empty line beside each

constexpr int length(std::string_view text) { return static_cast<int>(text.size()); }

void drawText(SDL_Renderer* renderer, std::string_view text, int x, int y, int scale) {
    for (const char character : text) {
        const Glyph& glyph = glyphOf(character);
        for (int row = 0; row < glyphHeight; ++row) {
            for (int column = 0; column < glyphWidth; ++column) {
                if ((glyph[static_cast<std::size_t>(row)] >> (glyphWidth - 1 - column) & 1) == 0) continue;
                const SDL_Rect pixel = {x + column * scale, y + row * scale, scale, scale};
                SDL_RenderFillRect(renderer, &pixel);
            }
        }
        x += cellWidth * scale;
    }
}

}  // namespace

void drawHelpPanel(SDL_Renderer* renderer) {
    int width = 0, height = 0;
    if (SDL_GetRendererOutputSize(renderer, &width, &height) != 0) return;
    SDL_SetRenderDrawBlendMode(renderer, SDL_BLENDMODE_BLEND);
    SDL_SetRenderDrawColor(renderer, 0, 0, 0, 208);
    SDL_RenderFillRect(renderer, nullptr);
    SDL_SetRenderDrawBlendMode(renderer, SDL_BLENDMODE_NONE);

    int keyColumn = 0, meaningColumn = 0;  // in characters
    for (const KeyboardHelp& row : keyboardHelp) {
        keyColumn = std::max(keyColumn, length(row.keys));
        meaningColumn = std::max(meaningColumn, length(row.meaning));
    }
    const int columns = keyColumn + gap + meaningColumn;
    const int scale = std::max(1, std::min(width / ((columns + 1) * cellWidth), height / ((lines + 1) * cellHeight)));
    const int left = (width - columns * cellWidth * scale) / 2;
    int y = (height - lines * cellHeight * scale) / 2;
    const auto centred = [&](std::string_view text) { return (width - length(text) * cellWidth * scale) / 2; };

    SDL_SetRenderDrawColor(renderer, 255, 208, 96, SDL_ALPHA_OPAQUE);
    drawText(renderer, heading, centred(heading), y, scale);
    drawText(renderer, closing, centred(closing), y + (lines - 1) * cellHeight * scale, scale);
    SDL_SetRenderDrawColor(renderer, 255, 255, 255, SDL_ALPHA_OPAQUE);
    y += cellHeight * scale;
    for (const KeyboardHelp& row : keyboardHelp) {
        y += cellHeight * scale;
        drawText(renderer, row.keys, left, y, scale);
        drawText(renderer, row.meaning, left + (keyColumn + gap) * cellWidth * scale, y, scale);
    }
}

}  // namespace qel
