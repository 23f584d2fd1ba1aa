#include "platform/host/qt/qt_host.h"

#include "platform/host/qt/qt_internal.h"
#include "platform/host/qt/qt_server.h"
#include "platform/host/qt/sound_pulse.h"
#include "platform/kernel/heap.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QPalette>
#include <QProxyStyle>
#include <QScreen>
#include <QThread>
#include <QTimer>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <deque>
#include <langinfo.h>
#include <new>
#include <type_traits>

namespace qthost {

std::vector<Window*> windows;

namespace {

std::deque<HostEvent> events;
QApplication* application = nullptr;
QTimer* waitTimer = nullptr;
bool waiting = false;

// Alt belongs to the map: it must neither open the menu bar when it is let go nor take the keyboard to it.
class Style : public QProxyStyle {
  public:
    Style() : QProxyStyle(QStringLiteral("Fusion")) {}

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* answer) const override
    {
        if (hint == SH_MenuBar_AltKeyNavigation || hint == SH_ScrollBar_ContextMenu) {
            return 0;
        }
        return QProxyStyle::styleHint(hint, option, widget, answer);
    }
};

// The desktop's own colours and fonts would make the program look different on every machine.
void SetLook()
{
    QPalette palette(QColor(0xF0, 0xF0, 0xF0));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xF7, 0xF7, 0xF7));
    palette.setColor(QPalette::Highlight, QColor(0x30, 0x60, 0xA0));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, Qt::black);
        palette.setColor(QPalette::Disabled, role, QColor(0x90, 0x90, 0x90));
    }
    QApplication::setPalette(palette);
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(13);
    QApplication::setFont(font);
}

void KeepQtQuiet(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtCriticalMsg || type == QtFatalMsg) {
        std::fprintf(stderr, "kestrel-map-tool: %s\n", qPrintable(text));
    }
}

// Qt complains about, and file names suffer from, a locale whose character set is not UTF-8.
void UseUtf8Locale()
{
    if (std::setlocale(LC_ALL, "") == nullptr || std::string_view(nl_langinfo(CODESET)) != "UTF-8") {
        setenv("LC_ALL", "C.UTF-8", 1);
    }
}

void StateChanged(Qt::ApplicationState state)
{
    if (state != Qt::ApplicationActive && state != Qt::ApplicationInactive) {
        return;
    }
    if (state == Qt::ApplicationInactive) {
        ReleaseHeldKeys();
    }
    HostEvent event = EventOfNow(hostActivate, windows.empty() ? nullptr : windows.front());
    event.code = state == Qt::ApplicationActive;
    QueueEvent(event);
}

int Start()
{
    static char name[] = "kestrel-map-tool";
    static char* arguments[] = {name, nullptr};
    static int argumentCount = 1;

    if (qgetenv("QT_QPA_PLATFORM") != "offscreen") {
        qputenv("QT_QPA_PLATFORM", "xcb");
        if (OpenServer() != 0) {
            const char* display = std::getenv("DISPLAY");
            std::fprintf(stderr, "kestrel-map-tool: cannot open the display \"%s\"\n",
                         display != nullptr ? display : "");
            return 1;
        }
    }
    UseUtf8Locale();
    qInstallMessageHandler(KeepQtQuiet);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
    QCoreApplication::setApplicationName(QString::fromLatin1(name));
    QApplication::setDesktopSettingsAware(false);
    QApplication::setStyle(new Style); // Qt owns it
    application = new QApplication(argumentCount, arguments);
    WatchMotion();
    std::setlocale(LC_NUMERIC, "C"); // the program's own number formats
    SetLook();
    QApplication::setQuitOnLastWindowClosed(false);
    QObject::connect(application, &QGuiApplication::applicationStateChanged, StateChanged);
    waitTimer = new QTimer(application);
    waitTimer->setSingleShot(true);
    waitTimer->setTimerType(Qt::PreciseTimer);
    WatchSession(application);
    return 0;
}

void Stop()
{
    if (application == nullptr) {
        return;
    }
    UnwatchSession();
    FinishSounds();
    application->disconnect();
    DestroyOutline();
    while (!windows.empty()) {
        DestroyWindow(ToHandle(windows.back()));
    }
    ForgetCursor();
    events.clear();
    waitTimer = nullptr; // the application owns it
    delete application;
    application = nullptr;
    CloseServer();
    qInstallMessageHandler(nullptr);
}

void ScreenSize(int* width, int* height)
{
    const QSize size = QGuiApplication::primaryScreen()->geometry().size();
    *width = size.width();
    *height = size.height();
}

int NextEvent(HostEvent* event)
{
    if (events.empty()) {
        return 0;
    }
    *event = events.front();
    events.pop_front();
    return 1;
}

} // namespace

