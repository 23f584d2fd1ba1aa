// The devices asked directly: Qt's own idea of them is as old as the last event that it handled.
#include "platform/host/qt/qt_internal.h"
#include "platform/host/qt/qt_server.h"

#include <QApplication>
#include <QCursor>
#include <QPixmap>
#include <QScreen>
#include <cmath>

namespace qthost {
namespace {

struct MaskRow {
    unsigned server;
    unsigned host;
};

// The masks of the X protocol's pointer query.
constexpr MaskRow buttonMasks[] = {
    {1 << 8, hostLeftButton},
    {1 << 10, hostRightButton},
};

constexpr MaskRow modifierMasks[] = {
    {1 << 0, hostShift},
    {1 << 2, hostControl},
    {1 << 3, hostAlt}, // Alt
    {1 << 6, hostAlt}, // Super
};

Window* captured = nullptr;

struct CursorState {
    int kind = -1;
    int hotX = 0;
    int hotY = 0;
    QImage image;
    QCursor cursor;
};

CursorState* cursorState = nullptr;

template <size_t count>
unsigned Translate(const MaskRow (&rows)[count], unsigned serverMask)
{
    unsigned result = 0;
    for (const MaskRow& row : rows) {
        if (serverMask & row.server) {
            result |= row.host;
        }
    }
    return result;
}

// Qt hands the pixels of a cursor to the server as they are, so they are enlarged here.
QCursor ImageCursor(const QImage& image, int hotX, int hotY)
{
    const double scale = QGuiApplication::primaryScreen()->devicePixelRatio();
    const QImage scaled = scale == 1.0 ? image
                                       : image.scaled(static_cast<int>(std::lround(image.width() * scale)),
                                                      static_cast<int>(std::lround(image.height() * scale)),
                                                      Qt::IgnoreAspectRatio, Qt::FastTransformation);
    return QCursor(QPixmap::fromImage(scaled), static_cast<int>(hotX * scale), static_cast<int>(hotY * scale));
}

} // namespace

// Qt keeps each screen's corner where the server has it and scales the rest.
QPoint ToServer(int x, int y)
{
    const QScreen* screen = QGuiApplication::screenAt(QPoint(x, y));
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    const QPoint corner = screen->geometry().topLeft();
    const double scale = screen->devicePixelRatio();
    return QPoint(corner.x() + qRound((x - corner.x()) * scale), corner.y() + qRound((y - corner.y()) * scale));
}

QPoint ToLogical(int x, int y)
{
    const QScreen* holder = QGuiApplication::primaryScreen();
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect area = screen->geometry();
        const double scale = screen->devicePixelRatio();
        if (x >= area.x() && y >= area.y() && x < area.x() + area.width() * scale &&
            y < area.y() + area.height() * scale) {
            holder = screen;
        }
    }
    // Rounded as Qt rounds the positions in its events, so that a poll and an event agree.
    const QPoint corner = holder->geometry().topLeft();
    const double scale = holder->devicePixelRatio();
    return QPoint(corner.x() + qRound((x - corner.x()) / scale), corner.y() + qRound((y - corner.y()) / scale));
}

unsigned HostButtonsOf(Qt::MouseButtons buttons)
{
    unsigned result = 0;
    if (buttons & Qt::LeftButton) {
        result |= hostLeftButton;
    }
    if (buttons & Qt::RightButton) {
        result |= hostRightButton;
    }
    return result;
}

Devices QueryDevices()
{
    static QPoint lastPointer;
    Devices devices = {};
    ServerPointer server = {};
    if (QueryServerPointer(&server)) {
        devices.pointer = lastPointer = ToLogical(server.x, server.y);
        devices.buttons = Translate(buttonMasks, server.mask);
        devices.modifiers = Translate(modifierMasks, server.mask);
        return devices;
    }
    if (DisplayIsLost()) {
        devices.pointer = lastPointer;
        return devices;
    }
    devices.pointer = QCursor::pos();
    devices.buttons = HostButtonsOf(QGuiApplication::mouseButtons());
    devices.modifiers = HostModifiersOf(QGuiApplication::keyboardModifiers());
    return devices;
}

void Pointer(int* x, int* y)
{
    const Devices devices = QueryDevices();
    *x = devices.pointer.x();
    *y = devices.pointer.y();
}

unsigned Buttons()
{
    return SessionEnded() ? 0 : QueryDevices().buttons;
}

unsigned Modifiers()
{
    return QueryDevices().modifiers;
}

void WarpPointer(int x, int y)
{
    const QPoint place = ToServer(x, y);
    if (!WarpServerPointer(place.x(), place.y())) {
        QCursor::setPos(x, y);
    }
}

void CapturePointer(HostWindow* handle)
{
    if (captured != nullptr) {
        captured->client->releaseMouse();
    }
    captured = handle != nullptr ? FromHandle(handle) : nullptr;
    if ((captured != nullptr) && !captured->client->isVisible()) {
        captured = nullptr;
    }
    if (captured != nullptr) {
        captured->client->grabMouse();
    }
    FlushDisplay();
}

void ReleaseCaptureOf(const Window* window)
{
    if (captured == window) {
        CapturePointer(nullptr);
    }
}

void SetCursor(int kind, const HostImage* image, int hotX, int hotY)
{
    QImage pixels;
    if (kind == hostCursorImage) {
        pixels = QImage(reinterpret_cast<const uchar*>(image->pixels), image->width, image->height, image->width * 4,
                        QImage::Format_ARGB32);
    }
    if (cursorState == nullptr) {
        cursorState = new CursorState;
    }
    // The program sets its cursor at every move of the pointer.
    if (kind == cursorState->kind && hotX == cursorState->hotX && hotY == cursorState->hotY &&
        pixels == cursorState->image) {
        return;
    }
    cursorState->kind = kind;
    cursorState->hotX = hotX;
    cursorState->hotY = hotY;
    cursorState->image = pixels.copy();
    if (kind == hostCursorImage) {
        cursorState->cursor = ImageCursor(cursorState->image, hotX, hotY);
    } else {
        cursorState->cursor = QCursor(kind == hostCursorWait ? Qt::WaitCursor : Qt::ArrowCursor);
    }
    for (Window* window : windows) {
        ApplyCursor(window);
    }
    FlushDisplay();
}

void ApplyCursor(Window* window)
{
    if (cursorState == nullptr) {
        return;
    }
    QWidget* client = window->client;
    client->setCursor(cursorState->cursor);
    // Where a menu has just closed over the pointer, Qt does not know yet that it is over the client area again.
    const QPoint place = client->mapFromGlobal(QueryDevices().pointer);
    if (client->isVisible() && client->rect().contains(place) && window->top->windowHandle() != nullptr) {
        window->top->windowHandle()->setCursor(cursorState->cursor);
    }
}

void ForgetCursor()
{
    delete cursorState;
    cursorState = nullptr;
    captured = nullptr;
}

} // namespace qthost
