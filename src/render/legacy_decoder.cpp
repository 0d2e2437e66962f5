#include "render/legacy_decoder.h"

namespace qel {

Result feedLegacyDecoder(std::span<const std::uint8_t>) { return Result::badContent; }

}  // namespace qel
