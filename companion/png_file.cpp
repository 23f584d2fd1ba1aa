// PNG files. Pictures are written row by row; masks are read by libpng's simplified calls, which turn every kind of
// PNG into one.
#include "companion/picture.h"

#include <csetjmp>
#include <new>
#include <png.h>

// ---- writing ----

namespace {

constexpr size_t pixelBytes = 3; // red, green, blue

struct PngWriter {
    std::string* bytes;
    std::string* fault;
    std::vector<uint8_t> row;
};

void OnError(png_structp png, png_const_charp message)
{
    *static_cast<PngWriter*>(png_get_error_ptr(png))->fault = message;
    png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

void AppendBytes(png_structp png, png_bytep bytes, size_t count)
{
    const auto* writer = static_cast<PngWriter*>(png_get_io_ptr(png));
    bool isThere = true;
    try {
        writer->bytes->append(reinterpret_cast<const char*>(bytes), count);
    } catch (const std::bad_alloc&) {
        isThere = false; // no exception may cross libpng
    }
    if (!isThere) {
        png_error(png, "there is not enough memory");
    }
}

void WriteRow(png_structp png, PngWriter* writer, const uint32_t* pixels)
{
    uint8_t* next = writer->row.data();
    for (size_t i = 0; i < writer->row.size() / pixelBytes; i++, next += pixelBytes) {
        next[0] = static_cast<uint8_t>(pixels[i] >> 16);
        next[1] = static_cast<uint8_t>(pixels[i] >> 8);
        next[2] = static_cast<uint8_t>(pixels[i]);
    }
    png_write_row(png, writer->row.data());
}

// Errors of libpng come back to here; nothing in this function needs a destructor.
bool WriteRows(png_structp png, png_infop info, const Picture& picture, PngWriter* writer)
{
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    png_set_write_fn(png, writer, AppendBytes, nullptr);
    png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width), static_cast<png_uint_32>(picture.height), 8,
                 PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (int y = 0; y < picture.height; y++) {
        WriteRow(png, writer, picture.pixels.get() + static_cast<size_t>(y) * static_cast<size_t>(picture.width));
    }
    png_write_end(png, info);
    return true;
}

} // namespace

bool EncodePng(const Picture& picture, std::string* bytes, std::string* fault)
{
    PngWriter writer = {bytes, fault, std::vector<uint8_t>(static_cast<size_t>(picture.width) * pixelBytes)};
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &writer, OnError, OnWarning);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    *fault = "there is not enough memory";
    bytes->clear();
    const bool isWritten = info != nullptr && WriteRows(png, info, picture, &writer);
    png_destroy_write_struct(&png, &info);
    return isWritten;
}

// ---- reading ----

bool DecodeMask(const std::string& bytes, MaskSize first, MaskSize second, Mask* mask, std::string* fault)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
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
