// Commands at work.
#pragma once

#include "movie/command_list.h"

namespace qel {

struct Movie;

// Runs one command, whatever event it waits for. Commands on a target that is not there do nothing, and so do commands
// whose body is shorter than their fields. outOfMemory and what content can do wrong end playback.
Result runCommand(Movie& movie, const Command& command);

}  // namespace qel
