// The embedded resources as the generators leave them: texts, menus, interface bitmap, cursors, icons and sounds.
#include "platform/kernel/resource_table.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

enum ResourceType { cursorType = 1, bitmapType = 2, iconType = 3, menuType = 4 };

std::map<uint32_t, std::string> Texts()
{
    std::map<uint32_t, std::string> texts;
    for (int i = 0; i < moduleStringCount; i++) {
        texts[moduleStrings[i].id] = moduleStrings[i].text;
    }
    return texts;
}

bool IsEnglish(uint32_t id)
{
    return id % 1000 < 500;
}

// A resource's bytes with reads that fail the test instead of running over the end.
struct Bytes {
    const uint8_t* data = nullptr;
    uint32_t size = 0;

    uint32_t Number(uint32_t offset, uint32_t width) const
    {
        uint32_t number = 0;
        EXPECT_LE(offset + width, size) << "read past the resource's end";
        for (uint32_t i = 0; i < width && offset + i < size; i++) {
            number |= static_cast<uint32_t>(data[offset + i]) << (8 * i);
        }
        return number;
    }
    std::string Text() const
    {
        return std::string(reinterpret_cast<const char*>(data), size);
    }
};

Bytes Find(int type, const std::string& name, int number)
{
    for (int i = 0; i < moduleResourceCount; i++) {
        const ModuleResource& resource = moduleResources[i];
        const bool typeMatches = type != 0 ? resource.typeName == nullptr && resource.typeNumber == type
                                           : resource.typeName != nullptr && std::string("WAVE") == resource.typeName;
        const bool nameMatches = name.empty() ? resource.name == nullptr && resource.number == number
                                              : resource.name != nullptr && name == resource.name;
        if (typeMatches && nameMatches) {
            return {resource.data, resource.size};
        }
    }
    ADD_FAILURE() << "no resource of type " << type << " named " << name << number;
    return {};
}

// ---- the interface bitmap ----

constexpr int width = 683, height = 595, stride = 684;
constexpr uint32_t tableOffset = 40, rowsOffset = tableOffset + 256 * 4;

constexpr uint32_t Rgb(uint32_t red, uint32_t green, uint32_t blue)
{
    return red << 16 | green << 8 | blue;
}
constexpr uint32_t black = Rgb(0, 0, 0), white = Rgb(255, 255, 255), olive = Rgb(89, 122, 25);

struct Area {
    int left, top, right, bottom;
};
constexpr Area boxes[] = {{344, 225, 362, 239}, {325, 225, 343, 239}, {344, 238, 362, 252}, {325, 238, 343, 252}};
constexpr Area tiles[] = {{54, 289, 64, 299}, {65, 289, 75, 299}, {76, 289, 86, 299}};
constexpr Area growBlock = {642, 558, 660, 594};

uint32_t ColourAt(const Bytes& bitmap, int h, int v)
{
    const uint32_t entry = bitmap.Number(rowsOffset + static_cast<uint32_t>((height - 1 - v) * stride + h), 1);
    return bitmap.Number(tableOffset + 4 * entry, 4);
}

std::vector<uint32_t> Pixels(const Bytes& bitmap, const Area& area)
{
    std::vector<uint32_t> pixels;
    for (int v = area.top; v < area.bottom; v++) {
        for (int h = area.left; h < area.right; h++) {
            pixels.push_back(ColourAt(bitmap, h, v));
        }
    }
    return pixels;
}

} // namespace

TEST(ResourceStrings, AreThereForEveryIdThatTheProgramReadsAndForNoOther)
{
    constexpr std::array<std::array<uint32_t, 2>, 21> ranges = {{
        {4017, 4017},   {4024, 4025},   {4027, 4029},   {4087, 4087},   {4100, 4100},   {4116, 4116},
        {4189, 4192},   {4197, 4197},   {6014, 6015},   {6044, 6044},   {8028, 8036},   {10039, 10039},
        {15018, 15018}, {15068, 15069}, {15117, 15133}, {15135, 15140}, {15142, 15149}, {15151, 15151},
        {15153, 15157}, {15160, 15170}, {15172, 15191},
    }};
    std::set<uint32_t> wanted, found;
    for (const auto& range : ranges) {
        for (uint32_t id = range[0]; id <= range[1]; id++) {
            wanted.insert({id, id + 500});
        }
    }
    for (const auto& [id, text] : Texts()) {
        found.insert(id);
    }
    EXPECT_EQ(found, wanted);
    for (int i = 1; i < moduleStringCount; i++) {
        EXPECT_LT(moduleStrings[i - 1].id, moduleStrings[i].id) << "the table is searched by halves";
    }
}

