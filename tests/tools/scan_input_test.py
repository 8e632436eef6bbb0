"""What `qrx scan` is given: locations of every kind, bad ones among them."""

import os
import socket
import subprocess

import qrx_case
from qrx_case import NO_FFMPEG


class Locations(qrx_case.QrxCase):
    def scan(self, *arguments, **options):
        return super().scan("--ffmpeg", NO_FFMPEG, *arguments, **options)

    def test_missing_path_is_named_and_the_rest_is_scanned(self):
        self.write("a.mov")
        clips, said = self.scan("a.mov", "missing", "a.mov", status=1)
        self.assertEqual(len(clips), 2)
        self.assertIn("missing: No such file or directory", said)

    def test_dangling_link_is_missing(self):
        os.symlink("nowhere", self.folder / "link.mov")
        clips, said = self.scan("link.mov", status=1)
        self.assertEqual(clips, [])
        self.assertIn("link.mov: No such file or directory", said)

    def test_empty_argument_is_missing(self):
        clips, said = self.scan("", status=1)
        self.assertEqual(clips, [])
        self.assertIn("''", said)

    def test_harmful_name_of_a_missing_path_is_shown_safely(self):
        _, said = self.scan("x\x1b[2J\n", status=1)
        self.assertIn(r"x\x1b[2J\n: No such file or directory", said)

    def test_file_that_nobody_claims_is_left_out(self):
        self.write("notes.txt")
        self.assertEqual(self.paths("notes.txt"), [])

    def test_claimed_file_is_told_by_the_path_that_was_given(self):
        path = os.fsdecode(self.write("d/a.mov"))
        odd = f"{self.folder}//d/./../d/a.mov"
        self.assertEqual(self.paths(path, odd), [path, odd])

    def test_relative_path_is_put_behind_the_working_folder_as_text(self):
        self.write("d/a.mov")
        os.symlink("d", self.folder / "link")
        self.assertEqual(self.paths("./d/a.mov", "link/a.mov", "d/../d/a.mov", ".//d"),
                         [f"{self.folder}/{name}" for name in
                          ("d/a.mov", "link/a.mov", "d/../d/a.mov", "d/a.mov")])

    def test_working_folder_itself(self):
        self.write("a.mov")
        self.assertEqual(self.paths("."), [f"{self.folder}/a.mov"])

    def test_parent_of_the_working_folder(self):
        self.write("d/a.mov")
        self.assertEqual(self.paths("..", cwd=self.folder / "d"), [f"{self.folder}/d/../d/a.mov"])

    def test_slash_that_completion_leaves_behind_a_folder_is_dropped(self):
        # With it, "PRIVATE/" would hide that AVCHD lies below PRIVATE.
        self.write("PRIVATE/AVCHD/BDMV/STREAM/00000.MTS")
        clips, _ = self.scan(f"{self.folder}/PRIVATE/", "PRIVATE//")
        self.assertEqual([c["volumeTitle"] for c in clips], ["Panasonic AVCHD"] * 2)
        self.assertEqual(clips[0]["filePath"],
                         f"{self.folder}/PRIVATE/AVCHD/BDMV/STREAM/00000.MTS")

    def test_slash_behind_a_file_names_nothing(self):
        self.write("a.mov")
        clips, said = self.scan("a.mov/", status=1)
        self.assertEqual(clips, [])
        self.assertIn("a.mov/", said)

    def test_name_that_reads_like_an_address_or_a_list(self):
        for name in ("a:b.mov", "[x,y].mov", "[z]", "-x.mov", "--help"):
            self.write(f"odd/{name}" + ("" if name.endswith("mov") else "/c.mov"))
        names = ("a:b.mov", "[x,y].mov", "[z]", "-x.mov", "--help")
        self.assertEqual(self.paths("--", *names, cwd=self.folder / "odd"),
                         [f"{self.folder}/odd/{n}" for n in
                          ("a:b.mov", "[x,y].mov", "[z]/c.mov", "-x.mov", "--help/c.mov")])

    def test_names_of_commands_are_names_of_files_too(self):
        for name in ("scan", "explain", "help", "mkcard"):
            self.write(f"{name}/a.mov")
        self.assertEqual(len(self.paths("scan", "explain", "help", "mkcard")), 4)

    def test_folder_gives_its_claimed_files_in_name_order_and_never_itself(self):
        for name in ("b.mov", "C.mov", "a.mov", "d.mov/x.mov", ".h.mov", ".hidden/x.mov",
                     "d.mov/.cache/x.mov", "z.txt"):
            self.write(f"x/{name}")
        self.assertEqual(self.paths("x"),
                         [f"{self.folder}/x/{n}" for n in
                          ("a.mov", "b.mov", "C.mov", "d.mov/.cache/x.mov", "d.mov/x.mov")])

    def test_locations_keep_their_order_and_repeats_are_told_again(self):
        for name in ("b/1.mov", "a/1.mov"):
            self.write(name)
        self.assertEqual([p.removeprefix(f"{self.folder}/") for p in
                          self.paths("b", "a/1.mov", "a", "b/1.mov")],
                         ["b/1.mov", "a/1.mov", "a/1.mov", "b/1.mov"])

    def test_layouts_side_by_side(self):
        for name in ("canon/PRIVATE/AVCHD/CANON/x.txt", "canon/PRIVATE/AVCHD/BDMV/STREAM/0.MTS",
                     "pana/PRIVATE/AVCHD/BDMV/STREAM/0.MTS", "sony/AVCHD/BDMV/STREAM/0.MTS",
                     "none/AVCHD/BDMV/STREAM/0.mts", "loose.MOV"):
            self.write(name)
        clips, _ = self.scan(".")
        self.assertEqual({os.path.relpath(c["filePath"], self.folder): (c["volumeTitle"], c["qt"])
                          for c in clips},
                         {"canon/PRIVATE/AVCHD/BDMV/STREAM/0.MTS": ("Canon AVCHD", False),
                          "pana/PRIVATE/AVCHD/BDMV/STREAM/0.MTS": ("Panasonic AVCHD", False),
                          "sony/AVCHD/BDMV/STREAM/0.MTS": ("Sony NXCAM AVCHD", False),
                          "loose.MOV": ("Apple QuickTime", True)})


