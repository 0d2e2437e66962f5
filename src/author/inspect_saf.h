// The reader of the older "SAF" container.
#pragma once

#include "author/inspect_listing.h"

namespace qel::author::inspector {

void inspectSaf(Listing& list);

}  // namespace qel::author::inspector
