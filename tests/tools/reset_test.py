"""`qrx reset`: an empty card of a drive; on images mounted below /media."""

import json
import os
import shutil
import signal
import time

import cards
import mounted
import qrx_case

CUEUP = b"""<?xml version="1.0" encoding="UTF-8"?>
<CueUp><head>h</head><history><clip>1</clip></history><clip>2</clip></CueUp>
"""
MEDIAPRO = b"""<?xml version="1.0" encoding="UTF-8"?>
<MediaProfile><Properties>p</Properties><Contents><Material uri="x"/></Contents></MediaProfile>
"""


class ResetUsage(qrx_case.QrxCase):
    """What needs no drive."""

    def test_folder_that_is_no_drive_is_refused_and_kept(self):
        cards.p2_series(self, ["0001AA"])
        cards.p2_skeleton(self)
        before = sorted(self.folder.rglob("*"))
        for arguments in (["p2"], ["--yes", "p2"]):
            done = self.run_qrx("reset", *arguments, status=1)
            self.assertEqual(done.stdout, b"")
            self.assertIn(b"is not a removable drive", done.stderr)
            self.assertIn(b"nothing was changed", done.stderr)
        self.assertEqual(sorted(self.folder.rglob("*")), before)

    def test_missing_drive_is_said(self):
        done = self.run_qrx("reset", "--yes", "gone", status=1)
        self.assertIn(b"No such file or directory", done.stderr)
        self.run_qrx("reset", "--yes", "", status=1)

    def test_wrong_usage(self):
        self.run_qrx("reset", status=2)
        self.run_qrx("reset", "--yes", status=2)
        self.run_qrx("reset", "a", "b", status=2)
        done = self.run_qrx("reset", "--layout", "Nobody's", "p2", status=2)
        self.assertIn(b"there is no layout Nobody's", done.stderr)


