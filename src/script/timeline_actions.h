// Actions that move the timelines and choose which of them is meant.
#pragma once

#include <span>

#include "format/action_codes.h"
#include "movie/content_reader.h"

namespace qel {

struct Movie;

// `behind`: the code behind the action. False: it is none of these.
bool performTimelineAction(Movie& movie, Action action, ContentReader operands, std::span<const std::uint8_t> behind);

}  // namespace qel
