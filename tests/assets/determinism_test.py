#!/usr/bin/python3
"""Checks that the asset generator is deterministic and that the repository holds its
current output.

Usage: determinism_test.py ROOT [MAKE_ASSETS_OPTION ...]

Runs ROOT/tools/make_assets.py twice, each time into a fresh temporary folder (options
after ROOT, such as --only music, are passed on), and requires the two runs to agree:
the same files, identical pixels in every image (decoded), identical samples in every
sound (decoded) and identical bytes in everything else. Then every folder the generator
wrote (gfx, sfx, shaders, packaging/icons) must hold in ROOT exactly the files of the
fresh run, equal in the same way, so that nothing committed is stale, missing or left over.
Prints one line on success; exits with status 1 and the differences on failure.
"""
import pathlib
import subprocess
import sys
import tempfile

import numpy as np
import soundfile
from PIL import Image

PYTHON = "/usr/bin/python3"
ASSET_FOLDERS = ("gfx", "sfx", "shaders", "packaging/icons")
IMAGE_SUFFIXES = {".png", ".bmp", ".jpg", ".jpeg", ".tga"}
SOUND_SUFFIXES = {".ogg", ".wav", ".flac"}


def run_generator(root, out, options):
    command = [PYTHON, str(root / "tools" / "make_assets.py"), "--out", str(out),
               "--sheet", str(out / "sheet.png")] + options
    return subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def files_under(folder):
    """Paths of the files below folder, relative to it."""
    return {path.relative_to(folder) for path in folder.rglob("*") if path.is_file()}


def image_difference(a, b):
    with Image.open(a) as first, Image.open(b) as second:
        if first.mode != second.mode or first.size != second.size:
            return f"{first.mode} {first.size} against {second.mode} {second.size}"
        if first.tobytes() != second.tobytes():
            pixels = np.asarray(first).astype(int) - np.asarray(second).astype(int)
            changed = np.count_nonzero(np.any(pixels.reshape(first.size[1], first.size[0], -1), axis=2))
            return f"{changed} pixels differ, by up to {np.max(np.abs(pixels))}"
    return None


def sound_difference(a, b):
    first, first_rate = soundfile.read(str(a), dtype="float32", always_2d=True)
    second, second_rate = soundfile.read(str(b), dtype="float32", always_2d=True)
    if first_rate != second_rate or first.shape != second.shape:
        return f"{first.shape} at {first_rate} Hz against {second.shape} at {second_rate} Hz"
    if not np.array_equal(first, second):
        changed = np.count_nonzero(first != second)
        return f"{changed} samples differ, by up to {np.max(np.abs(first - second)):.6f}"
    return None


def file_difference(a, b):
    """None when the two files hold the same asset, else what differs."""
    suffix = a.suffix.lower()
    try:
        if suffix in IMAGE_SUFFIXES:
            return image_difference(a, b)
        if suffix in SOUND_SUFFIXES:
            return sound_difference(a, b)
    except Exception as error:  # noqa: BLE001 - an undecodable file is the finding
        return f"does not decode: {error}"
    if a.read_bytes() != b.read_bytes():
        return "contents differ"
    return None


def compare_folders(first, second, first_name, second_name):
    """Differences between two folders, one line each."""
    problems = []
    first_files = files_under(first) if first.is_dir() else set()
    second_files = files_under(second) if second.is_dir() else set()
    for path in sorted(first_files - second_files):
        problems.append(f"{path}: only in {first_name}")
    for path in sorted(second_files - first_files):
        problems.append(f"{path}: only in {second_name}")
    for path in sorted(first_files & second_files):
        difference = file_difference(first / path, second / path)
        if difference:
            problems.append(f"{path}: {first_name} and {second_name} differ: {difference}")
    return problems


def main():
    if len(sys.argv) < 2:
        print(__doc__.strip().splitlines()[3], file=sys.stderr)
        return 2
    root = pathlib.Path(sys.argv[1]).resolve()
    options = sys.argv[2:]
    with tempfile.TemporaryDirectory(prefix="assets-") as temp:
        runs = [pathlib.Path(temp) / "first", pathlib.Path(temp) / "second"]
        for run in runs:
            run.mkdir()
        # Both runs at once: each is mostly single-threaded.
        processes = [run_generator(root, run, options) for run in runs]
        outputs = [process.communicate()[0] for process in processes]
        for run, process, output in zip(runs, processes, outputs):
            if process.returncode != 0:
                print(output, file=sys.stderr)
                print(f"make_assets.py into the {run.name} folder failed with status {process.returncode}",
                      file=sys.stderr)
                return 1

        written = [name for name in ASSET_FOLDERS if (runs[0] / name).is_dir()]
        if not written:
            print("make_assets.py wrote none of " + ", ".join(ASSET_FOLDERS), file=sys.stderr)
            return 1
        problems = []
        for name in written:
            problems += [f"{name}/{line}" for line in
                         compare_folders(runs[0] / name, runs[1] / name, "first run", "second run")]
        sheets = [run / "sheet.png" for run in runs]
        if all(sheet.is_file() for sheet in sheets):
            difference = file_difference(*sheets)
            if difference:
                problems.append(f"contact sheet: first run and second run differ: {difference}")
        for name in written:
            problems += [f"{name}/{line}" for line in
                         compare_folders(root / name, runs[0] / name, "repository", "fresh run")]
        count = sum(len(files_under(runs[0] / name)) for name in written)

    if problems:
        for line in problems:
            print(line, file=sys.stderr)
        print(f"{len(problems)} differences; run `make assets` and commit the result if the "
              "generator changed on purpose", file=sys.stderr)
        return 1
    print(f"make_assets.py is deterministic over {count} files in {', '.join(written)}, "
          "and the repository holds its current output")
    return 0


if __name__ == "__main__":
    sys.exit(main())
