// Menus, scroll bars, cursors, outlines, dialogs and sounds of the platform layer.
#include "tests/user_fixture.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace usertest {

// ---- menus and scroll bars ----

TEST_F(User, TheMenuBarComesFromTheResourcesAndDisabledItemsAreNeverChosen)
{
    HMENU bar = GetMenu(main);
    ASSERT_EQ(GetMenuItemCount(bar), 4);
    HMENU file = GetSubMenu(bar, 0);
    EXPECT_EQ(GetMenuItemCount(file), 6);
    char text[64];
    GetMenuStringA(file, 0, text, sizeof text, MF_BYPOSITION);
    EXPECT_EQ(std::string(text).substr(0, 10), "New Map...");
    EXPECT_NE(std::string(text).find("\tCtrl+N"), std::string::npos);
    EXPECT_TRUE(GetMenuState(file, 2, MF_BYPOSITION) & MF_SEPARATOR);
    EXPECT_EQ(GetMenuState(file, 99, MF_BYPOSITION), static_cast<UINT>(-1));
    EXPECT_EQ(Fake(main)->menu[1].command, 101);

    auto Chosen = [&](int command) {
        Report(hostMenuChoice, main, command);
        for (const MSG& message : Drain()) {
            if (message.message == WM_COMMAND) {
                return static_cast<int>(message.wParam);
            }
        }
        return 0;
    };
    EXPECT_EQ(Chosen(101), 101);
    EXPECT_EQ(EnableMenuItem(file, 0, MF_BYPOSITION | MF_GRAYED), MF_ENABLED);
    EXPECT_EQ((Fake(main)->menuStates[{0, 0}]), std::make_pair(0, 0));
    EXPECT_EQ(Chosen(101), 0);
    EXPECT_EQ(Chosen(102), 102);
    EnableMenuItem(bar, 0, MF_BYPOSITION | MF_GRAYED);
    EXPECT_EQ((Fake(main)->menuStates[{0, -1}]), std::make_pair(0, 0));
    EXPECT_EQ(Chosen(102), 0) << "the title is gray";
    EXPECT_TRUE(LOWORD(GetMenuState(bar, 0, MF_BYPOSITION)) & MF_GRAYED);
    EXPECT_EQ(Chosen(999), 0);

    HMENU views = GetSubMenu(bar, 2);
    EXPECT_EQ(CheckMenuItem(views, 304, MF_BYCOMMAND | MF_CHECKED), DWORD{MF_UNCHECKED});
    EXPECT_EQ(CheckMenuItem(bar, 304, MF_BYCOMMAND | MF_CHECKED), DWORD{MF_CHECKED}) << "found from the bar too";
    Fake(main)->menuStates.clear();
    CheckMenuItem(views, 304, MF_BYCOMMAND | MF_CHECKED);
    EXPECT_TRUE(Fake(main)->menuStates.empty()) << "the host hears of changes only";
}

