#include "platform/host/qt/qt_internal.h"
#include "platform/host/qt/qt_server.h"

#include <QWheelEvent>
#include <algorithm>

namespace qthost {
namespace {

constexpr int codeThumbTrack = 5;
constexpr int codeEndScroll = 8;
constexpr int wheelNotch = 120;

// The codes of scroll requests by Qt's slider actions, -1 for none.
int CodeOf(int action)
{
    switch (action) {
    case QAbstractSlider::SliderSingleStepSub:
        return 0;
    case QAbstractSlider::SliderSingleStepAdd:
        return 1;
    case QAbstractSlider::SliderPageStepSub:
        return 2;
    case QAbstractSlider::SliderPageStepAdd:
        return 3;
    case QAbstractSlider::SliderMove:
        return codeThumbTrack;
    case QAbstractSlider::SliderToMinimum:
        return 6;
    case QAbstractSlider::SliderToMaximum:
        return 7;
    default:
        return -1;
    }
}

// Asks for scrolling and leaves its position to the program; only a thumb that is being dragged moves by itself.
class Bar : public QScrollBar {
  public:
    Bar(Window* owner, Qt::Orientation orientation) : QScrollBar(orientation, owner->client), window(owner)
    {
        setFocusPolicy(Qt::NoFocus);
        setContextMenuPolicy(Qt::PreventContextMenu);
        // The style draws the groove after the window's colour and the thumb after the button's: told apart at a
        // glance.
        QPalette colours = palette();
        colours.setColor(QPalette::Window, QColor(0xD8, 0xD8, 0xD8));
        colours.setColor(QPalette::Button, QColor(0xC4, 0xCA, 0xD0));
        setPalette(colours);
        setCursor(Qt::ArrowCursor);
        connect(this, &QAbstractSlider::actionTriggered, [this](int action) {
            const int code = CodeOf(action);
            if (code >= 0) {
                QueueScroll(code, sliderPosition());
            }
            if (code != codeThumbTrack) {
                setSliderPosition(value());
            }
        });
    }

  protected:
    void wheelEvent(QWheelEvent* event) override
    {
        QueueWheel(window, event);
        event->accept();
    }

    void mouseReleaseEvent(QMouseEvent* event) override
    {
        QScrollBar::mouseReleaseEvent(event);
        QueueScroll(codeEndScroll, value());
    }

  private:
    void QueueScroll(int code, int position)
    {
        HostEvent event = EventOfNow(hostScroll, window);
        event.bar = reinterpret_cast<HostScrollBar*>(this);
        event.code = code;
        event.position = position;
        QueueEvent(event);
    }

    Window* window;
};

} // namespace

HostScrollBar* CreateScrollBar(HostWindow* parent, int vertical, const HostRect* place)
{
    Bar* bar = new Bar(FromHandle(parent), vertical ? Qt::Vertical : Qt::Horizontal);
    bar->setGeometry(place->left, place->top, std::max(place->right - place->left, 1),
                     std::max(place->bottom - place->top, 1));
    bar->show();
    return reinterpret_cast<HostScrollBar*>(bar);
}

void DestroyScrollBar(HostScrollBar* handle)
{
    ForgetEvents(nullptr, handle);
    delete reinterpret_cast<Bar*>(handle);
}

void SetScrollBar(HostScrollBar* handle, int minimum, int highestPosition, int page, int position)
{
    Bar* bar = reinterpret_cast<Bar*>(handle);
    const int highest = std::max(minimum, highestPosition);
    if (bar->minimum() == minimum && bar->maximum() == highest && bar->pageStep() == page &&
        bar->value() == position) {
        return;
    }
    bar->setPageStep(page);
    bar->setRange(minimum, highest);
    bar->setValue(position);
    if (bar->isVisible()) {
        bar->repaint();
        FlushDisplay();
    }
}

void QueueWheel(Window* window, const QWheelEvent* event)
{
    int delta = event->angleDelta().y();
    // Alt turns the wheel sideways in Qt.
    if (delta == 0 && (event->modifiers() & Qt::AltModifier)) {
        delta = event->angleDelta().x();
    }
    if ((delta > 0) != (window->wheelRest > 0)) {
        window->wheelRest = 0;
    }
    window->wheelRest += delta;
    const int whole = window->wheelRest / wheelNotch * wheelNotch;
    if (whole == 0) {
        return;
    }
    window->wheelRest -= whole;
    HostEvent out = EventOfNow(hostWheel, window);
    out.screenX = event->globalPosition().toPoint().x();
    out.screenY = event->globalPosition().toPoint().y();
    out.modifiers = HostModifiersOf(event->modifiers());
    out.delta = whole;
    QueueEvent(out);
}

} // namespace qthost
