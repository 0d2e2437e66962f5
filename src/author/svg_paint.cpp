#include "author/svg_paint.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>

namespace qel::author {
namespace {

struct NamedColour {
    std::string_view name;
    std::uint32_t colour;
};

// Ascending, as they are searched.
constexpr NamedColour namedColours[] = {
    {"aliceblue", 0xF0F8FF},
    {"antiquewhite", 0xFAEBD7},
    {"aqua", 0x00FFFF},
    {"aquamarine", 0x7FFFD4},
    {"azure", 0xF0FFFF},
    {"beige", 0xF5F5DC},
    {"bisque", 0xFFE4C4},
    {"black", 0x000000},
    {"blanchedalmond", 0xFFEBCD},
    {"blue", 0x0000FF},
    {"blueviolet", 0x8A2BE2},
    {"brown", 0xA52A2A},
    {"burlywood", 0xDEB887},
    {"cadetblue", 0x5F9EA0},
    {"chartreuse", 0x7FFF00},
    {"chocolate", 0xD2691E},
    {"coral", 0xFF7F50},
    {"cornflowerblue", 0x6495ED},
    {"cornsilk", 0xFFF8DC},
    {"crimson", 0xDC143C},
    {"cyan", 0x00FFFF},
    {"darkblue", 0x00008B},
    {"darkcyan", 0x008B8B},
    {"darkgoldenrod", 0xB8860B},
    {"darkgray", 0xA9A9A9},
    {"darkgreen", 0x006400},
    {"darkgrey", 0xA9A9A9},
    {"darkkhaki", 0xBDB76B},
    {"darkmagenta", 0x8B008B},
    {"darkolivegreen", 0x556B2F},
    {"darkorange", 0xFF8C00},
    {"darkorchid", 0x9932CC},
    {"darkred", 0x8B0000},
    {"darksalmon", 0xE9967A},
    {"darkseagreen", 0x8FBC8F},
    {"darkslateblue", 0x483D8B},
    {"darkslategray", 0x2F4F4F},
    {"darkslategrey", 0x2F4F4F},
    {"darkturquoise", 0x00CED1},
    {"darkviolet", 0x9400D3},
    {"deeppink", 0xFF1493},
    {"deepskyblue", 0x00BFFF},
    {"dimgray", 0x696969},
    {"dimgrey", 0x696969},
    {"dodgerblue", 0x1E90FF},
    {"firebrick", 0xB22222},
    {"floralwhite", 0xFFFAF0},
    {"forestgreen", 0x228B22},
    {"fuchsia", 0xFF00FF},
    {"gainsboro", 0xDCDCDC},
    {"ghostwhite", 0xF8F8FF},
    {"gold", 0xFFD700},
    {"goldenrod", 0xDAA520},
    {"gray", 0x808080},
    {"green", 0x008000},
    {"greenyellow", 0xADFF2F},
    {"grey", 0x808080},
    {"honeydew", 0xF0FFF0},
    {"hotpink", 0xFF69B4},
    {"indianred", 0xCD5C5C},
    {"indigo", 0x4B0082},
    {"ivory", 0xFFFFF0},
    {"khaki", 0xF0E68C},
    {"lavender", 0xE6E6FA},
    {"lavenderblush", 0xFFF0F5},
    {"lawngreen", 0x7CFC00},
    {"lemonchiffon", 0xFFFACD},
    {"lightblue", 0xADD8E6},
    {"lightcoral", 0xF08080},
    {"lightcyan", 0xE0FFFF},
    {"lightgoldenrodyellow", 0xFAFAD2},
    {"lightgray", 0xD3D3D3},
    {"lightgreen", 0x90EE90},
    {"lightgrey", 0xD3D3D3},
    {"lightpink", 0xFFB6C1},
    {"lightsalmon", 0xFFA07A},
    {"lightseagreen", 0x20B2AA},
    {"lightskyblue", 0x87CEFA},
    {"lightslategray", 0x778899},
    {"lightslategrey", 0x778899},
    {"lightsteelblue", 0xB0C4DE},
    {"lightyellow", 0xFFFFE0},
    {"lime", 0x00FF00},
    {"limegreen", 0x32CD32},
    {"linen", 0xFAF0E6},
    {"magenta", 0xFF00FF},
    {"maroon", 0x800000},
    {"mediumaquamarine", 0x66CDAA},
    {"mediumblue", 0x0000CD},
    {"mediumorchid", 0xBA55D3},
    {"mediumpurple", 0x9370DB},
    {"mediumseagreen", 0x3CB371},
    {"mediumslateblue", 0x7B68EE},
    {"mediumspringgreen", 0x00FA9A},
    {"mediumturquoise", 0x48D1CC},
    {"mediumvioletred", 0xC71585},
    {"midnightblue", 0x191970},
    {"mintcream", 0xF5FFFA},
    {"mistyrose", 0xFFE4E1},
    {"moccasin", 0xFFE4B5},
    {"navajowhite", 0xFFDEAD},
    {"navy", 0x000080},
    {"oldlace", 0xFDF5E6},
    {"olive", 0x808000},
    {"olivedrab", 0x6B8E23},
    {"orange", 0xFFA500},
    {"orangered", 0xFF4500},
    {"orchid", 0xDA70D6},
    {"palegoldenrod", 0xEEE8AA},
    {"palegreen", 0x98FB98},
    {"paleturquoise", 0xAFEEEE},
    {"palevioletred", 0xDB7093},
    {"papayawhip", 0xFFEFD5},
    {"peachpuff", 0xFFDAB9},
    {"peru", 0xCD853F},
    {"pink", 0xFFC0CB},
    {"plum", 0xDDA0DD},
    {"powderblue", 0xB0E0E6},
    {"purple", 0x800080},
    {"rebeccapurple", 0x663399},
    {"red", 0xFF0000},
    {"rosybrown", 0xBC8F8F},
    {"royalblue", 0x4169E1},
    {"saddlebrown", 0x8B4513},
    {"salmon", 0xFA8072},
    {"sandybrown", 0xF4A460},
    {"seagreen", 0x2E8B57},
    {"seashell", 0xFFF5EE},
    {"sienna", 0xA0522D},
    {"silver", 0xC0C0C0},
    {"skyblue", 0x87CEEB},
    {"slateblue", 0x6A5ACD},
    {"slategray", 0x708090},
    {"slategrey", 0x708090},
    {"snow", 0xFFFAFA},
    {"springgreen", 0x00FF7F},
    {"steelblue", 0x4682B4},
    {"tan", 0xD2B48C},
    {"teal", 0x008080},
    {"thistle", 0xD8BFD8},
    {"tomato", 0xFF6347},
    {"turquoise", 0x40E0D0},
    {"violet", 0xEE82EE},
    {"wheat", 0xF5DEB3},
    {"white", 0xFFFFFF},
    {"whitesmoke", 0xF5F5F5},
    {"yellow", 0xFFFF00},
    {"yellowgreen", 0x9ACD32},
};
static_assert(std::ranges::is_sorted(namedColours, {}, &NamedColour::name));

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view space = " \t\r\n\f";
    const std::size_t begin = text.find_first_not_of(space);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(space) - begin + 1);
}

