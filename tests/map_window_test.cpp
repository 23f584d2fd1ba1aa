// The map window: scrolling, bars, sizes, moving, its strip, and which commands and keys work in which state.
#include "tests/editor_session.h"

#include <algorithm>

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
    struct Row {
        const char* what;
        std::function<void()> request;
        int h;
        int v;
    };
    const auto key = [](int code) { return [=] { ScriptKey(code); }; };
    const auto bar = [](int vertical, int code, int position) {
        return [=] { ScriptScroll(vertical, code, position); };
    };
    const Row rows[] = {
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
        EXPECT_EQ(HeadlessScrollBar(0)->highestPosition, maxH + 1);
        EXPECT_EQ(HeadlessScrollBar(1)->highestPosition, maxV + 1);
        EXPECT_EQ(HeadlessScrollBar(0)->page, 616);
        EXPECT_EQ(HeadlessScrollBar(1)->page, 396);
        ExpectAt(0, 0, "opening");
    });
    for (const Row& row : rows) {
        row.request();
        ThenCheck([=] { ExpectAt(row.h, row.v, row.what); });
    }
    ThenCheck([] { headless.presentCount = 0; });
    ScriptKey(VK_UP);
    ScriptScroll(1, SB_LINEUP, 0);
    ThenCheck([] { EXPECT_EQ(headless.presentCount, 0) << "what the edge stops is not painted"; });
    Quit();
    Run();
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
        EXPECT_EQ(HeadlessScrollBar(1)->place.bottom - HeadlessScrollBar(1)->place.top, 368);
    });
    ThenCheck([] { // the grow box, far too small and far too large
        const HostRect& client = HeadlessFrame()->client;
        ScriptDrag({{client.right - 5, client.bottom - 5}, {200, 200}, {90, 80}});
    });
    ThenCheck([] {
        EXPECT_EQ(HeadlessFrame()->client.right - HeadlessFrame()->client.left, 370);
        EXPECT_EQ(HeadlessFrame()->client.bottom - HeadlessFrame()->client.top, 300);
        EXPECT_TRUE(headless.outline.empty());
        ExpectArt("at the least size");
        const HostRect& client = HeadlessFrame()->client;
        ScriptDrag({{client.right - 5, client.bottom - 5}, {500, 400}, {639, 479}});
    });
    ThenCheck([] {
        EXPECT_GE(HeadlessFrame()->client.right - HeadlessFrame()->client.left, 620);
        ExpectArt("at a large size");
    });
    ScriptResize(10, 10);
    ThenCheck([] {
        ExpectArt("at the frame's least size");
        EXPECT_EQ(HeadlessFrame()->frame.right - HeadlessFrame()->frame.left, 500);
        EXPECT_EQ(HeadlessFrame()->frame.bottom - HeadlessFrame()->frame.top, 300);
    });
    Quit();
    Run();
}

TEST_F(MapWindowTest, ASmallMapIsSurroundedByTheBackground)
{
    WriteMap(MapFile(101, 450, 220));
    WriteMap(MapFile(102, 300, 200));
    struct Row {
        const char* name;
        int width;
        int height;
    };
    for (const Row& row : {Row{"Map101c.dat", 450, 220}, {"Map102c.dat", 300, 200}}) {
        SCOPED_TRACE(row.name);
        OpenMap(row.name);
        const auto check = [=](const char* when) {
            ThenCheck([=] {
                EXPECT_EQ(view.viewRect.left, 0) << when;
                EXPECT_EQ(view.viewRect.top, 0) << when;
                ExpectView(
                    [=](int h, int v) { return h < row.width && v < row.height ? ArtColour(h, v) : background; },
                    when);
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
        Quit();
        Run();
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
        EXPECT_EQ(HeadlessFrame()->frame.left, 200);
        EXPECT_EQ(HeadlessFrame()->frame.top, 100);
        EXPECT_TRUE(headless.outline.empty());
        EXPECT_STREQ(view.statusText, "");
        EXPECT_EQ(headless.cursorKind, hostCursorArrow);
        ExpectArt("in its new place");
    });
    PressKeyWith(VK_MENU, [] { ClickOnMap(300, 5); });
    ThenCheck([] { // the edge of the screen refuses
        const ScriptPoint place = OnScreenOfMap(100, 100);
        ScriptDrag({place, {place.x - 150, place.y - 50}, {place.x - 700, place.y - 200}});
    });
    ThenCheck([] {
        EXPECT_GE(HeadlessFrame()->frame.left, 0);
        EXPECT_GE(HeadlessFrame()->frame.top, 0);
        EXPECT_LT(HeadlessFrame()->frame.left, 200);
        ExpectArt("near the screen's corner");
    });
    PressKeyWith(VK_MENU, [] { ClickOnMap(300, 5); });
    ScriptText("x"); // gives up
    ThenCheck([] { EXPECT_STREQ(view.statusText, ""); });
    Quit();
    Run();
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
    });
    Quit();
    Run();
}

TEST_F(MapWindowTest, UnknownResultsDoNothing)
{
    WriteMap(MapFile(101, 600, 400));
    OpenMap();
    ThenCheck([] {
        const std::vector<uint32_t> before = Screen();
        for (const uint32_t result : {0u, 201u << 16 | 3, 201u << 16 | 5, 201u << 16 | 99, 202u << 16, 203u << 16 | 6,
                                      204u << 16 | 2, 205u << 16 | 1, 200u << 16 | 1, 305u << 16 | 1, 0xFFFFFFFFu}) {
            DoMenuCommand(result);
        }
        EXPECT_EQ(TopDialog(), nullptr);
        EXPECT_TRUE(headless.documents.empty());
        EXPECT_EQ(Difference(before, Screen()), "");
        DoMenuCommand(303u << 16 | 2); // the twin numbers act
    });
    ThenCheck([] { EXPECT_EQ(view.utmGridMode, 1); });
    Quit();
    Run();
}

TEST_F(MapWindowTest, ASystemThatRedrawsAnythingGetsTheSamePicture)
{
    std::vector<uint32_t> before;
    OpenLarge();
    ScriptKey(VK_RIGHT);
    ScriptWait(40);
    ThenCheck([&] { before = Screen(); });
    ScriptControl('r');
    ThenCheck([&] { EXPECT_EQ(Difference(before, Screen()), "") << "redrawn"; });
    ScriptActivate(0);
    ScriptActivate(1);
    ThenCheck([&] { EXPECT_EQ(Difference(before, Screen()), "") << "active again"; });
    for (const char* key : {"*", "+", "/", "=", " "}) {
        ScriptText(key);
    }
    ThenCheck([&] { EXPECT_EQ(Difference(before, Screen()), "") << "keys that paint"; });
    ScriptMenu(104);
    ClickButton("No");
    ThenCheck([&] { EXPECT_EQ(Difference(before, Screen()), "") << "after a question"; });
    ScriptMoveFrame(0, 0);
    ThenCheck([&] { EXPECT_EQ(Difference(before, Screen()), "") << "moved to where it was"; });
    Quit();
    Run();
}

} // namespace
