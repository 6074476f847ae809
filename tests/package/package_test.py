#!/usr/bin/python3
"""Checks of the Debian package, one per call.

Usage: package_test.py CHECK BUILD_DIR SOURCE_DIR WORK_DIR

  build      makes the package with CPack into WORK_DIR/out and unpacks it into
             WORK_DIR/root with dpkg-deb -x; the other checks read those
  files      the package holds exactly the expected files, data included
  control    name, version, section, architecture and the library dependencies
  stripped   the program carries no symbol table
  desktop    the desktop entry passes desktop-file-validate and starts the launcher
  metainfo   the AppStream metainfo passes appstreamcli validate and names this version
  icons      every hicolor icon has the size its folder names
  manual     the manual page renders under man -l without warnings, with its sections
  lintian    lintian finds no errors (warnings are printed)

Prints what it found; exits with status 1 on the first failed expectation.
"""
import glob
import os
import pathlib
import shutil
import struct
import subprocess
import sys

PROGRAM = "usr/lib/games/nightvector/nightvector"
LAUNCHER = "usr/games/nightvector"
DATA = "usr/share/games/nightvector"
DESKTOP = "usr/share/applications/nightvector.desktop"
METAINFO = "usr/share/metainfo/org.example.nightvector.metainfo.xml"
MANUAL = "usr/share/man/man6/nightvector.6.gz"
ICON_SIZES = (64, 128, 256)
DATA_FOLDERS = ("gfx", "sfx", "shaders")
# Libraries the program links, as dpkg-shlibdeps names their packages on Debian 12.
DEPENDS = ["libc6", "libgcc-s1", "libgl1", "libsdl-image1.2", "libsdl-mixer1.2", "libsdl1.2debian",
           "libstdc++6", "libx11-6", "libxrandr2"]
MANUAL_SECTIONS = ["NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "CONTROLS", "AFTER GAME OVER", "GAMEPAD", "FILES",
                   "SCREENSHOTS", "EXIT STATUS", "ENVIRONMENT", "DIAGNOSTICS"]


class Failed(Exception):
    pass


def expect_equal(actual, expected, what):
    if actual != expected:
        raise Failed(f"{what}:\n  expected {expected!r}\n  actual   {actual!r}")


def run(command, **kwargs):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, **kwargs)


def package(work):
    found = sorted(glob.glob(str(work / "out" / "nightvector_*.deb")))
    expect_equal(len(found), 1, f"packages in {work / 'out'}")
    return found[0]


def check_build(build, source, work):
    shutil.rmtree(work, ignore_errors=True)
    (work / "out").mkdir(parents=True)
    made = run(["cpack", "-G", "DEB", "-B", str(work / "out"), "--config", str(build / "CPackConfig.cmake")],
               cwd=build)
    print(made.stdout, made.stderr, sep="")
    expect_equal(made.returncode, 0, "cpack's exit status")
    deb = package(work)
    unpacked = run(["dpkg-deb", "-x", deb, str(work / "root")])
    expect_equal((unpacked.returncode, unpacked.stderr), (0, ""), "dpkg-deb -x")
    print(f"unpacked {os.path.basename(deb)} into {work / 'root'}")


def check_files(build, source, work):
    expected = {PROGRAM, LAUNCHER, DESKTOP, METAINFO, MANUAL, "usr/share/doc/nightvector/copyright",
                "usr/share/doc/nightvector/changelog.gz"}
    expected |= {f"usr/share/icons/hicolor/{n}x{n}/apps/nightvector.png" for n in ICON_SIZES}
    for folder in DATA_FOLDERS:
        expected |= {f"{DATA}/{folder}/{name}" for name in os.listdir(source / folder)}
    archive = subprocess.run(["dpkg-deb", "--fsys-tarfile", package(work)], stdout=subprocess.PIPE).stdout
    tar = subprocess.run(["tar", "-tv"], input=archive, stdout=subprocess.PIPE)
    files, modes = set(), {}
    for line in tar.stdout.decode().splitlines():
        mode, path = line.split()[0], line.split()[-1]
        if mode.startswith("-"):
            path = path[2:] if path.startswith("./") else path
            files.add(path)
            modes[path] = mode
    expect_equal(sorted(files - expected), [], "files in the package that should not be there")
    expect_equal(sorted(expected - files), [], "files missing from the package")
    expect_equal(modes[PROGRAM], "-rwxr-xr-x", f"mode of {PROGRAM}")
    expect_equal(modes[LAUNCHER], "-rwxr-xr-x", f"mode of {LAUNCHER}")
    expect_equal(sorted({m for p, m in modes.items() if p not in (PROGRAM, LAUNCHER)}), ["-rw-r--r--"],
                 "modes of the other files")
    print(f"{len(files)} files, as expected")


def control_fields(work):
    fields = {}
    for name in ("Package", "Version", "Section", "Priority", "Architecture", "Depends", "Maintainer"):
        shown = run(["dpkg-deb", "-f", package(work), name])
        fields[name] = shown.stdout.strip()
    return fields