TEST(ResourceStrings, KeepTheirOddBlanksAndStops)
{
    const std::map<uint32_t, std::string> exact = {
        {4017, "Do you really want to quit? "},
        {4100, "UTM "},
        {4189, "Rough1"},
        {8031, "2. NO-GO for tracked & wheeled vehicles"},
        {10039, " Click on unit to repair. Touch a key or click on empty map to quit"},
        {15117, ": Map ID number (100 to 999)"},
        {15124, "Map width error.  Limits are 450 to 3100. Change width of map art file."},
        {15125, "Map height error. Limits are 220 to 3100. Change height of map art file."},
        {15130,
         "The file name for the background art for a Type 2 map must use this convention: 'Map' + 3 digit number "
         "+ 'c.bmp'."},
        {15132, "Example:  Map101c.bmp"},
        {15137,
         "Do you really want to permanently change the map data file?  This will replace the old '.dat'. file."},
        {15160, "Do you really want to set all woods or town cells to a movecost of Rough2 ?"},
        {15161,
         "Do you really want to remove all terrain features?All terrain features will be removed.Move costs will "
         "not be changed."},
        {15164, "Rough 1"},
        {6514, "Continuer"},
        {15518, "D\303\251faillance d'attribution de m\303\251moire."},
    };
    const auto texts = Texts();
    for (const auto& [id, text] : exact) {
        EXPECT_EQ(texts.count(id) ? texts.at(id) : "", text) << id;
    }
}

TEST(ResourceStrings, FitTheBuffersAndSingleByteFonts)
{
    for (const auto& [id, text] : Texts()) {
        EXPECT_FALSE(text.empty()) << id;
        EXPECT_LE(text.size(), 254u) << id;
        for (size_t i = 0; i < text.size(); i++) {
            const uint8_t byte = static_cast<uint8_t>(text[i]);
            if (byte == 0xC2 || byte == 0xC3) { // the lead bytes of U+0080 to U+00FF
                EXPECT_EQ(static_cast<uint8_t>(text[++i]) & 0xC0, 0x80) << id;
            } else {
                EXPECT_TRUE(byte >= 0x20 && byte < 0x7F) << id << " at " << i;
            }
        }
    }
}

TEST(ResourceStrings, DifferInFrenchAndKeepLeadingAndTrailingBlanks)
{
    const std::set<std::string> sameInBoth = {"UTM ", "OK"};
    const auto texts = Texts();
    for (const auto& [id, english] : texts) {
        if (!IsEnglish(id) || texts.count(id + 500) == 0) {
            continue;
        }
        const std::string& french = texts.at(id + 500);
        EXPECT_EQ(english == french, sameInBoth.count(english) == 1) << id;
        EXPECT_EQ(english.front() == ' ', french.front() == ' ') << id;
        EXPECT_EQ(english.back() == ' ', french.back() == ' ') << id;
        EXPECT_EQ(english.front() == ':', french.front() == ':') << id << ": follows a number in a dialog";
    }
}

