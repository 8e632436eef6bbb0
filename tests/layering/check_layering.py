#!/usr/bin/env python3
"""Checks who includes whom.

usage: check_layering.py LAYERING.TXT SOURCE_FOLDER

LAYERING.TXT has a line per folder, "folder: folders it may include", written by the build from its
own dependency lists, so that this test and the linker can never disagree. Two rules are not in it:
only main files may install the platform services, and nothing under the source folder may include a
fake.
"""

import os
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
FOREIGN = re.compile(
    r"^\s*#\s*include\s*<((?:glib|gio|gobject|libxml|gdk-pixbuf|plist|blkid|zlib|fmt|nlohmann|CLI)[/.][^>]*)>",
    re.MULTILINE,
)
# A call, not a mention in a comment.
INSTALLS = re.compile(r"^(?!\s*//).*\binstallPlatformServices\(", re.MULTILINE)
# Foreign libraries and the folders that may see them.
FOREIGN_ALLOWED = {
    "fmt": ("app",),
    "nlohmann": ("app",),
    "CLI": ("app",),
}
ADAPTERS = "platform/linux"


def read_rules(path):
    rules = {}
    with open(path, encoding="utf-8") as lines:
        for line in lines:
            if ":" in line:
                folder, allowed = line.split(":", 1)
                rules[folder.strip()] = set(allowed.split())
    return rules


def folder_of(relative, rules):
    """The longest rule that the path lies under."""
    best = None
    for folder in rules:
        if relative.startswith(folder + "/") and (best is None or len(folder) > len(best)):
            best = folder
    return best


def main():
    rules = read_rules(sys.argv[1])
    root = sys.argv[2]
    faults = []
    checked = 0
    for where, _, names in sorted(os.walk(root)):
        for name in sorted(names):
            if not name.endswith((".h", ".cpp")):
                continue
            path = os.path.join(where, name)
            relative = os.path.relpath(path, root)
            folder = folder_of(relative, rules)
            if folder is None:
                faults.append(f"{relative}: lies in no known folder")
                continue
            checked += 1
            with open(path, encoding="utf-8") as source:
                text = source.read()
            is_main = name == "main.cpp"
            for included in INCLUDE.findall(text):
                target = folder_of(included, rules)
                if target is None:
                    faults.append(f'{relative}: "{included}" is not written from the source root')
                elif is_main and target == ADAPTERS:
                    continue
                elif target != folder and target not in rules[folder]:
                    faults.append(f"{relative}: {folder} may not include {included}")
                elif not os.path.exists(os.path.join(root, included)):
                    faults.append(f"{relative}: {included} does not exist")
            for included in FOREIGN.findall(text):
                library = re.split(r"[/.]", included)[0]
                if folder != ADAPTERS and folder not in FOREIGN_ALLOWED.get(library, ()):
                    faults.append(f"{relative}: {folder} may not include <{included}>")
            if INSTALLS.search(text) and not is_main and folder != ADAPTERS:
                faults.append(f"{relative}: only main files install the platform services")
    for fault in faults:
        print(fault)
    if checked == 0:
        print("no source file was found")
        return 1
    print(f"{checked} files, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
