#include "bench/scene_cairo.h"

#include <cairo.h>

namespace qel::bench {
namespace {

template <auto Free>
struct FreeBy {
    template <class T>
    void operator()(T* object) const {
        Free(object);
    }
};
using Surface = std::unique_ptr<cairo_surface_t, FreeBy<cairo_surface_destroy>>;
using Context = std::unique_ptr<cairo_t, FreeBy<cairo_destroy>>;
using Path = std::unique_ptr<cairo_path_t, FreeBy<cairo_path_destroy>>;
using Pattern = std::unique_ptr<cairo_pattern_t, FreeBy<cairo_pattern_destroy>>;

struct Shape {
    Path path;
    Pattern fill, stroke;
    double width = 0;
};

struct Colour {
    double red, green, blue, alpha;
};

Colour colourOf(std::uint16_t colour, std::uint8_t alpha) {
    return {(colour >> 11) / 31.0, (colour >> 5 & 63) / 63.0, (colour & 31) / 31.0, alpha / 255.0};
}

cairo_matrix_t matrixOf(const Matrix& m) {
    constexpr double one = fixedOne;
    return {m.a / one, m.b / one, m.c / one, m.d / one, static_cast<double>(m.tx), static_cast<double>(m.ty)};
}

Pattern solid(std::uint16_t colour, std::uint8_t alpha) {
    const Colour c = colourOf(colour, alpha);
    return Pattern(cairo_pattern_create_rgba(c.red, c.green, c.blue, c.alpha));
}

Pattern patternOf(const SceneFill& fill) {
    if (fill.kind == "solid") return solid(fill.colour, fill.alpha);
    Pattern pattern(fill.kind == "radial" ? cairo_pattern_create_radial(0, 0, 0, 0, 0, 255)
                                          : cairo_pattern_create_linear(-128, 0, 127, 0));
    for (const SceneStop& stop : fill.stops) {
        const Colour c = colourOf(stop.colour, stop.alpha);
        cairo_pattern_add_color_stop_rgba(pattern.get(), stop.ratio / 255.0, c.red, c.green, c.blue, c.alpha);
    }
    cairo_matrix_t matrix = matrixOf(fill.matrix);
    if (cairo_matrix_invert(&matrix) == CAIRO_STATUS_SUCCESS) cairo_pattern_set_matrix(pattern.get(), &matrix);
    cairo_pattern_set_filter(pattern.get(), CAIRO_FILTER_FAST);
    cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);
    return pattern;
}

Path pathOf(cairo_t* cairo, const std::vector<PathStep>& steps) {
    cairo_new_path(cairo);
    Point pen;
    for (const PathStep& step : steps) {
        const double x = step.end.x, y = step.end.y;
        if (step.letter == 'M') cairo_move_to(cairo, x, y);
        if (step.letter == 'L') cairo_line_to(cairo, x, y);
        if (step.letter == 'Q') {  // the same curve as a cubic
            const double cx = step.control.x, cy = step.control.y;
            cairo_curve_to(cairo, pen.x + (cx - pen.x) * 2 / 3, pen.y + (cy - pen.y) * 2 / 3, x + (cx - x) * 2 / 3,
                           y + (cy - y) * 2 / 3, x, y);
        }
        pen = step.end;
    }
    return Path(cairo_copy_path(cairo));
}

}  // namespace

struct CairoScene::Parts {
    const Scene scene;
    Surface surface;
    Context context;
    std::vector<Shape> shapes;
    Pattern background;
};

CairoScene::CairoScene(const Scene& scene) : parts_(new Parts{scene, {}, {}, {}, {}}) {
    parts_->surface.reset(cairo_image_surface_create(CAIRO_FORMAT_RGB16_565, scene.width, scene.height));
    parts_->context.reset(cairo_create(parts_->surface.get()));
    cairo_t* cairo = parts_->context.get();
    cairo_set_antialias(cairo, CAIRO_ANTIALIAS_NONE);
    cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_BUTT);
    parts_->background = solid(scene.background, 255);
    for (const SceneShape& from : scene.shapes) {
        Shape shape;
        shape.path = pathOf(cairo, from.path);
        if (from.fill) shape.fill = patternOf(*from.fill);
        if (from.stroke) {
            shape.stroke = solid(from.stroke->colour, from.stroke->alpha);
            shape.width = from.stroke->width;
        }
        parts_->shapes.push_back(std::move(shape));
    }
}

CairoScene::~CairoScene() = default;

void CairoScene::drawFrame() {
    cairo_t* cairo = parts_->context.get();
    cairo_identity_matrix(cairo);
    cairo_set_source(cairo, parts_->background.get());
    cairo_paint(cairo);
    for (const ScenePlacement& placement : parts_->scene.placements) {
        const Shape& shape = parts_->shapes[placement.shape];
        const cairo_matrix_t matrix = matrixOf(placement.matrix);
        cairo_set_matrix(cairo, &matrix);
        cairo_new_path(cairo);
        cairo_append_path(cairo, shape.path.get());
        if (shape.fill) {
            cairo_set_source(cairo, shape.fill.get());
            cairo_fill_preserve(cairo);
        }
        if (shape.stroke) {
            cairo_set_source(cairo, shape.stroke.get());
            cairo_set_line_width(cairo, shape.width);
            cairo_stroke(cairo);
        }
    }
    cairo_surface_flush(parts_->surface.get());
}

}  // namespace qel::bench