TEST_F(User, ScrollBarsHoldTheirPositionInRangeAndTellTheirParent)
{
    HWND bar = CreateWindowExA(0, "SCROLLBAR", "", WS_CHILD | WS_VISIBLE | SBS_VERT, 784, -1, 16, 567, main, nullptr,
                               nullptr, nullptr);
    ASSERT_EQ(fake.bars.size(), 1U);
    EXPECT_EQ(fake.bars[0]->place.bottom, 566);
    SCROLLINFO info = {sizeof info, SIF_RANGE | SIF_PAGE | SIF_POS, 0, 1000, 300, 5000, 0};
    EXPECT_EQ(SetScrollInfo(bar, SB_CTL, &info, TRUE), 701) << "nMax - nPage + 1";
    EXPECT_EQ(fake.bars[0]->highest, 701);
    EXPECT_EQ(fake.bars[0]->position, 701);
    info.fMask = SIF_POS;
    info.nPos = -20;
    EXPECT_EQ(SetScrollInfo(bar, SB_CTL, &info, TRUE), 0);
    info = {sizeof info, SIF_PAGE | SIF_RANGE, 0, 100, 4000000000U, 0, 0};
    EXPECT_EQ(SetScrollInfo(bar, SB_CTL, &info, TRUE), 0);
    info = {sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
    ASSERT_TRUE(GetScrollInfo(bar, SB_CTL, &info));
    EXPECT_EQ(info.nPage, 101U);

    HostEvent event = {};
    event.kind = hostScroll;
    event.token = main;
    event.code = SB_THUMBTRACK;
    event.bar = reinterpret_cast<HostScrollBar*>(fake.bars[0].get());
    for (int position : {100, 200, 345}) {
        event.position = position;
        fake.events.push_back(event);
    }
    seen.clear();
    EXPECT_TRUE(Drain().empty()) << "sent, not posted";
    ASSERT_EQ(seen.size(), 1U) << "only where the thumb is now counts";
    EXPECT_EQ(seen[0].message, UINT{WM_VSCROLL});
    EXPECT_EQ(seen[0].wParam, MAKEWPARAM(SB_THUMBTRACK, 345));
    EXPECT_EQ(seen[0].lParam, reinterpret_cast<LPARAM>(bar));
    fake.events.push_back(event);
    DestroyWindow(bar);
    seen.clear();
    Drain();
    EXPECT_TRUE(seen.empty()) << "the bar is gone";
}

// ---- cursors, outlines ----

TEST_F(User, CursorsComeFromTheResourcesAndReachTheHostOnlyWhenTheyChange)
{
    HCURSOR arrow = LoadCursorA(nullptr, IDC_ARROW);
    EXPECT_FALSE(DestroyCursor(arrow));
    SetCursor(arrow);
    const int calls = fake.cursorCalls;
    SetCursor(arrow);
    EXPECT_EQ(fake.cursorCalls, calls);
    HCURSOR cross = LoadCursorA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(11776));
    ASSERT_NE(cross, nullptr);
    EXPECT_EQ(SetCursor(cross), arrow);
    EXPECT_EQ(fake.cursorKind, int{hostCursorImage});
    EXPECT_EQ(fake.hotX, 15);
    EXPECT_EQ(fake.hotY, 14);
    ASSERT_EQ(fake.cursorPixels.size(), 32U * 32U);
    EXPECT_EQ(fake.cursorPixels[0], 0U) << "transparent at the corner";
    EXPECT_TRUE(std::any_of(fake.cursorPixels.begin(), fake.cursorPixels.end(),
                            [](uint32_t pixel) { return pixel >> 24 == 0xFF; }));
    EXPECT_TRUE(DestroyCursor(cross));
    EXPECT_FALSE(DestroyCursor(cross));
    HCURSOR again = LoadCursorA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(11776));
    SetCursor(again);
    EXPECT_EQ(fake.cursorCalls, calls + 2) << "another cursor, whatever its address";
    EXPECT_EQ(LoadCursorA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(5)), nullptr);
    EXPECT_NE(LoadIconA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(128)), nullptr);
    EXPECT_NE(LoadImageA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(1), IMAGE_ICON, 16, 16, LR_DEFAULTCOLOR),
              nullptr);
    EXPECT_EQ(LoadImageA(nullptr, "/no/such.bmp", IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE), nullptr);
}

static void DrawOutline(HDC dc, int left, int top, int right, int bottom)
{
    const int previous = SetROP2(dc, R2_NOT);
    MoveToEx(dc, left, top, nullptr);
    LineTo(dc, right, top);
    LineTo(dc, right, bottom);
    LineTo(dc, left, bottom);
    LineTo(dc, left, top);
    SetROP2(dc, previous);
}

