// The headless host itself: what every other test relies on.
#include "platform/host/headless/headless.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

constexpr int keyAlt = 0x12;

class HeadlessHost : public testing::Test {
  protected:
    void SetUp() override
    {
        HeadlessReset();
        const HostWindowRequest request = {hostFramedWindow, nullptr, 0, 0, 400, 300, 1, "Frame"};
        frame = headlessHost.createWindow(&request, &frameToken);
        const HostMenuItem items[] = {
            {0, -1, 0, "File"}, {0, 0, 101, "New"}, {0, 1, 0, ""}, {1, -1, 0, "View"}, {1, 0, 301, "Grid"}};
        headlessHost.buildMenu(frame, items, 5);
        headlessHost.showWindow(frame, hostShowActive);
        origin = HeadlessClientOrigin();
        TakeEvents();
    }

    void TearDown() override
    {
        HeadlessReset();
    }

    HostWindow* ShowPopup()
    {
        const HostWindowRequest request = {hostPopupWindow, frame, origin.x + 50, origin.y + 50, 100, 80, 0, "Popup"};
        HostWindow* popup = headlessHost.createWindow(&request, &popupToken);
        headlessHost.showWindow(popup, hostShowInactive);
        return popup;
    }

    std::vector<HostEvent> TakeEvents()
    {
        std::vector<HostEvent> result;
        HostEvent event;
        while (headlessHost.nextEvent(&event)) {
            result.push_back(event);
        }
        return result;
    }

    std::vector<HostEvent> RunScript()
    {
        std::vector<HostEvent> result;
        while (HeadlessStepsLeft() > 0) {
            headlessHost.pump(10);
            for (const HostEvent& event : TakeEvents()) {
                result.push_back(event);
            }
        }
        return result;
    }

    // The kinds and tokens of events in the order they came, as text: "down:f" is a press in the frame's client area.
    std::string Story(const std::vector<HostEvent>& events)
    {
        static const char* names[] = {"?",     "down", "up",     "move",     "wheel", "keydown",
                                      "keyup", "menu", "scroll", "geometry", "close", "activate"};
        std::string story;
        for (const HostEvent& event : events) {
            story += std::string(names[event.kind]) + (event.token == &popupToken ? ":p " : ":f ");
        }
        return story;
    }

    HostWindow* frame = nullptr;
    ScriptPoint origin = {};
    int frameToken = 0;
    int popupToken = 0;
};

TEST_F(HeadlessHost, PointerEventsGoToTheTopmostWindowAndStayWithThePress)
{
    EXPECT_EQ(origin.x, 4);
    EXPECT_EQ(origin.y, 46);
    ShowPopup();
    ScriptDrag({{origin.x + 60, origin.y + 60}, {origin.x + 10, origin.y + 10}});
    ScriptClick(origin.x + 20, origin.y + 20);
    ScriptClick(10, 10); // the caption belongs to the window manager
    EXPECT_EQ(Story(RunScript()), "move:p down:p move:p up:p move:f down:f up:f ");
}

TEST_F(HeadlessHost, PollingTheDevicesRunsTheScript)
{
    ScriptPress(origin.x + 1, origin.y + 1);
    ScriptMove(origin.x + 30, origin.y + 1, 20);
    ScriptRelease(20);
    RunScript();
    ScriptPress(origin.x + 1, origin.y + 1);
    ScriptMove(origin.x + 30, origin.y + 1, 20);
    ScriptRelease(20);
    headlessHost.pump(10);
    TakeEvents();
    int polls = 0;
    int x = 0;
    int y = 0;
    while (headlessHost.buttons() & hostLeftButton) {
        headlessHost.pointer(&x, &y);
        polls++;
    }
    EXPECT_EQ(x, origin.x + 30);
    EXPECT_NEAR(polls, 20, 2);
    EXPECT_EQ(Story(TakeEvents()), "move:f up:f ") << "a poll loses no event";
}

TEST_F(HeadlessHost, KeysCarryCharactersAndModifiers)
{
    ScriptText("a?");
    ScriptControl('s');
    ScriptKeyDown(keyAlt);
    ScriptKey(int{'L'});
    ScriptKeyUp(keyAlt);
    std::vector<std::string> downs;
    for (const HostEvent& event : RunScript()) {
        if (event.kind == hostKeyDown && event.character) {
            downs.push_back(std::to_string(event.character) + "/" + std::to_string(event.modifiers));
        }
    }
    EXPECT_EQ(downs, (std::vector<std::string>{"97/0", "63/1", "19/2", "108/4"}));
}

TEST_F(HeadlessHost, DisabledCommandsAndTitlesRefuseTheChoice)
{
    headlessHost.setMenuItem(frame, 0, 0, 0, 0);
    headlessHost.setMenuItem(frame, 1, -1, 0, 0);
    ScriptMenu(101);
    ScriptMenu(301);
    ScriptMenu(999);
    EXPECT_EQ(Story(RunScript()), "");
    EXPECT_EQ(headless.refusedChoices, 3);
    headlessHost.setMenuItem(frame, 1, -1, 1, 0);
    ScriptMenu(301);
    const std::vector<HostEvent> events = RunScript();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].code, 301);
}

TEST_F(HeadlessHost, OnlyWhatWasPresentedIsSeen)
{
    std::vector<uint32_t> pixels(400 * 300, 0x112233);
    headlessHost.setPicture(frame, pixels.data(), 400, 300, 400);
    const HostRect part = {0, 0, 10, 300};
    headlessHost.present(frame, &part);
    EXPECT_EQ(HeadlessPixel(origin.x + 9, origin.y), 0x112233u);
    EXPECT_NE(HeadlessPixel(origin.x + 10, origin.y), 0x112233u);
    HostWindow* popup = ShowPopup();
    EXPECT_NE(HeadlessPixel(origin.x + 50, origin.y + 50), 0x112233u);
    headlessHost.destroyWindow(popup);
    ScriptResize(200, 200);
    EXPECT_EQ(Story(RunScript()), "geometry:f ");
    EXPECT_EQ(HeadlessPixel(origin.x + 150, origin.y), 0x112233u) << "a new size shows the whole picture";
}

TEST_F(HeadlessHost, AProgramThatNeverEndsIsAskedToCloseAndThenEnded)
{
    int requests = 0;
    const auto waitForEver = [&] {
        for (;;) {
            headlessHost.pump(10);
            for (const HostEvent& event : TakeEvents()) {
                requests += event.kind == hostCloseRequest;
            }
            if (requests == 1 && headless.now < 2000) {
                break;
            }
        }
    };
    EXPECT_EXIT(waitForEver(), testing::ExitedWithCode(3), "20 requests to close");
    EXPECT_EXIT(while (true) headlessHost.buttons(), testing::ExitedWithCode(3), "still polls the devices");
}

} // namespace
