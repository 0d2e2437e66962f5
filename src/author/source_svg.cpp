#include "author/source_svg.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>

#include "author/svg_document.h"

namespace qel::author {
namespace {

// Values that stand where the picture was named, so that complaints name it.
class Values {
  public:
    explicit Values(const SourceValue& where) : where_(where) {}

    SourceValue text(std::string content) const {
        SourceValue value = of(SourceValue::Kind::text);
        value.text = std::move(content);
        return value;
    }
    SourceValue number(double content) const {
        SourceValue value = of(SourceValue::Kind::number);
        value.number = content;
        return value;
    }
    SourceValue list(std::vector<SourceValue> items = {}) const {
        SourceValue value = of(SourceValue::Kind::list);
        value.items = std::move(items);
        return value;
    }
    SourceValue object(std::vector<SourceMember> members = {}) const {
        SourceValue value = of(SourceValue::Kind::object);
        value.members = std::move(members);
        return value;
    }

  private:
    SourceValue of(SourceValue::Kind kind) const {
        SourceValue value;
        value.kind = kind;
        value.line = where_.line;
        value.field = where_.field;
        return value;
    }

    const SourceValue& where_;
};

std::uint8_t byteOf(double share) { return static_cast<std::uint8_t>(std::lround(std::clamp(share, 0.0, 1.0) * 255)); }

std::string colourText(std::uint32_t colour, double alpha) {
    char text[16];
    std::snprintf(text, sizeof text, "#%06x%02x", static_cast<unsigned>(colour & 0xFFFFFF), unsigned{byteOf(alpha)});
    return text;
}

// The characters that a picture becomes.
class PictureExpander {
  public:
    PictureExpander(const std::string& name, const SourceValue& where, std::vector<SourceMember>& added)
        : name_(name), values_(where), added_(added) {}

    // The character in the picture's place.
    std::vector<SourceMember> expand(const SvgPicture& picture) {
        for (const SvgElement& element : picture.elements) takeElement(element);
        closeShape();
        if (shapes_.empty()) return {{"shape", values_.list()}};
        if (shapes_.size() == 1) return {{"shape", std::move(shapes_.front())}};
        return {{"sprite", values_.list({stackOfShapes()})}};
    }

    bool wasTooLarge() const { return tooLarge_; }

  private:
    static constexpr std::size_t mostShapes = 255;

    // Within a shape all fills lie below all lines, and a translucent fill hides what it lies on. Where the picture is
    // to look otherwise, another shape begins.
    void takeElement(const SvgElement& element) {
        const bool translucent = element.fill && isTranslucent(*element.fill);
        if (element.fill && (hasLine_ || hasTranslucentFill_ || (translucent && !paths_.empty()))) closeShape();
        std::vector<SourceMember> path{{"path", values_.text(pathText(element.paths))}};
        if (element.fill) path.push_back({"fill", values_.text(fillName(*element.fill))});
        if (element.stroke) path.push_back({"line", values_.text(lineName(*element.stroke))});
        paths_.push_back(values_.object(std::move(path)));
        hasLine_ |= element.stroke.has_value();
        hasTranslucentFill_ |= translucent;
    }

    static bool isTranslucent(const SvgPaint& paint) {
        if (byteOf(paint.alpha) != 255) return true;
        return paint.gradient && std::any_of(paint.gradient->stops.begin(), paint.gradient->stops.end(),
                                             [](const SvgStop& stop) { return byteOf(stop.alpha) != 255; });
    }

    void closeShape() {
        hasLine_ = hasTranslucentFill_ = false;
        if (paths_.empty()) return;
        if (shapes_.size() < mostShapes) {
            shapes_.push_back(values_.list(std::move(paths_)));
        } else {  // a timeline holds no more objects
            for (SourceValue& path : paths_) shapes_.back().items.push_back(std::move(path));
        }
        paths_.clear();
    }

    // One frame that places the shapes above each other and stops there.
    SourceValue stackOfShapes() {
        SourceValue place = values_.object();
        for (std::size_t i = 0; i < shapes_.size(); ++i) {
            const std::string layer = "layer " + std::to_string(i + 1), character = name_ + " " + layer;
            added_.push_back({character, values_.object({{"shape", std::move(shapes_[i])}})});
            place.members.push_back({layer, values_.object({{"character", values_.text(character)}})});
        }
        return values_.object({{"place", std::move(place)}, {"actions", values_.text("Stop")}});
    }

    int coordinate(double value) {
        using Limits = std::numeric_limits<std::int16_t>;
        // Curves are written relative to the pen, in 16 bits as well: half the range leaves room for that.
        constexpr double least = Limits::min() / 2, most = Limits::max() / 2;
        if (!(value >= least && value <= most)) tooLarge_ = true;
        return static_cast<int>(std::lround(std::isnan(value) ? 0 : std::clamp(value, least, most)));
    }

    std::string pointText(SvgPoint point) {
        return std::to_string(coordinate(point.x)) + " " + std::to_string(coordinate(point.y));
    }

    std::string pathText(const std::vector<SvgSubPath>& paths) {
        std::string text;
        for (const SvgSubPath& path : paths) {
            if (path.steps.empty()) continue;
            std::string pen = pointText(path.start);
            text += "M" + pen;
            for (const SvgStep& step : path.steps) {
                const std::string to = pointText(step.to);
                if (step.curve)
                    text += "Q" + pointText(step.control) + " " + to;
                else if (to != pen)  // what rounding has made into nothing is left out
                    text += "L" + to;
                pen = to;
            }
            if (path.closed) text += "Z";
        }
        return text;
    }

