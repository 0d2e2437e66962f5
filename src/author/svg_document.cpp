#include "author/svg_document.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <pugixml.hpp>

#include "author/svg_paint.h"

namespace qel::author {
namespace {

using pugi::xml_node;

std::string_view attribute(const xml_node& node, const char* name) { return node.attribute(name).as_string(); }

double lengthAttribute(const xml_node& node, const char* name, double otherwise = 0, double whole = 100) {
    return svgLength(attribute(node, name), otherwise, whole);
}

// The element that "#id" names, in `href` or `url(…)`.
std::string idOf(std::string_view reference) {
    const std::size_t hash = reference.find('#');
    if (hash == std::string_view::npos) return {};
    return std::string(reference.substr(hash + 1, reference.find_first_of("\"') ", hash) - hash - 1));
}

std::string_view hrefOf(const xml_node& node) {
    const std::string_view plain = attribute(node, "href");
    return plain.empty() ? attribute(node, "xlink:href") : plain;
}

// What an element draws with, and where.
struct Surroundings {
    SvgTransform transform;
    SvgStyle style;
    double opacity = 1;
};

// A gradient element, with what it takes over from those that it refers to.
struct GradientSource {
    std::map<std::string, std::string> attributes;
    std::vector<SvgStop> stops;
    bool radial = false;
};

class PictureReader {
  public:
    SvgPicture read(std::string_view text, const SvgSize& size) {
        const pugi::xml_parse_result parsed = document_.load_buffer(text.data(), text.size());
        if (!parsed) throw SvgError(std::string("no XML: ") + parsed.description());
        const xml_node root = document_.child("svg");
        if (!root) throw SvgError("no picture: there is no <svg> element");
        noteIds(root);
        Surroundings around;
        around.transform = placePicture(root, size);
        takeChildren(root, styled(root, around), 0);
        return std::move(picture_);
    }

  private:
    static constexpr int deepest = 64;
    static constexpr std::size_t mostElements = 100'000;

    void leaveOut(const std::string& what) { ++picture_.leftOut[what]; }

    // Without recursion: a file may nest as deep as it likes.
    void noteIds(const xml_node& root) {
        for (xml_node node = root; node;) {
            if (const auto id = node.attribute("id")) ids_.insert({id.as_string(), node});
            if (node.first_child()) {
                node = node.first_child();
                continue;
            }
            while (node && node != root && !node.next_sibling()) node = node.parent();
            if (!node || node == root) return;
            node = node.next_sibling();
        }
    }

    xml_node find(const std::string& id) const {
        const auto found = ids_.find(id);
        return found == ids_.end() ? xml_node() : found->second;
    }

    SvgTransform placePicture(const xml_node& root, const SvgSize& size) {
        std::vector<double> box = svgNumbers(attribute(root, "viewBox"));
        constexpr double usualWidth = 300, usualHeight = 150;
        const bool hasBox = box.size() == 4 && box[2] > 0 && box[3] > 0;
        const double ownWidth = lengthAttribute(root, "width", hasBox ? box[2] : usualWidth, hasBox ? box[2] : 100);
        const double ownHeight = lengthAttribute(root, "height", hasBox ? box[3] : usualHeight, hasBox ? box[3] : 100);
        if (!hasBox) box = {0, 0, ownWidth, ownHeight};
        if (!(ownWidth > 0) || !(ownHeight > 0)) throw SvgError("the picture has no size");
        double scale = size.scale;
        if (size.fit) scale = std::min(size.fit->x / ownWidth, size.fit->y / ownHeight);
        picture_.width = ownWidth * scale;
        picture_.height = ownHeight * scale;
        const double toBox = std::min(picture_.width / box[2], picture_.height / box[3]);
        const double x = (picture_.width - box[2] * toBox) / 2, y = (picture_.height - box[3] * toBox) / 2;
        return {toBox, 0, 0, toBox, x - box[0] * toBox, y - box[1] * toBox};
    }

