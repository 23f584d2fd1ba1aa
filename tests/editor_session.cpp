#include "tests/editor_session.h"

#include "platform/kernel/system_calls.h"
#include "platform/kernel/test_hooks.h"
#include "platform/user/platform_reset.h"
#include "toolbox/resources.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

constexpr int settleTime = 60;

ScriptPoint OnScreen(WindowPtr window, Point point)
{
    WindowPtr savedPort = nullptr;
    GetPort(&savedPort);
    SetPort(window);
    LocalToGlobal(&point);
    SetPort(savedPort);
    return {point.h, point.v};
}

void StartHost()
{
    HeadlessReset();
    host = &headlessHost;
    host->start();
}

void StopHost()
{
    PlatformReset();
    SetPort(nullptr);
    host->stop();
}

} // namespace

// ---- the program ----

void StartedProgram::SetUp()
{
    StartHost();
    shell = {};
    shell.appInstance = GetModuleHandleA(nullptr);
    view = {};
    editing = {};
    currentMap = {};
    ASSERT_EQ(RegisterWindowClasses(), 1);
    InitApplication();
    ASSERT_EQ(shell.quitRequested, 0u);
}

void StartedProgram::TearDown()
{
    host->pump(2 * scriptDelay); // the release of the last key or button
    EXPECT_EQ(HeadlessStepsLeft(), 0) << "steps that no loop took";
    CloseFile(currentMap.openDataFile);
    ShutdownApplication();
    StopHost();
}

void EditorSession::SetUp()
{
    StartHost();
}

void EditorSession::TearDown()
{
    systemCalls = RealSystemCalls();
    StopHost();
}

