#!/usr/bin/env python3
"""`qrx info` of a P2 card beside two general tools, and `qrx series` of a long recording.

    benchmarks/info_peers.py build/release/bin [--clips N] [--pieces N] [--runs N]

Makes a P2 card of 200 clips (1,000 files: video, two sound files, clip XML, icon) from one clip of
`qrx mkcard p2`, then runs `qrx info --format json` on its clips, `mediainfo --Output=JSON` and
`exiftool -r -json` on the card in turns, so that all meet the same weather, and checks that qrx
answered for every clip. Then times `qrx series` on a recording of 2,000 pieces. Prints medians and
ratios. Needs mediainfo and exiftool (Debian: mediainfo, libimage-exiftool-perl). Exit status 1 when
qrx is less than 5 times as fast as the one and 10 times as fast as the other, or the series takes a
second or more.
"""

import argparse
import json
import pathlib
import re
import shutil
import statistics
import subprocess
import sys
import tempfile

from measuring import Runner

LEAST_OVER_MEDIAINFO, LEAST_OVER_EXIFTOOL, MOST_SERIES_SECONDS = 5, 10, 1.0

PIECE = """<?xml version="1.0" encoding="UTF-8" standalone="no"?>\r
<P2Main><ClipContent><ClipName>{name}</ClipName><GlobalClipID>{id:064X}</GlobalClipID>
<Duration>100</Duration><EditUnit>1/25</EditUnit><Relation><OffsetInShot>0</OffsetInShot>
<GlobalShotID>{shot:064X}</GlobalShotID><Connection><Top><GlobalClipID>{shot:064X}</GlobalClipID></Top>
{links}</Connection></Relation></ClipContent></P2Main>\r
"""


def make_card(qrx, folder, clips):
    """A card of `clips` clips with two sound files each, all copies of one; gives their videos."""
    subprocess.run([qrx, "mkcard", "p2", folder / "seed"], check=True, stdout=subprocess.DEVNULL)
    seed = folder / "seed/CONTENTS"
    video = sorted((seed / "VIDEO").glob("*.MXF"))[0]
    name = video.stem
    xml = (seed / f"CLIP/{name}.XML").read_text(encoding="utf-8")
    sound = sorted((seed / "AUDIO").glob(f"{name}*.MXF"))[0]
    icon = sorted((seed / "ICON").glob(f"{name}*"))[0]
    contents = folder / "card/CONTENTS"
    for part in ("VIDEO", "AUDIO", "CLIP", "ICON"):
        (contents / part).mkdir(parents=True)
    shutil.copy(folder / "seed/LASTCLIP.TXT", folder / "card")
    videos = []
    for number in range(clips):
        copy = f"{number:04}AB"
        videos.append(contents / f"VIDEO/{copy}.MXF")
        shutil.copy(video, videos[-1])
        for channel in range(2):
            shutil.copy(sound, contents / f"AUDIO/{copy}{channel:02}.MXF")
        (contents / f"CLIP/{copy}.XML").write_text(re.sub(name, copy, xml), encoding="utf-8",
                                                   newline="")
        shutil.copy(icon, contents / f"ICON/{copy}{icon.suffix}")
    return folder / "card", videos


def make_recording(folder, pieces):
    """One recording that runs over `pieces` files; the video files are empty, as only the XML counts."""
    contents = folder / "long/CONTENTS"
    for part in ("VIDEO", "CLIP"):
        (contents / part).mkdir(parents=True)

    def link(kind, number):
        return (f"<{kind}><GlobalClipID>{number + 1:064X}</GlobalClipID>"
                f"<ClipName>{number:04}LR</ClipName></{kind}>")

    for number in range(pieces):
        name = f"{number:04}LR"
        links = (link("Previous", number - 1) if number > 0 else "") + (
            link("Next", number + 1) if number + 1 < pieces else "")
        (contents / f"VIDEO/{name}.MXF").write_bytes(b"")
        (contents / f"CLIP/{name}.XML").write_text(
            PIECE.format(name=name, id=number + 1, shot=1, links=links), encoding="utf-8",
            newline="")
    return folder / "long"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("programs", type=pathlib.Path, help="folder of qrx and measured_run")
    parser.add_argument("--clips", type=int, default=200)
    parser.add_argument("--pieces", type=int, default=2000)
    parser.add_argument("--runs", type=int, default=5)
    given = parser.parse_args()
    for tool in ("mediainfo", "exiftool"):
        if shutil.which(tool) is None:
            sys.exit(f"{tool} is not installed")

    qrx = given.programs.resolve() / "qrx"
    runner = Runner(given.programs)
    with tempfile.TemporaryDirectory(prefix="qrx-info-peers-") as name:
        folder = pathlib.Path(name)
        card, videos = make_card(qrx, folder, given.clips)
        recording = make_recording(folder, given.pieces)
        commands = {
            "qrx info": [qrx, "info", "--format", "json", *videos],
            "mediainfo": ["mediainfo", "--Output=JSON", card],
            "exiftool": ["exiftool", "-r", "-json", "-q", card],
            "qrx series": [qrx, "series", "--format", "json", recording],
        }
        seconds = {what: [] for what in commands}
        for run in range(given.runs + 1):
            for what, command in commands.items():
                done = runner.run(command)
                if done.status != 0:
                    sys.exit(f"{what} ended with status {done.status}")
                output = done.output.read()
                if what == "qrx info" and len(json.loads(output)) != given.clips:
                    sys.exit("qrx info did not answer for every clip")
                if what == "qrx series" and output.count(b"LR.MXF") < given.pieces:
                    sys.exit("qrx series did not name every piece")
                if run > 0:  # the first run warms the cache
                    seconds[what].append(done.seconds)

    medians = {what: statistics.median(took) for what, took in seconds.items()}
    over_mediainfo = medians["mediainfo"] / medians["qrx info"]
    over_exiftool = medians["exiftool"] / medians["qrx info"]
    for what, median in medians.items():
        print(f"{what:12} {median * 1000:9.1f} ms")
    print(f"mediainfo / qrx info  {over_mediainfo:6.1f}  (at least {LEAST_OVER_MEDIAINFO})")
    print(f"exiftool / qrx info   {over_exiftool:6.1f}  (at least {LEAST_OVER_EXIFTOOL})")
    print(f"qrx series of {given.pieces} pieces  {medians['qrx series']:.3f} s"
          f"  (under {MOST_SERIES_SECONDS})")
    held = (over_mediainfo >= LEAST_OVER_MEDIAINFO and over_exiftool >= LEAST_OVER_EXIFTOOL
            and medians["qrx series"] < MOST_SERIES_SECONDS)
    return 0 if held else 1


if __name__ == "__main__":
    sys.exit(main())