    // What holds inside an element: its own properties over those that it inherits.
    static Surroundings styled(const xml_node& node, const Surroundings& around) {
        Surroundings inside = around;
        SvgStyle own;
        for (const pugi::xml_attribute& each : node.attributes())
            if (isInheritedProperty(each.name())) {
                inside.style.set(each.name(), each.as_string());
            }
        own.setFromStyleAttribute(attribute(node, "style"));
        own.forEach([&](const std::string& name, std::string_view value) {
            if (isInheritedProperty(name)) inside.style.set(name, value);
        });
        const double opacity = svgLength(own.get("opacity", attribute(node, "opacity")), 1, 1);
        inside.opacity = around.opacity * std::clamp(opacity, 0.0, 1.0);
        inside.transform = around.transform * parseSvgTransform(attribute(node, "transform"));
        return inside;
    }

    static bool isHidden(const xml_node& node, const Surroundings& inside) {
        SvgStyle own;
        own.setFromStyleAttribute(attribute(node, "style"));
        return own.get("display", attribute(node, "display")) == "none" || inside.style.get("visibility") == "hidden";
    }

    void takeChildren(const xml_node& parent, const Surroundings& around, int depth) {
        if (depth > deepest) return leaveOut("elements nested deeper than 64");
        for (const xml_node& node : parent.children())
            if (node.type() == pugi::node_element) takeElement(node, around, depth);
    }

    void takeElement(const xml_node& node, const Surroundings& around, int depth) {
        if (++elements_ > mostElements) throw SvgError("more than 100000 elements");
        const std::string_view name = node.name();
        constexpr std::array silent{"title",          "desc", "metadata", "defs",  "linearGradient",
                                    "radialGradient", "stop", "symbol",   "script"};
        if (std::ranges::find(silent, name) != silent.end() || name.find(':') != std::string_view::npos) return;
        const Surroundings inside = styled(node, around);
        noteProperties(node);
        if (name == "g" || name == "a" || name == "svg" || name == "switch") {
            if (!isHidden(node, inside)) takeChildren(node, inside, depth + 1);
            return;
        }
        if (name == "use") return takeUse(node, inside, depth);
        if (name == "style") return leaveOut("style sheets");
        if (name == "clipPath" || name == "mask" || name == "filter" || name == "pattern" || name == "marker") return;
        if (isHidden(node, inside)) return;
        if (!takeShape(node, name, inside)) leaveOut("<" + std::string(name) + "> elements");
    }

    // Properties that change the picture and that nothing here carries out.
    void noteProperties(const xml_node& node) {
        SvgStyle own;
        own.setFromStyleAttribute(attribute(node, "style"));
        struct Row {
            const char *property, *nothing, *what;
        };
        for (const Row& row :
             {Row{"clip-path", "none", "clip paths"}, Row{"mask", "none", "masks"}, Row{"filter", "none", "filters"},
              Row{"stroke-dasharray", "none", "dashed lines"}, Row{"stroke-linecap", "butt", "line caps"},
              Row{"stroke-linejoin", "miter", "line joins"}, Row{"marker-start", "none", "markers"},
              Row{"marker-end", "none", "markers"}}) {
            const std::string_view value = own.get(row.property, attribute(node, row.property));
            if (!value.empty() && value != row.nothing) leaveOut(row.what);
        }
    }

    void takeUse(const xml_node& node, Surroundings inside, int depth) {
        const xml_node target = find(idOf(hrefOf(node)));
        if (!target) return leaveOut("<use> of elements that are not there");
        if (isHidden(node, inside)) return;
        inside.transform =
            inside.transform * SvgTransform{1, 0, 0, 1, lengthAttribute(node, "x"), lengthAttribute(node, "y")};
        if (depth >= deepest) return leaveOut("elements nested deeper than 64");
        if (std::string_view(target.name()) != "symbol") return takeElement(target, inside, depth + 1);
        if (target.attribute("viewBox")) leaveOut("view boxes of symbols");
        takeChildren(target, styled(target, inside), depth + 1);
    }