class Reset(mounted.MountedCase):
    def layouts(self):
        drives = json.loads(self.run_qrx("drives", "--format", "json").stdout)
        (card,) = [drive for drive in drives if drive["filePath"] == self.card]
        return card["layouts"]

    def p2_card(self):
        cards.p2_series(self, ["0001AA", "0002BB"], card=self.card)
        self.write(f"{self.card}/CONTENTS/AUDIO/0001AA00.MXF")
        cards.p2_skeleton(self, card=self.card)
        self.assertIn("Panasonic P2", self.layouts())

    def ex_card(self, **options):
        cards.ex_segments(self, card=self.card, **options)
        os.makedirs(f"{self.card}/BPAV/TAKR/T")
        self.write(f"{self.card}/BPAV/CUEUP.XML", CUEUP)
        self.write(f"{self.card}/BPAV/MEDIAPRO.XML", MEDIAPRO)
        self.assertIn("Sony XDCAM EX", self.layouts())

    def reset(self, *arguments, status=0):
        return self.run_qrx("reset", *arguments, self.card, status=status).stdout.decode()

    def test_without_yes_the_plan_is_shown_and_nothing_is_touched(self):
        self.p2_card()
        before = self.below_card()
        lines = self.reset().splitlines()
        self.assertEqual(lines[0], f"{self.card}: the reset of Panasonic P2")
        self.assertEqual(
            lines[1], f"  remove every file below {self.card}, keeping the folders (6 items)")
        self.assertIn(f"LASTCLIP.TXT to {self.card}/LASTCLIP.TXT", lines[3])
        self.assertEqual(lines[-1], "Nothing was changed; --yes carries this out.")
        self.assertEqual(self.below_card(), before)

    def test_p2_card_is_a_p2_card_afterwards(self):
        self.p2_card()
        lines = self.reset("--yes").splitlines()
        self.assertIn(f"  removed {self.card}/CONTENTS/VIDEO/0001AA.MXF", lines)
        self.assertIn(f"  removed {self.card}/CONTENTS/CLIP/0002BB.XML", lines)
        self.assertEqual(sum(line.startswith("  removed") for line in lines), 6)
        self.assertEqual(lines[-1], "The card is reset.")
        self.assertFalse([line for line in lines if "._LASTCLIP" in line or "failed" in line])
        self.assertEqual(self.below_card(), sorted(
            [b"CONTENTS", b"CONTENTS/AUDIO", b"CONTENTS/CLIP", b"CONTENTS/VIDEO",
             b"LASTCLIP.TXT"]))
        self.assertIn("Panasonic P2", self.layouts())
        self.assertEqual(self.reset("--yes").splitlines()[-1], "The card is reset.")

    def test_p2_marker_left_by_another_system_goes(self):
        self.p2_card()
        self.write(f"{self.card}/._LASTCLIP.TXT")
        lines = self.reset("--yes").splitlines()
        self.assertIn(f"  removed {self.card}/._LASTCLIP.TXT", lines)
        self.assertFalse(os.path.exists(f"{self.card}/._LASTCLIP.TXT"))

    def test_p2_reset_is_refused_where_its_marker_cannot_be_put_back(self):
        self.p2_card()
        before = self.below_card()
        lonely = shutil.copy(self.binary, self.folder / "qrx-alone")
        done = self.run_qrx("reset", "--yes", self.card, status=1, executable=lonely)
        self.assertIn(b"is missing; nothing was changed", done.stderr)
        self.assertEqual(self.below_card(), before)

    def test_installed_program_has_the_marker_of_its_data_folder(self):
        self.p2_card()
        self.write("usr/share/qrx/LASTCLIP.TXT", b"0002\r\n1.0\r\n2\r\n")
        os.mkdir(self.folder / "usr/bin")
        installed = shutil.copy(self.binary, self.folder / "usr/bin/qrx")
        self.run_qrx("reset", "--yes", self.card, executable=installed)
        with open(f"{self.card}/LASTCLIP.TXT", "rb") as marker:
            self.assertEqual(marker.read(), b"0002\r\n1.0\r\n2\r\n")
        self.assertIn("Panasonic P2", self.layouts())

    def test_ex_card_is_an_ex_card_afterwards(self):
        self.ex_card()
        lines = self.reset("--yes").splitlines()
        self.assertIn(f"  removed {self.card}/BPAV/CLPR/632_0001_01/632_0001_01.MP4", lines)
        self.assertIn(f"  done: make the folder {self.card}/BPAV/CLPR", lines)
        self.assertEqual(self.below_card(), [b"BPAV", b"BPAV/CLPR", b"BPAV/CUEUP.XML",
                                             b"BPAV/MEDIAPRO.XML", b"BPAV/TAKR"])
        self.assertIn("Sony XDCAM EX", self.layouts())
        with open(f"{self.card}/BPAV/MEDIAPRO.XML", "rb") as profile:
            self.assertNotIn(b"Material", profile.read())

    def test_failing_reset_is_status_1(self):
        self.ex_card()
        self.write(f"{self.card}/BPAV/CUEUP.XML", b"\xff" * 64)
        done = self.run_qrx("reset", "--yes", self.card, status=1)
        self.assertIn(b"  failed: remove from ", done.stdout)
        self.assertNotIn(b"The card is reset", done.stdout)
        self.assertIn(b"the reset failed", done.stderr)

    def test_of_several_layouts_the_taken_one_is_named_and_can_be_chosen(self):
        self.ex_card()
        cards.p2_series(self, ["0001AA"], card=self.card)
        cards.p2_skeleton(self, card=self.card)
        text = self.reset()
        self.assertIn("the reset of Sony XDCAM EX (the drive tests that say yes: "
                      "Sony XDCAM EX, Panasonic P2; --layout chooses)", text)
        self.assertIn("the reset of Panasonic P2", self.reset("--layout", "Panasonic P2"))
        done = self.run_qrx("reset", "--yes", "--layout", "RED One", self.card, status=1)
        self.assertIn(b"the drive test of RED One says no", done.stderr)
        self.assertTrue(os.path.exists(f"{self.card}/CONTENTS/VIDEO/0001AA.MXF"))

    def test_drive_of_no_layout_is_refused_and_kept(self):
        self.write(f"{self.card}/holiday.mov")
        done = self.run_qrx("reset", "--yes", self.card, status=1)
        self.assertIn(b"no layout's drive test says yes", done.stderr)
        self.assertEqual(self.below_card(), [b"holiday.mov"])

    def test_slash_at_the_end_and_link_to_the_drive(self):
        self.p2_card()
        self.run_qrx("reset", self.card + "/")
        os.symlink(self.card, self.folder / "link")
        self.run_qrx("reset", "--yes", "link", status=1)
        self.assertTrue(os.path.exists(f"{self.card}/CONTENTS/VIDEO/0001AA.MXF"))

    def test_links_go_and_what_they_mean_stays(self):
        kept = self.write("elsewhere/clip.MXF")
        self.p2_card()
        os.symlink(self.folder / "elsewhere", f"{self.card}/CONTENTS/VIDEO/folder")
        os.symlink(kept, os.fsencode(f"{self.card}/CONTENTS/VIDEO/file.MXF"))
        lines = self.reset("--yes").splitlines()
        self.assertTrue(os.path.exists(kept))
        self.assertIn(f"  removed {self.card}/CONTENTS/VIDEO/file.MXF", lines)
        self.assertFalse(os.path.lexists(f"{self.card}/CONTENTS/VIDEO/file.MXF"))

    def test_harmful_names(self):
        self.p2_card()
        for name in (b"\x1b[2J.MXF", b"a\nb.MXF", b"\xff.MXF", b"$(touch x)`y`.MXF", b"-rf"):
            self.write(os.fsencode(self.card) + b"/CONTENTS/VIDEO/" + name)
        text = self.reset("--yes")
        self.assertNotIn("\x1b", text)
        self.assertIn(f"  removed {self.card}/CONTENTS/VIDEO/a\\nb.MXF\n", text)
        self.assertIn(f"  removed {self.card}/CONTENTS/VIDEO/\\xff.MXF\n", text)
        self.assertEqual(os.listdir(f"{self.card}/CONTENTS/VIDEO"), [])
        self.assertIn("Panasonic P2", self.layouts())

    def left_by_killed_reset(self):
        """How many clips are left by a reset that is killed once it has begun to remove them."""
        store = f"{self.card}/BPAV/CLPR"
        cards.ex_segments(self, card=self.card, pieces=range(1, 3001))
        process = self.start("reset", "--yes", self.card)
        self.wait_until(lambda: not os.path.exists(store) or len(os.listdir(store)) < 3000,
                        "the first removal")
        process.send_signal(signal.SIGSTOP)
        time.sleep(0.05)
        left = len(os.listdir(store)) if os.path.exists(store) else 0
        process.send_signal(signal.SIGKILL if left else signal.SIGCONT)
        process.wait()
        return left

    def test_killed_in_the_middle_and_run_again(self):
        self.ex_card()
        # On a busy machine the reset may be over before anybody sees that it has begun.
        self.assertTrue(any(self.left_by_killed_reset() for _ in range(10)))
        self.assertEqual(self.reset("--yes").splitlines()[-1], "The card is reset.")
        self.assertEqual(os.listdir(f"{self.card}/BPAV/CLPR"), [])
        self.assertIn("Sony XDCAM EX", self.layouts())


if __name__ == "__main__":
    qrx_case.main()
