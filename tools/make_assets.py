#!/usr/bin/python3
"""Generates every file the game reads from gfx/, sfx/ and shaders/, and the desktop
icons in packaging/icons/.

Usage: make_assets.py [--out DIR] [--only art|effects|icons|music|shaders] [--sheet FILE]
Everything is made from fixed seeds, so two runs give identical files.
"""
import argparse
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

import art  # noqa: E402
import art_icons  # noqa: E402
import effects  # noqa: E402
import music  # noqa: E402
import shaders  # noqa: E402

GENERATORS = {"art": art, "effects": effects, "icons": art_icons, "music": music, "shaders": shaders}


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--out", type=pathlib.Path, default=root,
                        help="folder that receives the generated folders (default: the repository)")
    parser.add_argument("--only", choices=sorted(GENERATORS), action="append",
                        help="make only this kind of asset (may repeat)")
    parser.add_argument("--sheet", type=pathlib.Path, default=root / "build" / "contact_sheet.png",
                        help="where the contact sheet of all images goes")
    args = parser.parse_args()
    for name in args.only or sorted(GENERATORS):
        print(f":: making {name}", flush=True)
        GENERATORS[name].generate(args.out, args)


if __name__ == "__main__":
    main()
