#include "tests/editor_session.h"

#include "platform/kernel/system_calls.h"
#include "platform/kernel/test_hooks.h"
#include "platform/user/platform_reset.h"
#include "toolbox/resources.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

namespace {

constexpr int settleTime = 60;

void Put16(std::string* bytes, int value)
{
    bytes->push_back(static_cast<char>(value & 0xFF));
    bytes->push_back(static_cast<char>(value >> 8 & 0xFF));
}

void Put32(std::string* bytes, int value)
{
    Put16(bytes, value & 0xFFFF);
    Put16(bytes, value >> 16 & 0xFFFF);
}

std::string MakeArt(int width, int height)
{
    const int stride = (width * 3 + 3) / 4 * 4;
    std::string bytes = "BM";
    Put32(&bytes, 54 + stride * height);
    Put32(&bytes, 0);
    Put32(&bytes, 54);
    Put32(&bytes, 40);
    Put32(&bytes, width);
    Put32(&bytes, height);
    Put16(&bytes, 1);
    Put16(&bytes, 24);
    Put32(&bytes, 0);
    Put32(&bytes, stride * height);
    bytes.append(16, '\0');
    bytes.reserve(static_cast<size_t>(54 + stride * height));
    for (int v = height - 1; v >= 0; v--) {
        for (int h = 0; h < width; h++) {
            const uint32_t colour = ArtColour(h, v);
            bytes.push_back(static_cast<char>(colour & 0xFF));
            bytes.push_back(static_cast<char>(colour >> 8 & 0xFF));
            bytes.push_back(static_cast<char>(colour >> 16 & 0xFF));
        }
        bytes.append(static_cast<size_t>(stride - width * 3), '\0');
    }
    return bytes;
}

} // namespace

// ---- files ----

MapFile::MapFile(int id, int width, int height) : words{}
{
    words[idWord] = static_cast<int16_t>(id);
    words[columnsWord] = static_cast<int16_t>(CellCountOf(width));
    words[rowsWord] = static_cast<int16_t>(CellCountOf(height));
    words[rightWord] = static_cast<int16_t>(width);
    words[bottomWord] = static_cast<int16_t>(height);
    words[markerFieldWord] = 1;
    words[versionWord] = 100;
    cells.resize(static_cast<size_t>(words[columnsWord]) * static_cast<size_t>(words[rowsWord]));
}

uint16_t& MapFile::Cell(int x, int y)
{
    return cells.at(static_cast<size_t>(y * words[columnsWord] + x));
}

std::string MapFile::Bytes() const
{
    std::string bytes;
    for (const int word : words) {
        Put16(&bytes, word);
    }
    bytes += text + '\0';
    for (const int cell : cells) {
        Put16(&bytes, cell);
    }
    return bytes;
}

std::string ArtBytes(int width, int height)
{
    static std::map<std::pair<int, int>, std::string> made;
    std::string& art = made[{width, height}];
    if (art.empty()) {
        art = MakeArt(width, height);
    }
    return art;
}

uint32_t ArtColour(int h, int v)
{
    const int blue = (h >> 8) << 4 | v >> 8;
    return static_cast<uint32_t>((h & 255) << 16 | (v & 255) << 8 | blue);
}

std::string EditorSession::Path(const std::string& name) const
{
    return folder + "/" + name;
}

