// Draws scenes with Cairo, a widely used software renderer, set up for the same work: RGB565, no anti-aliasing,
// even-odd fills, the nearest pixel of a bitmap. The measure beside our own drawing, taken in the same run.
#pragma once

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "scene_file.h"

namespace qel::bench {

class SceneCairo {
  public:
    // Paths and patterns are made here, once. The scene and its bitmaps must outlive this. Throws std::runtime_error.
    SceneCairo(const Scene& scene, const std::vector<SceneBitmap>& bitmaps);

    void drawFrame(std::size_t index);  // of scene.frames

    std::vector<std::uint16_t> picture() const;  // RGB565, rows without gaps

  private:
    template <auto destroy>
    struct Destroy {
        template <class T>
        void operator()(T* object) const {
            destroy(object);
        }
    };
    using Surface = std::unique_ptr<cairo_surface_t, Destroy<cairo_surface_destroy>>;
    using Context = std::unique_ptr<cairo_t, Destroy<cairo_destroy>>;
    using Path = std::unique_ptr<cairo_path_t, Destroy<cairo_path_destroy>>;
    using Pattern = std::unique_ptr<cairo_pattern_t, Destroy<cairo_pattern_destroy>>;
    struct Shape {
        Path path;
        Pattern fill, stroke;
        double strokeWidth = 0;
    };

    Path makePath(const std::vector<PathStep>& steps);
    Pattern makeFill(const SceneFill& fill);
    void drawShape(const Shape& shape);
    static Surface bitmapSurface(const SceneBitmap& bitmap, std::uint8_t alpha);

    const Scene& scene_;
    const std::vector<SceneBitmap>& bitmaps_;
    Surface surface_;
    Context context_;
    Pattern background_;
    std::vector<Shape> shapes_;
};

}  // namespace qel::bench
