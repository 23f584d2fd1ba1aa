// Menus, scroll bars, cursors, outlines, dialogs and sounds of the platform layer.
#include "tests/map_files.h"
#include "tests/user_fixture.h"

#include <cstring>

namespace {

// ---- menus and scroll bars ----

TEST_F(User, TheMenuBarComesFromTheResourcesAndDisabledItemsAreNeverChosen)
{
    HMENU bar = GetMenu(main);
    HMENU file = GetSubMenu(bar, 0);
    EXPECT_TRUE(GetMenuState(file, 2, MF_BYPOSITION) & MF_SEPARATOR);
    EXPECT_EQ(GetMenuState(file, 99, MF_BYPOSITION), static_cast<UINT>(-1));
    ASSERT_NE(HeadlessMenuCommand(101), nullptr);
    EXPECT_EQ(HeadlessMenuCommand(101)->text, "New Map...\tCtrl+N");

    const auto chosen = [&](int command) {
        Report(hostMenuChoice, main, command);
        const MSG message = Next();
        return message.message == WM_COMMAND ? static_cast<int>(message.wParam) : 0;
    };
    EXPECT_EQ(chosen(101), 101);
    EXPECT_EQ(EnableMenuItem(file, 0, MF_BYPOSITION | MF_GRAYED), MF_ENABLED);
    EXPECT_FALSE(HeadlessMenuCommand(101)->enabled);
    EXPECT_EQ(chosen(101), 0);
    EXPECT_EQ(chosen(102), 102);
    EnableMenuItem(bar, 0, MF_BYPOSITION | MF_GRAYED);
    EXPECT_FALSE(HeadlessMenuTitle(0)->enabled);
    EXPECT_EQ(chosen(102), 0) << "the title is gray";
    EXPECT_TRUE(LOWORD(GetMenuState(bar, 0, MF_BYPOSITION)) & MF_GRAYED);
    EXPECT_EQ(chosen(999), 0);

    HMENU views = GetSubMenu(bar, 2);
    EXPECT_EQ(CheckMenuItem(views, 304, MF_BYCOMMAND | MF_CHECKED), DWORD{MF_UNCHECKED});
    EXPECT_TRUE(HeadlessMenuCommand(304)->checked);
    Host deafHost = headlessHost; // it hears of changes only
    deafHost.setMenuItem = [](HostWindow*, int, int, int, int) { ADD_FAILURE(); };
    host = &deafHost;
    EXPECT_EQ(CheckMenuItem(bar, 304, MF_BYCOMMAND | MF_CHECKED), DWORD{MF_CHECKED}) << "found from the bar too";
    CheckMenuItem(views, 304, MF_BYCOMMAND | MF_CHECKED);
}

TEST_F(User, ScrollBarsHoldTheirPositionInRangeAndTellTheirParent)
{
    HWND bar = MakeBar({784, -1, 800, 566});
    const HeadlessBar* shown = HeadlessScrollBar(1);
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->place.bottom, 566);
    SCROLLINFO info = {sizeof info, SIF_RANGE | SIF_PAGE | SIF_POS, 0, 1000, 300, 5000, 0};
    EXPECT_EQ(SetScrollInfo(bar, SB_CTL, &info, TRUE), 701) << "nMax - nPage + 1";
    EXPECT_TRUE(shown->highestPosition == 701 && shown->position == 701);
    info.fMask = SIF_POS;
    info.nPos = -20;
    EXPECT_EQ(SetScrollInfo(bar, SB_CTL, &info, TRUE), 0);
    info = {sizeof info, SIF_PAGE | SIF_RANGE, 0, 100, 4000000000U, 0, 0};
    EXPECT_EQ(SetScrollInfo(bar, SB_CTL, &info, TRUE), 0);
    info = {sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
    ASSERT_TRUE(GetScrollInfo(bar, SB_CTL, &info));
    EXPECT_EQ(info.nPage, 101U);

    HostEvent event = Event(hostScroll, main);
    event.code = SB_THUMBTRACK;
    event.bar = shown->bar;
    for (int position : {100, 200, 345}) {
        event.position = position;
        HeadlessReport(event);
    }
    seen.clear();
    EXPECT_TRUE(Drain().empty()) << "sent, not posted";
    ASSERT_EQ(seen.size(), 1U) << "only where the thumb is now counts";
    EXPECT_EQ(seen[0].message, UINT{WM_VSCROLL});
    EXPECT_EQ(seen[0].wParam, MAKEWPARAM(SB_THUMBTRACK, 345));
    EXPECT_EQ(seen[0].lParam, reinterpret_cast<LPARAM>(bar));
    DestroyWindow(bar);
    HeadlessReport(event);
    seen.clear();
    Drain();
    EXPECT_TRUE(seen.empty()) << "the bar is gone";
}

// ---- cursors, outlines ----

TEST_F(User, CursorsComeFromTheResourcesAndReachTheHostOnlyWhenTheyChange)
{
    const HINSTANCE program = GetModuleHandleA(nullptr);
    HCURSOR arrow = LoadCursorA(nullptr, IDC_ARROW);
    EXPECT_FALSE(DestroyCursor(arrow));
    SetCursor(arrow);
    const int changes = headless.cursorChanges;
    SetCursor(arrow);
    EXPECT_EQ(headless.cursorChanges, changes);
    HCURSOR cross = LoadCursorA(program, MAKEINTRESOURCEA(11776));
    ASSERT_NE(cross, nullptr);
    EXPECT_EQ(SetCursor(cross), arrow);
    EXPECT_EQ(headless.cursorKind, int{hostCursorImage});
    EXPECT_TRUE(headless.cursorHotX == 15 && headless.cursorHotY == 14);
    ASSERT_EQ(headless.cursorPixels.size(), 32U * 32U);
    EXPECT_EQ(headless.cursorPixels[0], 0U) << "transparent at the corner";
    EXPECT_EQ(*std::max_element(headless.cursorPixels.begin(), headless.cursorPixels.end()) >> 24, 0xFFU);
    EXPECT_TRUE(DestroyCursor(cross));
    EXPECT_FALSE(DestroyCursor(cross));
    SetCursor(LoadCursorA(program, MAKEINTRESOURCEA(11776)));
    EXPECT_EQ(headless.cursorChanges, changes + 2) << "another cursor, whatever its address";
    EXPECT_EQ(LoadCursorA(program, MAKEINTRESOURCEA(5)), nullptr);
    EXPECT_NE(LoadIconA(program, MAKEINTRESOURCEA(128)), nullptr);
    EXPECT_NE(LoadImageA(program, MAKEINTRESOURCEA(1), IMAGE_ICON, 16, 16, LR_DEFAULTCOLOR), nullptr);
    EXPECT_EQ(LoadImageA(nullptr, "/no/such.bmp", IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE), nullptr);
}

void DrawLine(HDC dc, const std::vector<POINT>& points)
{
    SetROP2(dc, R2_NOT);
    MoveToEx(dc, points[0].x, points[0].y, nullptr);
    for (const POINT& point : points) {
        LineTo(dc, point.x, point.y);
    }
}

TEST_F(User, AnOutlineDrawnTwiceIsGoneAndNothingShowsInBetween)
{
    HDC dc = GetDC(nullptr);
    const auto draw = [&](int left) {
        DrawLine(dc, {{left, 20}, {left + 100, 20}, {left + 100, 220}, {left, 220}, {left, 20}});
    };
    draw(10);
    EXPECT_EQ(headless.outlineChanges, 0);
    GdiFlush();
    ASSERT_EQ(headless.outline.size(), 4U);
    int pixels = 0;
    for (const HostSegment& segment : headless.outline) {
        pixels += segment.x1 - segment.x0 + segment.y1 - segment.y0 + 1;
    }
    EXPECT_EQ(pixels, 2 * 100 + 2 * 200) << "every pixel of the rectangle once";
    draw(10);
    draw(15);
    EXPECT_EQ(headless.outlineChanges, 1);
    GetAsyncKeyState(VK_LBUTTON);
    EXPECT_EQ(headless.outlineChanges, 2);
    draw(15);
    Drain();
    EXPECT_TRUE(headless.outline.empty());

    // Two sides, each closed with its end pixel by a slanted line of one pixel.
    DrawLine(dc, {{0, 300}, {400, 300}, {401, 301}});
    DrawLine(dc, {{400, 300}, {400, 0}, {401, 1}});
    GdiFlush();
    EXPECT_EQ(headless.outline.size(), 2U);
    EXPECT_TRUE(std::any_of(headless.outline.begin(), headless.outline.end(),
                            [](const HostSegment& segment) { return segment.x1 == 400 && segment.y1 == 300; }));
}

// ---- shell ----

TEST_F(User, AChosenFileArrivesWithItsPartsWhenItFits)
{
    const TemporaryFolder temporary;
    const std::string start = std::filesystem::current_path();
    const std::string folder = start + "/maps";
    std::filesystem::create_directory(folder);
    const std::string chosen = folder + "/Map001c.dat";
    ScriptFile(chosen.c_str());
    char path[256] = "";
    OPENFILENAMEA request = {};
    request.lStructSize = sizeof request;
    request.lpstrFilter = "Map dat file (*.dat)\0*.dat\0Map bmp file (*.bmp)\0*.bmp\0";
    request.nFilterIndex = 2;
    request.lpstrFile = path;
    request.nMaxFile = sizeof path;
    EXPECT_TRUE(GetOpenFileNameA(&request));
    EXPECT_EQ(path, chosen);
    EXPECT_EQ(headless.fileDialogs[0].filterPattern, "*.bmp");
    EXPECT_EQ(headless.fileDialogs[0].folder, start);
    EXPECT_EQ(std::filesystem::current_path(), folder);
    std::filesystem::current_path(start);

    strcpy(path, "kept");
    ScriptFile(chosen.c_str());
    request.nMaxFile = 5;
    EXPECT_FALSE(GetOpenFileNameA(&request)) << "too long";
    request.nMaxFile = sizeof path;
    EXPECT_FALSE(GetOpenFileNameA(&request)) << "cancelled";
    EXPECT_STREQ(path, "kept");
    EXPECT_EQ(std::filesystem::current_path(), start);

    temporary.Write("maps/guide.pdf", "x");
    const auto open = [&](const char* name) {
        return reinterpret_cast<uintptr_t>(ShellExecuteA(main, "open", name, nullptr, folder.c_str(), SW_SHOW));
    };
    EXPECT_GT(open("guide.pdf"), 32U);
    EXPECT_EQ(headless.documents, (std::vector<std::string>{folder + "/guide.pdf"}));
    EXPECT_LE(open("none.pdf"), 32U);
}

TEST_F(User, SoundsArePlayedFromTheResourcesAndMissingOnesAreSilent)
{
    EXPECT_TRUE(PlaySoundA(MAKEINTRESOURCEA(128), GetModuleHandleA(nullptr), SND_RESOURCE | SND_NODEFAULT));
    ASSERT_EQ(headless.sounds.size(), 1U);
    EXPECT_GT(headless.sounds[0], 44U);
    EXPECT_FALSE(PlaySoundA(MAKEINTRESOURCEA(127), GetModuleHandleA(nullptr), SND_RESOURCE | SND_NODEFAULT));
    EXPECT_TRUE(PlaySoundA(nullptr, nullptr, 0));
    EXPECT_TRUE(sndPlaySoundA(nullptr, SND_ASYNC));
    EXPECT_EQ(headless.sounds.size(), 1U);
}

} // namespace
