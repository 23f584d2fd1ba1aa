"""Makes everything that the program embeds and the headers that name it: make_resources.py OUTPUT_FOLDER"""

import sys
from pathlib import Path

sys.dont_write_bytecode = True  # the source tree may be read-only, and a build leaves no traces in it

import embed_resources  # noqa: E402
import make_cursors  # noqa: E402
import make_icons  # noqa: E402
import make_interface_bitmap  # noqa: E402
import make_menus  # noqa: E402
import make_sounds  # noqa: E402


def main(arguments):
    if len(arguments) != 2:
        print(f"usage: {arguments[0]} OUTPUT_FOLDER", file=sys.stderr)
        return 2
    resources = Path(__file__).resolve().parent.parent / "resources"
    output = Path(arguments[1])
    output.mkdir(parents=True, exist_ok=True)
    for pattern in embed_resources.NUMBERED_FILES:  # what an earlier build made and this one might not
        for stale in output.glob(pattern):
            stale.unlink()
    for generator in (make_interface_bitmap, make_cursors, make_icons, make_sounds, make_menus, embed_resources):
        try:
            generator.make(resources, output)
        except (OSError, ValueError) as error:
            print(f"{generator.__name__}: {error}", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
