#!/usr/bin/env python3
"""qrx beside other tools that say what files hold, over trees in the proportions of real cards.

    python3 benchmarks/peers [build/release/bin] [--runs 5] [--tree FOLDER] [--markdown OUT.md]

Makes twelve cards and a folder of loose media with `qrx mkcard` (about 5,000 files), runs every
program over them in turns, checks what each answered, and prints medians and their ratios. Then
scans up to a million empty files, scans with cold caches (as root), and with 16 workers.
--quick-look does all that in small, in under a minute, and judges nothing but the answers.

The peers are Debian packages: apt-get install mediainfo libimage-exiftool-perl. One that is missing
is named in the table. Exit status: 0 every answer was right and every expectation met; 1 not.
"""

import argparse
import contextlib
import json
import pathlib
import sys
import tempfile
import time

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))

# pylint: disable=wrong-import-position
from measuring import Runner  # noqa: E402

import compare  # noqa: E402
import expected  # noqa: E402
import machine  # noqa: E402
import scale  # noqa: E402
import table  # noqa: E402
import tree  # noqa: E402
import workers  # noqa: E402

PARTS = ("mediainfo", "exiftool", "xargs", "cold", "scale", "workers")
USUAL_PROGRAMS = pathlib.Path(__file__).resolve().parents[2] / "build/release/bin"


def options_of(arguments):
    head, *rest = __doc__.split("\n\n")
    parser = argparse.ArgumentParser(
        prog="python3 benchmarks/peers", description=head, epilog="\n\n".join(rest[1:]),
        formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("programs", type=pathlib.Path, nargs="?", default=USUAL_PROGRAMS,
                        help="folder of qrx, scan_floor and measured_run (build/release/bin)")
    parser.add_argument("--runs", type=int, metavar="N", help="of every program; 5")
    parser.add_argument("--side-runs", type=int, metavar="N",
                        help="of what takes long and varies little: the scan with the plain tool, "
                             "cold caches, workers; 3")
    parser.add_argument("--tree", type=pathlib.Path, metavar="FOLDER",
                        help="where the tree is made and left, and found again by the next run")
    parser.add_argument("--scale", type=int, metavar="N",
                        help="most files of the part that grows tenfold; 1000000")
    parser.add_argument("--skip", action="append", default=[], choices=PARTS, metavar="PART",
                        help=f"leave something out: {', '.join(PARTS)}")
    parser.add_argument("--quick-look", action="store_true",
                        help="150 files, 2 runs, at most 10,000 empty files, warm caches only")
    parser.add_argument("--markdown", type=pathlib.Path, metavar="FILE",
                        help="write the tables there too")
    parser.add_argument("--json", type=pathlib.Path, metavar="FILE",
                        help="write every single figure there")
    options = parser.parse_args(arguments)
    usual = (2, 2, 10_000) if options.quick_look else (5, 3, 1_000_000)
    for name, value in zip(("runs", "side_runs", "scale"), usual):
        if getattr(options, name) is None:
            setattr(options, name, value)
    if options.quick_look:
        options.skip.append("cold")  # it would slow whatever else runs on the machine
    if options.runs < 1 or options.side_runs < 1:
        parser.error("--runs and --side-runs are at least 1")
    options.side_runs = min(options.side_runs, options.runs)
    return options


def say(what):
    """Progress: one line that changes on a terminal, a line each with its time elsewhere."""
    if sys.stderr.isatty():
        print(f"\r\x1b[K{what}", end="", file=sys.stderr, flush=True)
    elif what:
        print(f"{time.strftime('%H:%M:%S')} {what}", file=sys.stderr, flush=True)


def measure(options, folder):
    programs = options.programs.resolve()
    runner = Runner(programs)
    facts = machine.facts(programs, folder)
    say("making the tree")
    made = tree.prepared_tree(programs / "qrx", folder, "small" if options.quick_look else "large")
    comparison = compare.Comparison(runner, programs, made, options, say)
    growth = (scale.Scale(runner, programs, options, say) if "scale" not in options.skip else None)
    sixteen = (workers.Workers(runner, programs, options, say)
               if "workers" not in options.skip else None)
    say("")
    return facts, comparison, growth, sixteen


def main():
    options = options_of(sys.argv[1:])
    with contextlib.ExitStack() as stack:
        folder = options.tree
        if folder is None:
            folder = pathlib.Path(
                stack.enter_context(tempfile.TemporaryDirectory(prefix="qrx-peers-")))
        folder.mkdir(parents=True, exist_ok=True)
        facts, comparison, growth, sixteen = measure(options, folder)

    parts = [part for part in (comparison, growth, sixteen) if part]
    tables = [each for part in parts for each in part.tables()]
    judged = []
    if not options.quick_look:
        judged = expected.expectations(comparison, growth, sixteen)
        tables.insert(1, expected.expectation_table(judged))

    print("\n".join(f"{what + ':':<19} {value}" for what, value in facts) + "\n")
    print("\n".join(map(table.as_text, tables)), end="")
    if options.markdown:
        text = "".join(f"- {what}: {value}\n" for what, value in facts) + "\n"
        options.markdown.write_text(text + "\n".join(map(table.as_markdown, tables)),
                                    encoding="utf-8")
    if options.json:
        options.json.write_text(json.dumps(
            {"machine": dict(facts), "tree": comparison.as_record(),
             "scale": growth.as_record() if growth else [],
             "workers": sixteen.as_record() if sixteen else [],
             "expected": [{"what": each.what, "value": each.value, "limit": each.limit,
                           "met": each.is_met} for each in judged]}, indent=1) + "\n",
            encoding="utf-8")
    return 1 if any(each.is_met is False for each in judged) else 0


if __name__ == "__main__":
    sys.exit(main())
