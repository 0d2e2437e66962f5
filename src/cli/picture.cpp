#include "cli/picture.h"

#include <png.h>

#include <algorithm>
#include <fstream>

namespace qel::cli {

Picture copyFrame(const FrameRecord& frame) {
    Picture picture{.width = frame.width, .height = frame.height, .pixels = {}};
    picture.pixels.reserve(std::size_t{frame.width} * frame.height);
    for (std::uint32_t row = 0; row < frame.height; ++row) {
        const std::uint16_t* const begin = frame.pixels + std::size_t{row} * (frame.pitch / 2);
        picture.pixels.insert(picture.pixels.end(), begin, begin + frame.width);
    }
    return picture;
}

std::vector<std::uint8_t> littleEndianBytes(const Picture& picture) {
    std::vector<std::uint8_t> bytes(picture.pixels.size() * 2);
    for (std::size_t at = 0; at < picture.pixels.size(); ++at) {
        bytes[2 * at] = static_cast<std::uint8_t>(picture.pixels[at] & 0xFF);
        bytes[2 * at + 1] = static_cast<std::uint8_t>(picture.pixels[at] >> 8);
    }
    return bytes;
}

bool writePng(const std::string& path, const Picture& picture) {
    if (picture.pixels.empty()) return false;  // the format has no picture without pixels
    std::vector<Rgb> colours(picture.pixels.size());
    std::ranges::transform(picture.pixels, colours.begin(), rgbFrom565);
    static_assert(sizeof(Rgb) == 3, "the library reads the channels as bytes in a row");
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = picture.width;
    image.height = picture.height;
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, path.c_str(), 0, colours.data(), 0, nullptr) != 0;
}

bool writeRaw(const std::string& path, const Picture& picture) {
    const std::vector<std::uint8_t> bytes = littleEndianBytes(picture);
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    return file.good();
}

}  // namespace qel::cli
