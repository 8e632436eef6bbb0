"""`qrx series`: recordings in several pieces, in playing order, and what is missing."""

import json
import os
import random

import cards
import qrx_case
from qrx_case import NO_FFMPEG

NAMES = ["0001AA", "0002BB", "0003CC", "0004DD", "0005EE"]


class Series(qrx_case.QrxCase):
    def series(self, *paths, status=0):
        done = self.run_qrx("series", "--format", "json", "--ffmpeg", NO_FFMPEG, *paths,
                            status=status)
        return json.loads(done.stdout)

    def series_as_text(self, *paths):
        return self.run_qrx("series", "--ffmpeg", NO_FFMPEG, *paths).stdout.decode()

    @staticmethod
    def pieces(series):
        return [piece["filePath"] for piece in series["pieces"]]

    @staticmethod
    def missing_clips(series):
        return [clip["clipName"] for clip in series["missing"]]

    # -- P2 ---------------------------------------------------------------------------------

    def test_p2_pieces_stand_in_playing_order_whatever_their_names(self):
        names = ["0005EE", "0001AA", "0004DD", "0002BB", "0003CC"]
        clips = cards.p2_series(self, names)
        (found,) = self.series("p2")
        self.assertEqual(list(found), ["volumeTitle", "spanKey", "volumeKey", "complete", "pieces",
                                       "missing"])
        self.assertEqual(found["volumeTitle"], "Panasonic P2")
        self.assertEqual(found["spanKey"], cards.p2_identifier("SHOT"))
        self.assertEqual(found["volumeKey"], f"{self.folder}/p2/CONTENTS/VIDEO")
        self.assertIs(found["complete"], True)
        self.assertEqual(self.pieces(found), clips)
        self.assertEqual(found["missing"], [])

    def test_each_p2_piece_can_be_the_missing_one(self):
        for i, name in enumerate(NAMES):
            clips = cards.p2_series(self, NAMES, card=f"card{i}", left_out=[name])
            (found,) = self.series(f"card{i}")
            self.assertIs(found["complete"], False, name)
            self.assertEqual(self.pieces(found), clips, name)
            self.assertEqual(found["missing"],
                             [{"identifier": cards.p2_identifier(name), "clipName": name}])

    def test_of_several_missing_in_a_row_the_outer_two_are_named(self):
        clips = cards.p2_series(self, NAMES, left_out=NAMES[1:4])
        (found,) = self.series("p2")
        self.assertEqual(self.pieces(found), clips)
        self.assertEqual(sorted(self.missing_clips(found)), ["0002BB", "0004DD"])

    def test_single_p2_piece_misses_its_neighbours(self):
        cards.p2_series(self, NAMES, left_out=NAMES[:2] + NAMES[3:])
        (found,) = self.series("p2")
        self.assertEqual(sorted(self.missing_clips(found)), ["0001AA", "0002BB", "0004DD"])

    def test_p2_clip_that_is_not_spanned_is_no_series(self):
        xml = cards.p2_clip_xml("0001AA", cards.p2_identifier("0001AA"))
        self.write("p2/CONTENTS/CLIP/0001AA.XML", xml)
        self.write("p2/CONTENTS/VIDEO/0001AA.MXF")
        self.write("p2/CONTENTS/VIDEO/0002BB.MXF")
        self.assertEqual(self.series("p2"), [])
        self.assertEqual(self.series_as_text("p2"), "")

    def test_p2_recording_over_two_cards_is_put_together(self):
        first = cards.p2_series(self, NAMES, card="one", left_out=NAMES[3:])
        second = cards.p2_series(self, NAMES, card="two", left_out=NAMES[:3])
        self.assertIs(self.series("one")[0]["complete"], False)
        (found,) = self.series("two", "one")
        self.assertIs(found["complete"], True)
        self.assertEqual(self.pieces(found), first + second)

    def test_copies_of_one_p2_card_are_apart(self):
        clips = [cards.p2_series(self, NAMES, card=card) for card in ("one", "two")]
        found = self.series("one", "two")
        self.assertEqual([self.pieces(each) for each in found], clips)
        self.assertEqual([each["complete"] for each in found], [True, True])

    def test_two_p2_shots_on_one_card(self):
        shots = [cards.p2_series(self, NAMES[:2], shot="A"),
                 cards.p2_series(self, NAMES[2:], shot="B")]
        self.assertEqual([self.pieces(each) for each in self.series("p2")], shots)

    def test_p2_links_without_clip_names_are_enough(self):
        link = [(cards.p2_identifier(name), None) for name in NAMES]
        places = {"0001AA": (None, link[2]), "0003CC": (link[0], link[1]),
                  "0002BB": (link[2], None)}
        for name, (previous, following) in places.items():
            xml = cards.p2_clip_xml(name, cards.p2_identifier(name), shot="S", top=link[0],
                                    previous=previous, next_=following)
            self.write(f"p2/CONTENTS/CLIP/{name}.XML", xml)
            self.write(f"p2/CONTENTS/VIDEO/{name}.MXF")
        (found,) = self.series("p2")
        self.assertIs(found["complete"], True)
        self.assertEqual([os.path.basename(piece) for piece in self.pieces(found)],
                         ["0001AA.MXF", "0003CC.MXF", "0002BB.MXF"])

    def test_p2_links_that_loop_or_contradict_end_and_are_said(self):
        link = {name: (cards.p2_identifier(name), name) for name in NAMES}
        a, b, c = (link[name] for name in NAMES[:3])
        cases = {
            "loop": {a: (b, b), b: (a, a)},
            "self": {a: (a, a), b: (a, None)},
            "fork": {a: (None, b), b: (a, None), c: (a, None)},
            "tail": {a: (None, b), b: (a, c), c: (b, b)},
        }
        for card, places in cases.items():
            for (identifier, name), (previous, following) in places.items():
                xml = cards.p2_clip_xml(name, identifier, shot="S", top=a, previous=previous,
                                        next_=following)
                self.write(f"{card}/CONTENTS/CLIP/{name}.XML", xml)
                self.write(f"{card}/CONTENTS/VIDEO/{name}.MXF")
            (found,) = self.series(card)
            self.assertIs(found["complete"], False, card)
            self.assertIn("contradict", self.series_as_text(card))
            self.assertEqual(len(set(self.pieces(found))), len(places), card)

    def test_two_thousand_p2_pieces(self):
        names = [f"{number:04}AA" for number in range(1, 2001)]
        shuffled = names[:]
        random.Random(7).shuffle(shuffled)
        clips = cards.p2_series(self, shuffled, left_out=[shuffled[1000]])
        whole = cards.p2_series(self, shuffled, card="whole")
        for card, complete in (("p2", False), ("whole", True)):
            (found,) = self.series(card)
            self.assertIs(found["complete"], complete)
            self.assertEqual(self.pieces(found), clips if card == "p2" else whole)

    # -- numbered pieces --------------------------------------------------------------------

    def test_ex_segments(self):
        clips = cards.ex_segments(self, pieces=range(1, 7))
        (found,) = self.series("ex")
        self.assertEqual((found["volumeTitle"], found["spanKey"]), ("Sony XDCAM EX", "632_0001"))
        self.assertEqual(self.pieces(found), clips)
        self.assertIs(found["complete"], True)

    def test_ex_gaps_are_named(self):
        cards.ex_segments(self, pieces=[2, 3, 7])
        (found,) = self.series("ex")
        self.assertIs(found["complete"], False)
        self.assertEqual(found["missing"], [
            {"firstNumber": 1, "lastNumber": 1,
             "firstName": "632_0001_01", "lastName": "632_0001_01"},
            {"firstNumber": 4, "lastNumber": 6,
             "firstName": "632_0001_04", "lastName": "632_0001_06"}])
        text = self.series_as_text("ex")
        self.assertIn("  missing: 632_0001_01\n", text)
        self.assertIn("  missing: 632_0001_04 to 632_0001_06\n", text)

    def test_ex_take_in_one_segment_is_no_series(self):
        cards.ex_segments(self, pieces=[1])
        self.assertEqual(self.series("ex"), [])

    def test_ex_take_of_which_only_a_later_segment_is_there(self):
        cards.ex_segments(self, pieces=[3])
        (found,) = self.series("ex")
        self.assertEqual(found["missing"][0]["lastName"], "632_0001_02")

    def test_same_ex_take_on_two_cards_is_two_series(self):
        cards.ex_segments(self, card="one")
        cards.ex_segments(self, card="two")
        self.assertEqual([each["volumeKey"] for each in self.series("two", "one")],
                         [f"{self.folder}/{card}/BPAV/CLPR" for card in ("one", "two")])

    def test_jvc_mp4_gap(self):
        for piece in (1, 3):
            name = f"ABCD0001_{piece:02}"
            self.write(f"jvc/PRIVATE/JVC/BPAV/CLPR/{name}/{name}.MP4")
        (found,) = self.series("jvc")
        self.assertEqual((found["volumeTitle"], found["spanKey"]), ("JVC-MP4", "ABCD0001"))
        self.assertEqual([gap["firstName"] for gap in found["missing"]], ["ABCD0001_02"])

    def test_names_without_a_number_cannot_be_judged(self):
        for name in ("632_0001_AB", "632_0001_CD", "632_0001_99999999999"):
            self.write(f"ex/BPAV/CLPR/{name}/{name}.MP4")
        (found,) = self.series("ex")
        self.assertIsNone(found["complete"])
        self.assertEqual(found["missing"], [])
        self.assertIn("cannot be told", self.series_as_text("ex"))

    def test_huge_number_is_one_gap(self):
        cards.ex_segments(self, pieces=[1, 999999999])
        (found,) = self.series("ex")
        self.assertEqual([(gap["firstNumber"], gap["lastNumber"]) for gap in found["missing"]],
                         [(2, 999999998)])

    # -- all --------------------------------------------------------------------------------

    def test_text(self):
        clips = cards.p2_series(self, NAMES[:3], left_out=["0002BB"])
        self.assertEqual(
            self.series_as_text("p2").splitlines(),
            [f"Panasonic P2  {cards.p2_identifier('SHOT')}  2 pieces, incomplete",
             *[f"  {clip}" for clip in clips],
             f"  missing: 0002BB  {cards.p2_identifier('0002BB')}"])

    def test_file_reached_twice_is_one_piece(self):
        clips = cards.ex_segments(self)
        (found,) = self.series("ex", "ex", clips[0])
        self.assertEqual(self.pieces(found), clips)

    def test_missing_path_is_said_and_the_rest_is_searched(self):
        cards.ex_segments(self)
        done = self.run_qrx("series", "--format", "json", "--ffmpeg", NO_FFMPEG, "gone", "ex",
                            status=1)
        self.assertEqual(len(json.loads(done.stdout)), 1)
        self.assertIn(b"gone: No such file or directory", done.stderr)
        self.run_qrx("series", status=2)

    def test_harmful_names(self):
        for piece in (b"\x1b[2J_01_01", b"\x1b[2J_01_03"):
            self.write(b"ex/BPAV/CLPR/" + piece + b"/" + piece + b".MP4")
        identifier = cards.p2_identifier("0001AA")
        xml = cards.p2_clip_xml("0001AA", identifier, shot="S\u202e", top=(identifier, "0001AA"),
                                next_=("X&#x9;Y", "\u009bN"))
        self.write("p2/CONTENTS/CLIP/0001AA.XML", xml)
        self.write("p2/CONTENTS/VIDEO/0001AA.MXF")
        text = self.series_as_text(".")
        for harmful in ("\x1b", "\u202e", "\u009b", "\t"):
            self.assertNotIn(harmful, text)
        self.assertIn(r"  missing: \u{9b}N  X\tY", text)
        self.assertEqual(len(self.series(".")), 2)


if __name__ == "__main__":
    qrx_case.main()
