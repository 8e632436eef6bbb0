"""`qrx order`: clips in the order in which the card recorded them."""

import os

import cards
import qrx_case
from qrx_case import NO_FFMPEG


class Order(qrx_case.QrxCase):
    def order(self, *files, status=0):
        done = self.run_qrx("order", "--ffmpeg", NO_FFMPEG, *files, status=status)
        return done.stdout.decode().splitlines()

    def p2(self, *names):
        return [os.fsdecode(self.write(f"p2/CONTENTS/VIDEO/{name}.MXF")) for name in names]

    def test_p2_clips_by_the_number_of_the_card(self):
        clips = self.p2("0001ZZ", "0002AA", "0010MM", "0100BB")
        self.assertEqual(self.order(clips[2], clips[3], clips[0], clips[1]), clips)

    def test_ex_clips_by_take_and_segment(self):
        clips = [*cards.ex_segments(self, take="632_0002", pieces=[1, 2, 10]),
                 *cards.ex_segments(self, take="632_0010", pieces=[1])]
        self.assertEqual(self.order(*reversed(clips)), clips)

    def test_layouts_come_in_the_order_in_which_they_are_met(self):
        p2, ex = self.p2("0001AA", "0002BB"), cards.ex_segments(self, pieces=[1, 2])
        self.assertEqual(self.order(ex[1], p2[1], ex[0], p2[0]), ex + p2)
        self.assertEqual(self.order(p2[1], ex[1], ex[0], p2[0]), p2 + ex)

    def test_relative_names_become_absolute(self):
        self.p2("0001AA")
        self.assertEqual(self.order("p2/CONTENTS/VIDEO/0001AA.MXF"),
                         [f"{self.folder}/p2/CONTENTS/VIDEO/0001AA.MXF"])

    def test_what_is_no_clip_is_said_and_left_out(self):
        (clip,) = self.p2("0001AA")
        self.write("notes.txt")
        done = self.run_qrx("order", "--ffmpeg", NO_FFMPEG, "notes.txt", clip, "gone", "", "p2",
                            status=1)
        self.assertEqual(done.stdout.decode().splitlines(), [clip])
        self.assertIn(b"qrx: notes.txt: no layout claims it", done.stderr)
        self.assertIn(b"qrx: gone: No such file or directory", done.stderr)
        self.assertIn(b"qrx: '': No such file or directory", done.stderr)
        self.assertIn(b"qrx: p2: is a folder", done.stderr)
        self.run_qrx("order", status=2)

    def test_harmful_names_are_shown_on_lines_and_kept_with_nul(self):
        clips = [self.write(b"p2/CONTENTS/VIDEO/" + name)
                 for name in (b"0001\n\x1b[2J.MXF", b"0002\\.MXF", b"0003\xff.MXF")]
        lines = self.order(*reversed(clips))
        self.assertEqual([os.path.basename(line) for line in lines],
                         [r"0001\n\x1b[2J.MXF", r"0002\\.MXF", r"0003\xff.MXF"])
        done = self.run_qrx("order", "-0", "--ffmpeg", NO_FFMPEG, *reversed(clips))
        self.assertEqual(done.stdout, b"".join(clip + b"\0" for clip in clips))


if __name__ == "__main__":
    qrx_case.main()
