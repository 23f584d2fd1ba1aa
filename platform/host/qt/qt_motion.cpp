// Which of the pointer's positions are wanted: all while a button is held, so that a stroke has no gaps, otherwise
// the newest. A flood that no device makes would fill the queue faster than it is emptied, so of that, too, the
// newest.
#include "platform/host/qt/qt_internal.h"
#include "platform/host/qt/qt_server.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <cstring>
#include <xcb/xcb.h>

namespace qthost {
namespace {

constexpr unsigned floodCount = 1000;   // so many positions
constexpr uint32_t floodTime = 50;      // in less than so many milliseconds: the fastest mice report 8 in each
constexpr unsigned lastPlainButton = 3; // the further ones are the wheel

enum InputEvent { motionEvent = XCB_MOTION_NOTIFY, pressEvent = XCB_BUTTON_PRESS, releaseEvent = XCB_BUTTON_RELEASE };

struct Input {
    unsigned kind;
    uint32_t time;
    unsigned button;
};

// The core protocol's events and those of its input extension, which have the same numbers in another place.
bool ReadInput(const uint8_t* event, uint8_t inputExtension, Input* input)
{
    const unsigned kind = event[0] & 0x7F;
    if (kind != XCB_GE_GENERIC) {
        *input = {kind, 0, event[1]};
        std::memcpy(&input->time, event + 4, sizeof input->time);
    } else if (inputExtension != 0 && event[1] == inputExtension) {
        uint16_t extendedKind = 0;
        std::memcpy(&extendedKind, event + 8, sizeof extendedKind);
        input->kind = extendedKind;
        std::memcpy(&input->time, event + 12, sizeof input->time);
        std::memcpy(&input->button, event + 16, sizeof input->button);
    } else {
        return false;
    }
    return input->kind == motionEvent || input->kind == pressEvent || input->kind == releaseEvent;
}

// Sees each event of the server before Qt decides about the next.
class MotionFilter : public QAbstractNativeEventFilter {
  public:
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override
    {
        Input input = {};
        if (type != "xcb_generic_event_t" ||
            !ReadInput(static_cast<const uint8_t*>(message), InputExtension(), &input)) {
            return false;
        }
        if (input.kind == motionEvent) {
            CountMotion(input.time);
        } else if (input.button >= 1 && input.button <= lastPlainButton) {
            const unsigned bit = 1U << input.button;
            held = input.kind == pressEvent ? held | bit : held & ~bit;
        }
        QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, held == 0 || flood);
        return false;
    }

  private:
    // What Qt has left out is not counted, so that the next thousand after a flood tell whether it goes on.
    void CountMotion(uint32_t time)
    {
        if (++motions == floodCount) {
            flood = time - countedSince < floodTime;
            countedSince = time;
            motions = 0;
        }
    }

    unsigned held = 0;
    unsigned motions = 0;
    uint32_t countedSince = 0;
    bool flood = false;
};

} // namespace

void WatchMotion()
{
    static MotionFilter filter;
    QCoreApplication::instance()->installNativeEventFilter(&filter);
}

} // namespace qthost
