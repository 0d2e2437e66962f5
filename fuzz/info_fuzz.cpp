// Any bytes through the inspector and both of its listings, with their action code.
#include <cstddef>
#include <cstdint>
#include <span>

#include "author/inspect.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace qel::author;
    const Inspection inspection = inspectContent(std::span{data, size}, {.actions = true});
    if (inspectionText(inspection, "fuzz").empty() || inspectionJson(inspection, "fuzz").empty()) __builtin_trap();
    // A file that names no problem holds what it says it does: a header at least.
    if (inspection.errorCount == 0 && inspection.parts.empty()) __builtin_trap();
    return 0;
}