    static bool drawOutline(const xml_node& node, std::string_view name, SvgOutline& outline, bool& whole) {
        const auto length = [&](const char* attributeName) { return lengthAttribute(node, attributeName); };
        if (name == "path") {
            whole = drawSvgPath(outline, attribute(node, "d"));
        } else if (name == "rect") {
            const double rx = lengthAttribute(node, "rx", lengthAttribute(node, "ry"));
            const double ry = lengthAttribute(node, "ry", rx);
            drawSvgRectangle(outline, {length("x"), length("y"), length("width"), length("height")}, rx, ry);
        } else if (name == "circle") {
            drawSvgEllipse(outline, {length("cx"), length("cy")}, length("r"), length("r"));
        } else if (name == "ellipse") {
            drawSvgEllipse(outline, {length("cx"), length("cy")}, length("rx"), length("ry"));
        } else if (name == "line") {
            outline.moveTo({length("x1"), length("y1")});
            outline.lineTo({length("x2"), length("y2")});
        } else if (name == "polyline" || name == "polygon") {
            const std::vector<double> numbers = svgNumbers(attribute(node, "points"));
            for (std::size_t i = 0; i + 1 < numbers.size(); i += 2) {
                const SvgPoint point{numbers[i], numbers[i + 1]};
                if (i == 0)
                    outline.moveTo(point);
                else
                    outline.lineTo(point);
            }
            if (name == "polygon") outline.close();
        } else {
            return false;
        }
        return true;
    }

    bool takeShape(const xml_node& node, std::string_view name, const Surroundings& inside) {
        bool whole = true;
        SvgOutline outline(inside.transform);
        if (!drawOutline(node, name, outline, whole)) return false;
        if (!whole) leaveOut("broken path data");
        SvgElement element;
        element.paths = outline.take();
        element.fill = fillOf(node, name, inside);
        element.stroke = strokeOf(inside);
        if (element.fill && inside.style.get("fill-rule", "nonzero") == "nonzero" && overlapsItself(element.paths))
            leaveOut("overlaps of a path with itself (they become holes)");
        if (element.fill || element.stroke) picture_.elements.push_back(std::move(element));
        return true;
    }

    std::optional<std::uint32_t> colourOf(const SvgStyle& style, std::string_view text) {
        if (text == "currentColor") text = style.get("color", "black");
        const std::optional<std::uint32_t> colour = svgColour(text);
        if (!colour) leaveOut("paints that are not known");
        return colour;
    }

    std::optional<SvgPaint> fillOf(const xml_node& node, std::string_view name, const Surroundings& inside) {
        const std::string_view text = inside.style.get("fill", "black");
        if (text == "none" || text == "transparent" || name == "line") return std::nullopt;
        SvgPaint paint;
        paint.alpha = inside.opacity * std::clamp(inside.style.number("fill-opacity", 1), 0.0, 1.0);
        if (!text.starts_with("url(")) {
            const auto colour = colourOf(inside.style, text);
            if (colour) paint.colour = *colour;
            return colour ? std::optional(paint) : std::nullopt;
        }
        const xml_node target = find(idOf(text));
        const std::string_view kind = target.name();
        if (kind == "linearGradient" || kind == "radialGradient") {
            bool whole = true;
            SvgOutline plain{SvgTransform{}};
            drawOutline(node, name, plain, whole);
            paint.gradient = gradientOf(target, inside.transform, boundsOf(plain.take()));
            if (paint.gradient) return paint;
            return std::nullopt;
        }
        leaveOut(kind == "pattern" ? "patterns" : "paints that are not known");
        return std::nullopt;
    }

