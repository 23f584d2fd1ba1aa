"""Makes of resources/menu.txt the menu bars that the program embeds and menu_commands.h, which names their commands."""

import re
from typing import NamedTuple

ENGLISH_MENUS = 200
COMMANDS_PER_MENU = 100
TEXTS = r'\s+"([^"|]+)"\s+"([^"|]+)"'
TITLE = re.compile(r"([a-z]\w*MenuNumber)" + TEXTS)
ITEM = re.compile(r"  ([a-z]\w*Command)" + TEXTS + r"(?:\s+(Ctrl\+[A-Z]|F[1-9]))?")
SEPARATOR = "  -"


class Item(NamedTuple):
    number: int
    name: str  # empty for a separator
    texts: tuple
    key: str  # as the item shows it, or empty


class Menu(NamedTuple):
    number: int
    name: str
    texts: tuple
    items: list


def read_menus(resources):
    path = resources / "menu.txt"
    menus, keys = [], set()
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        if title := TITLE.fullmatch(line):
            menus.append(Menu(ENGLISH_MENUS + len(menus) + 1, title[1], (title[2], title[3]), []))
            continue
        match = ITEM.fullmatch(line)
        if not menus or not (match or line == SEPARATOR):
            raise ValueError(f'{path}:{number}: expected a name, "English", "French" and, for some items, a key')
        name, english, french, key = match.groups("") if match else [""] * 4
        if key and key in keys:
            raise ValueError(f"{path}:{number}: {key} chooses another item already")
        keys.add(key)
        items = menus[-1].items
        items.append(Item(COMMANDS_PER_MENU * len(menus) + len(items) + 1, name, (english, french), key))
    return menus


def bars(resources):
    """The resources' names with their texts, in the form that platform/kernel/resource_table.h tells of."""
    menus = read_menus(resources)
    for language, name in enumerate(("E_WKestrelMainMenu", "F_WKestrelMainMenu")):
        lines = []
        for menu in menus:
            lines.append(menu.texts[language])
            for item in menu.items:
                shown = item.texts[language] + ("|" + item.key if item.key else "")
                lines.append(f"  {item.number} {shown}" if item.name else SEPARATOR)
        yield name, "\n".join(lines) + "\n"


def header(menus):
    items = [item for menu in menus for item in menu.items if item.name]
    keyed = [item for item in items if item.key]
    return "\n".join(
        [
            "// Generated from resources/menu.txt by tools/make_menus.py.",
            "#pragma once",
            "",
            '#include "toolbox/events.h"',
            "",
            f"constexpr int englishMenus = {ENGLISH_MENUS}; // a menu's number is this + its place in the bar, from 1",
            "enum MenuNumber : int {",
            *(f"    {menu.name} = {menu.number}," for menu in menus),
            "};",
            "",
            "// A command's number is this x the menu's place + the item's place in it, from 1, separators counted.",
            f"constexpr int commandsPerMenu = {COMMANDS_PER_MENU};",
            "enum Command : int {",
            *(f"    {item.name} = {item.number}," for item in items),
            "};",
            "",
            "struct CommandKey {",
            "    Command command;",
            "    int key; // as the message of keyDown has it",
            "};",
            "",
            "constexpr CommandKey controlLetters[] = {",
            *(f"    {{{item.name}, '{item.key[-1].lower()}'}}," for item in keyed if "+" in item.key),
            "};",
            "constexpr CommandKey functionKeys[] = {",
            *(f"    {{{item.name}, {item.key.lower()}Key}}," for item in keyed if "+" not in item.key),
            "};",
            "",
        ]
    )


def make(resources, output):
    path = output / "menu_commands.h"
    text = header(read_menus(resources))
    # Much of the program includes it: it is written only when it changes.
    if not path.exists() or path.read_text(encoding="ascii") != text:
        path.write_text(text, encoding="ascii", newline="\n")