class FromStandardInput(qrx_case.QrxCase):
    def paths(self, *arguments, **options):
        return super().paths("--ffmpeg", NO_FFMPEG, "--from-stdin", *arguments, **options)

    def test_one_path_a_line_the_last_line_may_lack_its_end(self):
        self.write("a.mov")
        self.write("b.mov")
        self.assertEqual(self.paths(stdin=b"b.mov\n\na.mov"),
                         [f"{self.folder}/b.mov", f"{self.folder}/a.mov"])

    def test_names_that_end_in_nul_may_hold_line_ends(self):
        self.write("a\nb.mov")
        self.write("-x.mov")
        self.assertEqual(self.paths("-0", stdin=b"a\nb.mov\0\0-x.mov\0"),
                         [f"{self.folder}/a\nb.mov", f"{self.folder}/-x.mov"])

    def test_arguments_come_first(self):
        self.write("a.mov")
        self.write("b.mov")
        self.assertEqual(self.paths("b.mov", stdin=b"a.mov\n"),
                         [f"{self.folder}/b.mov", f"{self.folder}/a.mov"])

    def test_empty_list_gives_no_clips(self):
        self.assertEqual(self.paths(stdin=b""), [])

    def test_missing_names_are_named_and_the_rest_is_scanned(self):
        self.write("a.mov")
        clips, said = self.scan("--from-stdin", "--ffmpeg", NO_FFMPEG, stdin=b"gone\na.mov\n",
                                status=1)
        self.assertEqual(len(clips), 1)
        self.assertIn("gone: No such file or directory", said)

    def test_name_with_a_nul_in_a_line_is_missing(self):
        self.write("a.mov")
        self.assertEqual(self.paths(stdin=b"a.mov\0x\n", status=1), [])

    def test_endless_name_is_missing_and_takes_little_memory(self):
        clips, said = self.scan("--from-stdin", "--ffmpeg", NO_FFMPEG,
                                stdin=b"x" * 5_000_000 + b"\n", status=1)
        self.assertEqual(clips, [])
        self.assertIn("File name too long", said)

    def test_names_are_scanned_as_they_come(self):
        self.write("a.mov")
        process = self.start("scan", "--format", "ndjson", "--ffmpeg", NO_FFMPEG, "--from-stdin",
                             stdin=subprocess.PIPE)
        for _ in range(3):
            process.stdin.write(b"a.mov\n")
            process.stdin.flush()
            self.assertIn(b"a.mov", process.stdout.readline())
        process.stdin.close()
        self.assertEqual(process.wait(30), 0)

    def test_tool_does_not_eat_the_names(self):
        for name in ("a.bin", "b.bin", "c.bin"):
            self.write(name)
        tool = self.reporting_script(before="cat")
        clips, _ = self.scan("--from-stdin", "--ffmpeg", tool, stdin=b"a.bin\nb.bin\nc.bin\n")
        self.assertEqual(len(clips), 3)

    def test_unreadable_standard_input(self):
        folder = os.open(self.folder, os.O_RDONLY)
        self.addCleanup(os.close, folder)
        done = subprocess.run([self.binary, "scan", "--ffmpeg", NO_FFMPEG, "--from-stdin"],
                              stdin=folder, capture_output=True, timeout=60,
                              env=self.environment())
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"standard input: Is a directory", done.stderr)


