// The real program on the headless host: whole sessions that a script plays, with checks in the middle of it, and the
// started program for tests that drive its parts. Maps have art that encodes its own coordinates.
#pragma once

#include "app/application.h"
#include "dialogs/modal.h"
#include "editing/editing.h"
#include "mapdata/map_commands.h"
#include "platform/host/headless/headless.h"
#include "tests/map_files.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

struct MapPoint {
    int h;
    int v;
};

// The program started and without a map; every test ends with a shutdown and with the whole script played.
class StartedProgram : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
};

// A session from the start of the program to its end by its own commands, in a folder of maps.
class EditorSession : public testing::Test, public TemporaryFolder {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Map101c.dat and Map101c.bmp, for the ID 101.
    void WriteMap(const MapFile& map) const;

    void OpenMap(const std::string& name = "Map101c.dat"); // File > Open Map
    // Writes a map with the ID 101, changed by fill unless that is null, and opens it.
    void OpenWith(const std::function<void(MapFile*)>& fill = nullptr, int width = 600, int height = 400);
    // Starts the program and plays the script to its end.
    void Run();
    void QuitAndRun();

    // The whole screen as it is when everything before has come to rest, and that it is the same again.
    void KeepScreen();
    void ExpectKeptScreen(const char* when);

    std::vector<uint32_t> keptScreen;
};

std::string ArtBytes(int width, int height); // a 24-bit bitmap file
uint32_t ArtColour(int h, int v);            // 0x00RRGGBB of an art pixel

// ---- steps of a user ----

void ThenCheck(std::function<void()> check); // when everything before has come to rest
// A press of the left button at one point of a window and its release at another.
void ScriptPressAndRelease(WindowPtr window, Point pressed, Point released);
void ScriptButton(const std::string& text); // of the dialog that is on top by then
void ClickButton(const std::string& text);  // when everything before has come to rest
void ClickItem(int itemID);
void ExpectMessage(const std::string& text, const std::string& button = "OK"); // and answers it
void Quit();                                                                   // without saving
void PressKeyWith(int modifierKey, const std::function<void()>& steps);
void DragOnMap(const std::vector<MapPoint>& points, int delay = scriptDelay); // pixels of the map
void ClickOnMap(int h, int v, int button = hostLeftButton);
void AltDragOnMap(const std::vector<MapPoint>& points);
// Opens a palette by its key, drags it to that place of the screen and chooses the tool, unless it is 0.
void OpenPalette(char key, int tool = 0, int left = 800, int top = 100);
void ClosePalette();

// ---- what is to be seen ----

WindowPtr TopDialog();                 // null when there is none
std::string TextsOf(WindowPtr dialog); // of its static texts, a line each
COLORREF PixelOf(WindowPtr window, int h, int v);
int CountPixels(WindowPtr window, const Rect& rect, COLORREF colour); // of that RGB
Point CentreOf(const Rect& rect);
std::string MessageText(int id); // of the string table
std::string Title();             // of the map window
MapPoint SizeOf(const HeadlessWindow* window);
uint32_t SeenAt(int h, int v); // map pixel, as presented: 0x00RRGGBB
ScriptPoint OnScreenOfMap(int h, int v);
std::vector<uint32_t> Screen();
// Expects every pixel of the view to be that of the function.
void ExpectView(const std::function<uint32_t(int, int)>& colour, const char* when);
void ExpectArt(const char* when);
// Where two screens first differ; empty when they are the same.
std::string Difference(const std::vector<uint32_t>& first, const std::vector<uint32_t>& second);
uint16_t CellWord(int x, int y);
std::string MarkedCells();          // all that are not 0, "x,y=word", row by row
bool IsCommandEnabled(int command); // the item and its title
bool IsCommandChecked(int command);
