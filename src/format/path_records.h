// The path records of a shape: one header byte (high three bits the kind, low five the length of the body), then the
// body.
#pragma once

#include <cstdint>

namespace qel {

enum class PathRecordKind : std::uint8_t {
    styleChange = 1,  // UB[1] has-line, UB[1] has-fill0, UB[1] has-fill1; a u16 identifier for each, in that order
    lineTo = 2,       // point: where the segment ends
    lineBy = 3,       // point: how far
    curveBy = 4,      // point: control from the pen; point: end from the control
    moveTo = 5,       // point
    moveBy = 6,       // point
};

inline constexpr unsigned pathKindShift = 5;
inline constexpr unsigned pathLengthMask = 31;

}  // namespace qel
