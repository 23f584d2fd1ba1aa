// The menu bar: records built from the text resource, mirrored in the host when a window has them.
#include "platform/kernel/resource_table.h"
#include "platform/user/state.h"

#include <algorithm>
#include <cstdlib>

struct HMENU__ {
    struct Item {
        UINT command;
        UINT flags; // MF_GRAYED, MF_DISABLED, MF_CHECKED, MF_SEPARATOR, MF_HILITE
        std::string text;
        HMENU submenu; // of a title
    };

    std::vector<Item> items;
    HMENU bar = nullptr;   // of a drop-down menu
    HWND window = nullptr; // of a bar
};

namespace {

using MenuItem = HMENU__::Item;

constexpr UINT popupFlag = 0x0010; // a title that opens a menu
constexpr UINT noSuchItem = static_cast<UINT>(-1);

std::vector<std::unique_ptr<HMENU__>> menus;

HMENU__* LookupMenu(HMENU handle)
{
    for (const std::unique_ptr<HMENU__>& menu : menus) {
        if ((handle != nullptr) && menu.get() == handle) {
            return handle;
        }
    }
    return nullptr;
}

HMENU NewMenu(HMENU bar)
{
    menus.push_back(std::make_unique<HMENU__>());
    menus.back()->bar = bar;
    return menus.back().get();
}

struct ItemPlace {
    HMENU menu;
    int position;
};

// The item meant by position, or by command also in the menus that open from this one.
MenuItem* FindItem(HMENU handle, UINT item, UINT flags, ItemPlace* place)
{
    HMENU__* menu = LookupMenu(handle);
    if (menu == nullptr) {
        return nullptr;
    }
    for (size_t i = 0; i < menu->items.size(); i++) {
        MenuItem& entry = menu->items[i];
        const bool byPosition = (flags & MF_BYPOSITION) != 0;
        if (byPosition ? i == item
                       : (entry.submenu == nullptr) && !(entry.flags & MF_SEPARATOR) && entry.command == item) {
            *place = {handle, static_cast<int>(i)};
            return &entry;
        }
        if (!byPosition && (entry.submenu != nullptr)) {
            if (MenuItem* found = FindItem(entry.submenu, item, flags, place)) {
                return found;
            }
        }
    }
    return nullptr;
}

bool IsUsable(const MenuItem& item)
{
    return (item.flags & (MF_GRAYED | MF_DISABLED)) == 0;
}

void ShowItemState(const ItemPlace& place)
{
    const HMENU__* menu = place.menu;
    const HMENU__* bar = menu->bar != nullptr ? LookupMenu(menu->bar) : menu;
    const Window* window = bar != nullptr ? Lookup(bar->window) : nullptr;
    if ((window == nullptr) || (window->hostWindow == nullptr)) {
        return;
    }
    const MenuItem& item = menu->items[static_cast<size_t>(place.position)];
    int title = place.position;
    if (bar != menu) {
        for (size_t i = 0; i < bar->items.size(); i++) {
            if (bar->items[i].submenu == menu) {
                title = static_cast<int>(i);
            }
        }
    }
    host->setMenuItem(window->hostWindow, title, bar == menu ? -1 : place.position, IsUsable(item),
                      (item.flags & MF_CHECKED) != 0);
}

// Replaces some of an item's flags; returns those that it had among them, or noSuchItem.
UINT ChangeFlags(HMENU menu, UINT item, UINT flags, UINT changed)
{
    ItemPlace place = {};
    MenuItem* entry = FindItem(menu, item, flags, &place);
    if (entry == nullptr) {
        return noSuchItem;
    }
    const UINT previous = entry->flags & changed;
    entry->flags = (entry->flags & ~changed) | (flags & changed);
    if ((entry->flags & changed) != previous) {
        ShowItemState(place);
    }
    return previous;
}

void AddLine(HMENU bar, const std::string& line)
{
    if (line[0] != ' ') {
        HMENU submenu = NewMenu(bar);
        bar->items.push_back({0, 0, line, submenu});
        return;
    }
    if (bar->items.empty()) {
        return;
    }
    HMENU menu = bar->items.back().submenu;
    const std::string text = line.substr(std::min(line.find_first_not_of(' '), line.size()));
    if (text.empty()) {
        return;
    }
    if (text == "-") {
        menu->items.push_back({0, MF_SEPARATOR, "", nullptr});
        return;
    }
    char* label = nullptr;
    const unsigned long command = strtoul(text.c_str(), &label, 10);
    std::string shown = *label == ' ' ? label + 1 : label;
    std::replace(shown.begin(), shown.end(), '|', '\t');
    menu->items.push_back({static_cast<UINT>(command & 0xFFFF), 0, shown, nullptr});
}

} // namespace

