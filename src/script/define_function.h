// Functions of scripts.
#pragma once

#include "movie/content_reader.h"
#include "script/action_list.h"

namespace qel {

struct Movie;

// The action DefineFunction: its operands, and the body behind them in the running list, which goes on behind it. False
// where the operands or the body are cut short.
bool defineFunction(Movie& movie, ActionList& list, ContentReader operands);

}  // namespace qel
