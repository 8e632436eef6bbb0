"""`qrx poster`: still pictures of clips, in files."""

import os
import pathlib
import shutil
import signal
import struct
import subprocess
import tempfile

import cards
import qrx_case
from qrx_case import NO_FFMPEG

RED = "color=c=red:s=640x360:r=25"


def png_size(path):
    data = pathlib.Path(path).read_bytes()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", (path, data[:8])
    return struct.unpack(">II", data[16:24])


def probed(path):
    """Codec, width, height and the colour in the middle, as the installed ffmpeg sees them."""
    told = subprocess.run(["ffprobe", "-v", "error", "-show_entries",
                           "stream=codec_name,width,height", "-of", "csv=p=0", path],
                          check=True, capture_output=True, text=True).stdout.strip().split(",")
    pixels = subprocess.run(["ffmpeg", "-v", "error", "-i", path, "-f", "rawvideo", "-pix_fmt",
                             "rgb24", "-"], check=True, capture_output=True,
                            stdin=subprocess.DEVNULL).stdout
    width, height = int(told[1]), int(told[2])
    middle = (height // 2 * width + width // 2) * 3
    return told[0], width, height, tuple(pixels[middle:middle + 3])


class Poster(qrx_case.QrxCase):
    def setUp(self):
        super().setUp()
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="qrx-scratch-"))
        self.addCleanup(shutil.rmtree, self.scratch)
        # The desktop's data without its thumbnailers: types of files are told by it.
        (self.folder / "bare").mkdir()
        (self.folder / "bare/mime").symlink_to("/usr/share/mime")
        (self.folder / "out").mkdir()

    def surroundings(self, thumbnailers):
        data = "/usr/share" if thumbnailers else str(self.folder / "bare")
        return self.environment(XDG_DATA_HOME=str(self.folder / "own"), XDG_DATA_DIRS=data,
                                TMPDIR=str(self.scratch))

    def poster(self, *arguments, thumbnailers=True, **options):
        done = self.run_qrx("poster", *arguments, env=self.surroundings(thumbnailers), **options)
        self.assertEqual(os.listdir(self.scratch), [], "something was left behind")
        self.assertEqual([name for name in os.listdir(self.folder) if name.startswith(".qrx")], [])
        self.assertEqual([name for name in os.listdir(self.folder / "out") if "qrx" in name], [])
        return done

    def movie(self, name, *encoding, source=RED):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", source, "-t", "1",
                        *(encoding or ("-c:v", "mpeg4")), "file:" + str(path)],
                       check=True, stdin=subprocess.DEVNULL)
        return str(path)

    def thumbnailer(self, script):
        """A stand-in for everything that QuickTime movies are shown by."""
        program = self.script(script, "own/tool")
        self.write("own/thumbnailers/a.thumbnailer",
                   f"[Thumbnailer Entry]\nExec={program} %i %o %s\n"
                   "MimeType=video/quicktime;\n".encode())

    def assert_red(self, path, codec, width, height):
        found = probed(path)
        self.assertEqual(found[:2], (codec, width))
        self.assertAlmostEqual(found[2], height, delta=1)
        red, green, blue = found[3]
        self.assertGreater(red, 200)
        self.assertLess(max(green, blue), 60)

    # -- pictures ----------------------------------------------------------------------------

    def test_formats_by_name(self):
        clip = self.movie("clip.mov")
        for name, codec in (("a.png", "png"), ("a.PNG", "png"), ("a.jpg", "mjpeg"),
                            ("a.jpeg", "mjpeg"), ("a.tif", "tiff"), ("a.tiff", "tiff")):
            with self.subTest(name):
                done = self.poster(clip, "-o", name)
                self.assertEqual(done.stdout.decode(), f"{self.folder}/{name}\n")
                self.assertEqual(done.stderr, b"")
                self.assert_red(self.folder / name, codec, 250, 141)

    def test_clips_of_several_kinds_into_a_folder(self):
        clips = [self.movie("clip.mov"), self.movie("clip.mp4"), self.movie("clip.avi"),
                 self.movie("card/AVCHD/BDMV/STREAM/00000.MTS", "-c:v", "mpeg2video", "-f",
                            "mpegts"),
                 self.movie("p2/CONTENTS/VIDEO/0001AB.MXF", "-c:v", "mpeg2video")]
        for thumbnailers in (True, False):
            with self.subTest(thumbnailers=thumbnailers):
                done = self.poster(*clips, "-o", "out", "--force", thumbnailers=thumbnailers)
                names = [os.path.basename(clip) + ".png" for clip in clips]
                self.assertEqual(done.stdout.decode().splitlines(),
                                 [f"{self.folder}/out/{name}" for name in names])
                self.assertEqual(done.stderr, b"")
                for name in names:
                    self.assert_red(self.folder / "out" / name, "png", 250, 141)

    def test_percent_signs_in_names(self):
        names = ["50%d.mov", "%%.mov", "a%03d.mov", "%s%n%i.mov", "100%.mov"]
        clips = [self.movie("clip.mov")]
        for name in names:
            for folder in ("plain", "folder %d"):
                (self.folder / folder).mkdir(exist_ok=True)
                shutil.copy(clips[0], self.folder / folder / name)
        for thumbnailers in (True, False):
            for folder in ("plain", "folder %d"):
                with self.subTest(folder, thumbnailers=thumbnailers):
                    self.poster(*[f"{folder}/{name}" for name in names], "-o", "out", "--force",
                                thumbnailers=thumbnailers)
                    for name in names:
                        self.assertEqual(png_size(f"{self.folder}/out/{name}.png")[0], 250)
                    self.assertEqual(sorted(os.listdir(self.folder / folder)), sorted(names))

    def test_picture_of_the_card_itself_comes_first(self):
        clip = self.movie("p2/CONTENTS/VIDEO/0001AB.MXF", "-c:v", "mpeg2video")
        self.movie("p2/CONTENTS/ICON/0001AB.BMP", "-frames:v", "1", source="color=c=blue:s=80x60")
        self.poster(clip, "-o", "a.png")
        self.assertEqual(probed(self.folder / "a.png")[1:3], (80, 60))
        self.poster(clip, "-o", "b.png", "--size", "60")
        self.assertEqual(probed(self.folder / "b.png")[1:3], (60, 45))
        self.poster(clip, "-o", "c.png", "--size", "320")
        self.assert_red(self.folder / "c.png", "png", 320, 180)

    def test_pictures_of_cards_need_no_mime_database(self):
        clip = self.write("p2/CONTENTS/VIDEO/0001AB.MXF")
        for extension, kind in (("BMP", "bmp"), ("jpg", "mjpeg")):
            self.movie(f"p2/CONTENTS/ICON/0001AB.{extension}", "-frames:v", "1", "-c:v", kind,
                       "-f", "image2", "-update", "1", source="color=c=blue:s=80x60")
            environment = self.surroundings(False)
            environment["XDG_DATA_DIRS"] = str(self.folder / "nowhere")
            self.run_qrx("poster", clip, "-o", extension + ".png", env=environment)
            self.assertEqual(png_size(self.folder / (extension + ".png")), (80, 60))

    def test_size_brings_the_longer_side_down(self):
        clip = self.movie("clip.mov")
        tall = self.movie("tall.mov", source="color=c=red:s=180x320:r=25")
        for thumbnailers in (True, False):
            with self.subTest(thumbnailers=thumbnailers):
                self.poster(clip, "-o", "a.png", "--size", "100", "--force",
                            thumbnailers=thumbnailers)
                self.assertEqual(png_size(self.folder / "a.png"), (100, 56))
                self.poster(clip, "-o", "a.png", "--size", "600", "--force",
                            thumbnailers=thumbnailers)
                self.assertEqual(png_size(self.folder / "a.png")[0], 600)
                self.poster(tall, "-o", "a.png", "--size", "160", "--force",
                            thumbnailers=thumbnailers)
                self.assertEqual(png_size(self.folder / "a.png"), (90, 160))
                self.poster(clip, "-o", "a.png", "--size", "1", "--force",
                            thumbnailers=thumbnailers)
                self.assertEqual(png_size(self.folder / "a.png"), (1, 1))

    def test_ffmpeg_still_is_not_enlarged(self):
        self.poster(self.movie("clip.mov"), "-o", "a.png", "--size", "2000", thumbnailers=False)
        self.assertEqual(png_size(self.folder / "a.png"), (640, 360))

    def test_thumbnailer_that_fails_leaves_it_to_ffmpeg(self):
        clip = self.movie("clip.mov")
        for script in ("exit 1", "echo garbage >\"$2\"", "ln -s /etc/passwd \"$2\"", "mkfifo \"$2\"",
                       "sleep 600 &"):
            with self.subTest(script):
                self.thumbnailer(script)
                self.poster(clip, "-o", "a.png", "--force", thumbnailers=False)
                self.assert_red(self.folder / "a.png", "png", 250, 141)

    # -- what is there already ---------------------------------------------------------------

    def test_nothing_is_overwritten_unasked(self):
        clips = [self.movie("a.mov"), self.movie("b.mov")]
        self.write("out/a.mov.png", b"mine")
        done = self.poster(*clips, "-o", "out", status=1)
        self.assertIn(f"qrx: {clips[0]}: {self.folder}/out/a.mov.png is there already",
                      done.stderr.decode())
        self.assertEqual((self.folder / "out/a.mov.png").read_bytes(), b"mine")
        self.assertEqual(png_size(self.folder / "out/b.mov.png")[0], 250)
        self.poster(clips[0], "-o", "out", "--force")
        self.assertEqual(png_size(self.folder / "out/a.mov.png")[0], 250)

    def test_link_is_replaced_and_not_written_through(self):
        self.write("precious", b"mine")
        (self.folder / "a.png").symlink_to("precious")
        clip = self.movie("clip.mov")
        self.poster(clip, "-o", "a.png", status=1)
        self.poster(clip, "-o", "a.png", "--force")
        self.assertFalse((self.folder / "a.png").is_symlink())
        self.assertEqual((self.folder / "precious").read_bytes(), b"mine")

    def test_clip_and_what_is_no_file_are_never_replaced(self):
        clip = self.movie("clip.mov")
        before = pathlib.Path(clip).read_bytes()
        os.link(clip, self.folder / "a.png")
        done = self.poster(clip, "-o", "a.png", "--force", status=1)
        self.assertIn(b"never written over", done.stderr)
        self.assertEqual(pathlib.Path(clip).read_bytes(), before)
        os.mkfifo(self.folder / "fifo.png")
        self.poster(clip, "-o", "fifo.png", "--force", status=1)
        self.assertTrue((self.folder / "fifo.png").is_fifo())

    def test_folder_that_may_not_be_written(self):
        user = self.as_plain_user()
        clip = self.movie("clip.mov")
        os.chmod(self.scratch, 0o777)
        os.chmod(self.folder / "out", 0o555)
        done = self.poster(clip, "-o", "out", status=1, **user)
        self.assertIn(b"Permission denied", done.stderr)

    # -- usage -------------------------------------------------------------------------------

    def test_what_is_ambiguous_is_refused_before_anything_is_written(self):
        one, other = self.movie("a/clip.mov"), self.movie("b/clip.mov")
        for arguments, said in (
                ((one, other, "-o", "a.png"), b"need a folder"),
                ((one, other, "-o", "out"), b"several of the clips would go there"),
                ((one, one, "-o", "out"), b"several of the clips would go there"),
                ((one, "-o", "nowhere/"), b"no such folder"),
                ((one, "-o", "picture"), b"neither a folder"),
                ((one, "-o", "a.gif"), b"neither a folder"),
                ((one, "-o", ""), b"neither a folder"),
                ((one, "-o", "a.png", "--format", "jpg"), b"--format"),
                ((one, "-o", "out", "--format", "gif"), b"--format"),
                ((one, "-o", "a.png", "--size", "0"), b"--size"),
                ((one, "-o", "a.png", "--size", "100000"), b"--size"),
                ((one,), b"--output"),
                (("-o", "a.png"), b"FILE")):
            with self.subTest(arguments):
                done = self.poster(*arguments, status=2)
                self.assertIn(said, done.stderr)
                self.assertEqual(os.listdir(self.folder / "out"), [])
                self.assertFalse((self.folder / "a.png").exists())

    def test_format_of_pictures_in_a_folder(self):
        clip = self.movie("clip.mov")
        for name, codec in (("jpg", "mjpeg"), ("tif", "tiff"), ("png", "png")):
            self.poster(clip, "-o", "out/", "--format", name)
            self.assert_red(self.folder / f"out/clip.mov.{name}", codec, 250, 141)

    def test_what_is_no_clip_is_said_and_the_rest_is_written(self):
        self.write("notes.txt")
        clip = self.movie("clip.mov")
        done = self.poster("notes.txt", "gone", clip, "-o", "out", status=1)
        self.assertIn(b"qrx: notes.txt: no layout claims it", done.stderr)
        self.assertIn(b"qrx: gone: No such file or directory", done.stderr)
        self.assertEqual(os.listdir(self.folder / "out"), ["clip.mov.png"])

    def test_clip_of_which_nobody_makes_a_picture(self):
        clip = self.write("card/AVCHD/BDMV/STREAM/00000.MTS", b"nothing to see")
        done = self.poster(clip, "-o", "a.png", status=1)
        self.assertIn(b"no picture could be made of it", done.stderr)
        self.assertFalse((self.folder / "a.png").exists())

    def test_fifo_in_place_of_a_clip_is_not_waited_for(self):
        os.makedirs(self.folder / "p2/CONTENTS/VIDEO")
        os.mkfifo(self.folder / "p2/CONTENTS/VIDEO/0001AA.MXF")
        self.poster("p2/CONTENTS/VIDEO/0001AA.MXF", "-o", "a.png", status=1)

    def test_without_any_tool(self):
        clip = cards.p2_series(self, ["0001AA"])[0]
        done = self.poster(clip, "-o", "a.png", "--ffmpeg", NO_FFMPEG, thumbnailers=False, status=1)
        self.assertIn(b"no picture could be made of it", done.stderr)

    # -- being ended -------------------------------------------------------------------------

    def test_control_c_ends_a_thumbnailer_and_leaves_nothing(self):
        self.thumbnailer(f"echo $$ >'{self.folder}/pid.new'\n"
                         f"mv '{self.folder}/pid.new' '{self.folder}/pid'\nexec sleep 600")
        clip = self.movie("clip.mov")
        running = self.start("poster", clip, "-o", "a.png", env=self.surroundings(False))
        pid = int(self.wait_for_text(self.folder / "pid", "the thumbnailer's start"))
        running.send_signal(signal.SIGINT)
        self.assertEqual(running.wait(timeout=60), 130)
        self.assert_gone(pid)
        self.assertEqual(os.listdir(self.scratch), [])
        self.assertFalse((self.folder / "a.png").exists())


if __name__ == "__main__":
    qrx_case.main()
