#include "platform/host/qt/qt_internal.h"
#include "platform/host/qt/qt_server.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QIcon>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QThread>
#include <QWindow>
#include <algorithm>

namespace qthost {
namespace {

constexpr QRgb behindPicture = 0xFFC0C0C0; // where a client area outgrew its picture, until the program has drawn
constexpr int showDeadline = 1000;
constexpr int settleDeadline = 100;
constexpr int sizeDeadline = 800; // for a window manager that is busy
constexpr int refusedSizeDeadline = 30;

unsigned deliveredButtons = 0; // presses whose releases are ours

class ClientArea : public QWidget {
  public:
    ClientArea(Window* owner, QWidget* parent, Qt::WindowFlags flags) : QWidget(parent, flags), window(owner)
    {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setAttribute(Qt::WA_NoSystemBackground);
        setMouseTracking(true);
        setFocusPolicy(Qt::StrongFocus);
        setContextMenuPolicy(Qt::PreventContextMenu);
    }

  protected:
    void paintEvent(QPaintEvent* event) override
    {
        QPainter painter(this);
        const QRect pictured = window->picture.rect();
        for (const QRect& rect : event->region()) {
            const QRect part = rect & pictured;
            if (!part.isEmpty()) {
                painter.drawImage(part.topLeft(), window->picture, part);
            }
        }
        for (const QRect& rect : event->region() - pictured) {
            painter.fillRect(rect, QColor(behindPicture));
        }
    }

    void mousePressEvent(QMouseEvent* event) override
    {
        QueuePointer(hostPointerDown, event);
    }

    void mouseDoubleClickEvent(QMouseEvent* event) override
    {
        QueuePointer(hostPointerDown, event);
    }

    void mouseReleaseEvent(QMouseEvent* event) override
    {
        QueuePointer(hostPointerUp, event);
    }

    void mouseMoveEvent(QMouseEvent* event) override
    {
        QueuePointer(hostPointerMove, event);
    }

    void wheelEvent(QWheelEvent* event) override
    {
        QueueWheel(window, event);
        event->accept();
    }

    void keyPressEvent(QKeyEvent* event) override
    {
        if (!OpenMenuWithKey(event)) {
            QueueKey(window, event);
        }
    }

    void keyReleaseEvent(QKeyEvent* event) override
    {
        QueueKey(window, event);
    }

    bool focusNextPrevChild(bool) override
    {
        return false; // Tab is a key like any other
    }

    void moveEvent(QMoveEvent*) override
    {
        if (isWindow()) {
            QueueGeometry(window);
        }
    }

    void resizeEvent(QResizeEvent*) override
    {
        if (isWindow()) {
            QueueGeometry(window);
        }
    }

    void closeEvent(QCloseEvent* event) override
    {
        event->ignore();
        QueueEvent(EventOfNow(hostCloseRequest, window));
    }

  private:
    void QueuePointer(int kind, QMouseEvent* event)
    {
        event->accept();
        const unsigned button = HostButtonsOf(event->button());
        if (kind != hostPointerMove && button == 0) {
            return;
        }
        if (kind == hostPointerDown) {
            deliveredButtons |= button;
        }
        if (kind == hostPointerUp) {
            // The click that closed a menu or a dialog ends here: its press was not ours.
            if (!(deliveredButtons & button)) {
                return;
            }
            deliveredButtons &= ~button;
        }
        HostEvent out = {};
        out.kind = kind;
        out.token = window->token;
        out.screenX = event->globalPosition().toPoint().x();
        out.screenY = event->globalPosition().toPoint().y();
        out.button = static_cast<int>(button);
        out.buttons = HostButtonsOf(event->buttons());
        out.modifiers = HostModifiersOf(event->modifiers());
        out.time = Ticks();
        QueueEvent(out);
    }

    Window* window;
};

void ApplyLimits(Window* window);

class OuterFrame : public QWidget {
  public:
    OuterFrame(Window* owner, Qt::WindowFlags flags) : QWidget(nullptr, flags), window(owner) {}

  protected:
    void moveEvent(QMoveEvent*) override
    {
        QueueGeometry(window);
    }