class BadInput(qrx_case.QrxCase):
    def scan(self, *arguments, **options):
        return super().scan("--ffmpeg", NO_FFMPEG, *arguments, **options)

    def test_unreadable_folders_are_named_and_the_rest_is_scanned(self):
        self.write("x/closed/a.mov")
        self.write("x/open/a.mov")
        self.write("x/listed/a.mov")
        user = self.as_plain_user()
        os.chmod(self.folder / "x/closed", 0)
        os.chmod(self.folder / "x/listed", 0o444)
        clips, said = self.scan("x", status=1, **user)
        self.assertEqual([c["filePath"] for c in clips], [f"{self.folder}/x/open/a.mov"])
        self.assertIn(f"{self.folder}/x/closed", said)

    def test_unreadable_location_is_named(self):
        self.write("closed/a.mov")
        user = self.as_plain_user()
        os.chmod(self.folder / "closed", 0)
        clips, said = self.scan("closed", status=1, **user)
        self.assertEqual(clips, [])
        self.assertIn("closed", said)

    def test_location_in_a_closed_folder_is_named_with_the_reason(self):
        self.write("closed/a.mov")
        user = self.as_plain_user()
        os.chmod(self.folder / "closed", 0)
        _, said = self.scan("closed/a.mov", status=1, **user)
        self.assertIn("closed/a.mov: Permission denied", said)

    def test_loops_of_links_end(self):
        self.write("x/a.mov")
        os.symlink("..", self.folder / "x/up")
        os.symlink(".", self.folder / "x/self")
        os.symlink("loop2", self.folder / "x/loop1")
        os.symlink("loop1", self.folder / "x/loop2")
        os.symlink("a.mov", self.folder / "x/b.mov")
        self.assertEqual(self.paths("x"), [f"{self.folder}/x/a.mov", f"{self.folder}/x/b.mov"])
        _, said = self.scan("x/loop1", status=1)
        self.assertIn("Too many levels of symbolic links", said)

    def deep_folder(self, length):
        """Folders below each other until the path has about `length` bytes, and a clip in it."""
        name = "d" * 200
        path = str(self.folder)
        descriptor = os.open(path, os.O_RDONLY)
        try:
            while len(path) + len(name) + 1 < length:
                os.mkdir(name, dir_fd=descriptor)
                deeper = os.open(name, os.O_RDONLY, dir_fd=descriptor)
                os.close(descriptor)
                descriptor = deeper
                path += "/" + name
            clip = "c" * max(1, length - len(path) - 1 - len(".mov")) + ".mov"
            os.close(os.open(clip, os.O_CREAT | os.O_WRONLY, dir_fd=descriptor))
        finally:
            os.close(descriptor)
        return f"{path}/{clip}"

    def test_paths_of_four_thousand_bytes(self):
        clip = self.deep_folder(4000)
        self.assertEqual(len(clip), 4000)
        self.assertEqual(self.paths("."), [clip])
        self.assertEqual(self.paths(clip), [clip])

    def test_paths_too_long_to_open_are_passed_over(self):
        self.deep_folder(9000)
        self.write("a.mov")
        self.assertEqual(self.paths("."), [f"{self.folder}/a.mov"])

    def test_deep_tree_of_short_names(self):
        path = self.folder
        for _ in range(400):
            path /= "d"
            path.mkdir()
        (path / "a.mov").touch()
        self.assertEqual(self.paths("."), [f"{path}/a.mov"])

    def test_a_hundred_thousand_files_in_one_folder(self):
        stream = self.folder / "AVCHD/BDMV/STREAM"
        stream.mkdir(parents=True)
        descriptor = os.open(stream, os.O_RDONLY)
        for number in range(100_000):
            os.close(os.open(f"{number:06}.MTS", os.O_CREAT | os.O_WRONLY, dir_fd=descriptor))
        os.close(descriptor)
        done = self.run_qrx("scan", "--format", "ndjson", "--ffmpeg", NO_FFMPEG, ".", timeout=300)
        lines = done.stdout.splitlines()
        self.assertEqual(len(lines), 100_000)
        self.assertIn(b"/000000.MTS", lines[0])
        self.assertIn(b"/099999.MTS", lines[-1])

    def test_fifos_sockets_and_devices_are_never_opened_nor_shown_to_a_tool(self):
        shown = self.folder / "shown"
        tool = self.script(f'echo "$2" >> "{shown}"; exit 1')
        folder = self.folder / "x"
        (folder / "AVCHD/BDMV/STREAM").mkdir(parents=True)
        os.mkfifo(folder / "AVCHD/BDMV/STREAM/00000.MTS")
        os.mkfifo(folder / "fifo.mp4")
        os.mkfifo(folder / "fifo.mov")
        os.symlink("/dev/zero", folder / "zero.mp4")
        os.symlink("fifo.mp4", folder / "link.mp4")
        server = socket.socket(socket.AF_UNIX)
        self.addCleanup(server.close)
        os.chdir(folder)
        self.addCleanup(os.chdir, "/")
        server.bind("socket.mp4")
        clips, _ = qrx_case.QrxCase.scan(self, "--ffmpeg", tool, str(folder), timeout=30)
        # What is told by its path alone is told as ever.
        self.assertEqual([(os.path.relpath(c["filePath"], folder), c["volumeTitle"], c["qt"])
                          for c in clips],
                         [("AVCHD/BDMV/STREAM/00000.MTS", "Sony NXCAM AVCHD", False),
                          ("fifo.mov", "Apple QuickTime", True)])
        self.assertFalse(shown.exists())

    def test_device_as_location(self):
        self.assertEqual(self.paths("/dev/null", "/dev/zero", timeout=30), [])

    def test_folder_that_goes_away_under_the_working_folder(self):
        gone = self.folder / "gone"
        gone.mkdir()
        process = subprocess.run(
            ["sh", "-c", 'rmdir "$PWD"; exec "$0" scan x', self.binary], cwd=gone,
            capture_output=True, timeout=60, env=self.environment())
        self.assertEqual(process.returncode, 1)
        self.assertNotEqual(process.stderr, b"")


