// The end of the session: signals, and a display that is gone. The handlers of the signals only wake the event loop.
#include "platform/host/qt/qt_internal.h"
#include "platform/host/qt/qt_server.h"

#include <QApplication>
#include <QDialog>
#include <QDrag>
#include <QSocketNotifier>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace qthost {
namespace {

constexpr int endingSignals[] = {SIGTERM, SIGHUP, SIGINT};

int signalPipe[2] = {-1, -1}; // read end, write end
bool ended = false;

void NoteSignal(int)
{
    const int reason = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(signalPipe[1], &byte, 1); // full: a signal waits there already
    errno = reason;
}

void QueueSessionEnd()
{
    ended = true;
    HostEvent event = {}; // asks no device: the display may be gone
    event.kind = hostSessionEnd;
    event.time = Ticks();
    QueueEvent(event);
}

// Ends the loops of Qt's own that the program waits in: the file dialog, its menus and its messages. A message is
// closed as by its close box, which answers it with No: rejecting it would answer nothing, and the file dialog would
// take that for a Yes to deleting a file.
void EndNestedLoops()
{
    QDrag::cancel();
    while (QWidget* popup = QApplication::activePopupWidget()) {
        if (!popup->close()) {
            break;
        }
    }
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<QDialog*>(widget) != nullptr) {
            widget->close();
        }
    }
}

void TakeSignals()
{
    char bytes[64];
    while (read(signalPipe[0], bytes, sizeof bytes) > 0) {
    }
    QueueSessionEnd();
    EndNestedLoops();
}

// A signal that whoever started the program wants ignored stays so.
void Handle(int number, void (*handler)(int))
{
    struct sigaction action = {};
    sigaction(number, nullptr, &action);
    if (action.sa_handler == SIG_IGN) {
        return;
    }
    action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}

} // namespace

void WatchSession(QObject* owner)
{
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        return; // the signals keep ending the program at once
    }
    auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, owner);
    QObject::connect(notifier, &QSocketNotifier::activated, TakeSignals);
    for (const int number : endingSignals) {
        Handle(number, NoteSignal);
    }
}

void UnwatchSession()
{
    for (const int number : endingSignals) {
        Handle(number, SIG_DFL);
    }
    for (int& end : signalPipe) {
        close(end);
        end = -1;
    }
    ended = false;
}

bool SessionEnded()
{
    return ended;
}

bool HandleQtEvents(QEventLoop::ProcessEventsFlags flags)
{
    if (!DisplayIsLost()) {
        QCoreApplication::processEvents(flags);
        return true;
    }
    if (!ended) {
        QueueSessionEnd();
    }
    return false;
}

} // namespace qthost
