#include "editing/area_fill.h"

#include "dialogs/modal.h"
#include "editing/stroke.h"
#include "mapdata/rescue.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

#include <algorithm>

namespace {

constexpr int questionHeight = 40;
constexpr int featuresQuestionWidth = 190;
constexpr int moveCostQuestionWidth = 130;
constexpr int buttonWidth = 50;
constexpr int buttonHeight = 20;
constexpr int buttonStep = 60; // from one button's left edge to the next one's, leftwards

enum Answer { cancelAnswer = 1, fillAnswer = 2, eraseAnswer = 3 };

constexpr TextID buttonTexts[] = {cancelButtonText, fillButtonText, eraseButtonText};

void DrawBand(const Rect* band)
{
    FrameOutline(shell.mapWindowDC, band);
    GdiFlush();
    ValidRect(band); // a pending repaint must not wipe the band
}

Rect FollowBand(Point start)
{
    Rect band = MakeRect(start.h, start.v, start.h, start.v);
    DrawBand(&band);
    Point last = start;
    Point point;
    BeginPointerTrail(&currentEvent);
    while (NextTrailPoint(&point)) {
        if (EqualPt(point, last)) {
            continue;
        }
        DrawBand(&band);
        Pt2Rect(start, point, &band);
        DrawBand(&band);
        last = point;
    }
    return band;
}

Rect Scaled(const Rect& rect, int numerator, int denominator)
{
    return MakeRect(rect.left * numerator / denominator, rect.top * numerator / denominator,
                    rect.right * numerator / denominator, rect.bottom * numerator / denominator);
}

// The cells of the view that lie in the selection and in the map, whose record may count more cells than its size
// has; partly visible last rows and columns stay out.
Rect SelectedVisibleCells()
{
    Rect cells = Scaled(view.viewRect, 1, cellSize);
    const MapRecord& record = currentMap.record;
    const Rect grid = MakeRect(0, 0, std::min<int>(record.columnCount, CellCountOf(record.mapRect.right)),
                               std::min<int>(record.rowCount, CellCountOf(record.mapRect.bottom)));
    if (ClipToBounds(&cells, &editing.selectionRect)) {
        ClipToBounds(&cells, &grid);
    }
    return cells;
}

void ChangeFeatures(int mode)
{
    const Rect cells = SelectedVisibleCells();
    for (int y = cells.top; y < cells.bottom; y++) {
        for (int x = cells.left; x < cells.right; x++) {
            ChangeFeatureCell(x, y, mode);
        }
    }
}

void FillMoveCosts()
{
    const Rect cells = SelectedVisibleCells();
    const TerrainCell moveCost = SelectedMoveCost().value;
    for (int y = cells.top; y < cells.bottom; y++) {
        for (int x = cells.left; x < cells.right; x++) {
            TerrainCell& cell = currentMap.cellColumns[x][y];
            cell = static_cast<TerrainCell>((cell & cellFeaturesMask) | moveCost);
        }
    }
}

void ActOnAnswer(int answer)
{
    if (answer != fillAnswer && answer != eraseAnswer) {
        return;
    }
    if (shell.featuresPaletteOpen) {
        if (editing.featureTool != noFeatureTool && !EmptyRect(&editing.selectionRect)) {
            ChangeFeatures(answer == fillAnswer ? setCell : clearCell);
        }
    } else if (answer == fillAnswer && MoveCostOfTool(editing.moveCostTool) != nullptr) {
        FillMoveCosts();
    }
}

// At the selection's bottom-right corner, hung to its left, whole on the screen.
Point QuestionPlace(int width)
{
    Point place = MakePoint(editing.selectionRect.right * cellSize - width - view.viewRect.left,
                            editing.selectionRect.bottom * cellSize - view.viewRect.top);
    LocalToGlobal(&place);
    const Rect& screen = shell.screenRect;
    return MakePoint(std::max<int>(screen.left, std::min<int>(place.h, screen.right - width)),
                     std::max<int>(screen.top, std::min<int>(place.v, screen.bottom - questionHeight)));
}

WindowPtr CreateQuestion()
{
    const int width = shell.featuresPaletteOpen ? featuresQuestionWidth : moveCostQuestionWidth;
    const int buttons = shell.featuresPaletteOpen ? 3 : 2;
    const Point place = QuestionPlace(width);
    const WindowPtr question = NewMockDialog(0, width, questionHeight, "", &place);
    if (question == nullptr) {
        return nullptr;
    }
    for (int i = 0; i < buttons; i++) {
        char text[textBufferSize];
        GetText(text, buttonTexts[i]);
        const int left = width - buttonStep - i * buttonStep;
        const int top = questionHeight - 30;
        AddItem(question,
                {pushButtonItem, MakeRect(left, top, left + buttonWidth, top + buttonHeight), text, cancelItemID});
    }
    // With a button missing for want of memory the numbers would tell the wrong answer.
    if (question->itemCount != buttons) {
        DisposeMockDialog(question);
        return nullptr;
    }
    return question;
}

// The map window is the current port.
void AskFill(WindowPtr palette, const Rect* band)
{
    ShowHide(palette, 0);
    PaintMapWindow();
    const WindowPtr question = CreateQuestion();
    if (question == nullptr) {
        ShowHide(palette, 1);
        return;
    }
    ShowWindowInactive(question);
    DrawMockDialog(question, true);
    int32_t answer = 0;
    while (answer != cancelAnswer && answer != fillAnswer && answer != eraseAnswer && !shell.quitRequested) {
        int32_t itemID;
        ModalDialogStep(question, &answer, &itemID, nullptr);
        KeepOnTop(question);
        if (answer == mapUpdateCode) {
            // The band is part of the window's picture: a repaint takes it away whole and it is drawn again.
            InvalidateMapRect(nullptr);
            PaintMapWindow();
            DrawBand(band);
        }
    }
    if (!shell.quitRequested) {
        ActOnAnswer(answer);
        NoteMapChange();
    }
    DisposeMockDialog(question);
    ShowHide(palette, 1);
}

} // namespace

void SelectArea(WindowPtr palette, Point start)
{
    editing.selectionRect = {};
    const SavedPort saved = UsePort(shell.mapWindow);
    GlobalToLocal(&start);
    const Rect band = FollowBand(start);
    editing.selectionRect = band;
    if (!EmptyRect(&editing.selectionRect)) {
        editing.selectionRect = Scaled(band, 1, cellSize);
        AskFill(palette, &band);
    }
    // One repaint removes the band and shows the cells anew, wherever marks or a palette lay over the band.
    InvalidateMapRect(nullptr);
    editing.selectionRect = {};
    RestorePort(saved);
}
