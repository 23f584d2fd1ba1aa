"""Writes resources.cpp, the tables of platform/kernel/resource_table.h: the files that the generators have made and
the texts and menus of resources/. And text_names.h, which names the texts."""

import re
import sys
from pathlib import Path

import make_menus

BITMAP_FILE_HEADER = 14  # bytes before the packed bitmap
TEXT_LIMIT = 254  # bytes, so that text and terminator fit every buffer
FRENCH = 500  # a French text's number is the English text's plus this

# The generators' files; "WAVE" is the name of a type, the others have numbers.
NUMBERED_FILES = {"cursor-*.cur": "cursor", "icon-*.ico": "icon", "sound-*.wav": "WAVE"}
TYPE_NUMBERS = {"cursor": 1, "bitmap": 2, "icon": 3, "menu": 4}
TEXT_LINE = re.compile(r'(\d+)\t([a-z][A-Za-z0-9]*Text)\t"([^"\t]*)"\t"([^"\t]*)"')
ROW_BYTES = 32


def read_strings(path):
    """The texts by their numbers, and the English texts' numbers by their names, in the order of the file."""
    texts, names = {}, {}
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        match = TEXT_LINE.fullmatch(line)
        if not match:
            raise ValueError(f'{path}:{number}: expected number, nameText, "English" and "French", separated by tabs')
        identifier, name, english, french = int(match[1]), match[2], match[3], match[4]
        for key, text in ((identifier, english), (identifier + FRENCH, french)):
            if key in texts or not 0 < len(text.encode()) <= TEXT_LIMIT:
                raise ValueError(f"{path}:{number}: text {key} is there twice, empty or over {TEXT_LIMIT} bytes")
            texts[key] = text
        if name in names:
            raise ValueError(f"{path}:{number}: {name} names text {names[name]} already")
        names[name] = identifier
    return texts, names


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
    for name, text in make_menus.bars(resources):
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
            *(f"    {{{number}, {c_string(text)}}}," for number, text in sorted(texts.items())),
            "};",
            f"const int moduleStringCount = {len(texts)};",
            "",
        ]
    )


def make_text_names(resources, output):
    """The header alone: it needs nothing that a generator made."""
    path = output / "text_names.h"
    header = "\n".join(
        [
            "// Generated from resources/strings.txt by tools/embed_resources.py.",
            "#pragma once",
            "",
            "// The texts of the string table, by the numbers of their English forms.",
            "enum TextID : int {",
            *(f"    {name} = {number}," for name, number in read_strings(resources / "strings.txt")[1].items()),
            "};",
            "",
        ]
    )
    # Half of the program includes it: it is written only when it changes.
    if not path.exists() or path.read_text(encoding="ascii") != header:
        path.write_text(header, encoding="ascii", newline="\n")


def make(resources, output):
    make_text_names(resources, output)
    text = source(collect(resources, output), read_strings(resources / "strings.txt")[0])
    (output / "resources.cpp").write_text(text, encoding="ascii", newline="\n")


if __name__ == "__main__":
    make(Path(__file__).resolve().parent.parent / "resources", Path(sys.argv[1]))
