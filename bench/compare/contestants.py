"""Who is compared: the variants, and the programs that answer for them."""

import json
import os
import select
import subprocess
import sys
import time
from dataclasses import dataclass, field
from pathlib import Path

HERE = Path(__file__).resolve().parent

# Before any library starts its threads.
ONE_THREAD = {
    name: "1"
    for name in (
        "OMP_NUM_THREADS",
        "OPENBLAS_NUM_THREADS",
        "OPENTURNS_NUM_THREADS",
        "TBB_NUM_THREADS",
    )
}


@dataclass(frozen=True)
class Contestant:
    name: str
    program: str
    options: dict = field(default_factory=dict)  # what the tasks of this variant hold besides

    @property
    def is_ours(self):
        return self.program == "driver"


def squared_exponential(name, program):
    return Contestant(name, program, {"kernel": "squared-exponential"})


KRIGING = (
    # First those that the ratios are told against: the peers have a constant trend too.
    Contestant("ours-constant", "driver", {"trend": 0}),
    Contestant("ours-linear", "driver", {"trend": 1}),
    squared_exponential("openturns-se", "openturns"),
    Contestant("openturns-matern", "openturns", {"kernel": "matern"}),
    Contestant("openturns-product", "openturns", {"kernel": "matern-product"}),
    squared_exponential("sklearn-se", "sklearn"),
    Contestant("sklearn-matern", "sklearn", {"kernel": "matern"}),
    Contestant("reference", "reference"),
)
SURFACE = (
    Contestant("ours", "driver"),
    Contestant("openturns", "openturns"),
    Contestant("numpy", "numpy"),
    Contestant("sklearn", "sklearn"),
)
# The product kernel of OpenTURNS has no gradient of its own and takes many times longer; the
# reference searches from several starts.
UNLESS_ASKED_FOR = ("openturns-product", "reference")


class Unavailable(Exception):
    """The program cannot be used; the text is a sentence for the user."""


class TimedOut(Exception):
    pass


class Program:
    """A process that answers tasks; started when first asked and again after it died."""

    def __init__(self, name, command, log):
        self.name = name
        self.command = command
        self.log = log
        self.version = None
        self.process = None

    def ask(self, task, timeout):
        """The answer; a failure or the death of the process is an answer too."""
        if self.process is None:
            self.start()
        try:
            self.process.stdin.write(json.dumps(task).encode() + b"\n")
            self.process.stdin.flush()
            return self.read_line(timeout)
        except (BrokenPipeError, EOFError):
            status = self.stop()
            return {"failure": f"the program ended with status {status}{self.last_words()}"}
        except TimedOut:
            self.stop()
            return {"failure": f"gave no answer within {timeout:.0f} s"}

    def start(self):
        if not Path(self.command[0]).exists():
            raise Unavailable(
                f"{self.name}: {self.command[0]} is missing; build it with the release preset "
                "(cmake --preset release && ninja -C build/release CompareDriver)."
            )
        with open(self.log, "ab") as log:
            self.process = subprocess.Popen(
                self.command,
                stdin=subprocess.PIPE,
                stdout=subprocess.PIPE,
                stderr=log,
                env={**os.environ, **ONE_THREAD},
                bufsize=0,
            )
        try:
            greeting = self.read_line(timeout=120)
        except (EOFError, TimedOut):
            self.stop()
            raise Unavailable(
                f"{self.name} is left out, it could not be started{self.last_words()}."
            ) from None
        if "missing" in greeting:
            self.stop()
            raise Unavailable(
                f"{self.name} is left out, it is not installed ({greeting['missing']}); "
                "bench/compare/install-peers.sh installs it."
            )
        self.version = greeting["ready"]

    def read_line(self, timeout):
        line = b""
        deadline = time.monotonic() + timeout
        while not line.endswith(b"\n"):
            left = max(deadline - time.monotonic(), 0.0)
            if not select.select([self.process.stdout], [], [], left)[0]:
                raise TimedOut
            received = self.process.stdout.read(65536)
            if not received:
                raise EOFError
            line += received
        return json.loads(line)

    def last_words(self):
        """What the program last wrote to standard error, as the end of a sentence."""
        written = self.log.read_text(errors="replace").split("\n")
        said = [line.strip() for line in written if line.strip()]
        return f" ({said[-1]})" if said else ""

    def stop(self):
        if self.process is None:
            return None
        self.process.kill()
        status = self.process.wait()
        self.process.stdin.close()
        self.process.stdout.close()
        self.process = None
        return status


def programs(driver, folder):
    def python(script):
        return [sys.executable, str(HERE / script)]

    commands = {
        "driver": [str(driver)],
        "openturns": python("peer_openturns.py"),
        "sklearn": python("peer_sklearn.py"),
        "numpy": python("peer_numpy.py"),
        "reference": python("reference.py"),
    }
    return {
        name: Program(name, command, Path(folder) / f"{name}.log")
        for name, command in commands.items()
    }
