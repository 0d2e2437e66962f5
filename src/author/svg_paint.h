// Colours and styles of SVG pictures.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "author/svg_transform.h"

namespace qel::author {

// "#rgb", "#rrggbb", "rgb(…)" or a name, as 0xRRGGBB; nothing for what is none of these.
std::optional<std::uint32_t> svgColour(std::string_view text);

// The properties that an element says or inherits, by name. An attribute counts less than the same in `style`.
class SvgStyle {
  public:
    void set(const std::string& name, std::string_view value) { values_[name] = value; }
    void setFromStyleAttribute(std::string_view declarations);

    template <class Act>
    void forEach(Act act) const {
        for (const auto& [name, value] : values_) act(name, std::string_view(value));
    }

    std::string_view get(const std::string& name, std::string_view otherwise = "") const;
    double number(const std::string& name, double otherwise) const;  // without its unit

  private:
    std::map<std::string, std::string> values_;
};

// A number with or without a unit, in pixels; a percentage of `whole`.
double svgLength(std::string_view text, double otherwise, double whole = 100);

// The properties that elements hand down to those inside them.
bool isInheritedProperty(std::string_view name);

}  // namespace qel::author
