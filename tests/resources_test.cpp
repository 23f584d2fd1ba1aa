// The embedded resources as the generators leave them: texts, menus, interface bitmap, cursors, icons and sounds.
#include "platform/kernel/resource_table.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
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

} // namespace

TEST(ResourceStrings, FitTheBuffersAndSingleByteFontsAndDifferInFrench)
{
    const auto texts = Texts();
    EXPECT_EQ(texts.size(), static_cast<size_t>(moduleStringCount)) << "an ID is there twice";
    for (const auto& [id, text] : texts) {
        EXPECT_TRUE(!text.empty() && text.size() <= 254u) << id;
        for (size_t i = 0; i < text.size(); i++) {
            const uint8_t byte = static_cast<uint8_t>(text[i]);
            if (byte == 0xC2 || byte == 0xC3) { // the lead bytes of U+0080 to U+00FF
                EXPECT_EQ(static_cast<uint8_t>(text[++i]) & 0xC0, 0x80) << id;
            } else {
                EXPECT_TRUE(byte >= 0x20 && byte < 0x7F) << id << " at " << i;
            }
        }
        if (id % 1000 < 500) {
            const std::string& french = texts.at(id + 500);
            EXPECT_EQ(text == french, text == "UTM " || text == "OK") << id;
            EXPECT_EQ(text.front() == ' ', french.front() == ' ') << id;
            EXPECT_EQ(text.back() == ' ', french.back() == ' ') << id;
            EXPECT_EQ(text.front() == ':', french.front() == ':') << id << ": follows a number in a dialog";
        }
    }
    EXPECT_EQ(texts.at(4189), "Rough1") << "in the read-out";
    EXPECT_EQ(texts.at(15164), "Rough 1") << "and in the palette";
    EXPECT_EQ(texts.at(8031), "2. NO-GO for tracked & wheeled vehicles");
    EXPECT_EQ(texts.at(15518), "D\303\251faillance d'attribution de m\303\251moire.");
}

TEST(ResourceMenus, HaveTextsOfTheirOwnInFrench)
{
    const std::string bar = Find(menuType, "E_WKestrelMainMenu", 0).Text();
    EXPECT_EQ(bar.rfind("File\n  101 New Map...|Ctrl+N\n  102 Open Map...|Ctrl+O\n  -\n  104 Save Map...|", 0), 0u);
    EXPECT_NE(bar.find("\n  304 Terrain Analysis |F8\n"), std::string::npos);
    std::istringstream english(bar), french(Find(menuType, "F_WKestrelMainMenu", 0).Text());
    for (std::string line, other; std::getline(english, line);) {
        std::getline(french, other);
        EXPECT_EQ(line == other, line == "  -" || line == "  201 Terrain...|Ctrl+T") << line;
    }
    EXPECT_EQ(french.peek(), EOF) << "as many lines in French";
}

TEST(InterfaceBitmap, HasItsSizeAndAPaletteWithEveryNamedColour)
{
    constexpr uint32_t width = 683, stride = 684, height = 595, tableOffset = 40;
    const Bytes bitmap = Find(bitmapType, "", 24965);
    ASSERT_EQ(bitmap.size, tableOffset + 256 * 4 + stride * height);
    EXPECT_TRUE(bitmap.Number(4, 4) == width && bitmap.Number(8, 4) == height);
    std::vector<uint32_t> palette;
    for (uint32_t entry = 0; entry < 256; entry++) {
        palette.push_back(bitmap.Number(tableOffset + 4 * entry, 4));
    }
    EXPECT_TRUE(palette.front() == 0 && palette.back() == 0xFFFFFF);
    std::sort(palette.begin(), palette.end());
    EXPECT_EQ(std::adjacent_find(palette.begin(), palette.end()), palette.end()) << "an entry is there twice";
    for (const uint32_t colour :
         {0x111111, 0x222222, 0x333333, 0x555555, 0x666666, 0x777777, 0x808080, 0x999999, 0xAAAAAA,
          0xBBBBBB, 0xC0C0C0, 0xDDDDDD, 0xEEEEEE, 0xFF0000, 0x00FF00, 0x0000FF, 0x7A007A, 0xFFFFCC,
          0xCC9A66, 0x597A19, 0xA6CAF0, 0x66CC66, 0x990033, 0x9A6834, 0xFFFF66}) {
        EXPECT_TRUE(std::binary_search(palette.begin(), palette.end(), colour)) << std::hex << colour;
    }
}

// Playing blocks, so sounds are short: a press under 80 milliseconds, an alert under 300.
TEST(ResourceSounds, AreShortPlainWaves)
{
    for (const int number : {128, 13071, 13616, 3016, 18999, 22057}) {
        const Bytes file = Find(0, "", number);
        ASSERT_GT(file.size, 44u) << number;
        EXPECT_EQ(file.Text().substr(0, 4) + file.Text().substr(8, 8), "RIFFWAVEfmt ");
        EXPECT_EQ(file.Number(20, 4), 1u << 16 | 1) << "one channel, not compressed";
        EXPECT_TRUE(file.Number(24, 4) == 22050 && file.Number(34, 2) == 16);
        EXPECT_LT(file.Number(40, 4) / 2 / 22050.0, number == 128 || number == 13616 ? 0.08 : 0.3) << number;
    }
}
