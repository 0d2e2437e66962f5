// The platform services of a session: what its players get through HostContext::services.
#pragma once

#include "player/services.h"

namespace qel {

// For contexts whose `owner` is a Session.
extern const PlatformServices sessionServices;

// The name of the temporary content file.
inline constexpr const char* temporaryContentName = "_vis_content_temp_.vis";

}  // namespace qel
