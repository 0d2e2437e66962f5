#include "author/source_path.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace qel::author {
namespace {

class PathParser {
  public:
    explicit PathParser(std::string_view text) : text_(text) {}

    std::vector<SubPath> parse() {
        skipSpace();
        while (at_ < text_.size()) takeCommand();
        return std::move(paths_);
    }

  private:
    void skipSpace() {
        while (at_ < text_.size() && (std::isspace(static_cast<unsigned char>(text_[at_])) || text_[at_] == ',')) ++at_;
    }

    bool numberFollows() {
        skipSpace();
        return at_ < text_.size() && (std::isdigit(static_cast<unsigned char>(text_[at_])) ||
                                      std::string_view("+-.").find(text_[at_]) != std::string_view::npos);
    }

    int coordinate(int base) {
        if (!numberFollows()) throw PathError("a coordinate is missing at character " + std::to_string(at_ + 1));
        if (text_[at_] == '+') ++at_;
        int value = 0;
        const auto [end, error] = std::from_chars(text_.data() + at_, text_.data() + text_.size(), value);
        const auto next = static_cast<std::size_t>(end - text_.data());
        if (error == std::errc{} && next < text_.size() &&
            (text_[next] == '.' || text_[next] == 'e' || text_[next] == 'E'))
            throw PathError("coordinates are whole pixels; round \"" + std::string(text_.substr(at_, next - at_ + 2)) +
                            "...\"");
        using Limits = std::numeric_limits<std::int16_t>;
        if (error != std::errc{} || value < -65535 || value > 65535 || value + base < Limits::min() ||
            value + base > Limits::max())
            throw PathError("a coordinate at character " + std::to_string(at_ + 1) +
                            " is no whole number from -32768 to 32767");
        at_ = next;
        return value + base;
    }

    Point point(bool relative) {
        const int x = coordinate(relative ? pen_.x : 0);
        const int y = coordinate(relative ? pen_.y : 0);
        return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y)};
    }

    SubPath& current() {
        if (paths_.empty()) throw PathError("a path begins with M");
        if (paths_.back().closed) paths_.push_back({.start = pen_, .steps = {}});
        return paths_.back();
    }

    void lineTo(Point to) {
        current().steps.push_back({to, {}});
        pen_ = to;
    }

    void curveTo(Point control, Point to) {
        current().steps.push_back({to, control});
        pen_ = to;
        lastControl_ = control;
    }

    // The control of a smooth curve mirrors the one before.
    Point mirroredControl() const {
        if (!lastControl_) return pen_;
        const auto mirrored = [](int pen, int control) {
            using Limits = std::numeric_limits<std::int16_t>;
            return static_cast<std::int16_t>(std::clamp<int>(2 * pen - control, Limits::min(), Limits::max()));
        };
        return {mirrored(pen_.x, lastControl_->x), mirrored(pen_.y, lastControl_->y)};
    }

    void close() {
        SubPath& path = current();
        if (path.end() != path.start) path.steps.push_back({path.start, {}});
        path.closed = true;
        pen_ = path.start;
    }

    void takeCommand() {
        const char letter = text_[at_++];
        const bool relative = std::islower(static_cast<unsigned char>(letter)) != 0;
        const char command = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
        if (command == 'A') throw PathError("arcs are not supported; approximate them with Q");
        if (command == 'C' || command == 'S')
            throw PathError("cubic curves are not supported; approximate them with Q");
        if (std::string_view("MLHVQTZ").find(command) == std::string_view::npos)
            throw PathError("\"" + std::string(1, letter) + "\" is no path command; use M L H V Q T Z");
        if (command == 'Z') {
            close();
            lastControl_.reset();
            skipSpace();
            return;
        }
        bool first = true;
        do {
            takeSegment(first || command != 'M' ? command : 'L', relative);
            first = false;
        } while (numberFollows());
    }

    void takeSegment(char command, bool relative) {
        const std::optional<Point> controlBefore = lastControl_;
        if (command != 'T') lastControl_.reset();
        switch (command) {
            case 'M':
                pen_ = point(relative);
                paths_.push_back({.start = pen_, .steps = {}});
                break;
            case 'L': lineTo(point(relative)); break;
            case 'H': lineTo({static_cast<std::int16_t>(coordinate(relative ? pen_.x : 0)), pen_.y}); break;
            case 'V': lineTo({pen_.x, static_cast<std::int16_t>(coordinate(relative ? pen_.y : 0))}); break;
            case 'Q': {
                const Point control = point(relative);
                curveTo(control, point(relative));
                break;
            }
            default: {
                lastControl_ = controlBefore;
                const Point control = mirroredControl();
                curveTo(control, point(relative));
                break;
            }
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::vector<SubPath> paths_;
    Point pen_;
    std::optional<Point> lastControl_;  // of the curve before
};

Point difference(Point to, Point from) {
    const int dx = to.x - from.x, dy = to.y - from.y;
    using Limits = std::numeric_limits<std::int16_t>;
    if (std::min(dx, dy) < Limits::min() || std::max(dx, dy) > Limits::max())
        throw PathError("a curve reaches too far");
    return {static_cast<std::int16_t>(dx), static_cast<std::int16_t>(dy)};
}

void growAround(Rect& box, Point point) {
    box.xMin = std::min(box.xMin, point.x);
    box.yMin = std::min(box.yMin, point.y);
    box.xMax = std::max(box.xMax, point.x);
    box.yMax = std::max(box.yMax, point.y);
}

}  // namespace

std::vector<SubPath> parsePath(std::string_view text) { return PathParser(text).parse(); }

void drawPath(Outline& outline, const std::vector<SubPath>& subPaths, std::uint16_t line, std::uint16_t fill,
              Rect& box) {
    const Outline::Styles styles{.line = line, .fill0 = fill, .fill1 = noCharacter};
    outline.style(styles);
    for (const SubPath& path : subPaths) {
        if (path.steps.empty()) continue;
        outline.moveTo(path.start);
        growAround(box, path.start);
        Point pen = path.start;
        for (const PathStep& step : path.steps) {
            if (step.control) {
                outline.curveBy(difference(*step.control, pen), difference(step.to, *step.control));
                growAround(box, *step.control);
            } else {
                outline.lineTo(step.to);
            }
            growAround(box, step.to);
            pen = step.to;
        }
        if (fill == noCharacter || pen == path.start) continue;
        const bool hasLine = line != noCharacter;
        if (hasLine) outline.style({.line = noCharacter, .fill0 = {}, .fill1 = {}});
        outline.lineTo(path.start);
        if (hasLine) outline.style({.line = line, .fill0 = {}, .fill1 = {}});
    }
}

std::size_t countSegments(const std::vector<SubPath>& subPaths, std::uint16_t fill) {
    std::size_t count = 0;
    for (const SubPath& path : subPaths)
        count += path.steps.size() + (fill != noCharacter && path.end() != path.start ? 1 : 0);
    return count;
}

}  // namespace qel::author