TEST_F(User, AnOutlineDrawnTwiceIsGoneAndNothingShowsInBetween)
{
    HDC dc = GetDC(nullptr);
    DrawOutline(dc, 10, 20, 110, 220);
    EXPECT_EQ(fake.outlineCalls, 0);
    GdiFlush();
    ASSERT_EQ(fake.outline.size(), 4U);
    int pixels = 0;
    for (const HostSegment& segment : fake.outline) {
        pixels += segment.x1 - segment.x0 + segment.y1 - segment.y0 + 1;
    }
    EXPECT_EQ(pixels, 2 * 100 + 2 * 200) << "every pixel of the rectangle once";
    DrawOutline(dc, 10, 20, 110, 220);
    DrawOutline(dc, 15, 20, 115, 220);
    EXPECT_EQ(fake.outlineCalls, 1);
    GetAsyncKeyState(VK_LBUTTON);
    EXPECT_EQ(fake.outlineCalls, 2);
    DrawOutline(dc, 15, 20, 115, 220);
    Drain();
    EXPECT_TRUE(fake.outline.empty());

    // Two sides, each closed with its end pixel by a slanted line of one pixel.
    SetROP2(dc, R2_NOT);
    MoveToEx(dc, 0, 300, nullptr);
    LineTo(dc, 400, 300);
    LineTo(dc, 401, 301);
    MoveToEx(dc, 400, 300, nullptr);
    LineTo(dc, 400, 0);
    LineTo(dc, 401, 1);
    GdiFlush();
    ASSERT_EQ(fake.outline.size(), 2U);
    bool corner = false;
    for (const HostSegment& segment : fake.outline) {
        corner = corner || (segment.x1 == 400 && segment.y1 == 300);
    }
    EXPECT_TRUE(corner);
}

// ---- shell ----

TEST_F(User, AChosenFileArrivesWithItsPartsWhenItFits)
{
    namespace fs = std::filesystem;
    const fs::path before_ = fs::current_path();
    const fs::path folder = fs::temp_directory_path() / "user-test-files";
    fs::create_directories(folder);
    fake.chosenFile = (folder / "Map001c.dat").string();
    char path[256] = "", title[64] = "";
    OPENFILENAMEA request = {};
    request.lStructSize = sizeof request;
    request.lpstrFilter = "Map dat file (*.dat)\0*.dat\0Map bmp file (*.bmp)\0*.bmp\0";
    request.nFilterIndex = 2;
    request.lpstrFile = path;
    request.nMaxFile = sizeof path;
    request.lpstrFileTitle = title;
    request.nMaxFileTitle = sizeof title;
    EXPECT_TRUE(GetOpenFileNameA(&request));
    EXPECT_EQ(path, fake.chosenFile);
    EXPECT_STREQ(title, "Map001c.dat");
    EXPECT_STREQ(path + request.nFileOffset, "Map001c.dat");
    EXPECT_STREQ(path + request.nFileExtension, "dat");
    EXPECT_EQ(fake.askedPattern, "*.bmp");
    EXPECT_EQ(fake.askedFolder, before_.string());
    EXPECT_EQ(fs::current_path(), fs::canonical(folder));
    fs::current_path(before_);

    strcpy(path, "kept");
    request.nMaxFile = 5;
    EXPECT_FALSE(GetOpenFileNameA(&request));
    EXPECT_STREQ(path, "kept");
    request.nMaxFile = sizeof path;
    fake.chosenFile.clear();
    EXPECT_FALSE(GetOpenFileNameA(&request));
    EXPECT_STREQ(path, "kept");
    EXPECT_EQ(fs::current_path(), before_);

    std::ofstream(folder / "guide.pdf") << "x";
    const HINSTANCE opened = ShellExecuteA(main, "open", "guide.pdf", nullptr, folder.c_str(), SW_SHOW);
    EXPECT_GT(reinterpret_cast<uintptr_t>(opened), 32U);
    EXPECT_EQ(fake.openedDocument, (folder / "guide.pdf").string());
    const HINSTANCE missing = ShellExecuteA(main, "open", "none.pdf", nullptr, folder.c_str(), SW_SHOW);
    EXPECT_LE(reinterpret_cast<uintptr_t>(missing), 32U);
    fs::remove_all(folder);
}

TEST_F(User, SoundsArePlayedFromTheResourcesAndMissingOnesAreSilent)
{
    EXPECT_TRUE(PlaySoundA(MAKEINTRESOURCEA(128), GetModuleHandleA(nullptr), SND_RESOURCE | SND_NODEFAULT));
    EXPECT_GT(fake.soundSize, 44U);
    fake.soundSize = 0;
    EXPECT_FALSE(PlaySoundA(MAKEINTRESOURCEA(127), GetModuleHandleA(nullptr), SND_RESOURCE | SND_NODEFAULT));
    EXPECT_TRUE(PlaySoundA(nullptr, nullptr, 0));
    EXPECT_TRUE(sndPlaySoundA(nullptr, SND_ASYNC));
    EXPECT_EQ(fake.soundSize, 0U);
}

} // namespace usertest
