// A key on its way to the buttons.
#pragma once

#include <cstdint>

#include "movie/display_object.h"
#include "movie/result.h"

namespace qel {

struct Movie;

// Offers a key: the navigation keys move the focus; then the first button with a condition for the key, from the bottom
// of the root list to its top, queues its code and flashes. `consumed` tells whether anybody took the key.
Result dispatchKey(Movie& movie, std::uint8_t key, bool& consumed);

// Shows a button pressed and then in the state it rests in, each drawn at once; nothing where both look the same.
Result flashButton(Movie& movie, ButtonInstance& button, ButtonState resting);

}  // namespace qel