HostEvent EventOfNow(int kind, const Window* window)
{
    HostEvent event = {};
    event.kind = kind;
    event.token = window != nullptr ? window->token : nullptr;
    const Devices devices = QueryDevices();
    event.screenX = devices.pointer.x();
    event.screenY = devices.pointer.y();
    event.buttons = devices.buttons;
    event.modifiers = devices.modifiers;
    event.time = Ticks();
    return event;
}

// The dispatcher handles what has arrived first and then sleeps: without the wake-up an event that comes just before
// the sleep would be seen only at its end.
void QueueEvent(const HostEvent& event)
{
    events.push_back(event);
    if (waiting) {
        QAbstractEventDispatcher::instance()->wakeUp();
    }
}

void QueueGeometry(Window* window)
{
    if (window->placing) {
        return;
    }
    if (!events.empty() && events.back().kind == hostGeometry && events.back().token == window->token) {
        return;
    }
    QueueEvent(EventOfNow(hostGeometry, window));
}

void ForgetEvents(const Window* window, const HostScrollBar* bar)
{
    std::erase_if(events, [&](const HostEvent& event) {
        return ((window != nullptr) && event.token == window->token) || ((bar != nullptr) && event.bar == bar);
    });
}

void Pump(int waitMilliseconds)
{
    if (waitMilliseconds <= 0) {
        HandleQtEvents();
        return;
    }
    if (!events.empty()) {
        return;
    }
    FlushDisplay();
    waiting = true;
    waitTimer->start(waitMilliseconds);
    while (events.empty() && waitTimer->isActive()) {
        if (!HandleQtEvents(QEventLoop::WaitForMoreEvents) && events.empty()) {
            QThread::msleep(static_cast<unsigned long>(waitMilliseconds));
            break;
        }
    }
    waitTimer->stop();
    waiting = false;
}

uint32_t Ticks()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                                 static_cast<uint64_t>(now.tv_nsec) / 1000000);
}

} // namespace qthost

namespace {

// The call, made again with the reserve given up where the window library was refused memory in it. Refused once
// more, a call that can fail has failed, and any other ends the process.
template <auto function>
struct Attempt;

template <typename Result, typename... Arguments, Result (*function)(Arguments...)>
struct Attempt<function> {
    static Result Call(Arguments... arguments)
    {
        try {
            return function(arguments...);
        } catch (const std::bad_alloc&) {
            GiveUpMemoryReserve();
        }
        if constexpr (std::is_void_v<Result>) {
            function(arguments...);
        } else {
            Result result = {};
            WithMemory([&] { result = function(arguments...); });
            return result;
        }
    }
};

} // namespace

const Host qtHost = {
    .start = Attempt<qthost::Start>::Call,
    .stop = Attempt<qthost::Stop>::Call,
    .screenSize = Attempt<qthost::ScreenSize>::Call,
    .pump = Attempt<qthost::Pump>::Call,
    .nextEvent = Attempt<qthost::NextEvent>::Call,
    .createWindow = Attempt<qthost::CreateWindow>::Call,
    .destroyWindow = Attempt<qthost::DestroyWindow>::Call,
    .placeWindow = Attempt<qthost::PlaceWindow>::Call,
    .showWindow = Attempt<qthost::ShowWindow>::Call,
    .raiseWindow = Attempt<qthost::RaiseWindow>::Call,
    .topWindow = Attempt<qthost::TopWindow>::Call,
    .windowAt = Attempt<qthost::WindowAt>::Call,
    .windowGeometry = Attempt<qthost::WindowGeometry>::Call,
    .limitSize = Attempt<qthost::LimitSize>::Call,
    .setTitle = Attempt<qthost::SetTitle>::Call,
    .setIcons = Attempt<qthost::SetIcons>::Call,
    .setPicture = Attempt<qthost::SetPicture>::Call,
    .present = Attempt<qthost::Present>::Call,
    .buildMenu = Attempt<qthost::BuildMenu>::Call,
    .setMenuItem = Attempt<qthost::SetMenuItem>::Call,
    .createScrollBar = Attempt<qthost::CreateScrollBar>::Call,
    .destroyScrollBar = Attempt<qthost::DestroyScrollBar>::Call,
    .setScrollBar = Attempt<qthost::SetScrollBar>::Call,
    .pointer = qthost::Pointer,
    .buttons = qthost::Buttons,
    .modifiers = qthost::Modifiers,
    .warpPointer = Attempt<qthost::WarpPointer>::Call,
    .capturePointer = Attempt<qthost::CapturePointer>::Call,
    .setCursor = Attempt<qthost::SetCursor>::Call,
    .showOutline = Attempt<qthost::ShowOutline>::Call,
    .chooseFile = Attempt<qthost::ChooseFile>::Call,
    .playSound = Attempt<PlayWave>::Call,
    .beep = qthost::Beep,
    .openDocument = Attempt<qthost::OpenDocument>::Call,
    .ticks = qthost::Ticks,
};