    void resizeEvent(QResizeEvent*) override
    {
        if (window->menuBar != nullptr) {
            window->menuBar->setGeometry(0, 0, width(), window->menuHeight);
        }
        window->client->setGeometry(0, window->menuHeight, width(), std::max(height() - window->menuHeight, 0));
        if (!window->placing) {
            ApplyLimits(window);
        }
        QueueGeometry(window);
    }

    void closeEvent(QCloseEvent* event) override
    {
        event->ignore();
        QueueEvent(EventOfNow(hostCloseRequest, window));
    }

  private:
    Window* window;
};

// Tells the window manager the limits, but never one that the window does not keep already: Qt would size it at once.
void ApplyLimits(Window* window)
{
    const QSize size = window->top->size();
    const int extra = window->menuHeight;
    const int maxWidth = window->maxWidth > 0 ? window->maxWidth : QWIDGETSIZE_MAX;
    const int maxHeight = window->maxHeight > 0 ? window->maxHeight + extra : QWIDGETSIZE_MAX;
    const QSize smallest(std::max(window->minWidth, 1), window->minHeight + extra);
    window->top->setMinimumSize(smallest.boundedTo(size));
    window->top->setMaximumSize(
        QSize(maxWidth, maxHeight).expandedTo(size).boundedTo(QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX)));
}

// A window that just came up shows nothing of what is drawn until the server has asked for it, so that a sound or a
// poll right after would leave it empty.
void WaitUntilShown(const Window* window)
{
    QElapsedTimer timer;
    timer.start();
    const QWindow* native = window->top->windowHandle();
    while ((native != nullptr) && !native->isExposed() && timer.elapsed() < showDeadline && HandleQtEvents()) {
        if (!native->isExposed()) {
            QThread::msleep(1);
        }
    }
}

// A window manager that takes a hidden window up again reports where it was on the way, and not always where it came
// to stand, so that Qt may believe in a place that never lasted.
void SettlePlace(Window* window, QPoint asked)
{
    const QWindow* native = window->top->windowHandle();
    QElapsedTimer timer;
    timer.start();
    QPoint real = asked;
    for (;;) {
        HandleQtEvents();
        int x = 0;
        int y = 0;
        if ((native == nullptr) || !QueryServerPlace(native, &x, &y)) {
            return;
        }
        real = ToLogical(x, y);
        if (real == asked || timer.elapsed() > settleDeadline) {
            break;
        }
        QThread::msleep(1);
    }
    if (window->top->pos() == real) {
        return;
    }
    window->placing = true;
    window->top->move(real);
    window->placing = false;
    if (real != asked) {
        QueueGeometry(window);
    }
}

// Until the window manager has given the window its new size it may report others, cut to limits that it read too
// early. Taken for sizes that the user chose they would become limits themselves, and stay. Window managers that lay
// out the windows themselves never give the size.
void SettleSize(Window* window)
{
    const QWindow* native = window->top->windowHandle();
    if (window->kind != hostFramedWindow || (native == nullptr) || !window->top->isVisible()) {
        return;
    }
    const QSize asked = window->top->size();
    const double scale = native->devicePixelRatio();
    const int deadline = window->sizeRefused ? refusedSizeDeadline : sizeDeadline;
    QElapsedTimer timer;
    timer.start();
    for (;;) {
        int width = 0;
        int height = 0;
        FlushDisplay();
        if (!QueryServerSize(native, &width, &height)) {
            return;
        }
        WaitForServer();
        HandleQtEvents();
        const bool given = width == qRound(asked.width() * scale) && height == qRound(asked.height() * scale);
        window->sizeRefused = !given || window->top->size() != asked;
        if (!window->sizeRefused || timer.elapsed() > deadline) {
            return;
        }
        QThread::msleep(1);
    }
}

// Where no window manager does it, nobody else hands the keyboard back when a pop-up that has it goes away.
void ReturnFocus(const Window* window)
{
    QWidget* owner = window->top->parentWidget();
    if (window->kind == hostPopupWindow && (owner != nullptr) && owner->isVisible() &&
        window->top->isActiveWindow()) {
        owner->activateWindow();
    }
}

} // namespace

