"""The programs that are compared over one tree, and what each has to answer to count."""

import collections
import dataclasses
import json
import os
import shutil
import typing

import table

LOOSE = "General Movies"  # title of what ffmpeg alone could describe
SOME_CHILD_FAILED = 123  # xargs: ffmpeg without an output file always ends with status 1


class WrongResult(Exception):
    """A program answered something else than the tree holds: its time means nothing."""


def require(holds, complaint):
    if not holds:
        raise WrongResult(complaint)


@dataclasses.dataclass
class Row:
    name: str
    command: list
    check: typing.Callable  # of a finished run; gives what was found, in words
    package: str = ""  # Debian package of a program that may be missing
    is_slow_own: bool = False  # qrx as it was without the warm tool

    @property
    def missing(self):
        found = shutil.which(self.command[0]) is not None
        return "" if found else f"not installed ({self.package})"


def parsed(run, statuses=(0,)):
    require(run.status in statuses, f"exit status {run.status}: {run.error.read()[-500:]}")
    return json.loads(run.output.read())


def unclaimed_files(tree, clips):
    """The files that are nothing to a layout and no MXF file: an exact scan asks ffmpeg."""
    claimed = {clip["filePath"] for clip in clips if clip["volumeTitle"] != LOOSE}
    return [file for file in tree.files if file not in claimed]


class Scans:
    """What the scans answer: the exact one what the tree holds, the plain one the same bytes."""

    def __init__(self, tree):
        self._tree = tree
        self.exact = None  # bytes
        self.clips = []
        self._quick = None

    def check_exact(self, run):
        output = run.output.read()
        require(run.status == 0, f"exit status {run.status}: {run.error.read()[-500:]}")
        if self.exact is None:
            self.clips = json.loads(output)
            found = collections.Counter(clip["volumeTitle"] for clip in self.clips)
            expected = self._tree.expected_clips()
            require(found == expected, f"found {dict(found)}, the tree holds {expected}")
            self.exact = output
        require(output == self.exact, "the answer is not that of the first exact scan")
        return f"{table.count(len(self.clips))} clips"

    def check_plain(self, run):
        return self.check_exact(run) + ", same bytes"

    def check_quick(self, run):
        """A quick scan may answer otherwise, but only where no layout knows the file."""
        output = run.output.read()
        require(run.status == 0, f"exit status {run.status}: {run.error.read()[-500:]}")
        require(self._quick in (None, output), "two quick scans differ")
        self._quick = output
        exact = {clip["filePath"]: clip for clip in self.clips}
        quick = {clip["filePath"]: clip for clip in json.loads(output)}
        unclaimed = set(unclaimed_files(self._tree, self.clips))
        lost, gained = exact.keys() - quick.keys(), quick.keys() - exact.keys()
        changed = {path for path in exact.keys() & quick.keys() if exact[path] != quick[path]}
        odd = (lost | gained | changed) - unclaimed
        require(not odd, f"quick differs for {len(odd)} files of known layouts, as {min(odd, default='')}")
        return f"{table.count(len(quick))} clips" + difference(lost, gained, changed)

    def check_info(self, run):
        answers = parsed(run)
        require(len(answers) == len(self.clips), f"{len(answers)} answers")
        return f"{table.count(len(answers))} clips"


def difference(lost, gained, changed):
    """How a quick scan differs, by file extension; nothing when it does not."""
    parts = []
    for what, paths in (("lacks", lost), ("adds", gained), ("changes", changed)):
        kinds = collections.Counter(os.path.splitext(path)[1] for path in paths)
        if kinds:
            parts.append(f"{what} " + ", ".join(f"{n} {kind}" for kind, n in sorted(kinds.items())))
    return "; " + "; ".join(parts) if parts else ", the same"


class Peers:
    """What the other programs answer: something about every file, and the same in every run."""

    def __init__(self, tree, movies):
        self._tree = tree
        self._movies = movies  # how many of the unclaimed files are clips
        self._first = {}

    def _same_as_first(self, what, number):
        first = self._first.setdefault(what, number)
        require(number == first, f"{number}, and {first} in the first run")

    def check_find(self, run):
        lines = run.output.read().count(b"\n")
        require(run.status == 0 and lines == len(self._tree.files), f"{lines} lines")
        return f"{table.count(lines)} files"

    def check_floor(self, run):
        files = int(run.output.read())
        require(run.status == 0 and files == len(self._tree.files), f"{files} files")
        return f"{table.count(files)} files"

    def check_each_file(self, run):
        """exiftool ends with 1 when a file was of no kind that it knows; it is in the list too."""
        records = len(parsed(run, statuses=(0, 1)))
        require(records == len(self._tree.files), f"{records} records")
        return f"{table.count(records)} records"

    def check_folder_records(self, run):
        """mediainfo takes some cards as a whole, so fewer records than files."""
        records = parsed(run)
        named = [record["media"]["@ref"] for record in records]
        require(named and all(path.startswith(str(self._tree.folder)) for path in named),
                "a record of something else")
        self._same_as_first("folder", len(named))
        return f"{table.count(len(named))} records"

    def check_ffmpeg(self, run):
        report = run.error.read()
        opened = report.count(b"Input #0,")
        require(run.status == SOME_CHILD_FAILED, f"exit status {run.status}")
        require(opened >= self._movies, f"ffmpeg opened {opened} files, {self._movies} are clips")
        self._same_as_first("ffmpeg", opened)
        return f"opened {table.count(opened)}"


EXACT, PLAIN, QUICK = "qrx scan", "qrx scan --plain-tool", "qrx scan --quick"
INFO, FIND, FLOOR = "qrx info, every clip", "find -type f", "open and read 64 bytes"
MEDIAINFO, MEDIAINFO_LIST = "mediainfo, the folder", "mediainfo, list of files"
EXIFTOOL, FFMPEG = "exiftool", "xargs ffmpeg -i, unclaimed"


def compared_rows(programs, tree, scans, unclaimed_list):
    """All rows; `scans` has seen an exact scan, `unclaimed_list` holds its unclaimed files."""
    qrx, folder = programs / "qrx", str(tree.folder)
    scan = [qrx, "scan", "--format", "json"]
    peers = Peers(tree, sum(clip["volumeTitle"] == LOOSE for clip in scans.clips))
    return [
        Row(FIND, ["find", folder, "-type", "f"], peers.check_find, "findutils"),
        Row(FLOOR, [programs / "scan_floor", folder], peers.check_floor),
        Row(QUICK, [*scan, "--quick", folder], scans.check_quick),
        Row(EXACT, [*scan, folder], scans.check_exact),
        Row(PLAIN, [*scan, "--plain-tool", folder], scans.check_plain, is_slow_own=True),
        Row(INFO, [qrx, "info", "--format", "json", *(clip["filePath"] for clip in scans.clips)],
            scans.check_info),
        Row(MEDIAINFO, ["mediainfo", "--Output=JSON", folder], peers.check_folder_records,
            "mediainfo"),
        Row(MEDIAINFO_LIST, ["mediainfo", "--Output=JSON", *tree.files], peers.check_each_file,
            "mediainfo"),
        Row(EXIFTOOL, ["exiftool", "-r", "-json", "-ext", "*", folder], peers.check_each_file,
            "libimage-exiftool-perl"),
        Row(FFMPEG, ["xargs", "-0", "-a", unclaimed_list, "-n", "1",
                     f"-P{len(os.sched_getaffinity(0))}",
                     "ffmpeg", "-hide_banner", "-nostdin", "-i"], peers.check_ffmpeg, "findutils"),
    ]
