"""`qrx drives` and `qrx reset` on mounted cards of the cameras that record QuickTime movies."""

import json
import os
import subprocess

import mounted
import qrx_case

MOVIE = b"a movie, as far as its name goes"

CANON_EOS = {"DCIM/100CANON/MVI_0001.MOV": MOVIE, "DCIM/100CANON/MVI_0001.THM": b"thumbnail",
             "DCIM/100CANON/MVI_0002.MOV": MOVIE, "MISC/M0100.CTG": b"catalogue",
             "notes.txt": b"mine"}

RED_ONE = {"A001.RDM/A001_C001.RDC/A001_C001_001.R3D": b"raw",
           "A001.RDM/A001_C001.RDC/A001_C001_F.mov": MOVIE,
           "A001.RDM/A001_C002.RDC/A001_C002_001.R3D": b"raw",
           "notes.txt": b"mine"}

INDEX = (b'<?xml version="1.0"?>\n<Media><Card id="7"/>'
         b'<ClipInfo><Clip name="ABCD0001_01"/></ClipInfo></Media>\n')
JVC_QT = {"PRIVATE/JVC/CQAV/CLIP/ABCD0001_01.MOV": MOVIE,
          "PRIVATE/JVC/CQAV/INFO/ABCD0001_01.XML": b"<Clip/>",
          "PRIVATE/JVC/CQAV/MEDIAINF.BAK": INDEX,
          "PRIVATE/JVC/CQAV/MEDIAINF.XML": INDEX,
          "notes.txt": b"mine"}

GOPRO = {"DCIM/100GOPRO/GOPR0001.MP4": MOVIE}


