// The panel that a window lays over its picture to tell its keys.
#pragma once

struct SDL_Renderer;

namespace qel {

// Darkens the whole output and writes the keys in its middle, as large as fits. Draws in window pixels: the renderer
// must have no logical size meanwhile.
void drawHelpPanel(SDL_Renderer* renderer);

}  // namespace qel