TEST(ResourceMenus, HaveTheSameCommandsAndKeysInBothLanguages)
{
    struct Line {
        std::string command, text, key;
    };
    const auto parse = [](const std::string& menu) {
        std::vector<Line> lines;
        for (size_t start = 0, end; (end = menu.find('\n', start)) != std::string::npos; start = end + 1) {
            const std::string line = menu.substr(start, end - start);
            const size_t bar = std::min(line.find('|'), line.size());
            const std::string key = line.substr(bar);
            if (line.substr(0, 2) != "  ") {
                lines.push_back({"title", line, key});
            } else if (line == "  -") {
                lines.push_back({"-", "", key});
            } else {
                lines.push_back({line.substr(2, 3), line.substr(6, bar - 6), key});
            }
        }
        return lines;
    };
    const std::string bar = Find(menuType, "E_WKestrelMainMenu", 0).Text();
    const auto english = parse(bar), french = parse(Find(menuType, "F_WKestrelMainMenu", 0).Text());
    EXPECT_EQ(
        bar.rfind("File\n  101 New Map...|Ctrl+N\n  102 Open Map...|Ctrl+O\n  -\n  104 Save Map...|Ctrl+S\n", 0), 0u);
    EXPECT_NE(bar.find("\n  204 Map UTM Coordinates\n  205 Map ID Number\nView\n"), std::string::npos);
    EXPECT_NE(bar.find("\n  304 Terrain Analysis |F8\n  305 Terrain Under Cursor |F9\nHelp\n"), std::string::npos);
    ASSERT_EQ(english.size(), 22u);
    ASSERT_EQ(french.size(), english.size());
    for (size_t i = 0; i < english.size(); i++) {
        EXPECT_EQ(english[i].command, french[i].command);
        EXPECT_EQ(english[i].key, french[i].key);
        const bool sameInBoth = english[i].command == "-" || english[i].text == "Terrain...";
        EXPECT_EQ(english[i].text == french[i].text, sameInBoth) << english[i].text;
    }
}

TEST(InterfaceBitmap, HasItsSizeAndAPaletteWithEveryNamedColour)
{
    const Bytes bitmap = Find(bitmapType, "", 24965);
    ASSERT_EQ(bitmap.size, rowsOffset + static_cast<uint32_t>(stride) * height);
    EXPECT_EQ(bitmap.Number(0, 4), 40u);
    EXPECT_EQ(bitmap.Number(4, 4), static_cast<uint32_t>(width));
    EXPECT_EQ(bitmap.Number(8, 4), static_cast<uint32_t>(height));
    EXPECT_EQ(bitmap.Number(12, 2), 1u);
    EXPECT_EQ(bitmap.Number(14, 2), 8u);
    EXPECT_EQ(bitmap.Number(16, 4), 0u) << "not compressed";

    std::set<uint32_t> palette;
    for (uint32_t entry = 0; entry < 256; entry++) {
        palette.insert(bitmap.Number(tableOffset + 4 * entry, 4));
    }
    EXPECT_EQ(palette.size(), 256u) << "an entry is there twice";
    EXPECT_EQ(bitmap.Number(tableOffset, 4), black);
    EXPECT_EQ(bitmap.Number(tableOffset + 4 * 255, 4), white);
    for (const uint32_t grey : {17, 34, 51, 85, 102, 119, 128, 153, 170, 187, 192, 221, 238}) {
        EXPECT_EQ(palette.count(Rgb(grey, grey, grey)), 1u) << grey;
    }
    for (const uint32_t colour :
         {Rgb(255, 0, 0), Rgb(0, 255, 0), Rgb(0, 0, 255), Rgb(122, 0, 122), Rgb(255, 255, 204), Rgb(204, 154, 102),
          olive, Rgb(166, 202, 240), Rgb(102, 204, 102), Rgb(153, 0, 51), Rgb(154, 104, 52), Rgb(255, 255, 102)}) {
        EXPECT_EQ(palette.count(colour), 1u) << std::hex << colour;
    }
}

TEST(InterfaceBitmap, NoGoTilesAreThreeWhiteDigitsOnBlack)
{
    const Bytes bitmap = Find(bitmapType, "", 24965);
    std::set<std::vector<uint32_t>> different;
    for (const Area& tile : tiles) {
        int whites = 0;
        for (int v = tile.top; v < tile.bottom; v++) {
            for (int h = tile.left; h < tile.right; h++) {
                const uint32_t colour = ColourAt(bitmap, h, v);
                EXPECT_TRUE(colour == black || colour == white) << h << ", " << v;
                whites += colour == white;
                const bool border = h == tile.left || h == tile.right - 1 || v == tile.top || v == tile.bottom - 1;
                EXPECT_FALSE(border && colour == white) << "a digit touches the border at " << h << ", " << v;
                const bool thick = !border && colour == white && ColourAt(bitmap, h + 1, v) == white &&
                                   ColourAt(bitmap, h, v + 1) == white && ColourAt(bitmap, h + 1, v + 1) == white;
                EXPECT_FALSE(thick) << "a stroke is wider than a pixel at " << h << ", " << v;
            }
        }
        EXPECT_GE(whites, 10);
        different.insert(Pixels(bitmap, tile));
    }
    EXPECT_EQ(different.size(), 3u);
}