class Descriptors(qrx_case.QrxCase):
    def test_closed_standard_streams_do_no_harm(self):
        """A file that is opened must not take the number of a closed stream."""
        self.write("a.mov", b"original")
        self.write("b.bin", b"original")
        for closing in ("<&-", ">&-", "2>&-", "<&- >&- 2>&-"):
            with self.subTest(closing):
                done = subprocess.run(
                    ["sh", "-c", f'"$0" scan --ffmpeg {NO_FFMPEG} . {closing}', self.binary],
                    cwd=self.folder, capture_output=True, timeout=60, env=self.environment())
                # Clips that cannot be written are trouble.
                self.assertEqual(done.returncode, 1 if ">&-" in closing.replace("2>&-", "") else 0)
                self.assertEqual((self.folder / "a.mov").read_bytes(), b"original")
                self.assertEqual((self.folder / "b.bin").read_bytes(), b"original")

    def test_tool_inherits_the_standard_streams_alone(self):
        self.write("a.bin")
        found = self.folder / "found"
        tool = self.script(f'exec ls -l /proc/self/fd > "{found}"')
        with open("/dev/null", "rb") as extra:
            os.set_inheritable(extra.fileno(), True)
            self.scan("--ffmpeg", tool, "a.bin", pass_fds=[extra.fileno()])
        lines = [line for line in found.read_text().splitlines() if "->" in line]
        targets = {line.split()[-3]: line.split()[-1] for line in lines}
        self.assertEqual(targets["0"], "/dev/null")
        opened_by_ls = {n for n, target in targets.items() if target.startswith("/proc/")}
        self.assertEqual(set(targets) - opened_by_ls, {"0", "1", "2"})


class Writing(qrx_case.QrxCase):
    FORMATS = ("table", "json", "ndjson", "csv")

    def test_full_disk_is_noticed(self):
        self.write("a.mov")
        for form in self.FORMATS:
            with self.subTest(form), open("/dev/full", "wb") as full:
                done = subprocess.run(
                    [self.binary, "scan", "--format", form, "--ffmpeg", NO_FFMPEG, "."],
                    cwd=self.folder, stdout=full, stderr=subprocess.PIPE, timeout=60,
                    env=self.environment())
                self.assertEqual(done.returncode, 1)
                self.assertIn(b"cannot write: No space left on device", done.stderr)

    def test_closed_pipe_is_noticed_and_ends_the_scan_without_a_word(self):
        self.sony_card([f"{n:05}.MTS" for n in range(3000)])
        for form in self.FORMATS:
            with self.subTest(form):
                process = self.start("scan", "--format", form, "--ffmpeg", NO_FFMPEG, "card")
                process.stdout.close()
                process.stdout = None
                self.assertEqual(process.wait(60), 1)
                self.assertEqual(process.stderr.read(),
                                 b"qrx: /nowhere/ffmpeg: no ffmpeg there; movies that only ffmpeg "
                                 b"can judge are not recognised\n")

    def test_help_and_version_notice_it_too(self):
        for arguments in (["--version"], ["--help"], ["help", "scan"], ["mkcard", "--list"]):
            with self.subTest(arguments), open("/dev/full", "wb") as full:
                done = subprocess.run([self.binary, *arguments], stdout=full,
                                      stderr=subprocess.PIPE, timeout=60)
                self.assertEqual(done.returncode, 1)


if __name__ == "__main__":
    qrx_case.main()
