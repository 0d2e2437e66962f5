// Runs one list of action code.
#pragma once

#include "script/action_list.h"

namespace qel {

struct Movie;

// Runs the list until it ends or a call opens a level; true when it has ended. What fails is left in the script
// context.
bool runList(Movie& movie, ActionList& list);

}  // namespace qel
