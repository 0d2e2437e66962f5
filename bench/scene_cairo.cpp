#include "scene_cairo.h"

#include <cstring>
#include <span>
#include <stdexcept>

namespace qel::bench {
namespace {

struct Channels {
    double red = 0, green = 0, blue = 0;
};

Channels channelsOf(std::uint16_t colour) {
    const std::uint32_t wide = colour24(colour);
    return {(wide >> 16) / 255.0, (wide >> 8 & 0xFF) / 255.0, (wide & 0xFF) / 255.0};
}

cairo_matrix_t matrixOf(const Matrix& m) {
    constexpr double one = fixedOne;
    cairo_matrix_t matrix;
    cairo_matrix_init(&matrix, m.a / one, m.b / one, m.c / one, m.d / one, m.tx, m.ty);
    return matrix;
}

cairo_pattern_t* solidPattern(std::uint16_t colour, std::uint8_t alpha) {
    const Channels c = channelsOf(colour);
    return cairo_pattern_create_rgba(c.red, c.green, c.blue, alpha / 255.0);
}

cairo_pattern_t* gradientPattern(const SceneFill& fill) {
    cairo_pattern_t* pattern = fill.kind == SceneFill::Kind::linear ? cairo_pattern_create_linear(-128, 0, 128, 0)
                                                                    : cairo_pattern_create_radial(0, 0, 0, 0, 0, 256);
    for (const SceneStop& stop : fill.stops) {
        const Channels c = channelsOf(stop.colour);
        cairo_pattern_add_color_stop_rgba(pattern, stop.ratio / 255.0, c.red, c.green, c.blue, stop.alpha / 255.0);
    }
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
    return pattern;
}

// A pixel with its alpha, the colour multiplied by it: 0xAARRGGBB.
std::uint32_t premultiplied(std::uint16_t colour, std::uint32_t alpha) {
    const std::uint32_t wide = colour24(colour);
    const auto channel = [&](unsigned shift) { return ((wide >> shift & 0xFF) * alpha + 127) / 255 << shift; };
    return alpha << 24 | channel(16) | channel(8) | channel(0);
}

std::span<std::uint8_t> rowOf(cairo_surface_t* surface, int y) {
    const int stride = cairo_image_surface_get_stride(surface);
    return {cairo_image_surface_get_data(surface) + static_cast<std::ptrdiff_t>(stride) * y,
            static_cast<std::size_t>(stride)};
}

}  // namespace

SceneCairo::SceneCairo(const Scene& scene, const std::vector<SceneBitmap>& bitmaps)
    : scene_(scene),
      bitmaps_(bitmaps),
      surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB16_565, scene.width, scene.height)),
      context_(cairo_create(surface_.get())),
      background_(solidPattern(scene.background, 255)) {
    cairo_set_antialias(context_.get(), CAIRO_ANTIALIAS_NONE);
    cairo_set_fill_rule(context_.get(), CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_line_cap(context_.get(), CAIRO_LINE_CAP_BUTT);
    cairo_set_line_join(context_.get(), CAIRO_LINE_JOIN_BEVEL);
    for (const SceneShape& from : scene.shapes) {
        Shape& shape = shapes_.emplace_back();
        shape.path = makePath(from.path);
        if (from.fill) shape.fill = makeFill(*from.fill);
        if (!from.stroke) continue;
        shape.stroke.reset(solidPattern(from.stroke->colour, from.stroke->alpha));
        shape.strokeWidth = from.stroke->width;
    }
    if (cairo_status(context_.get()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error(cairo_status_to_string(cairo_status(context_.get())));
}

// Cairo knows cubic curves only: their controls lie at two thirds of the way to the quadratic one's.
SceneCairo::Path SceneCairo::makePath(const std::vector<PathStep>& steps) {
    cairo_t* const cr = context_.get();
    cairo_new_path(cr);
    Point pen;
    for (const PathStep& step : steps) {
        const auto towards = [&](int from, int control) { return from + (control - from) * 2.0 / 3.0; };
        switch (step.kind) {
            case PathStep::Kind::move: cairo_move_to(cr, step.to.x, step.to.y); break;
            case PathStep::Kind::line: cairo_line_to(cr, step.to.x, step.to.y); break;
            case PathStep::Kind::curve:
                cairo_curve_to(cr, towards(pen.x, step.control.x), towards(pen.y, step.control.y),
                               towards(step.to.x, step.control.x), towards(step.to.y, step.control.y), step.to.x,
                               step.to.y);
                break;
        }
        pen = step.to;
    }
    return Path(cairo_copy_path(cr));
}

// A bitmap's alpha is in its pixels, because a source has none of its own.
SceneCairo::Surface SceneCairo::bitmapSurface(const SceneBitmap& bitmap, std::uint8_t alpha) {
    const bool opaque = bitmap.alpha.empty() && alpha == 255;
    Surface surface(
        cairo_image_surface_create(opaque ? CAIRO_FORMAT_RGB16_565 : CAIRO_FORMAT_ARGB32, bitmap.width, bitmap.height));
    cairo_surface_flush(surface.get());
    const auto width = static_cast<std::size_t>(bitmap.width);
    for (int y = 0; y < bitmap.height; ++y) {
        const std::size_t row = static_cast<std::size_t>(y) * width;
        std::uint8_t* const to = rowOf(surface.get(), y).data();
        if (opaque) {
            std::memcpy(to, &bitmap.pixels[row], width * sizeof(std::uint16_t));
            continue;
        }
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint32_t own = bitmap.alpha.empty() ? 255 : bitmap.alpha[row + x];
            const std::uint32_t pixel = premultiplied(bitmap.pixels[row + x], own * alpha / 255);
            std::memcpy(to + x * sizeof pixel, &pixel, sizeof pixel);
        }
    }
    cairo_surface_mark_dirty(surface.get());
    return surface;
}

SceneCairo::Pattern SceneCairo::makeFill(const SceneFill& fill) {
    Pattern pattern;
    switch (fill.kind) {
        case SceneFill::Kind::solid: return Pattern(solidPattern(fill.colour, fill.alpha));
        case SceneFill::Kind::linear:
        case SceneFill::Kind::radial: pattern.reset(gradientPattern(fill)); break;
        case SceneFill::Kind::bitmap:
            pattern.reset(cairo_pattern_create_for_surface(bitmapSurface(bitmaps_.at(fill.bitmap), fill.alpha).get()));
            cairo_pattern_set_extend(pattern.get(), fill.repeated ? CAIRO_EXTEND_REPEAT : CAIRO_EXTEND_NONE);
            break;
    }
    cairo_pattern_set_filter(pattern.get(), CAIRO_FILTER_FAST);
    cairo_matrix_t toFill = matrixOf(fill.matrix);
    if (cairo_matrix_invert(&toFill) != CAIRO_STATUS_SUCCESS) throw std::runtime_error("a fill has no size");
    cairo_pattern_set_matrix(pattern.get(), &toFill);
    return pattern;
}

void SceneCairo::drawShape(const Shape& shape) {
    cairo_t* const cr = context_.get();
    cairo_new_path(cr);
    cairo_append_path(cr, shape.path.get());
    if (shape.fill) {
        cairo_set_source(cr, shape.fill.get());
        cairo_fill_preserve(cr);
    }
    if (shape.stroke) {
        cairo_set_source(cr, shape.stroke.get());
        cairo_set_line_width(cr, shape.strokeWidth);
        cairo_stroke(cr);
    }
}

void SceneCairo::drawFrame(std::size_t index) {
    cairo_t* const cr = context_.get();
    cairo_identity_matrix(cr);
    cairo_set_source(cr, background_.get());
    cairo_paint(cr);
    for (const ScenePlacement& placement : scene_.frames.at(index)) {
        const cairo_matrix_t matrix = matrixOf(placement.matrix);
        cairo_set_matrix(cr, &matrix);
        drawShape(shapes_[placement.shape]);
    }
    cairo_surface_flush(surface_.get());
}

std::vector<std::uint16_t> SceneCairo::picture() const {
    const auto width = static_cast<std::size_t>(scene_.width);
    std::vector<std::uint16_t> pixels(width * static_cast<std::size_t>(scene_.height));
    for (int y = 0; y < scene_.height; ++y)
        std::memcpy(&pixels[static_cast<std::size_t>(y) * width], rowOf(surface_.get(), y).data(),
                    width * sizeof(std::uint16_t));
    return pixels;
}

}  // namespace qel::bench
