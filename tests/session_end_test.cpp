// The end of the session ends the program, whatever it is doing, and answers no question.
#include "platform/platform.h"
#include "tests/editor_session.h"

namespace {

typedef EditorSession SessionEnd;

// Presses the left button there and keeps it down.
void HoldOnMap(int h, int v)
{
    ScriptCall([=] {
        const ScriptPoint place = OnScreenOfMap(h, v);
        ScriptPress(place.x, place.y);
        ScriptMove(place.x + 20, place.y + 10);
        ScriptMove(place.x + 40, place.y);
    });
    ScriptWait(30);
}

void AskToSave()
{
    OpenPalette('t', woodsTool);
    ClickOnMap(205, 105);
    ScriptControl('s');
    ThenCheck([] { ASSERT_NE(TopDialog(), nullptr); });
}

const struct {
    const char* name;
    void (*enter)();
    unsigned buttonsHeld;
} situations[] = {
    {"the main loop", [] {}, 0},
    {"a palette", [] { OpenPalette('t'); }, 0},
    {"a question over a palette", AskToSave, 0},
    {"a question with its answer still in the queue",
     [] {
         AskToSave();
         ScriptKey(VK_RETURN, 0);
     },
     0},
    {"a question whose button is held down",
     [] {
         AskToSave();
         ScriptCall([] {
             const Rect& yes = TopDialog()->defaultItem->rect;
             const HostRect& place = HeadlessPopup()->client;
             ScriptPress(place.left + yes.left + 5, place.top + yes.top + 5);
         });
         ScriptWait(30);
     },
     hostLeftButton},
    {"a number dialog",
     [] {
         ScriptMenu(203);
         ThenCheck([] { ASSERT_NE(TopDialog(), nullptr); });
     },
     0},
    {"a stroke",
     [] {
         OpenPalette('t', woodsTool);
         HoldOnMap(205, 105);
         ScriptCall([] { EXPECT_NE(CellWord(20, 10), 0) << "no stroke"; });
     },
     hostLeftButton},
    {"a band",
     [] {
         OpenPalette('t', woodsTool);
         ScriptKeyDown(VK_MENU);
         HoldOnMap(205, 105);
     },
     hostLeftButton},
    {"the grow box",
     [] {
         ScriptCall([] {
             const HostRect& client = HeadlessFrame()->client;
             ScriptPress(client.right - 5, client.bottom - 5);
             ScriptMove(client.right - 40, client.bottom - 40);
         });
         ScriptWait(30);
     },
     hostLeftButton},
};

TEST_F(SessionEnd, EndsTheProgramAtOnceAndAnswersNothing)
{
    constexpr uint32_t soon = 200; // milliseconds
    for (const auto& situation : situations) {
        SCOPED_TRACE(situation.name);
        HeadlessReset();
        host->start();
        OpenWith();
        const std::string saved = Read("Map101c.dat");
        situation.enter();
        uint32_t ended = 0;
        ScriptSessionEnd(0);
        ScriptCall(
            [&] {
                ended = headless.now;
                EXPECT_EQ(headless.buttons, situation.buttonsHeld);
            },
            0);
        Run();
        EXPECT_LT(headless.now - ended, soon);
        EXPECT_TRUE(Read("Map101c.dat") == saved);
        EXPECT_FALSE(Exists("Map101c.dat_old"));
    }
}

} // namespace
