// Lines above everything on the screen: thin windows that let every click through. They are drawn by the X server
// from a background pattern, because the loops that move them handle no events meanwhile.
#include "platform/host/qt/qt_internal.h"
#include "platform/host/qt/qt_server.h"

#include <QBackingStore>
#include <QWindow>
#include <algorithm>

namespace qthost {
namespace {

constexpr int lineWidth = 2;

std::vector<QWindow*> lines;
size_t linesShown = 0;

QWindow* NewLine()
{
    QWindow* line = new QWindow;
    line->setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint |
                   Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus);
    line->create();
    SetDashedGround(line->winId());
    return line;
}

// What a line leaves free again must not wait for the next event either: the windows' own contents go out once more.
void RestoreUnder(const std::vector<QRect>& places)
{
    for (const Window* window : windows) {
        QBackingStore* store = window->top->backingStore();
        QWindow* native = window->top->windowHandle();
        if ((store == nullptr) || (native == nullptr) || !native->isExposed()) {
            continue;
        }
        QRegion region;
        for (const QRect& place : places) {
            region += place.translated(-window->top->geometry().topLeft());
        }
        region &= window->top->rect();
        if (!region.isEmpty()) {
            store->flush(region, native);
        }
    }
}

} // namespace

void ShowOutline(const HostSegment* segments, int count)
{
    std::vector<QRect> left;
    for (size_t i = 0; i < linesShown; i++) {
        left.push_back(lines[i]->geometry());
    }
    const size_t wanted = count > 0 ? static_cast<size_t>(count) : 0;
    while (lines.size() < wanted) {
        lines.push_back(NewLine());
    }
    for (size_t i = 0; i < wanted; i++) {
        const HostSegment& segment = segments[i];
        const QRect place(QPoint(std::min(segment.x0, segment.x1), std::min(segment.y0, segment.y1)),
                          QPoint(std::max(segment.x0, segment.x1), std::max(segment.y0, segment.y1)));
        const bool upright = place.height() > place.width();
        lines[i]->setGeometry(upright ? QRect(place.x(), place.y(), lineWidth, place.height())
                                      : QRect(place.x(), place.y(), place.width(), lineWidth));
        if (!lines[i]->isVisible()) {
            lines[i]->show();
        }
        lines[i]->raise();
    }
    for (size_t i = wanted; i < linesShown; i++) {
        lines[i]->hide();
    }
    linesShown = wanted;
    RestoreUnder(left);
    FlushDisplay();
}

void DestroyOutline()
{
    for (QWindow* line : lines) {
        delete line;
    }
    lines.clear();
    linesShown = 0;
}

} // namespace qthost
