// Text fields that show the value of a script's variable.
#pragma once

#include <string_view>

#include "movie/result.h"

namespace qel {

struct Movie;
struct TextInstance;

// What a field shows: the text of its definition until its variable has another.
std::string_view shownText(const TextInstance& instance);

// Takes in the value of the field's variable, if it has one that exists; marks the instance as changed when its text
// becomes another. outOfMemory: the text is as it was.
Result followVariable(Movie& movie, TextInstance& instance);

}  // namespace qel
