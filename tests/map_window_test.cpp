// The map window: scrolling, bars, sizes, moving, its strip, and which commands and keys work in which state.
#include "app/commands.h"
#include "tests/editor_session.h"

#include <algorithm>
#include <tuple>

namespace {

constexpr uint32_t background = 0xC0C0C0;

class MapWindowTest : public EditorSession {
  protected:
    // 616 x 396 pixels of a map of 900 x 700 are in view.
    void OpenLarge()
    {
        HeadlessReset(640, 480);
        WriteMap(MapFile(101, 900, 700));
        OpenMap();
    }
};

constexpr int maxH = 900 - 616;
constexpr int maxV = 700 - 396;

void ExpectAt(int h, int v, const std::string& after)
{
    EXPECT_EQ(view.viewRect.left, h) << after;
    EXPECT_EQ(view.viewRect.top, v) << after;
    EXPECT_EQ(HeadlessScrollBar(0)->position, h) << after;
    // Scrolled to the lower edge the vertical bar stands at its end, a step behind the view's top.
    const HeadlessBar* vertical = HeadlessScrollBar(1);
    const bool isAtEnd = view.viewRect.bottom == currentMap.record.mapRect.bottom;
    EXPECT_TRUE(vertical->position == v || (isAtEnd && vertical->position == vertical->highestPosition))
        << after << " " << vertical->position;
    ExpectArt(after.c_str());
}

TEST_F(MapWindowTest, EveryScrollRequestMovesTheViewByItsStepAndStopsAtTheEdges)
{
    const auto key = [](int code) { return [=] { ScriptKey(code); }; };
    const auto bar = [](int vertical, int code, int position) {
        return [=] { ScriptScroll(vertical, code, position); };
    };
    const struct {
        const char* what;
        std::function<void()> request;
        int h;
        int v;
    } rows[] = {
        {"left at the edge", key(VK_LEFT), 0, 0},
        {"up at the edge", key(VK_UP), 0, 0},
        {"right", key(VK_RIGHT), 128, 0},
        {"down", key(VK_DOWN), 128, 80},
        {"wheel down", [] { ScriptWheel(-120); }, 128, 160},
        {"wheel up", [] { ScriptWheel(120); }, 128, 80},
        {"line down", bar(1, SB_LINEDOWN, 0), 128, 100},
        {"line up", bar(1, SB_LINEUP, 0), 128, 80},
        {"line right", bar(0, SB_LINERIGHT, 0), 148, 80},
        {"line left", bar(0, SB_LINELEFT, 0), 128, 80},
        {"page down", bar(1, SB_PAGEDOWN, 0), 128, maxV},
        {"page up", bar(1, SB_PAGEUP, 0), 128, 0},
        {"page right", bar(0, SB_PAGERIGHT, 0), maxH, 0},
        {"right at the edge", key(VK_RIGHT), maxH, 0},
        {"page left", bar(0, SB_PAGELEFT, 0), 0, 0},
        {"horizontal thumb", bar(0, SB_THUMBTRACK, 77), 77, 0},
        {"vertical thumb", bar(1, SB_THUMBTRACK, 211), 77, 211},
        {"thumb at its end", bar(1, SB_THUMBTRACK, maxV), 77, maxV},
        {"thumb beyond its end", bar(0, SB_THUMBTRACK, 65535), maxH, maxV},
        {"end of the drag", bar(0, SB_THUMBPOSITION, 5), maxH, maxV},
        {"to the top", bar(1, SB_TOP, 0), maxH, maxV},
        {"end of scrolling", bar(1, SB_ENDSCROLL, 0), maxH, maxV},
        {"down at the edge", key(VK_DOWN), maxH, maxV},
        {"left", key(VK_LEFT), maxH - 128, maxV},
        {"thumb to the start", bar(1, SB_THUMBTRACK, 0), maxH - 128, 0},
        {"a key without a meaning", [] { ScriptText("x"); }, maxH - 128, 0},
    };
    OpenLarge();
    ThenCheck([] {
        EXPECT_TRUE(HeadlessScrollBar(0)->highestPosition == maxH + 1 && HeadlessScrollBar(0)->page == 616);
        EXPECT_TRUE(HeadlessScrollBar(1)->highestPosition == maxV + 1 && HeadlessScrollBar(1)->page == 396);
        ExpectAt(0, 0, "opening");
    });
    for (const auto& row : rows) {
        row.request();
        ThenCheck([&row] { ExpectAt(row.h, row.v, row.what); });
    }
    ThenCheck([] { headless.presentCount = 0; });
    ScriptKey(VK_UP);
    ScriptScroll(1, SB_LINEUP, 0);
    ThenCheck([] { EXPECT_EQ(headless.presentCount, 0) << "what the edge stops is not painted"; });
    QuitAndRun();
}

TEST_F(MapWindowTest, SizesKeepTheViewInTheMap)
{
    OpenLarge();
    ScriptScroll(0, SB_THUMBTRACK, maxH);
    ScriptScroll(1, SB_THUMBTRACK, maxV);
    ScriptResize(520, 350);
    ThenCheck([] { ExpectAt(maxH, maxV, "smaller"); });
    ScriptScroll(0, SB_THUMBTRACK, 900 - 504);
    ScriptScroll(1, SB_THUMBTRACK, 700 - 316);
    ThenCheck([] { ExpectAt(900 - 504, 700 - 316, "the far corner"); });
    ScriptResize(600, 400);
    ThenCheck([] {
        ExpectAt(900 - 584, 700 - 366, "larger again");
        EXPECT_EQ(HeadlessScrollBar(0)->page, 584);
        const HostRect& bar = HeadlessScrollBar(1)->place;
        EXPECT_TRUE(bar.left == 584 && bar.top == -1 && bar.bottom == 367);
    });
    ThenCheck([] { // the grow box, far too small and far too large
        const HostRect& client = HeadlessFrame()->client;
        ScriptDrag({{client.right - 5, client.bottom - 5}, {200, 200}, {90, 80}});
    });
    ThenCheck([] {
        EXPECT_TRUE(SizeOf(HeadlessFrame()).h == 370 && SizeOf(HeadlessFrame()).v == 300);
        EXPECT_TRUE(headless.outline.empty());
        ExpectArt("at the least size");
        const HostRect& client = HeadlessFrame()->client;
        ScriptDrag({{client.right - 5, client.bottom - 5}, {500, 400}, {639, 479}});
    });
    ThenCheck([] {
        EXPECT_GE(SizeOf(HeadlessFrame()).h, 620);
        ExpectArt("at a large size");
    });
    ScriptResize(10, 10);
    ThenCheck([] {
        ExpectArt("at the frame's least size");
        EXPECT_TRUE(SizeOf(HeadlessFrame()).h == 500 - 8 && SizeOf(HeadlessFrame()).v == 300 - 50);
    });
    QuitAndRun();
}

TEST_F(MapWindowTest, TheEdgeThatIsDraggedGivesWay)
{
    OpenLarge();
    ThenCheck([] {
        const std::pair<WPARAM, RECT> rows[] = {
            // of a frame of 100 x 100 at (1000, 1000)
            {WMSZ_LEFT, {600, 1000, 1100, 1100}},       {WMSZ_RIGHT, {1000, 1000, 1500, 1100}},
            {WMSZ_TOP, {1000, 900, 1100, 1100}},        {WMSZ_TOPLEFT, {600, 900, 1100, 1100}},
            {WMSZ_TOPRIGHT, {1000, 900, 1500, 1100}},   {WMSZ_BOTTOM, {1000, 1000, 1100, 1200}},
            {WMSZ_BOTTOMLEFT, {600, 1000, 1100, 1200}}, {WMSZ_BOTTOMRIGHT, {1000, 1000, 1500, 1200}}};
        for (const auto& [edge, wanted] : rows) {
            RECT frame = {1000, 1000, 1100, 1100};
            SendMessageA(shell.mapWindow->window, WM_SIZING, edge, reinterpret_cast<LPARAM>(&frame));
            EXPECT_TRUE(EqualRect(&frame, &wanted)) << edge;
        }
    });
    QuitAndRun();
}

TEST_F(MapWindowTest, ASmallMapIsSurroundedByTheBackground)
{
    WriteMap(MapFile(101, 450, 220));
    WriteMap(MapFile(102, 300, 200));
    for (const auto& [name, width, height] : {std::tuple{"Map101c.dat", 450, 220}, {"Map102c.dat", 300, 200}}) {
        SCOPED_TRACE(name);
        OpenMap(name);
        const auto check = [w = width, h = height](const char* when) {
            ThenCheck([=] {
                EXPECT_TRUE(view.viewRect.left == 0 && view.viewRect.top == 0) << when;
                ExpectView([=](int x, int y) { return x < w && y < h ? ArtColour(x, y) : background; }, when);
            });
        };
        check("opened");
        ScriptKey(VK_RIGHT);
        ScriptKey(VK_DOWN);
        ScriptWheel(-120);
        ScriptScroll(0, SB_PAGERIGHT, 0);
        check("scrolled");
        ScriptResize(2000, 2000);
        check("as large as may be");
        ScriptResize(400, 280);
        ScriptResize(2000, 2000);
        check("small and large again");
        OpenPalette('m');
        check("under the palette");
        ClosePalette();
        ScriptMenu(301);
        check("redrawn");
        QuitAndRun();
    }
}

TEST_F(MapWindowTest, TheWindowIsMovedByHand)
{
    WriteMap(MapFile(101, 600, 400));
    OpenMap();
    ClickOnMap(300, 5);
    ThenCheck([] { EXPECT_EQ(headless.sounds.size(), 1u) << "a plain press is refused"; });
    PressKeyWith(VK_MENU, [] { ClickOnMap(300, 5); });
    ThenCheck([] {
        EXPECT_STREQ(view.statusText, MessageText(10039).c_str());
        EXPECT_EQ(headless.cursorKind, hostCursorImage);
        ScriptDrag({{304, 246}, {354, 300}, {504, 346}});
    });
    ThenCheck([] {
        EXPECT_TRUE(HeadlessFrame()->frame.left == 200 && HeadlessFrame()->frame.top == 100);
        EXPECT_TRUE(headless.outline.empty());
        EXPECT_STREQ(view.statusText, "");
        EXPECT_EQ(headless.cursorKind, hostCursorArrow);
        ExpectArt("in its new place");
    });
    const auto dragBy = [](const std::vector<MapPoint>& steps) { // the map point (100, 100)
        PressKeyWith(VK_MENU, [] { ClickOnMap(300, 5); });
        ThenCheck([=] {
            const ScriptPoint place = OnScreenOfMap(100, 100);
            ScriptPress(place.x, place.y);
            for (const MapPoint& step : steps) {
                ScriptMove(place.x + step.h, place.y + step.v);
            }
            ScriptRelease();
        });
    };
    dragBy({{-150, -50}, {-700, -200}}); // the edge of the screen refuses
    ThenCheck([] {
        EXPECT_TRUE(HeadlessFrame()->frame.left == 50 && HeadlessFrame()->frame.top == 50);
        ExpectArt("near the screen's corner");
    });
    dragBy({{1280 - 50 - 50, 0}});
    ThenCheck([] { EXPECT_EQ(HeadlessFrame()->frame.left, 50) << "50 pixels of it stay on the screen"; });
    PressKeyWith(VK_MENU, [] { ClickOnMap(300, 5); });
    ScriptText("x"); // gives up
    ThenCheck([] { EXPECT_STREQ(view.statusText, ""); });
    QuitAndRun();
}

// ---- commands ----

TEST_F(MapWindowTest, CommandsAreEnabledByTheState)
{
    const std::vector<int> all = {101, 102, 104, 106, 201, 202, 203, 204, 205, 301, 302, 303, 304, 305, 401, 402};
    const auto expectOnly = [=](const std::vector<int>& enabled, const char* when) {
        ThenCheck([=] {
            for (const int command : all) {
                const bool wanted = std::find(enabled.begin(), enabled.end(), command) != enabled.end();
                EXPECT_EQ(IsCommandEnabled(command), wanted) << command << " " << when;
            }
        });
    };
    const std::vector<int> withPalette = {104, 106, 301, 302, 303, 304, 305, 401};
    const std::vector<int> withMap = {104, 106, 201, 202, 203, 204, 205, 301, 302, 303, 304, 305, 401};
    ThenCheck([] {
        for (const HeadlessMenuItem& item : headless.menuItems) {
            const auto rows = std::count_if(commandTable, commandTable + commandCount,
                                            [&](const CommandRow& row) { return row.command == item.command; });
            EXPECT_EQ(rows, item.command != 0 ? 1 : 0) << "rows of commandTable for " << item.text;
        }
    });
    WriteMap(MapFile(101, 600, 400));
    expectOnly({101, 102, 106, 401}, "without a map");
    ScriptKey(VK_F8);
    ScriptKey(VK_F9);
    ScriptWheel(-120);
    ScriptKey(VK_DOWN);
    for (const char key : {'s', 't', 'm', 'r', 'p', 'x'}) {
        ScriptControl(key);
    }
    ThenCheck([] {
        EXPECT_EQ(TopDialog(), nullptr);
        EXPECT_EQ(view.terrainAnalysisOn, 0);
        EXPECT_EQ(shell.cursorReadoutOn, 0u);
        EXPECT_EQ(view.viewRect.top, 0);
        EXPECT_TRUE(headless.sounds.empty());
    });
    OpenMap();
    expectOnly(withMap, "with a map");
    ScriptControl('n');
    ScriptControl('o');
    ScriptControl('p');
    for (const char key : {'t', 'm'}) {
        ScriptControl(key);
        expectOnly(withPalette, "with a palette");
        ClosePalette();
        expectOnly(withMap, "after a palette");
    }
    ScriptControl('s');
    expectOnly({}, "under a question");
    ClickButton("No");
    expectOnly(withMap, "after a question");
    ScriptMenu(203);
    expectOnly({}, "under a dialog");
    ClickButton("Cancel");
    expectOnly(withMap, "after a dialog");
    ScriptMenu(401);
    ThenCheck([] {
        EXPECT_EQ(headless.fileDialogs.size(), 1u);
        EXPECT_EQ(TopDialog(), nullptr) << "a guide that is not there is not told of";
        const std::vector<uint32_t> before = Screen();
        for (const uint32_t result : {0u, 201u << 16 | 3, 201u << 16 | 99, 202u << 16, 203u << 16 | 99,
                                      204u << 16 | 2, 205u << 16 | 1, 200u << 16 | 1, 305u << 16 | 1, 0xFFFFFFFFu}) {
            DoMenuCommand(result);
        }
        EXPECT_EQ(TopDialog(), nullptr);
        EXPECT_EQ(Difference(before, Screen()), "") << "unknown results do nothing";
        DoMenuCommand(303u << 16 | 2); // the twin numbers act
    });
    ThenCheck([] { EXPECT_EQ(view.utmGridMode, 1); });
    QuitAndRun();
}

TEST_F(MapWindowTest, ASystemThatRedrawsAnythingGetsTheSamePicture)
{
    OpenLarge();
    ScriptKey(VK_RIGHT);
    ScriptWait(40);
    KeepScreen();
    ScriptControl('r');
    ExpectKeptScreen("redrawn");
    ScriptActivate(0);
    ScriptActivate(1);
    ExpectKeptScreen("active again");
    ScriptText("*+/= ");
    ExpectKeptScreen("after keys that paint");
    ScriptMenu(104);
    ClickButton("No");
    ExpectKeptScreen("after a question");
    ScriptMoveFrame(0, 0);
    ExpectKeptScreen("moved to where it was");
    QuitAndRun();
}

} // namespace
