"""The machine that figures belong to, in a few lines."""

import os
import pathlib
import re
import shutil
import subprocess


def _output(command):
    if shutil.which(command[0]) is None:
        return ""
    return subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                          check=False).stdout


def _first_match(pattern, text):
    found = re.search(pattern, text, re.MULTILINE)
    return found[1].strip() if found else ""


def _file_system(folder):
    """Kind of the file system that holds the folder."""
    best, kind = "", "unknown"
    for line in pathlib.Path("/proc/self/mounts").read_text(encoding="utf-8").splitlines():
        _, place, this_kind, *_ = line.split(" ")
        inside = place == "/" or str(folder) == place or str(folder).startswith(place + "/")
        if inside and len(place) >= len(best):
            best, kind = place, this_kind
    return kind


def facts(programs, folder):
    """Pairs of what and how much."""
    processor = pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8")
    memory = int(_first_match(r"^MemTotal:\s+(\d+)",
                              pathlib.Path("/proc/meminfo").read_text(encoding="ascii")))
    system = _first_match(r'^PRETTY_NAME="(.*)"',
                          pathlib.Path("/etc/os-release").read_text(encoding="utf-8"))
    load = pathlib.Path("/proc/loadavg").read_text(encoding="ascii").split()[0]
    all_facts = (
        ("processor", f"{len(os.sched_getaffinity(0))} x "
                      f"{_first_match(r'^model name.*: (.*)', processor) or os.uname().machine}"),
        ("memory", f"{memory / 1e6:.0f} GB"),
        ("system", f"{system}, Linux {os.uname().release.split('-')[0]}"),
        ("file system", _file_system(folder.resolve())),
        ("load at the start", load),
        ("qrx", _first_match(r"(\S+)$", _output([str(programs / "qrx"), "--version"]))),
        ("ffmpeg", _first_match(r"^ffmpeg version (\S+)", _output(["ffmpeg", "-version"]))),
        ("mediainfo", _first_match(r"v([\d.]+)", _output(["mediainfo", "--Version"]))),
        ("exiftool", _first_match(r"([\d.]+)", _output(["exiftool", "-ver"]))),
    )
    return [(what, value) for what, value in all_facts if value]
