// PNG files, by libpng's simplified calls: these keep its errors to themselves and turn every kind of PNG into one.
#include "companion/picture.h"

#include <png.h>

namespace {

constexpr int pixelBytes = 3; // bytes of a pixel of a written picture

png_image NewImage()
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    return image;
}

} // namespace

bool EncodePng(const Picture& picture, std::string* bytes, std::string* fault)
{
    std::vector<uint8_t> rows;
    rows.reserve(picture.pixels.size() * pixelBytes);
    for (const uint32_t pixel : picture.pixels) {
        rows.push_back(static_cast<uint8_t>(pixel >> 16));
        rows.push_back(static_cast<uint8_t>(pixel >> 8));
        rows.push_back(static_cast<uint8_t>(pixel));
    }
    png_image image = NewImage();
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    bytes->resize(size);
    const bool written = png_image_write_to_memory(&image, bytes->data(), &size, 0, rows.data(), 0, nullptr) != 0;
    bytes->resize(written ? size : 0);
    *fault = image.message;
    png_image_free(&image);
    return written;
}

bool DecodeMask(const std::string& bytes, MaskSize first, MaskSize second, Mask* mask, std::string* fault)
{
    png_image image = NewImage();
    if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) {
        *fault = std::string("no PNG picture: ") + image.message;
        return false;
    }
    const auto hasSize = [&](const MaskSize& size) {
        return static_cast<int64_t>(image.width) == size.width && static_cast<int64_t>(image.height) == size.height;
    };
    const auto textOf = [](int64_t width, int64_t height) {
        return std::to_string(width) + " x " + std::to_string(height);
    };
    if (!hasSize(first) && !hasSize(second)) {
        *fault = "the mask has " + textOf(image.width, image.height) + " pixels; the map has " +
                 textOf(first.width, first.height) + " pixels and " + textOf(second.width, second.height) + " cells";
        png_image_free(&image);
        return false;
    }
    image.format = PNG_FORMAT_GA;
    image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB; // 16 bits mean the same shades as 8
    std::vector<uint8_t> pixels(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0) {
        *fault = std::string("a damaged PNG picture: ") + image.message;
        png_image_free(&image);
        return false;
    }
    mask->width = static_cast<int>(image.width);
    mask->height = static_cast<int>(image.height);
    mask->levels.clear();
    for (size_t i = 0; i + 1 < pixels.size(); i += 2) {
        mask->levels.push_back(static_cast<uint8_t>(pixels[i] * pixels[i + 1] / 255));
    }
    return true;
}
