"""A card that is really mounted: an image of its own below /media, where desktops mount cards."""

import os
import subprocess
import tempfile

import qrx_case


class MountedCase(qrx_case.QrxCase):
    """`self.card` is the mount point of an empty card. Without root, or a kernel that has loop
    devices to give, the tests fail and say so: a reset that was never seen on a mounted card is not
    tested."""

    def setUp(self):
        super().setUp()
        if os.geteuid() != 0:
            self.fail("only root may mount the card that this test resets; run it as root")
        image = self.folder / "card.img"
        subprocess.run(["/sbin/mkfs.ext4", "-q", "-N", "12000", image, "32M"],
                       check=True, stdout=subprocess.DEVNULL)
        os.makedirs("/media", exist_ok=True)
        self.card = tempfile.mkdtemp(prefix="qrx-test-", dir="/media")
        self.addCleanup(os.rmdir, self.card)
        mount = subprocess.run(["mount", "-o", "loop", image, self.card], capture_output=True,
                               text=True)
        if mount.returncode != 0:
            self.fail("no card can be mounted here: " + mount.stderr.strip())
        self.addCleanup(subprocess.run, ["umount", self.card], check=True)
        os.rmdir(os.path.join(self.card, "lost+found"))

    def below_card(self):
        """Everything on the card, as paths from its root."""
        found = []
        for folder, folders, files in os.walk(os.fsencode(self.card)):
            found += [os.path.relpath(os.path.join(folder, name), os.fsencode(self.card))
                      for name in folders + files]
        return sorted(found)