TEST(InterfaceBitmap, CheckBoxesStandOnOliveAndShowFourStates)
{
    const Bytes bitmap = Find(bitmapType, "", 24965);
    std::set<std::vector<uint32_t>> different;
    for (const Area& box : boxes) {
        different.insert(Pixels(bitmap, box));
        for (int h = box.left; h < box.right; h++) {
            EXPECT_EQ(ColourAt(bitmap, h, box.top), olive) << "the row that two images share must be background";
            EXPECT_EQ(ColourAt(bitmap, h, box.bottom - 1), olive);
        }
        for (int v = box.top; v < box.bottom; v++) {
            EXPECT_EQ(ColourAt(bitmap, box.left, v), olive);
            EXPECT_EQ(ColourAt(bitmap, box.right - 1, v), olive);
        }
    }
    EXPECT_EQ(different.size(), 4u);
    const auto off = Pixels(bitmap, boxes[0]), on = Pixels(bitmap, boxes[1]);
    int changed = 0;
    for (size_t i = 0; i < off.size(); i++) {
        changed += off[i] != on[i];
    }
    EXPECT_GE(changed, 30) << "on and off are hard to tell apart";
}

TEST(InterfaceBitmap, GrowBlockContinuesTheCornerBoxAndMarksTheClickArea)
{
    const Bytes bitmap = Find(bitmapType, "", 24965);
    constexpr int middle = growBlock.top + 18;
    for (const uint32_t colour : Pixels(bitmap, {growBlock.left, growBlock.top, growBlock.right, middle})) {
        EXPECT_EQ(colour, Rgb(187, 187, 187));
    }
    int dark = 0;
    for (int v = middle; v < growBlock.bottom; v++) {
        for (int h = growBlock.left; h < growBlock.right; h++) {
            const bool inClickArea = h >= growBlock.right - 16 && v >= growBlock.bottom - 16;
            const uint32_t colour = ColourAt(bitmap, h, v);
            EXPECT_TRUE(inClickArea || colour == Rgb(192, 192, 192)) << h << ", " << v;
            dark += (colour & 0xFF) <= 119;
        }
    }
    EXPECT_GE(dark, 16);
}

TEST(InterfaceBitmap, IsBlackOutsideItsPictures)
{
    const Bytes bitmap = Find(bitmapType, "", 24965);
    std::vector<Area> pictures(std::begin(boxes), std::end(boxes));
    pictures.insert(pictures.end(), std::begin(tiles), std::end(tiles));
    pictures.push_back(growBlock);
    int strays = 0;
    for (int v = 0; v < height; v++) {
        for (int h = 0; h < width; h++) {
            bool inside = false;
            for (const Area& area : pictures) {
                inside = inside || (h >= area.left && h < area.right && v >= area.top && v < area.bottom);
            }
            strays += !inside && ColourAt(bitmap, h, v) != black;
        }
    }
    EXPECT_EQ(strays, 0);
}

