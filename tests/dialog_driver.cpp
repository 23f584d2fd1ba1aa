#include "tests/dialog_driver.h"

#include "platform/user/platform_reset.h"

namespace {

const DialogItem* ButtonWithText(WindowPtr dialog, const std::string& text)
{
    const DialogItem* item = dialog != nullptr ? dialog->firstItem : nullptr;
    while (item != nullptr && !(item->kind == pushButtonItem && text == item->text)) {
        item = item->next;
    }
    return item;
}

ScriptPoint OnScreen(WindowPtr window, Point point)
{
    WindowPtr savedPort = nullptr;
    GetPort(&savedPort);
    SetPort(window);
    LocalToGlobal(&point);
    SetPort(savedPort);
    return {point.h, point.v};
}

} // namespace

void DialogDriver::SetUp()
{
    HeadlessReset();
    host = &headlessHost;
    host->start();
    shell = {};
    view = {};
    editing = {};
    currentMap = {};
    ASSERT_EQ(RegisterWindowClasses(), 1);
    InitApplication();
    ASSERT_EQ(shell.quitRequested, 0u);
}

void DialogDriver::TearDown()
{
    host->pump(2 * scriptDelay); // the release of the last key or button
    EXPECT_EQ(HeadlessStepsLeft(), 0) << "steps that no loop took";
    CloseFile(currentMap.openDataFile);
    ShutdownApplication();
    PlatformReset();
    SetPort(nullptr);
    host->stop();
}

void ScriptPressAndRelease(WindowPtr window, Point pressed, Point released)
{
    ScriptDrag({OnScreen(window, pressed), OnScreen(window, released)});
}

void ScriptButton(const std::string& text)
{
    ScriptCall([text] {
        const DialogItem* button = ButtonWithText(TopDialog(), text);
        ASSERT_NE(button, nullptr) << "no button " << text;
        const Point centre = CentreOf(button->rect);
        ScriptPressAndRelease(TopDialog(), centre, centre);
    });
}

WindowPtr TopDialog()
{
    const HWND top = GetTopWindow(nullptr);
    const WindowPtr record = top != nullptr ? WindowRecord(top) : nullptr;
    return record != shell.mapWindow ? record : nullptr;
}

std::string TextsOf(WindowPtr dialog)
{
    std::string texts;
    for (const DialogItem* item = dialog != nullptr ? dialog->firstItem : nullptr; item != nullptr;
         item = item->next) {
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