std::optional<std::uint32_t> hexColour(std::string_view digits) {
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (error != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
    if (digits.size() == 6) return value;
    if (digits.size() == 3) return ((value & 0xF00) << 8 | (value & 0xF0) << 4 | (value & 0xF)) * 0x11;
    return std::nullopt;
}

std::optional<std::uint32_t> channelsColour(std::string_view list) {
    std::uint32_t colour = 0;
    std::string text(list);
    const bool percent = text.find('%') != std::string::npos;
    std::ranges::replace(text, '%', ' ');
    std::ranges::replace(text, '/', ' ');
    const std::vector<double> channels = svgNumbers(text);
    if (channels.size() < 3) return std::nullopt;
    for (std::size_t i = 0; i < 3; ++i) {
        const double value = percent ? channels[i] * 2.55 : channels[i];
        colour = colour << 8 | static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0, 255.0)));
    }
    return colour;
}

}  // namespace

std::optional<std::uint32_t> svgColour(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('#')) return hexColour(text.substr(1));
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (lower.starts_with("rgb")) {
        const std::size_t open = lower.find('('), close = lower.find(')');
        if (open == std::string::npos || close == std::string::npos || close < open) return std::nullopt;
        return channelsColour(std::string_view(lower).substr(open + 1, close - open - 1));
    }
    const auto found = std::ranges::lower_bound(namedColours, std::string_view(lower), {}, &NamedColour::name);
    if (found == std::end(namedColours) || found->name != lower) return std::nullopt;
    return found->colour;
}

void SvgStyle::setFromStyleAttribute(std::string_view declarations) {
    while (!declarations.empty()) {
        const std::size_t end = std::min(declarations.find(';'), declarations.size());
        const std::string_view declaration = declarations.substr(0, end);
        const std::size_t colon = declaration.find(':');
        if (colon != std::string_view::npos)
            set(std::string(trimmed(declaration.substr(0, colon))), trimmed(declaration.substr(colon + 1)));
        declarations.remove_prefix(std::min(end + 1, declarations.size()));
    }
}

std::string_view SvgStyle::get(const std::string& name, std::string_view otherwise) const {
    const auto found = values_.find(name);
    return found == values_.end() ? otherwise : std::string_view(found->second);
}

double SvgStyle::number(const std::string& name, double otherwise) const { return svgLength(get(name), otherwise, 1); }

double svgLength(std::string_view text, double otherwise, double whole) {
    text = trimmed(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || !std::isfinite(value)) return otherwise;
    const std::string_view unit = text.substr(static_cast<std::size_t>(end - text.data()));
    struct Unit {
        std::string_view name;
        double pixels;
    };
    for (const Unit& known : {Unit{"%", whole / 100}, Unit{"pt", 96.0 / 72}, Unit{"pc", 16}, Unit{"mm", 96 / 25.4},
                              Unit{"cm", 96 / 2.54}, Unit{"in", 96}, Unit{"em", 16}, Unit{"ex", 8}})
        if (unit == known.name) return value * known.pixels;
    return value;
}

bool isInheritedProperty(std::string_view name) {
    constexpr std::array inherited{
        "fill",           "fill-opacity", "fill-rule",        "stroke",         "stroke-width",   "color",
        "stroke-opacity", "visibility",   "stroke-dasharray", "stroke-linecap", "stroke-linejoin"};
    return std::ranges::find(inherited, name) != inherited.end();
}

}  // namespace qel::author