class ResetOfCameras(mounted.MountedCase):
    def lay_out(self, files):
        for name, contents in files.items():
            self.write(f"{self.card}/{name}", contents)

    def layouts(self):
        drives = json.loads(self.run_qrx("drives", "--format", "json").stdout)
        (card,) = [drive for drive in drives if drive["filePath"] == self.card]
        return card["layouts"]

    def reset(self, *arguments, status=0):
        done = self.run_qrx("reset", *arguments, self.card, status=status)
        return done.stdout.decode().splitlines(), done.stderr.decode()

    def names(self):
        return [os.fsdecode(name) for name in self.below_card()]

    def protect(self, name):
        path = os.path.join(self.card, name)
        subprocess.run(["chattr", "+i", path], check=True)
        self.addCleanup(subprocess.run, ["chattr", "-i", path], check=True)
        return path

    def mount_again(self, option):
        subprocess.run(["mount", "-o", "remount," + option, self.card], check=True)

    # -- the drive tests --------------------------------------------------------------------

    def test_each_layout_is_known_by_its_drive(self):
        for title, files in (("Canon EOS", CANON_EOS), ("RED One", RED_ONE),
                             ("JVC-QuickTime", JVC_QT), ("GoPro", GOPRO)):
            with self.subTest(title):
                self.lay_out(files)
                self.assertEqual(self.layouts(), [title])
                subprocess.run(["find", self.card, "-mindepth", "1", "-delete"], check=True)
                self.assertEqual(self.layouts(), [])

    # -- RED One ----------------------------------------------------------------------------

    def test_red_plan_says_that_the_mount_point_stays(self):
        self.lay_out(RED_ONE)
        before = self.names()
        lines, _ = self.reset()
        self.assertEqual(lines, [
            f"{self.card}: the reset of RED One",
            f"  remove all that is on {self.card}; the folder itself stays (7 items)",
            "Nothing was changed; --yes carries this out."])
        self.assertEqual(self.names(), before)

    def test_red_card_is_empty_afterwards_and_still_mounted(self):
        self.lay_out(RED_ONE)
        lines, said = self.reset("--yes")
        self.assertEqual(lines[-2:], [
            f"  done: remove all that is on {self.card}; the folder itself stays",
            "The card is reset."])
        self.assertEqual(len([line for line in lines if line.startswith("  removed ")]), 7)
        self.assertNotIn(f"  removed {self.card}", lines)
        self.assertEqual(said, "")
        self.assertEqual(self.names(), [])
        self.assertTrue(os.path.ismount(self.card))

    def test_red_card_of_which_a_file_is_protected_is_not_reset(self):
        self.lay_out(RED_ONE)
        kept = self.protect("A001.RDM/A001_C001.RDC/A001_C001_001.R3D")
        lines, said = self.reset("--yes", status=1)
        self.assertEqual(lines[-1],
                         f"  failed: remove all that is on {self.card}; the folder itself stays")
        self.assertIn(f"{kept}: is protected against changes (chattr -i lifts that)", said)
        self.assertIn("not removed", said)
        self.assertIn("the reset failed", said)
        self.assertTrue(os.path.exists(kept))
        for line in lines:
            if line.startswith("  removed "):
                self.assertFalse(os.path.exists(line.removeprefix("  removed ")))

    # -- Canon EOS --------------------------------------------------------------------------

    def test_canon_card_keeps_its_folders_and_what_lies_elsewhere(self):
        self.lay_out(CANON_EOS)
        lines, _ = self.reset("--yes")
        self.assertEqual(lines[-1], "The card is reset.")
        self.assertEqual(self.names(),
                         ["DCIM", "DCIM/100CANON", "MISC", "MISC/M0100.CTG", "notes.txt"])
        self.assertEqual(self.layouts(), ["Canon EOS"])
        lines, _ = self.reset()
        self.assertEqual(lines[-1], "There is nothing to remove.")

    def test_canon_reset_ends_at_the_first_file_that_cannot_go(self):
        self.lay_out(CANON_EOS)
        kept = self.protect("DCIM/100CANON/MVI_0001.THM")
        lines, said = self.reset("--yes", status=1)
        self.assertEqual(lines[1:], [
            f"  removed {self.card}/DCIM/100CANON/MVI_0001.MOV",
            f"  done: remove {self.card}/DCIM/100CANON/MVI_0001.MOV with all that is in it",
            f"  failed: remove {kept} with all that is in it"])
        self.assertIn(f"{kept}: is protected against changes (chattr -i lifts that)", said)
        self.assertIn("the reset failed", said)
        self.assertIn("DCIM/100CANON/MVI_0002.MOV", self.names())
        self.assertIn("MISC/M0100.CTG", self.names())

    # -- JVC QuickTime ----------------------------------------------------------------------

    def test_jvc_card_keeps_its_folders_and_its_index_without_clips(self):
        self.lay_out(JVC_QT)
        lines, _ = self.reset("--yes")
        self.assertEqual(lines[-1], "The card is reset.")
        self.assertEqual(self.names(), [
            "PRIVATE", "PRIVATE/JVC", "PRIVATE/JVC/CQAV", "PRIVATE/JVC/CQAV/CLIP",
            "PRIVATE/JVC/CQAV/INFO", "PRIVATE/JVC/CQAV/MEDIAINF.XML"])
        with open(f"{self.card}/PRIVATE/JVC/CQAV/MEDIAINF.XML", "rb") as index:
            contents = index.read()
        self.assertIn(b'<Card id="7"', contents)
        self.assertNotIn(b"ABCD0001_01", contents)
        self.assertEqual(self.layouts(), [])  # until the camera has made MEDIAINF.BAK anew

    def test_jvc_index_that_cannot_be_written_ends_the_reset(self):
        self.lay_out({**JVC_QT, "zz/later.txt": b"mine"})
        kept = self.protect("PRIVATE/JVC/CQAV/MEDIAINF.XML")
        lines, said = self.reset("--yes", status=1)
        self.assertEqual(lines[-1],
                         f"  failed: remove from {kept} what follows the element ClipInfo")
        self.assertIn(f"{kept}: is protected against changes", said)
        self.assertIn("the reset failed", said)
        with open(kept, "rb") as index:
            self.assertEqual(index.read(), INDEX)
        self.assertIn("zz/later.txt", self.names())  # it comes after the failure

    def test_files_that_stand_where_folders_belong(self):
        self.write(f"{self.card}/PRIVATE/JVC/CQAV/CLIP", b"a file in the way")
        self.lay_out({name: contents for name, contents in JVC_QT.items() if "/CLIP/" not in name})
        self.assertEqual(self.layouts(), ["JVC-QuickTime"])
        lines, _ = self.reset("--yes")
        self.assertIn(f"  removed {self.card}/PRIVATE/JVC/CQAV/CLIP", lines)
        self.assertNotIn("PRIVATE/JVC/CQAV/CLIP", self.names())

        self.write(f"{self.card}/DCIM", b"a file in the way")
        self.write(f"{self.card}/MISC/M0100.CTG")
        lines, _ = self.reset("--yes", "--layout", "Canon EOS")
        self.assertEqual(lines[1:], ["The card is reset."])
        self.assertIn("DCIM", self.names())

    # -- GoPro ------------------------------------------------------------------------------

    def test_gopro_has_no_reset(self):
        self.lay_out(GOPRO)
        _, said = self.reset("--yes", status=1)
        self.assertIn("there is no reset for GoPro; nothing was changed", said)
        self.assertIn("DCIM/100GOPRO/GOPR0001.MP4", self.names())

    # -- cards with real media --------------------------------------------------------------

    def test_made_cards_are_one_and_the_same_to_every_command(self):
        for layout, title, series in (("canon-eos", "Canon EOS", 0), ("gopro", "GoPro", 0),
                                      ("red-one", "RED One", 0), ("jvc-qt", "JVC-QuickTime", 1)):
            with self.subTest(layout):
                self.run_qrx("mkcard", layout, self.card)
                self.assertEqual(self.layouts(), [title])
                clips = self.clips_of(title)
                self.assertGreater(len(clips), 2)
                ordered = self.run_qrx("order", *reversed(clips)).stdout.decode().splitlines()
                self.assertEqual(ordered, clips)
                told = self.run_qrx("series", self.card).stdout.decode().splitlines()
                self.assertEqual([line for line in told if line.startswith(title)],
                                 [f"{title}  ABCD0002  3 pieces, complete"] * series)
                self.assertLessEqual({line.strip() for line in told if "/" in line}, set(clips))
                if layout == "gopro":
                    self.reset("--yes", status=1)
                    self.assertEqual(self.clips_of(title), clips)
                else:
                    lines, _ = self.reset("--yes")
                    self.assertEqual(lines[-1], "The card is reset.")
                    self.assertEqual(self.clips_of(title), [])
                subprocess.run(["find", self.card, "-mindepth", "1", "-delete"], check=True)

    def clips_of(self, title):
        return [clip["filePath"] for clip in self.scan(self.card)[0]
                if clip["volumeTitle"] == title]

    # -- all of them ------------------------------------------------------------------------

    def test_card_that_is_mounted_read_only_is_refused(self):
        for title, files in (("Canon EOS", CANON_EOS), ("RED One", RED_ONE),
                             ("JVC-QuickTime", JVC_QT)):
            with self.subTest(title):
                self.lay_out(files)
                before = self.names()
                self.mount_again("ro")
                self.assertEqual(self.layouts(), [title])
                for arguments in (["--yes"], []):
                    lines, said = self.reset(*arguments, status=1)
                    self.assertEqual(lines, [])
                    self.assertIn("is mounted read-only; is the card's write protection on?; "
                                  "nothing was changed", said)
                self.assertEqual(self.names(), before)
                self.mount_again("rw")
                subprocess.run(["find", self.card, "-mindepth", "1", "-delete"], check=True)

    def test_drive_mounted_below_the_card_is_not_emptied(self):
        self.lay_out(RED_ONE)
        inner = f"{self.card}/A001.RDM/other"
        os.makedirs(inner)
        subprocess.run(["mount", "-t", "tmpfs", "none", inner], check=True)
        self.addCleanup(subprocess.run, ["umount", inner], check=True)
        _, said = self.reset("--yes", status=1)
        self.assertIn(f"{inner}: is the mount point of another drive", said)
        self.assertTrue(os.path.ismount(inner))


if __name__ == "__main__":
    qrx_case.main()