HostWindow* CreateWindow(const HostWindowRequest* request, void* token)
{
    Window* window = new Window;
    window->token = token;
    window->kind = request->kind;
    window->placing = true;
    if (request->kind == hostPopupWindow) {
        QWidget* owner = request->owner != nullptr ? FromHandle(request->owner)->top : nullptr;
        window->client =
            new ClientArea(window, owner, Qt::Tool | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
        window->top = window->client;
        window->top->setAttribute(Qt::WA_ShowWithoutActivating);
    } else {
        Qt::WindowFlags flags = Qt::Window;
        if (request->noClose) {
            flags |= Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                     Qt::WindowMinMaxButtonsHint;
        }
        window->top = new OuterFrame(window, flags);
        window->client = new ClientArea(window, window->top, Qt::Widget);
        window->client
            ->setFocus(); // a proxy would leave the keys with the outer widget where no manager gives the focus
    }
    int width = request->clientWidth;
    int height = request->clientHeight;
    if (width <= 0 && height <= 0) {
        const QSize screen = QGuiApplication::primaryScreen()->availableGeometry().size();
        width = screen.width() * 2 / 3;
        height = screen.height() * 2 / 3;
    }
    windows.push_back(window);
    SizeClient(window, width, height);
    if (request->left != hostDefaultPlace && request->top != hostDefaultPlace) {
        window->top->move(request->left, request->top);
    }
    SetTitle(ToHandle(window), request->title);
    ApplyCursor(window);
    window->placing = false;
    return ToHandle(window);
}

void DestroyWindow(HostWindow* handle)
{
    Window* window = FromHandle(handle);
    ReleaseCaptureOf(window);
    ReturnFocus(window);
    window->placing = true;
    std::erase(windows, window);
    // Pop-ups would go with their owner's widget; they belong to the program until it destroys them.
    for (Window* other : windows) {
        if (other->kind == hostPopupWindow && other->top->parentWidget() == window->top) {
            other->top->setParent(nullptr, other->top->windowFlags());
        }
    }
    delete window->top;
    ForgetEvents(window, nullptr);
    delete window;
}

void SizeClient(Window* window, int clientWidth, int clientHeight)
{
    QWidget* top = window->top;
    const bool placing = window->placing;
    window->placing = true;
    if (window->kind == hostFramedWindow) {
        top->setMinimumSize(0, 0);
        top->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    }
    const QSize size(std::clamp(clientWidth, 1, QWIDGETSIZE_MAX),
                     std::clamp(clientHeight, 1, QWIDGETSIZE_MAX - window->menuHeight) + window->menuHeight);
    top->resize(size);
    // A hidden widget is told of its size only when it is shown; the client area must have it now.
    if (window->kind == hostFramedWindow) {
        window->client->setGeometry(0, window->menuHeight, size.width(), size.height() - window->menuHeight);
        ApplyLimits(window);
    }
    window->placing = placing;
}

namespace {

// The window manager gives the window its former place back some time later, which must come before a new one is
// asked for.
void LeaveMaximized(QWidget* top)
{
    constexpr int deadline = 300;
    const QSize maximized = top->size();
    QElapsedTimer waited;
    waited.start();
    top->setWindowState(Qt::WindowNoState);
    while (top->size() == maximized && waited.elapsed() < deadline) {
        HandleQtEvents();
        QThread::msleep(1);
    }
}

} // namespace

void PlaceWindow(HostWindow* handle, int left, int top, int clientWidth, int clientHeight)
{
    Window* window = FromHandle(handle);
    window->placing = true;
    if (window->top->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)) {
        LeaveMaximized(window->top);
    }
    if (clientWidth != 0 || clientHeight != 0) {
        SizeClient(window, clientWidth, clientHeight);
    }
    if (left != hostDefaultPlace && top != hostDefaultPlace) {
        window->top->move(left, top);
    }
    if (clientWidth != 0 || clientHeight != 0) {
        SettleSize(window);
    }
    window->placing = false;
    FlushDisplay();
}

