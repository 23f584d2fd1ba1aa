#include "platform/host/qt/qt_internal.h"

#include <QAction>
#include <QKeyEvent>

namespace qthost {
namespace {

QMenu* AddTitle(Window* window, const char* text)
{
    QMenu* menu = window->menuBar->addMenu(QString::fromUtf8(text));
    // The click that closes a menu does nothing else.
    menu->setAttribute(Qt::WA_NoMouseReplay);
    // Keys held at this moment are let go over the menu.
    QObject::connect(menu, &QMenu::aboutToShow, ReleaseHeldKeys);
    window->menus.push_back(menu);
    window->menuItems.emplace_back();
    return menu;
}

void AddItem(Window* window, const HostMenuItem& item)
{
    QMenu* menu = window->menus.back();
    if (item.text[0] == '\0') {
        window->menuItems.back().push_back(menu->addSeparator());
        return;
    }
    // The text behind the tab is shown in the key column; no shortcut is registered, keys are the program's.
    QAction* action = menu->addAction(QString::fromUtf8(item.text));
    window->menuItems.back().push_back(action);
    const int command = item.command;
    QObject::connect(action, &QAction::triggered, [window, action, command] {
        // Qt has just turned the mark over; it stays as the program set it.
        if (action->isCheckable()) {
            action->setChecked(action->data().toBool());
        }
        HostEvent event = EventOfNow(hostMenuChoice, window);
        event.code = command;
        QueueEvent(event);
    });
}

class MenuBar : public QMenuBar {
  public:
    explicit MenuBar(Window* owner) : QMenuBar(owner->top), window(owner) {}

  protected:
    void wheelEvent(QWheelEvent* event) override
    {
        QueueWheel(window, event);
        event->accept();
    }

  private:
    Window* window;
};

} // namespace

void BuildMenu(HostWindow* handle, const HostMenuItem* items, int count)
{
    Window* window = FromHandle(handle);
    if (window->kind != hostFramedWindow || (window->menuBar != nullptr)) {
        return;
    }
    const QSize client = window->client->size();
    window->menuBar = new MenuBar(window);
    window->menuBar->setNativeMenuBar(false);
    window->menuBar->setContextMenuPolicy(Qt::PreventContextMenu);
    window->menuBar->setFocusPolicy(Qt::NoFocus);
    for (int i = 0; i < count; i++) {
        if (items[i].item < 0) {
            AddTitle(window, items[i].text);
        } else if (!window->menus.empty()) {
            AddItem(window, items[i]);
        }
    }
    window->menuHeight = window->menuBar->sizeHint().height();
    SizeClient(window, client.width(), client.height());
    window->menuBar->setGeometry(0, 0, client.width(), window->menuHeight);
    window->menuBar->setVisible(true);
}

bool OpenMenuWithKey(const QKeyEvent* event)
{
    const bool first = event->key() == Qt::Key_F10 && event->modifiers() == Qt::NoModifier;
    const int key = CommandKeyOf(event);
    const bool letter = event->modifiers() == Qt::AltModifier && key >= Qt::Key_A && key <= Qt::Key_Z;
    if ((!first && !letter) || event->isAutoRepeat()) {
        return false;
    }
    for (const Window* window : windows) {
        for (const QMenu* menu : window->menus) {
            QAction* title = menu->menuAction();
            if (title->isEnabled() && (first || menu->title().startsWith(QChar(key), Qt::CaseInsensitive))) {
                window->menuBar->setActiveAction(title);
                return true;
            }
        }
    }
    return false;
}

void SetMenuItem(HostWindow* handle, int menu, int item, int enabled, int checked)
{
    Window* window = FromHandle(handle);
    if (menu < 0 || static_cast<size_t>(menu) >= window->menus.size()) {
        return;
    }
    if (item < 0) {
        window->menus[static_cast<size_t>(menu)]->menuAction()->setEnabled(enabled != 0);
        return;
    }
    const std::vector<QAction*>& actions = window->menuItems[static_cast<size_t>(menu)];
    if (static_cast<size_t>(item) >= actions.size()) {
        return;
    }
    QAction* action = actions[static_cast<size_t>(item)];
    action->setEnabled(enabled != 0);
    action->setCheckable(checked != 0); // an unchecked item shows no empty box
    action->setData(checked != 0);
    action->setChecked(checked != 0);
}

} // namespace qthost