void EditorSession::Write(const std::string& name, const std::string& bytes) const
{
    std::ofstream file(Path(name), std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(file.good()) << name;
}

std::string EditorSession::Read(const std::string& name) const
{
    std::ifstream file(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool EditorSession::Exists(const std::string& name) const
{
    return std::filesystem::exists(Path(name));
}

std::vector<std::string> EditorSession::Files() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

void EditorSession::WriteMap(const MapFile& map) const
{
    const std::string name = "Map" + std::to_string(map.words[idWord]) + "c.";
    Write(name + "dat", map.Bytes());
    Write(name + "bmp", ArtBytes(map.words[rightWord], map.words[bottomWord]));
}

// ---- session ----

void EditorSession::SetUp()
{
    startFolder = std::filesystem::current_path();
    std::string pattern = std::filesystem::temp_directory_path() / "kestrel-session-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = pattern;
    std::filesystem::current_path(folder);
    HeadlessReset();
    host = &headlessHost;
    host->start();
}

void EditorSession::TearDown()
{
    systemCalls = RealSystemCalls();
    std::filesystem::current_path(startFolder);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
    std::filesystem::remove_all(folder);
    PlatformReset();
    SetPort(nullptr);
    host->stop();
}

void EditorSession::OpenMap(const std::string& name)
{
    ScriptFile(name[0] == '/' ? name.c_str() : Path(name).c_str());
    ScriptMenu(102);
    ScriptWait(settleTime);
}

void EditorSession::OpenWith(const std::function<void(MapFile*)>& fill, int width, int height)
{
    MapFile map(101, width, height);
    if (fill) {
        fill(&map);
    }
    WriteMap(map);
    OpenMap();
}

void EditorSession::Run(int status)
{
    const int blocks = GlobalBlocksInUse();
    char noArguments[] = "";
    EXPECT_EQ(WinMain(GetModuleHandleA(nullptr), nullptr, noArguments, SW_SHOWNORMAL), status);
    EXPECT_EQ(HeadlessStepsLeft(), 0) << "steps that no loop took: the program ended too early";
    EXPECT_EQ(GlobalBlocksInUse(), blocks) << "blocks that were never freed";
    EXPECT_TRUE(headless.windows.empty());
    PlatformReset();
}

// ---- steps ----

void ThenCheck(std::function<void()> check)
{
    ScriptCall(std::move(check), settleTime);
}

void ClickButton(const std::string& text)
{
    ScriptWait(settleTime);
    ScriptButton(text);
}

void ExpectMessage(const std::string& text, const std::string& button)
{
    ThenCheck([=] { EXPECT_EQ(TextsOf(TopDialog()), text); });
    ClickButton(button);
}

void Quit()
{
    ThenCheck([] {
        EXPECT_EQ(TopDialog(), nullptr) << "a dialog is open: " << TextsOf(TopDialog());
        ScriptControl('q');
        ClickButton(currentMap.mapModified ? "No Save" : "Yes");
    });
}

void PressKeyWith(int modifierKey, const std::function<void()>& steps)
{
    ScriptKeyDown(modifierKey);
    steps();
    ScriptKeyUp(modifierKey);
}

void DragOnMap(const std::vector<MapPoint>& points, int delay)
{
    // The view may scroll before the steps are played, so the places are worked out then.
    ScriptCall([=] {
        for (size_t i = 0; i < points.size(); i++) {
            const ScriptPoint place = OnScreenOfMap(points[i].h, points[i].v);
            if (i == 0) {
                ScriptPress(place.x, place.y, hostLeftButton, delay);
            } else {
                ScriptMove(place.x, place.y, delay);
            }
        }
        ScriptRelease(delay);
    });
}

void ClickOnMap(int h, int v, int button)
{
    ScriptCall([=] {
        const ScriptPoint place = OnScreenOfMap(h, v);
        ScriptClick(place.x, place.y, button);
    });
}

void AltDragOnMap(const std::vector<MapPoint>& points)
{
    PressKeyWith(VK_MENU, [&] { DragOnMap(points); });
    ScriptWait(settleTime);
}

void OpenPalette(char key, int left, int top)
{
    ScriptControl(key);
    ThenCheck([=] {
        ASSERT_NE(TopDialog(), nullptr) << "no palette";
        const HostRect& place = HeadlessPopup()->client;
        const ScriptPoint grip = {place.left + 150, place.top + 8};
        ScriptDrag({grip, {grip.x + 10, grip.y + 5}, {left + 150, top + 8}});
    });
    ScriptWait(settleTime);
}

void OpenFeatures(int tool)
{
    OpenPalette('t');
    if (tool != 0) {
        ClickItem(tool);
    }
}

void OpenMoveCosts(int tool)
{
    OpenPalette('m');
    if (tool != 0) {
        ClickItem(tool);
    }
}

void ClickItem(int itemID)
{
    ThenCheck([=] {
        const DialogItem* item = TopDialog() != nullptr ? FindItemByID(TopDialog(), itemID) : nullptr;
        ASSERT_NE(item, nullptr) << "no item " << itemID;
        ScriptPressAndRelease(TopDialog(), CentreOf(item->rect), CentreOf(item->rect));
    });
    ScriptWait(settleTime);
}

void ClosePalette()
{
    ScriptKey(VK_ESCAPE);
    ScriptWait(settleTime);
}

// ---- what is to be seen ----

std::string MessageText(int id)
{
    char text[textBufferSize] = "";
    GetIndString(text, id / 1000 * 1000, id % 1000);
    return text;
}

std::string Title()
{
    return HeadlessFrame() != nullptr ? HeadlessFrame()->title : "";
}

ScriptPoint OnScreenOfMap(int h, int v)
{
    const ScriptPoint origin = HeadlessClientOrigin();
    return {origin.x + h - view.viewRect.left, origin.y + v - view.viewRect.top};
}

uint32_t SeenAt(int h, int v)
{
    const ScriptPoint place = OnScreenOfMap(h, v);
    return HeadlessPixel(place.x, place.y);
}

std::vector<uint32_t> Screen()
{
    std::vector<uint32_t> pixels;
    pixels.reserve(static_cast<size_t>(headless.screenWidth) * static_cast<size_t>(headless.screenHeight));
    for (int y = 0; y < headless.screenHeight; y++) {
        for (int x = 0; x < headless.screenWidth; x++) {
            pixels.push_back(HeadlessPixel(x, y));
        }
    }
    return pixels;
}

void ExpectView(const std::function<uint32_t(int, int)>& colour, const char* when)
{
    constexpr int growBoxOverlap = 2; // its picture reaches that far into the view's corner
    const Rect shown = view.viewRect;
    const ScriptPoint origin = HeadlessClientOrigin();
    int wrong = 0;
    std::string first;
    for (int v = shown.top; v < shown.bottom; v++) {
        const int right = v < shown.bottom - growBoxOverlap ? shown.right : shown.right - growBoxOverlap;
        for (int h = shown.left; h < right; h++) {
            const uint32_t seen = HeadlessPixel(origin.x + h - shown.left, origin.y + v - shown.top);
            if (seen != colour(h, v) && wrong++ == 0) {
                char text[80];
                std::snprintf(text, sizeof text, "%d,%d is %06X and not %06X", h, v, seen, colour(h, v));
                first = text;
            }
        }
    }
    EXPECT_EQ(wrong, 0) << "pixels " << when << ", first " << first;
}

void ExpectArt(const char* when)
{
    ExpectView(ArtColour, when);
}

std::string Difference(const std::vector<uint32_t>& first, const std::vector<uint32_t>& second)
{
    if (first.size() != second.size()) {
        return "different sizes";
    }
    const auto place = std::mismatch(first.begin(), first.end(), second.begin()).first;
    if (place == first.end()) {
        return "";
    }
    const int index = static_cast<int>(place - first.begin());
    return "screen " + std::to_string(index % headless.screenWidth) + "," +
           std::to_string(index / headless.screenWidth);
}

uint16_t CellWord(int x, int y)
{
    const TerrainCell* cell = CellAt(x, y);
    return cell != nullptr ? *cell : 0xFFFF;
}

std::string MarkedCells()
{
    std::string text;
    for (int y = 0; y < currentMap.record.rowCount; y++) {
        for (int x = 0; x < currentMap.allocatedColumns; x++) {
            if (CellWord(x, y) != 0) {
                char entry[32];
                std::snprintf(entry, sizeof entry, "%s%d,%d=%04X", text.empty() ? "" : " ", x, y, CellWord(x, y));
                text += entry;
            }
        }
    }
    return text;
}

int ItemState(int itemID)
{
    return TopDialog() != nullptr ? GetItemState(TopDialog(), itemID, 0) : -1;
}

bool IsCommandEnabled(int command)
{
    const HeadlessMenuItem* item = HeadlessMenuCommand(command);
    return item != nullptr && item->enabled && HeadlessMenuTitle(item->menu)->enabled;
}

bool IsCommandChecked(int command)
{
    const HeadlessMenuItem* item = HeadlessMenuCommand(command);
    return item != nullptr && item->checked;
}