void ShowWindow(HostWindow* handle, int how)
{
    if (DisplayIsLost()) {
        return; // Qt would end the process on the spot
    }
    Window* window = FromHandle(handle);
    if (how == hostHide) {
        ReleaseCaptureOf(window);
        ReturnFocus(window);
        window->top->hide();
        WaitUntilWithdrawn(window->top->windowHandle());
        return;
    }
    // A pop-up never takes the focus. Whether the framed window gets it when it is not activated is the window
    // manager's choice, which gives it to a program that the user has just started.
    const bool quietly = window->kind == hostPopupWindow;
    const bool wasHidden = !window->top->isVisible();
    const QPoint asked = window->top->pos();
    window->placing = true;
    window->top->setAttribute(Qt::WA_ShowWithoutActivating, quietly);
    if (window->top->isMinimized()) {
        window->top->showNormal();
    } else {
        window->top->show();
    }
    if (!quietly && how == hostShowActive) {
        window->top->activateWindow();
    }
    FlushDisplay();
    // Only a framed window is left to the window manager's choice of a place.
    window->placing = window->kind == hostPopupWindow;
    WaitUntilShown(window);
    window->placing = false;
    if (wasHidden && window->kind == hostPopupWindow) {
        SettlePlace(window, asked);
        if (window->top->windowTitle().isEmpty()) {
            ClearServerTitle(window->top->windowHandle());
        }
    }
}

void WindowGeometry(HostWindow* handle, HostGeometry* geometry)
{
    const Window* window = FromHandle(handle);
    const QPoint corner = window->client->mapToGlobal(QPoint(0, 0));
    geometry->clientLeft = corner.x();
    geometry->clientTop = corner.y();
    geometry->clientWidth = window->client->width();
    geometry->clientHeight = window->client->height();
    // The window itself knows the manager's frame; the widget's idea of it lags behind.
    const QWindow* native = window->top->windowHandle();
    QMargins margins;
    if ((native != nullptr) && window->kind == hostFramedWindow) {
        margins = native->frameMargins();
    }
    margins.setTop(margins.top() + window->menuHeight);
    geometry->frame.left = corner.x() - margins.left();
    geometry->frame.top = corner.y() - margins.top();
    geometry->frame.right = corner.x() + geometry->clientWidth + margins.right();
    geometry->frame.bottom = corner.y() + geometry->clientHeight + margins.bottom();
}

void LimitSize(HostWindow* handle, int minWidth, int minHeight, int maxWidth, int maxHeight)
{
    Window* window = FromHandle(handle);
    window->minWidth = std::clamp(minWidth, 0, QWIDGETSIZE_MAX / 2);
    window->minHeight = std::clamp(minHeight, 0, QWIDGETSIZE_MAX / 2);
    window->maxWidth = std::clamp(maxWidth, 0, QWIDGETSIZE_MAX / 2);
    window->maxHeight = std::clamp(maxHeight, 0, QWIDGETSIZE_MAX / 2);
    // The minimum wins over a maximum below it.
    if (window->maxWidth > 0) {
        window->maxWidth = std::max(window->maxWidth, window->minWidth);
    }
    if (window->maxHeight > 0) {
        window->maxHeight = std::max(window->maxHeight, window->minHeight);
    }
    if (window->kind == hostFramedWindow) {
        ApplyLimits(window);
    }
}

void SetTitle(HostWindow* handle, const char* title)
{
    // No place for Qt's "[*]" mark.
    QString text = QString::fromUtf8(title != nullptr ? title : "");
    text.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    FromHandle(handle)->top->setWindowTitle(text);
}

void SetIcons(HostWindow* handle, const HostImage* images, int count)
{
    QIcon icon;
    for (int i = 0; i < count; i++) {
        const QImage image(reinterpret_cast<const uchar*>(images[i].pixels), images[i].width, images[i].height,
                           images[i].width * 4, QImage::Format_ARGB32);
        icon.addPixmap(QPixmap::fromImage(image.copy()));
    }
    FromHandle(handle)->top->setWindowIcon(icon);
}

void SetPicture(HostWindow* handle, const uint32_t* pixels, int width, int height, int stride)
{
    Window* window = FromHandle(handle);
    if ((pixels == nullptr) || width <= 0 || height <= 0) {
        window->picture = QImage();
    } else {
        window->picture = QImage(reinterpret_cast<const uchar*>(pixels), width, height,
                                 static_cast<qsizetype>(stride) * 4, QImage::Format_RGB32);
    }
}

void Present(HostWindow* handle, const HostRect* part)
{
    QWidget* client = FromHandle(handle)->client;
    if (!client->isVisible()) {
        return;
    }
    client->repaint(QRect(QPoint(part->left, part->top), QPoint(part->right - 1, part->bottom - 1)));
    FlushDisplay();
}

} // namespace qthost
