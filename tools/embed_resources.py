"""Writes resources.cpp, the tables of platform/kernel/resource_table.h: the files that the generators have made and
the texts and menus of resources/."""

import re
import sys
from pathlib import Path

BITMAP_FILE_HEADER = 14  # bytes before the packed bitmap
TEXT_LIMIT = 254  # bytes, so that text and terminator fit every buffer
FRENCH = 500  # a French text's number is the English text's plus this

# The generators' files; "WAVE" is the name of a type, the others have numbers.
NUMBERED_FILES = {"cursor-*.cur": "cursor", "icon-*.ico": "icon", "sound-*.wav": "WAVE"}
TYPE_NUMBERS = {"cursor": 1, "bitmap": 2, "icon": 3, "menu": 4}
TEXT_LINE = re.compile(r'(\d+)\t"([^"\t]*)"\t"([^"\t]*)"')
MENU_ITEM = re.compile(r"  (?:(\d{3}) ([^|]+)(?:\|([^|]+))?|-)")
ROW_BYTES = 32


def read_strings(path):
    texts = {}
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        match = TEXT_LINE.fullmatch(line)
        if not match:
            raise ValueError(f'{path}:{number}: expected number, "English" and "French", separated by tabs')
        for key, text in ((int(match[1]), match[2]), (int(match[1]) + FRENCH, match[3])):
            if key in texts or not 0 < len(text.encode()) <= TEXT_LIMIT:
                raise ValueError(f"{path}:{number}: text {key} is there twice, empty or over {TEXT_LIMIT} bytes")
            texts[key] = text
    return sorted(texts.items())


def read_menus(path):
    """The menu bars by their names, each as the text that the program reads."""
    menus, name = {}, None
    titles = items = 0
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        if line.startswith("["):
            name, titles = line.strip("[]"), 0
            menus[name] = ""
            continue
        item = MENU_ITEM.fullmatch(line)
        if name is None or (line.startswith(" ") and (not item or titles == 0)):
            raise ValueError(f"{path}:{number}: not a menu item")
        if item:
            items += 1
            if item[1] and int(item[1]) != 100 * titles + items:
                raise ValueError(f"{path}:{number}: the item in this place has the command {100 * titles + items}")
        else:
            titles, items = titles + 1, 0
        menus[name] += line + "\n"
    return menus


def c_string(text):
    """The text in quotes, with escapes for what is not plain ASCII: no compiler setting changes its meaning."""
    plain = "".join(chr(b) if 32 <= b < 127 and chr(b) not in '\\"?' else f"\\{b:03o}" for b in text.encode())
    return f'"{plain}"'


def c_bytes(data):
    """The data as string literals, which compile many times faster than lists of numbers."""
    # Most of the interface bitmap is black; no digit ever follows an escape, so that a zero needs but one.
    escapes = ["\\0", *(f"\\{byte:03o}" for byte in range(1, 256))]
    rows = (data[start : start + ROW_BYTES] for start in range(0, len(data), ROW_BYTES))
    return "\n".join('    "' + "".join(escapes[byte] for byte in row) + '"' for row in rows)


def collect(resources, output):
    """The resources as (type name or None, type number, name or None, number, data), in a fixed order."""
    bitmap = (output / "interface.bmp").read_bytes()[BITMAP_FILE_HEADER:]
    found = [(None, TYPE_NUMBERS["bitmap"], None, 24965, bitmap)]
    for pattern, kind in NUMBERED_FILES.items():
        files = sorted(output.glob(pattern), key=lambda file: int(file.stem.split("-")[1]))
        if not files:
            raise ValueError(f"{output} holds no {pattern}")
        for file in files:
            type_name = None if kind in TYPE_NUMBERS else kind
            number = int(file.stem.split("-")[1])
            found.append((type_name, TYPE_NUMBERS.get(kind, 0), None, number, file.read_bytes()))
    for name, text in read_menus(resources / "menu.txt").items():
        found.append((None, TYPE_NUMBERS["menu"], name, 0, text.encode()))
    return found


def source(found, texts):
    arrays, table = [], []
    for index, (type_name, type_number, name, number, data) in enumerate(found):
        arrays.append(f"alignas(16) const uint8_t data{index}[] =\n{c_bytes(data)};\n")
        quoted = ["nullptr" if word is None else c_string(word) for word in (type_name, name)]
        table.append(f"    {{{quoted[0]}, {type_number}, {quoted[1]}, {number}, data{index}, {len(data)}}},")
    return "\n".join(
        [
            "// Generated from resources/ by tools/make_resources.py.",
            '#include "platform/kernel/resource_table.h"',
            "",
            "#if defined(__clang__)",
            '#pragma clang diagnostic ignored "-Woverlength-strings"',
            "#endif",
            "",
            "namespace {",
            *arrays,
            "} // namespace",
            "",
            "const ModuleResource moduleResources[] = {",
            *table,
            "};",
            f"const int moduleResourceCount = {len(found)};",
            "",
            "const ModuleString moduleStrings[] = {",
            *(f"    {{{number}, {c_string(text)}}}," for number, text in texts),
            "};",
            f"const int moduleStringCount = {len(texts)};",
            "",
        ]
    )


def make(resources, output):
    text = source(collect(resources, output), read_strings(resources / "strings.txt"))
    (output / "resources.cpp").write_text(text, encoding="ascii", newline="\n")


if __name__ == "__main__":
    make(Path(__file__).resolve().parent.parent / "resources", Path(sys.argv[1]))