void EditorSession::WriteMap(const MapFile& map) const
{
    const std::string name = "Map" + std::to_string(map.words[idWord]) + "c.";
    Write(name + "dat", map.Bytes());
    Write(name + "bmp", ArtBytes(map.words[rightWord], map.words[bottomWord]));
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

void EditorSession::Run()
{
    const int blocks = GlobalBlocksInUse();
    char noArguments[] = "";
    EXPECT_EQ(WinMain(GetModuleHandleA(nullptr), nullptr, noArguments, SW_SHOWNORMAL), 0);
    EXPECT_EQ(HeadlessStepsLeft(), 0) << "steps that no loop took: the program ended too early";
    EXPECT_EQ(headless.impatience, 0) << "the program did not end by the steps of the script";
    EXPECT_EQ(GlobalBlocksInUse(), blocks) << "blocks that were never freed";
    EXPECT_TRUE(headless.windows.empty());
    PlatformReset();
}

void EditorSession::QuitAndRun()
{
    ThenCheck([] {
        if (shell.featuresPaletteOpen || shell.moveCostPaletteOpen) {
            ClosePalette();
        }
    });
    Quit();
    Run();
}

void EditorSession::KeepScreen()
{
    ThenCheck([this] { keptScreen = Screen(); });
}

void EditorSession::ExpectKeptScreen(const char* when)
{
    ThenCheck([=, this] { EXPECT_EQ(Difference(keptScreen, Screen()), "") << when; });
}

std::string ArtBytes(int width, int height)
{
    static std::map<std::pair<int, int>, std::string> made;
    std::string& art = made[{width, height}];
    if (art.empty()) {
        art = BitmapHead(width, height, 24);
        for (int v = height - 1; v >= 0; v--) {
            for (int h = 0; h < width; h++) {
                Put(&art, ArtColour(h, v), 3);
            }
            art.append(static_cast<size_t>(width % 4), '\0');
        }
    }
    return art;
}

uint32_t ArtColour(int h, int v)
{
    const int blue = (h >> 8) << 4 | v >> 8;
    return static_cast<uint32_t>((h & 255) << 16 | (v & 255) << 8 | blue);
}

// ---- steps ----

void ThenCheck(std::function<void()> check)
{
    ScriptCall(std::move(check), settleTime);
}

void ScriptPressAndRelease(WindowPtr window, Point pressed, Point released)
{
    ScriptDrag({OnScreen(window, pressed), OnScreen(window, released)});
}

void ScriptButton(const std::string& text)
{
    ScriptCall([text] {
        const DialogItem* item = TopDialog() != nullptr ? TopDialog()->firstItem : nullptr;
        while (item != nullptr && !(item->kind == pushButtonItem && text == item->text)) {
            item = item->next;
        }
        ASSERT_NE(item, nullptr) << "no button " << text;
        ScriptPressAndRelease(TopDialog(), CentreOf(item->rect), CentreOf(item->rect));
    });
}

void ClickButton(const std::string& text)
{
    ScriptWait(settleTime);
    ScriptButton(text);
}

void ClickItem(int itemID)
{
    ThenCheck([=] {
        const DialogItem* item = FindItemByID(TopDialog(), itemID);
        ASSERT_NE(item, nullptr) << "no item " << itemID;
        ScriptPressAndRelease(TopDialog(), CentreOf(item->rect), CentreOf(item->rect));
    });
    ScriptWait(settleTime);
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
        const ScriptPoint start = OnScreenOfMap(points[0].h, points[0].v);
        ScriptPress(start.x, start.y, hostLeftButton, delay);
        for (const MapPoint& point : points) {
            const ScriptPoint place = OnScreenOfMap(point.h, point.v);
            ScriptMove(place.x, place.y, delay);
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

void OpenPalette(char key, int tool, int left, int top)
{
    ScriptControl(key);
    ThenCheck([=] {
        ASSERT_NE(TopDialog(), nullptr) << "no palette";
        const HostRect& place = HeadlessPopup()->client;
        const ScriptPoint grip = {place.left + 150, place.top + 8};
        ScriptDrag({grip, {grip.x + 10, grip.y + 5}, {left + 150, top + 8}});
    });
    ScriptWait(settleTime);
    if (tool != 0) {
        ClickItem(tool);
    }
}

void ClosePalette()
{
    ScriptKey(VK_ESCAPE);
    ScriptWait(settleTime);
}

// ---- what is to be seen ----

WindowPtr TopDialog()
{
    const HWND top = GetTopWindow(nullptr);
    const WindowPtr record = top != nullptr ? WindowRecord(top) : nullptr;
    return record != shell.mapWindow ? record : nullptr;
}

std::string TextsOf(WindowPtr dialog)
{
    std::string texts;
    const DialogItem* item = dialog != nullptr ? dialog->firstItem : nullptr;
    for (; item != nullptr; item = item->next) {
        if (item->kind == staticTextItem) {
            texts += (texts.empty() ? "" : "\n") + std::string(item->text);
        }
    }
    return texts;
}

COLORREF PixelOf(WindowPtr window, int h, int v)
{
    return GetPixel(window->dc, h, v);
}

int CountPixels(WindowPtr window, const Rect& rect, COLORREF colour)
{
    int count = 0;
    for (int v = rect.top; v < rect.bottom; v++) {
        for (int h = rect.left; h < rect.right; h++) {
            count += PixelOf(window, h, v) == (colour & 0xFFFFFF) ? 1 : 0;
        }
    }
    return count;
}

Point CentreOf(const Rect& rect)
{
    return {static_cast<int16_t>((rect.top + rect.bottom) / 2), static_cast<int16_t>((rect.left + rect.right) / 2)};
}

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

MapPoint SizeOf(const HeadlessWindow* window)
{
    if (window == nullptr) {
        return {0, 0};
    }
    return {window->client.right - window->client.left, window->client.bottom - window->client.top};
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
    int wrong = 0;
    char first[80] = "";
    for (int v = shown.top; v < shown.bottom; v++) {
        const int right = v < shown.bottom - growBoxOverlap ? shown.right : shown.right - growBoxOverlap;
        for (int h = shown.left; h < right; h++) {
            const uint32_t seen = SeenAt(h, v);
            if (seen != colour(h, v) && wrong++ == 0) {
                std::snprintf(first, sizeof first, "%d,%d is %06X and not %06X", h, v, seen, colour(h, v));
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
    const auto place = std::mismatch(first.begin(), first.end(), second.begin()).first - first.begin();
    const int index = static_cast<int>(place);
    return first == second ? ""
                           : "screen " + std::to_string(index % headless.screenWidth) + "," +
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
