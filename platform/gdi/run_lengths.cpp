#include "platform/gdi/dib.h"

// Where the next pixel goes.
struct Cursor {
    const DibLayout* layout;
    uint8_t* indices;
    int64_t x;
    int64_t y; // from the bottom
};

namespace {

void PutPixel(Cursor* cursor, uint8_t index)
{
    int64_t x = cursor->x++;
    if (x < cursor->layout->width && cursor->y < cursor->layout->height) {
        cursor->indices[cursor->y * cursor->layout->width + x] = index;
    }
}

} // namespace

void UnpackRunLengths(const DibLayout& layout, const uint8_t* stream, size_t size, uint8_t* indices)
{
    const bool nibbles = layout.bits == 4;
    const uint8_t* end = stream + size;
    Cursor cursor = {&layout, indices, 0, 0};
    // A row that lies above the picture cannot be left again.
    while (end - stream >= 2 && cursor.y < layout.height) {
        const int count = stream[0];
        const uint8_t value = stream[1];
        stream += 2;
        if (count > 0) {
            for (int index = 0; index < count; ++index) {
                PutPixel(&cursor, !nibbles ? value : index % 2 == 0 ? value >> 4 : value & 15);
            }
        } else if (value == 0) { // end of the row
            cursor.x = 0;
            ++cursor.y;
        } else if (value == 1) { // end of the picture
            return;
        } else if (value == 2) { // move right and up
            if (end - stream < 2) {
                return;
            }
            cursor.x += stream[0];
            cursor.y += stream[1];
            stream += 2;
        } else { // so many pixels as they are, padded to whole words
            const ptrdiff_t available = end - stream;
            const ptrdiff_t bytes = nibbles ? (value + 1) / 2 : value;
            for (int index = 0; index < value; ++index) {
                const ptrdiff_t position = nibbles ? index / 2 : index;
                if (position >= available) {
                    return;
                }
                const uint8_t byte = stream[position];
                PutPixel(&cursor, !nibbles ? byte : index % 2 == 0 ? byte >> 4 : byte & 15);
            }
            stream += std::min(available, (bytes + 1) / 2 * 2);
        }
    }
}
