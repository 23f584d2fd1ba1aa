// Runs the real program on the headless host, for tests of dialogs and of the flows that use them.
#pragma once

#include "app/application.h"
#include "dialogs/modal.h"
#include "editing/editing.h"
#include "mapdata/map_commands.h"
#include "platform/host/headless/headless.h"

#include <gtest/gtest.h>
#include <string>

// The program started and without a map; every test ends with a shutdown and with the whole script played.
class DialogDriver : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
};

// A press of the left button at one point of a window and its release at another.
void ScriptPressAndRelease(WindowPtr window, Point pressed, Point released);
// A click on the button of that text in the dialog that is on top by then.
void ScriptButton(const std::string& text);

WindowPtr TopDialog();                 // null when there is none
std::string TextsOf(WindowPtr dialog); // of its static texts, a line each
COLORREF PixelOf(WindowPtr window, int h, int v);
int CountPixels(WindowPtr window, const Rect& rect, COLORREF colour); // of that RGB
Point CentreOf(const Rect& rect);