    std::optional<SvgStroke> strokeOf(const Surroundings& inside) {
        const std::string_view text = inside.style.get("stroke", "none");
        if (text == "none" || text == "transparent") return std::nullopt;
        SvgStroke stroke;
        stroke.alpha = inside.opacity * std::clamp(inside.style.number("stroke-opacity", 1), 0.0, 1.0);
        stroke.width = inside.style.number("stroke-width", 1) * inside.transform.scale();
        if (!(stroke.width > 0)) return std::nullopt;
        if (text.starts_with("url(")) {
            leaveOut("lines with gradients or patterns");
            const GradientSource source = gradientSource(find(idOf(text)));
            if (source.stops.empty()) return std::nullopt;
            stroke.colour = source.stops.front().colour;
            return stroke;
        }
        const auto colour = colourOf(inside.style, text);
        if (!colour) return std::nullopt;
        stroke.colour = *colour;
        return stroke;
    }

    SvgStop stopOf(const xml_node& node) {
        SvgStyle style;
        for (const char* name : {"stop-color", "stop-opacity", "color"})
            if (const auto value = node.attribute(name)) style.set(name, value.as_string());
        style.setFromStyleAttribute(attribute(node, "style"));
        SvgStop stop;
        stop.offset = std::clamp(svgLength(attribute(node, "offset"), 0, 1), 0.0, 1.0);
        stop.colour = colourOf(style, style.get("stop-color", "black")).value_or(0);
        stop.alpha = std::clamp(style.number("stop-opacity", 1), 0.0, 1.0);
        return stop;
    }

    GradientSource gradientSource(xml_node node) {
        GradientSource source;
        source.radial = std::string_view(node.name()) == "radialGradient";
        for (int hops = 0; node && hops < deepest; ++hops) {
            for (const pugi::xml_attribute& each : node.attributes())
                source.attributes.insert({each.name(), each.as_string()});
            if (source.stops.empty())
                for (const xml_node& stop : node.children("stop")) source.stops.push_back(stopOf(stop));
            node = find(idOf(hrefOf(node)));
        }
        for (std::size_t i = 1; i < source.stops.size(); ++i)
            source.stops[i].offset = std::max(source.stops[i].offset, source.stops[i - 1].offset);
        return source;
    }

    std::optional<SvgGradient> gradientOf(const xml_node& node, const SvgTransform& transform, const SvgBox& box) {
        const GradientSource source = gradientSource(node);
        if (source.stops.empty()) return std::nullopt;
        const auto text = [&](const char* name) {
            const auto found = source.attributes.find(name);
            return found == source.attributes.end() ? std::string_view() : std::string_view(found->second);
        };
        const bool inBox = text("gradientUnits") != "userSpaceOnUse";
        const auto length = [&](const char* name, double otherwise) {
            return svgLength(text(name), otherwise, inBox ? 1 : 100);
        };
        if (!text("spreadMethod").empty() && text("spreadMethod") != "pad") leaveOut("gradients that repeat");
        if (source.radial && (!text("fx").empty() || !text("fy").empty())) leaveOut("focal points of gradients");
        SvgTransform toUser = parseSvgTransform(text("gradientTransform"));
        if (inBox) toUser = SvgTransform{box.width, 0, 0, box.height, box.x, box.y} * toUser;
        SvgTransform plane;
        if (source.radial) {
            const double r = length("r", inBox ? 0.5 : 50);
            plane = {r, 0, 0, r, length("cx", inBox ? 0.5 : 50), length("cy", inBox ? 0.5 : 50)};
        } else {
            const double x = length("x1", 0), y = length("y1", 0);
            const double dx = length("x2", inBox ? 1 : 100) - x, dy = length("y2", 0) - y;
            plane = {dx, dy, -dy, dx, x, y};
        }
        return SvgGradient{.radial = source.radial, .plane = transform * toUser * plane, .stops = source.stops};
    }

    pugi::xml_document document_;
    std::map<std::string, xml_node> ids_;
    SvgPicture picture_;
    std::size_t elements_ = 0;
};

}  // namespace

SvgPicture readSvg(std::string_view text, const SvgSize& size) { return PictureReader().read(text, size); }

}  // namespace qel::author