HMENU LoadMenuOfClass(const WindowClass& windowClass)
{
    const HRSRC resource = windowClass.record.lpszMenuName != nullptr
                               ? FindResourceA(nullptr, windowClass.record.lpszMenuName, RT_MENU)
                               : nullptr;
    const char* text = static_cast<const char*>(LockResource(LoadResource(nullptr, resource)));
    if (text == nullptr) {
        return nullptr;
    }
    const char* end = text + SizeofResource(nullptr, resource);
    HMENU bar = NewMenu(nullptr);
    while (text < end) {
        const char* lineEnd = std::find(text, end, '\n');
        std::string line(text, lineEnd);
        line.erase(line.find_last_not_of("\r \t") + 1);
        if (!line.empty()) {
            AddLine(bar, line);
        }
        text = lineEnd < end ? lineEnd + 1 : end;
    }
    return bar;
}

void AttachMenu(Window& window)
{
    HMENU__* bar = LookupMenu(window.menu);
    if (bar == nullptr) {
        return;
    }
    bar->window = window.handle;
    std::vector<HostMenuItem> items;
    for (size_t menu = 0; menu < bar->items.size(); menu++) {
        items.push_back({static_cast<int>(menu), -1, 0, bar->items[menu].text.c_str()});
        const std::vector<MenuItem>& entries = bar->items[menu].submenu->items;
        for (size_t item = 0; item < entries.size(); item++) {
            items.push_back({static_cast<int>(menu), static_cast<int>(item), static_cast<int>(entries[item].command),
                             entries[item].text.c_str()});
        }
    }
    host->buildMenu(window.hostWindow, items.data(), static_cast<int>(items.size()));
}

void DestroyMenuOf(Window& window)
{
    const HMENU bar = window.menu;
    window.menu = nullptr;
    if (bar != nullptr) {
        std::erase_if(menus,
                      [&](const std::unique_ptr<HMENU__>& menu) { return menu.get() == bar || menu->bar == bar; });
    }
}

void DestroyAllMenus()
{
    menus.clear();
}

bool IsMenuChoiceEnabled(HMENU handle, UINT command)
{
    const HMENU__* bar = LookupMenu(handle);
    for (size_t i = 0; (bar != nullptr) && i < bar->items.size(); i++) {
        ItemPlace place = {};
        const MenuItem* item = FindItem(bar->items[i].submenu, command, MF_BYCOMMAND, &place);
        if (item != nullptr) {
            return IsUsable(*item) && IsUsable(bar->items[i]);
        }
    }
    return false;
}

HMENU WINAPI GetMenu(HWND handle)
{
    const Window* window = Lookup(handle);
    return window != nullptr ? window->menu : nullptr;
}

HMENU WINAPI GetSubMenu(HMENU handle, int position)
{
    const HMENU__* menu = LookupMenu(handle);
    if ((menu == nullptr) || position < 0 || static_cast<size_t>(position) >= menu->items.size()) {
        return nullptr;
    }
    return menu->items[static_cast<size_t>(position)].submenu;
}

int WINAPI GetMenuItemCount(HMENU handle)
{
    const HMENU__* menu = LookupMenu(handle);
    return menu != nullptr ? static_cast<int>(menu->items.size()) : -1;
}

UINT WINAPI GetMenuState(HMENU menu, UINT item, UINT flags)
{
    ItemPlace place = {};
    const MenuItem* entry = FindItem(menu, item, flags, &place);
    if (entry == nullptr) {
        return noSuchItem;
    }
    if (entry->submenu == nullptr) {
        return entry->flags;
    }
    return (entry->flags & 0xFF) | popupFlag | static_cast<UINT>(entry->submenu->items.size() & 0xFF) << 8;
}

BOOL WINAPI EnableMenuItem(HMENU menu, UINT item, UINT flags)
{
    return static_cast<BOOL>(ChangeFlags(menu, item, flags, MF_GRAYED | MF_DISABLED));
}

DWORD WINAPI CheckMenuItem(HMENU menu, UINT item, UINT flags)
{
    return ChangeFlags(menu, item, flags, MF_CHECKED);
}

// The host highlights titles itself; only the flag is kept.
BOOL WINAPI HiliteMenuItem(HWND window, HMENU menu, UINT item, UINT flags)
{
    ItemPlace place = {};
    MenuItem* entry = FindItem(menu, item, flags, &place);
    if ((entry == nullptr) || !IsWindow(window)) {
        return FALSE;
    }
    entry->flags = (entry->flags & ~static_cast<UINT>(MF_HILITE)) | (flags & MF_HILITE);
    return TRUE;
}

// The host's bar is always up to date.
BOOL WINAPI DrawMenuBar(HWND window)
{
    return GetMenu(window) != nullptr;
}

// There are no accelerator tables among the resources.
HACCEL WINAPI LoadAcceleratorsA(HINSTANCE, LPCSTR)
{
    SetLastError(ERROR_FILE_NOT_FOUND);
    return nullptr;
}
