// Whole sessions of the program on the headless host: a folder with maps whose art encodes its own coordinates, a
// script of what the user does, and checks in the middle of it. Every session ends by the program's own commands.
#pragma once

#include "tests/dialog_driver.h"

#include <functional>
#include <string>
#include <vector>

struct MapPoint {
    int h;
    int v;
};

// What a map data file holds.
struct MapFile {
    int16_t words[28];
    std::string text;
    std::vector<uint16_t> cells; // row by row

    MapFile(int id, int width, int height); // no terrain
    uint16_t& Cell(int x, int y);
    std::string Bytes() const;
};

enum HeaderWord {
    idWord = 0,
    columnsWord = 3,
    rowsWord = 4,
    leftWord = 5,
    topWord = 6,
    rightWord = 7,
    bottomWord = 8,
    markerFieldWord = 24,
    eastingWord = 25,
    northingWord = 26,
    versionWord = 27,
};

std::string ArtBytes(int width, int height); // a 24-bit bitmap file
uint32_t ArtColour(int h, int v);            // 0x00RRGGBB of an art pixel

class EditorSession : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // ---- files of the session's folder, which is the current one ----
    std::string Path(const std::string& name) const;
    void Write(const std::string& name, const std::string& bytes) const;
    std::string Read(const std::string& name) const; // empty when there is no such file
    bool Exists(const std::string& name) const;
    std::vector<std::string> Files() const;
    // Map101c.dat and Map101c.bmp, for the ID 101.
    void WriteMap(const MapFile& map) const;

    // ---- the script ----
    void OpenMap(const std::string& name = "Map101c.dat"); // File > Open Map
    // Writes a map with the ID 101, changed by fill unless that is null, and opens it.
    void OpenWith(const std::function<void(MapFile*)>& fill = nullptr, int width = 600, int height = 400);
    // Starts the program and plays the script to its end. Expects the status.
    void Run(int status = 0);

    std::string folder; // without a separator at its end

  private:
    std::string startFolder;
};

// ---- steps of a user ----

void ThenCheck(std::function<void()> check); // when everything before has come to rest
void ClickButton(const std::string& text);   // of the dialog that is on top by then
void ExpectMessage(const std::string& text, const std::string& button = "OK"); // and answers it
void Quit();                                                                   // without saving
void PressKeyWith(int modifierKey, const std::function<void()>& steps);
void DragOnMap(const std::vector<MapPoint>& points, int delay = scriptDelay); // pixels of the map
void ClickOnMap(int h, int v, int button = hostLeftButton);
void AltDragOnMap(const std::vector<MapPoint>& points);
// Opens a palette by its key and drags it to that place of the screen.
void OpenPalette(char key, int left = 800, int top = 100);
void OpenFeatures(int tool = 0); // and chooses the tool unless it is 0
void OpenMoveCosts(int tool = 0);
void ClickItem(int itemID); // of the dialog that is on top by then
void ClosePalette();

// ---- what is to be seen ----

std::string MessageText(int id); // of the string table
std::string Title();             // of the map window
uint32_t SeenAt(int h, int v);   // map pixel, as presented: 0x00RRGGBB
ScriptPoint OnScreenOfMap(int h, int v);
std::vector<uint32_t> Screen();
// Expects every pixel of the view to be that of the function.
void ExpectView(const std::function<uint32_t(int, int)>& colour, const char* when);
void ExpectArt(const char* when);
// Where two screens first differ; empty when they are the same.
std::string Difference(const std::vector<uint32_t>& first, const std::vector<uint32_t>& second);
uint16_t CellWord(int x, int y);
// The cells that are not 0, "x,y=word" in hexadecimal, row by row.
std::string MarkedCells();
int ItemState(int itemID); // of the top dialog
bool IsCommandEnabled(int command);
bool IsCommandChecked(int command);