    std::string fillName(const SvgPaint& paint) {
        if (!paint.gradient) return colourText(paint.colour, paint.alpha);
        const SvgGradient& gradient = *paint.gradient;
        std::vector<SourceValue> stops;
        for (const SvgStop& stop : gradient.stops)
            stops.push_back(values_.list({values_.number(std::round(stop.offset * 255)),
                                          values_.text(colourText(stop.colour, stop.alpha * paint.alpha))}));
        if (stops.size() > 255) stops.resize(255);
        const std::string name = name_ + " gradient " + std::to_string(++gradients_);
        added_.push_back({name, values_.object({{"gradient", values_.text(gradient.radial ? "radial" : "linear")},
                                                {"stops", values_.list(std::move(stops))},
                                                {"matrix", matrixOf(gradient)}})});
        return name;
    }

    // From the plane of the format, which runs from -128 to 128 or has the radius 256, to the picture.
    SourceValue matrixOf(const SvgGradient& gradient) {
        const SvgTransform& p = gradient.plane;
        const double k = 1.0 / 256, middle = gradient.radial ? 0 : 0.5;
        const auto bounded = [](double value) { return std::clamp(value, -8000.0, 8000.0); };
        std::vector<SourceValue> fields;
        for (const double field : {p.a * k, p.b * k, p.c * k, p.d * k})
            fields.push_back(values_.number(bounded(field)));
        const SvgPoint origin{p.e + p.a * middle, p.f + p.b * middle};
        fields.push_back(values_.number(coordinate(origin.x)));
        fields.push_back(values_.number(coordinate(origin.y)));
        return values_.list(std::move(fields));
    }

    std::string lineName(const SvgStroke& stroke) {
        constexpr double widest = 63;
        const long width = std::lround(std::clamp(stroke.width, 1.0, widest));
        const std::string colour = colourText(stroke.colour, stroke.alpha);
        const std::string name = name_ + " line " + colour + " " + std::to_string(width);
        if (lines_.insert(name).second)
            added_.push_back({name, values_.object({{"line", values_.text(colour)},
                                                    {"width", values_.number(static_cast<double>(width))}})});
        return name;
    }

    std::string name_;
    Values values_;
    std::vector<SourceMember>& added_;
    std::vector<SourceValue> shapes_, paths_;
    std::set<std::string> lines_;
    int gradients_ = 0;
    bool hasLine_ = false, hasTranslucentFill_ = false, tooLarge_ = false;
};

SvgSize sizeOf(const SourceValue& character) {
    SvgSize size;
    const SourceValue *scale = character.find("scale"), *fit = character.find("fit");
    if (scale && fit) fail(*fit, "\"scale\" and \"fit\" do not go together");
    if (scale) size.scale = numberOf(*scale);
    if (!(size.scale > 0)) fail(*scale, "a picture's scale is above 0");
    if (fit) {
        const auto& sides = listOf(*fit);
        if (sides.size() != 2) fail(*fit, "a box is [width, height] in pixels");
        size.fit = SvgPoint{static_cast<double>(integerOf(sides[0], 1, 4096)),
                            static_cast<double>(integerOf(sides[1], 1, 4096))};
    }
    return size;
}

SvgPicture pictureOf(const SourceValue& character, const SourceValue& file, const ReadSourceFile& readFile) {
    const Bytes bytes = fileOf(file, readFile);
    try {
        return readSvg({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, sizeOf(character));
    } catch (const SvgError& error) {
        fail(file, error.what());
    }
}

}  // namespace

void expandPictures(SourceValue& root, const ReadSourceFile& readFile, std::vector<std::string>& warnings) {
    const auto characters = std::ranges::find(root.members, std::string_view("characters"), &SourceMember::name);
    if (characters == root.members.end()) return;
    std::vector<SourceMember> added;
    for (auto& [name, value] : characters->value.members) {
        const SourceValue* file = value.find("svg");
        if (!file) continue;
        allowOnly(value, {"svg", "scale", "fit", "identifier"});
        const SvgPicture picture = pictureOf(value, *file, readFile);
        PictureExpander expander(name, value, added);
        std::vector<SourceMember> made = expander.expand(picture);
        for (const auto& [what, count] : picture.leftOut)
            warnings.push_back(file->text + ": left out: " + what +
                               (count > 1 ? " (" + std::to_string(count) + ")" : std::string()));
        if (expander.wasTooLarge()) warnings.push_back(file->text + ": what lies beyond 16383 pixels is drawn nearer");
        if (const SourceValue* identifier = value.find("identifier")) made.push_back({"identifier", *identifier});
        value.members = std::move(made);
    }
    for (SourceMember& member : added) {
        if (characters->value.find(member.name))
            fail(member.value, "this picture needs the name \"" + member.name + "\" for a part of it");
        characters->value.members.push_back(std::move(member));
    }
}

std::string sourceShowing(std::string_view svg, const std::string& fileName, double scale) {
    using Json = nlohmann::json;
    const SvgPicture picture = readSvg(svg, {.scale = scale, .fit = {}});
    constexpr double mostPixels = 4096;
    const auto side = [mostPixels](double length) {
        return std::to_string(static_cast<int>(std::ceil(std::clamp(length, 1.0, mostPixels))));
    };
    char scaleText[32];
    std::snprintf(scaleText, sizeof scaleText, "%.9g", scale);
    return R"({ "stage": [)" + side(picture.width) + ", " + side(picture.height) +
           R"(], "background": "#ffffff", "characters": { "picture": { "svg": )" +
           Json(fileName).dump(-1, ' ', false, Json::error_handler_t::replace) + R"(, "scale": )" + scaleText +
           R"( } }, "frames": [ { "place": { "picture": { "character": "picture" } } } ] })";
}

}  // namespace qel::author