TEST(ResourceCursors, AreMonochromeWithTheirHotSpots)
{
    struct Expected {
        int number;
        uint32_t h, v;
    };
    for (const Expected& cursor : std::initializer_list<Expected>{
             {11775, 15, 15}, {11776, 15, 14}, {11777, 15, 14}, {11778, 15, 15}, {16403, 15, 10}}) {
        const Bytes file = Find(cursorType, "", cursor.number);
        EXPECT_EQ(file.Number(2, 2), 2u);
        EXPECT_EQ(file.Number(4, 2), 1u);
        EXPECT_EQ(file.Number(6, 1), 32u);
        EXPECT_EQ(file.Number(10, 2), cursor.h) << cursor.number;
        EXPECT_EQ(file.Number(12, 2), cursor.v) << cursor.number;
        const uint32_t image = file.Number(18, 4);
        EXPECT_EQ(image + file.Number(14, 4), file.size);
        EXPECT_EQ(file.Number(image + 8, 4), 64u) << "both masks";
        EXPECT_EQ(file.Number(image + 14, 2), 1u);
        bool blackPixels = false, whitePixels = false;
        const uint32_t colours = image + 48, screens = colours + 128;
        for (uint32_t byte = 0; byte < 128; byte++) {
            const uint32_t colour = file.Number(colours + byte, 1), screen = file.Number(screens + byte, 1);
            EXPECT_EQ(colour & screen, 0u) << "a pixel that inverts the screen in cursor " << cursor.number;
            whitePixels = whitePixels || colour != 0;
            blackPixels = blackPixels || (~colour & ~screen & 0xFF) != 0;
        }
        EXPECT_TRUE(blackPixels && whitePixels) << cursor.number << " vanishes on one of the two";
    }
}

TEST(ResourceIcons, HoldTheirSizesWithTransparentSurroundings)
{
    const auto check = [](int number, const std::vector<uint32_t>& sides) {
        const Bytes file = Find(iconType, "", number);
        ASSERT_EQ(file.Number(2, 2), 1u);
        ASSERT_EQ(file.Number(4, 2), sides.size());
        for (uint32_t i = 0; i < sides.size(); i++) {
            const uint32_t entry = 6 + 16 * i, side = sides[i], image = file.Number(entry + 12, 4);
            EXPECT_EQ(file.Number(entry, 1), side % 256);
            EXPECT_EQ(file.Number(entry + 6, 2), 32u);
            const uint32_t maskBytes = (side + 31) / 32 * 4 * side;
            EXPECT_EQ(file.Number(entry + 8, 4), 40 + 4 * side * side + maskBytes);
            ASSERT_LE(image + file.Number(entry + 8, 4), file.size);
            EXPECT_EQ(file.Number(image + 4, 4), side);
            uint32_t clear = 0, opaque = 0;
            for (uint32_t pixel = 0; pixel < side * side; pixel++) {
                const uint32_t opacity = file.Number(image + 40 + 4 * pixel, 4) >> 24;
                clear += opacity == 0;
                opaque += opacity == 255;
            }
            EXPECT_GT(clear, side * side / 8) << side;
            EXPECT_GT(opaque, side * side / 3) << side;
        }
    };
    check(128, {16, 32, 48, 128, 256});
    check(1, {16});
}

TEST(ResourceSounds, AreShortAudibleAndEndQuietly)
{
    const std::map<int, double> limits = {{128, 0.08}, {13071, 0.3}, {13616, 0.08},
                                          {3016, 0.3}, {18999, 0.3}, {22057, 0.3}};
    for (const auto& [number, limit] : limits) {
        const Bytes file = Find(0, "", number);
        ASSERT_GT(file.size, 44u) << number;
        EXPECT_EQ(file.Text().substr(0, 4) + file.Text().substr(8, 8), "RIFFWAVEfmt ");
        EXPECT_EQ(file.Number(4, 4) + 8, file.size);
        EXPECT_EQ(file.Number(20, 2), 1u);
        EXPECT_EQ(file.Number(22, 2), 1u);
        EXPECT_EQ(file.Number(24, 4), 22050u);
        EXPECT_EQ(file.Number(34, 2), 16u);
        const uint32_t length = file.Number(40, 4);
        ASSERT_EQ(length + 44, file.size);
        EXPECT_LT(length / 2 / 22050.0, limit) << number;
        int peak = 0, last = 0;
        for (uint32_t offset = 44; offset < file.size; offset += 2) {
            last = std::abs(static_cast<int16_t>(file.Number(offset, 2)));
            peak = std::max(peak, last);
        }
        EXPECT_GT(peak, 3000) << number;
        EXPECT_LT(peak, 32767) << number << " is cut off";
        EXPECT_LT(last, 300) << number << " ends with a crack";
    }
}
