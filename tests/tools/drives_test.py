#!/usr/bin/env python3
"""`qrx drives`: what is mounted, and which layouts are on it."""

import json
import os
import subprocess
import tempfile
import unittest

import qrx_case

LABEL = "A CARD"
UUID = "0f2b7c1e-52a9-4d9e-9a6b-6f8f6f3f0a12"


class Drives(qrx_case.QrxCase):
    def drives(self):
        return json.loads(self.run_qrx("drives", "--format", "json").stdout)

    def card_image(self):
        """A Sony AVCHD card in an ext4 image, by its names alone."""
        card = self.folder / "card"
        for name in ("STREAM", "PLAYLIST", "CLIPINF"):
            (card / "AVCHD/BDMV" / name).mkdir(parents=True)
        for name in ("INDEX.BDM", "MOVIEOBJ.BDM"):
            (card / "AVCHD/BDMV" / name).write_bytes(b"")
        image = self.folder / "card.img"
        subprocess.run(
            ["/sbin/mkfs.ext4", "-q", "-L", LABEL, "-U", UUID, "-d", card, image, "4M"],
            check=True)
        return image

    def mounted(self, image):
        """The image below /media; gone at the end."""
        os.makedirs("/media", exist_ok=True)
        place = tempfile.mkdtemp(prefix="qrx-test-", dir="/media")
        self.addCleanup(os.rmdir, place)
        mount = subprocess.run(["mount", "-o", "loop", image, place], capture_output=True, text=True)
        if mount.returncode != 0:
            self.skipTest("no loop mounts here: " + mount.stderr.strip())
        self.addCleanup(subprocess.run, ["umount", place], check=True)
        return place

    def test_every_record_has_the_same_keys(self):
        for drive in self.drives():
            self.assertEqual(
                list(drive),
                ["filePath", "removable", "device", "label", "uuid", "size", "free", "layouts"])

    def test_table_has_a_heading(self):
        lines = self.run_qrx("drives").stdout.decode().splitlines()
        self.assertEqual(
            lines[0].split(),
            ["PATH", "REMOVABLE", "DEVICE", "LABEL", "UUID", "SIZE", "FREE", "LAYOUTS"])
        self.assertEqual(len(lines), 1 + len(self.drives()))

    def test_unknown_format_is_wrong_usage(self):
        self.run_qrx("drives", "--format", "xml", status=2)

    @unittest.skipUnless(os.geteuid() == 0, "only root may mount")
    def test_a_mounted_card_is_removable_and_has_its_layout(self):
        place = self.mounted(self.card_image())
        found = [drive for drive in self.drives() if drive["filePath"] == place]
        self.assertEqual(len(found), 1)
        card = found[0]
        self.assertTrue(card["removable"])
        self.assertTrue(card["device"].startswith("/dev/loop"))
        self.assertEqual(card["label"], LABEL)
        self.assertEqual(card["uuid"], UUID)
        self.assertGreater(card["size"], card["free"])
        self.assertEqual(card["layouts"], ["Sony NXCAM AVCHD"])
        self.assertIn(place, self.run_qrx("drives").stdout.decode())


if __name__ == "__main__":
    qrx_case.main()
