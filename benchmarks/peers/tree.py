"""The tree of cards that is scanned: made once with `qrx mkcard`, and known to the last clip."""

import dataclasses
import json
import os
import pathlib
import subprocess
import sys

MANIFEST = "peers.json"
SOUND_CHANNELS = 2  # of each clip of a P2 card of mkcard


@dataclasses.dataclass(frozen=True)
class Card:
    """How many clips a card has in the large and in the small tree."""

    layout: str  # as mkcard names it
    title: str
    large: int
    small: int
    movies_beside: int = 0  # proxies beside each clip that ffmpeg knows as movies
    mxf_beside: int = 0  # sounds and proxies beside each clip that are MXF files

    def clips(self, size):
        return self.large if size == "large" else self.small


# Twelve cards and a folder of loose media. Three files in five are claimed by no layout: companions
# of clips, proxies, photographs, lists, and the loose media.
CARDS = (
    Card("p2", "Panasonic P2", 110, 3, movies_beside=1, mxf_beside=SOUND_CHANNELS),
    Card("xdcam-ex", "Sony XDCAM EX", 120, 3),
    Card("xdcam-hd", "Sony XDCAM HD", 150, 5, mxf_beside=1),
    Card("sony-avchd", "Sony NXCAM AVCHD", 200, 5),
    Card("canon-avchd", "Canon AVCHD", 120, 3),
    Card("panasonic-avchd", "Panasonic AVCHD", 120, 3),
    Card("canon-eos", "Canon EOS", 280, 4),
    Card("canon-xf", "Canon XF", 140, 5),
    Card("jvc-mp4", "JVC-MP4", 110, 4),
    Card("jvc-qt", "JVC-QuickTime", 110, 4),
    Card("red-one", "RED One", 100, 3),
    Card("gopro", "GoPro", 100, 3, movies_beside=1),
    Card("loose", "General Movies", 120, 12),
)


@dataclasses.dataclass
class Tree:
    folder: pathlib.Path  # of the cards
    size: str
    files: list  # absolute paths, sorted

    def expected_clips(self):
        """How many clips of each title a scan has to find."""
        clips = {"MXF": 0}
        for card in CARDS:
            count = card.clips(self.size)
            clips["MXF"] += count * card.mxf_beside
            clips.setdefault("General Movies", 0)
            clips["General Movies"] += count * card.movies_beside
            clips[card.title] = clips.get(card.title, 0) + count
        return clips


def files_below(folder):
    return sorted(os.path.join(at, name) for at, _, names in os.walk(folder) for name in names)


def _manifest(size, files):
    return {"cards": {card.layout: card.clips(size) for card in CARDS}, "files": len(files)}


def _make(qrx, cards, size):
    for card in CARDS:
        made = subprocess.run(
            [qrx, "mkcard", card.layout, cards / card.layout, "--clips", str(card.clips(size))],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
            text=True, check=False)
        if made.returncode != 0:
            sys.exit(f"qrx mkcard {card.layout}: {made.stderr.strip()}")


def prepared_tree(qrx, folder, size):
    """The tree in `folder`: the one that an earlier run left there, or a new one."""
    cards, manifest = folder / "cards", folder / MANIFEST
    if not manifest.exists():
        if cards.exists():
            sys.exit(f"{folder} holds no finished tree; name another folder, or empty this one")
        cards.mkdir(parents=True)
        _make(qrx, cards, size)
        manifest.write_text(json.dumps(_manifest(size, files_below(cards))), encoding="utf-8")
    files = files_below(cards)
    if json.loads(manifest.read_text(encoding="utf-8")) != _manifest(size, files):
        sys.exit(f"the tree in {folder} is another one; name another folder, or empty this one")
    return Tree(cards, size, files)
