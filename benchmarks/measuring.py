"""What benchmarks of whole programs share: a run that is timed, and whose result can be checked."""

import dataclasses
import pathlib
import subprocess
import sys
import tempfile
import typing


@dataclasses.dataclass
class Run:
    """One finished run."""

    status: int
    seconds: float
    processor_seconds: float
    kilobytes: int  # peak of the largest process
    output: typing.BinaryIO  # a file, at its start
    error: typing.BinaryIO


class Runner:
    """Runs commands under the program measured_run, which stands in the folder `programs`."""

    def __init__(self, programs):
        self._program = programs.resolve() / "measured_run"
        if not self._program.exists():
            sys.exit(f"{self._program} is missing; build the preset release")

    def run(self, command, environment=None):
        """Output goes into files: a pipe would measure its reader too."""
        output, error = tempfile.TemporaryFile(), tempfile.TemporaryFile()
        with tempfile.NamedTemporaryFile(prefix="qrx-measured-") as report:
            done = subprocess.run(
                [self._program, report.name, *command], stdin=subprocess.DEVNULL, stdout=output,
                stderr=error, env=environment, check=False)
            figures = pathlib.Path(report.name).read_text(encoding="ascii").split()
        output.seek(0)
        error.seek(0)
        if done.returncode != 0 or len(figures) != 4:
            sys.exit(f"{command[0]} was not measured: {error.read().decode(errors='replace')}")
        return Run(int(figures[0]), float(figures[1]), float(figures[2]), int(figures[3]),
                   output, error)
