// What each type takes on the device, in bytes: 4-byte pointers, fields at their natural alignment, a list's links with
// its objects. The budget is charged with these numbers, whatever the types take here.
#pragma once

#include <cstdint>
#include <type_traits>

namespace qel {

// Plain numbers are as large there as here; everything else has its row below.
template <class T>
inline constexpr std::uint32_t charge = [] {
    static_assert(std::is_arithmetic_v<T>, "give the type a row in movie/charges.h");
    return static_cast<std::uint32_t>(sizeof(T));
}();

// Loading.
template <>
inline constexpr std::uint32_t charge<struct MovieInformation> = 64;
template <>
inline constexpr std::uint32_t charge<struct Expansion> = 2084;
template <>
inline constexpr std::uint32_t charge<struct NameEntry> = 8;
template <>
inline constexpr std::uint32_t charge<struct BlockEntry> = 12;
template <>
inline constexpr std::uint32_t charge<struct KeyFrameEntry> = 4;
template <>
inline constexpr std::uint32_t charge<struct LabelEntry> = 8;
template <>
inline constexpr std::uint32_t charge<struct Command> = 12;

// Characters.
template <>
inline constexpr std::uint32_t charge<struct DictionaryEntry> = 16;
template <>
inline constexpr std::uint32_t charge<struct SolidFill> = 16;
template <>
inline constexpr std::uint32_t charge<struct LineStyle> = 4;
template <>
inline constexpr std::uint32_t charge<struct GradientFill> = 824;
template <>
inline constexpr std::uint32_t charge<struct GradientStop> = 4;
template <>
inline constexpr std::uint32_t charge<struct BitmapFill> = 48;
template <>
inline constexpr std::uint32_t charge<struct MorphShape> = 12;
template <>
inline constexpr std::uint32_t charge<struct StylePair> = 4;
template <>
inline constexpr std::uint32_t charge<struct Shape> = 44;
template <>
inline constexpr std::uint32_t charge<struct PathSegment> = 14;
template <>
inline constexpr std::uint32_t charge<struct StyleGroup> = 16;
template <class Style>
struct StyleUse;
template <class Style>
inline constexpr std::uint32_t charge<StyleUse<Style>> = 4;
template <>
inline constexpr std::uint32_t charge<struct Sprite> = 40;
template <>
inline constexpr std::uint32_t charge<struct SpriteBlock> = 6;
template <>
inline constexpr std::uint32_t charge<struct SpriteLabel> = 42;
template <>
inline constexpr std::uint32_t charge<struct Sound> = 20;
template <>
inline constexpr std::uint32_t charge<struct Button> = 20;
template <>
inline constexpr std::uint32_t charge<struct ButtonCondition> = 20;
template <>
inline constexpr std::uint32_t charge<struct CommandButton> = 16;
template <>
inline constexpr std::uint32_t charge<struct EditText> = 416;
template <>
inline constexpr std::uint32_t charge<struct FrameCache> = 12;
template <>
inline constexpr std::uint32_t charge<struct CompressionTable> = 8;

// Display objects, each with its node in a list.
template <>
inline constexpr std::uint32_t charge<struct ShapeInstance> = 164;
template <>
inline constexpr std::uint32_t charge<struct ButtonInstance> = 120;
template <>
inline constexpr std::uint32_t charge<struct ClipInstance> = 204;
template <>
inline constexpr std::uint32_t charge<struct TextInstance> = 120;
template <>
inline constexpr std::uint32_t charge<struct ClipKeyFrame> = 8;
template <>
inline constexpr std::uint32_t charge<struct ClipHandler> = 16;
template <>
inline constexpr std::uint32_t charge<struct MorphInstance> = 232;
template <>
inline constexpr std::uint32_t charge<struct MorphStyle> = 12;
template <>
inline constexpr std::uint32_t charge<struct FillEdge> = 28;  // with a pointer from the order of first rows
template <>
inline constexpr std::uint32_t charge<struct PlacedFill> = 20;  // a sampling matrix
template <>
inline constexpr std::uint32_t charge<struct PlacedLine> = 4;

}  // namespace qel
