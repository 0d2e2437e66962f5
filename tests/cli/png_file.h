// The colours of PNG files.
#pragma once

#include <png.h>

#include <string>
#include <vector>

#include "cli/picture.h"

namespace qel::test {

// Row by row; empty when there is no such picture of that size.
inline std::vector<cli::Rgb> readPng(const std::string& path, unsigned width, unsigned height) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()) || image.width != width || image.height != height) {
        png_image_free(&image);
        return {};
    }
    image.format = PNG_FORMAT_RGB;
    std::vector<cli::Rgb> pixels(std::size_t{width} * height);
    png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr);
    return pixels;
}

}  // namespace qel::test
