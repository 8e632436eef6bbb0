#!/usr/bin/env python3
"""The other side of the keyed archive tests: reads and writes archives with plistlib.

usage: keyed_archive.py read FILE             prints the root object as JSON, classes and all
       keyed_archive.py write FORMAT FILE     reads such JSON from FILE and writes FILE.archive

FORMAT is binary or xml. In the JSON an object has its class chain under "$classes".
"""

import json
import plistlib
import sys


def uid_of(value):
    if isinstance(value, plistlib.UID):
        return value.data
    if isinstance(value, dict) and set(value) == {"CF$UID"}:
        return value["CF$UID"]
    return None


def unarchived(objects, place):
    value = objects[place]
    if not isinstance(value, dict):
        return value.hex() if isinstance(value, bytes) else value
    record = objects[uid_of(value["$class"])]
    if record["$classname"] != record["$classes"][0]:
        sys.exit("the chain does not begin with the class")
    fields = {"$classes": record["$classes"]}
    for key, reference in value.items():
        if key != "$class":
            fields[key] = unarchived(objects, uid_of(reference))
    return fields


def read(file):
    with open(file, "rb") as source:
        archive = plistlib.load(source)
    if sorted(archive) != ["$archiver", "$objects", "$top", "$version"]:
        sys.exit(f"keys: {sorted(archive)}")
    if archive["$version"] != 100000 or archive["$archiver"] != "NSKeyedArchiver":
        sys.exit("not a keyed archive")
    if archive["$objects"][0] != "$null" or uid_of(archive["$top"]["root"]) != 1:
        sys.exit("the list does not begin as it must")
    json.dump(unarchived(archive["$objects"], 1), sys.stdout, sort_keys=True)


def write(form, file):
    binary = form == "binary"
    objects = ["$null"]

    def reference(place):
        return plistlib.UID(place) if binary else {"CF$UID": place}

    def archived(value):
        place = len(objects)
        objects.append(value)
        if isinstance(value, dict):
            fields = {key: archived(field) for key, field in value.items() if key != "$classes"}
            fields["$class"] = reference(len(objects))
            classes = value["$classes"]
            objects.append({"$classname": classes[0], "$classes": classes})
            objects[place] = fields
        return reference(place)

    with open(file, encoding="utf-8") as source:
        root = archived(json.load(source))
    archive = {
        "$version": 100000,
        "$archiver": "NSKeyedArchiver",
        "$top": {"root": root},
        "$objects": objects,
    }
    with open(file + ".archive", "wb") as target:
        plistlib.dump(archive, target, fmt=plistlib.FMT_BINARY if binary else plistlib.FMT_XML)


if __name__ == "__main__":
    if sys.argv[1] == "read":
        read(sys.argv[2])
    else:
        write(sys.argv[2], sys.argv[3])