def check_control(build, source, work):
    fields = control_fields(work)
    top = (source / "packaging" / "changelog").read_text().splitlines()[0]
    version = top[top.index("(") + 1:top.index(")")]
    architecture = run(["dpkg", "--print-architecture"]).stdout.strip()
    expect_equal(fields["Package"], "nightvector", "Package")
    expect_equal(fields["Version"], version, "Version (the changelog's newest entry)")
    expect_equal(fields["Section"], "games", "Section")
    expect_equal(fields["Priority"], "optional", "Priority")
    expect_equal(fields["Architecture"], architecture, "Architecture")
    depends = sorted(part.split()[0] for part in fields["Depends"].split(","))
    expect_equal(depends, DEPENDS, "packages named in Depends")
    print("\n".join(f"{k}: {v}" for k, v in fields.items()))


def check_stripped(build, source, work):
    sections = run(["readelf", "-S", "-W", str(work / "root" / PROGRAM)])
    expect_equal(sections.returncode, 0, "readelf's exit status")
    names = {line.split("]")[1].split()[0] for line in sections.stdout.splitlines() if "]" in line and
             line.split("]")[1].split()}
    expect_equal(sorted(names & {".symtab", ".debug_info", ".debug_line"}), [], "symbol and debug sections")
    print(f"{PROGRAM}: no symbol table, no debug information")


def check_desktop(build, source, work):
    entry = work / "root" / DESKTOP
    validated = run(["desktop-file-validate", str(entry)])
    expect_equal((validated.returncode, validated.stdout + validated.stderr), (0, ""),
                 "desktop-file-validate")
    keys = dict(line.split("=", 1) for line in entry.read_text().splitlines() if "=" in line)
    expect_equal(keys["Exec"], os.path.basename(LAUNCHER), "Exec")
    expect_equal(keys["Icon"], "nightvector", "Icon")
    expect_equal(keys["Categories"], "Game;ArcadeGame;", "Categories")
    expect_equal(keys["Terminal"], "false", "Terminal")
    print(f"{DESKTOP}: valid")


def check_metainfo(build, source, work):
    metainfo = work / "root" / METAINFO
    validated = run(["appstreamcli", "validate", "--no-net", "--pedantic", str(metainfo)])
    expect_equal(validated.returncode, 0, "appstreamcli validate:\n" + validated.stdout + validated.stderr)
    text = metainfo.read_text()
    top = (source / "packaging" / "changelog").read_text().splitlines()[0]
    version = top[top.index("(") + 1:top.index(")")]
    expect_equal(f'<release version="{version}"' in text, True, "the newest release is the changelog's version")
    expect_equal("<launchable type=\"desktop-id\">nightvector.desktop</launchable>" in text, True,
                 "launches the desktop entry")
    expect_equal("<content_rating type=\"oars-1.1\">" in text, True, "content rating")
    print(f"{METAINFO}: valid")


def png_size(path):
    header = pathlib.Path(path).read_bytes()[:24]
    expect_equal(header[:8], b"\x89PNG\r\n\x1a\n", f"PNG signature of {path}")
    return struct.unpack(">II", header[16:24])


def check_icons(build, source, work):
    for n in ICON_SIZES:
        path = work / "root" / f"usr/share/icons/hicolor/{n}x{n}/apps/nightvector.png"
        expect_equal(png_size(path), (n, n), f"size of {path}")
        print(f"{path.relative_to(work / 'root')}: {n} x {n}")


def check_manual(build, source, work):
    page = work / "root" / MANUAL
    environment = dict(os.environ, MANWIDTH="80", LC_ALL="C.UTF-8", MAN_KEEP_FORMATTING="")
    shown = run(["man", "--warnings", "-l", str(page)], env=environment)
    expect_equal((shown.returncode, shown.stderr), (0, ""), "man -l")
    lines = shown.stdout.splitlines()
    expect_equal(lines[0].split(), ["NIGHTVECTOR(6)", "Games", "NIGHTVECTOR(6)"], "header line")
    expect_equal([line for line in lines if line and not line[0].isspace()][1:-1], MANUAL_SECTIONS,
                 "section headings")
    name = lines[lines.index("NAME") + 1].strip()
    expect_equal(name, "nightvector - neon space shooter against endless waves", "NAME line")
    print(f"{MANUAL}: {len(lines)} lines, sections {', '.join(MANUAL_SECTIONS)}")


def check_lintian(build, source, work):
    checked = run(["lintian", "--fail-on", "error", "--no-tag-display-limit", package(work)])
    tags = [line for line in checked.stdout.splitlines() if line[:2] in ("E:", "W:", "I:")]
    print("\n".join(tags) if tags else "lintian: no tags")
    errors = [line for line in tags if line.startswith("E:")]
    expect_equal(errors, [], "lintian errors")
    expect_equal(checked.returncode, 0, "lintian's exit status")


CHECKS = {"build": check_build, "files": check_files, "control": check_control, "stripped": check_stripped,
          "desktop": check_desktop, "metainfo": check_metainfo, "icons": check_icons, "manual": check_manual,
          "lintian": check_lintian}


def main():
    if len(sys.argv) != 5 or sys.argv[1] not in CHECKS:
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    check = CHECKS[sys.argv[1]]
    build, source, work = (pathlib.Path(arg).resolve() for arg in sys.argv[2:])
    try:
        check(build, source, work)
    except Failed as failure:
        print(failure, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
