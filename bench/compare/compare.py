#!/usr/bin/python3
"""Compares the Kriging and the response surface of this project with the open peers of Debian:
the same cases for all, turn by turn, on one thread each. See README.md beside this file."""

import argparse
import datetime
import json
import os
import platform
import sys
import tempfile
from pathlib import Path

try:
    import numpy as np
except ImportError:
    sys.exit("NumPy is missing; bench/compare/install-peers.sh installs it.")

import contestants
import problems
import report

PROJECT = Path(__file__).resolve().parents[2]
SURFACE_PROBLEM = problems.PROBLEMS["borehole"]
TEST_POINTS = 10000
UNIT_REPEATS = 200
UNIT_SECONDS = 0.3
QUIET_LOAD = 0.5  # half a process besides ours already shares caches and memory with it
OURS = {contestant.name for contestant in contestants.KRIGING if contestant.is_ours}


def parse_options(arguments=None):
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.ArgumentDefaultsHelpFormatter
    )
    add = parser.add_argument
    add("--quick", action="store_true", help="a look at everything in about a minute")
    add("--problems", type=names(problems.PROBLEMS), help="of " + ", ".join(problems.PROBLEMS))
    add("--contestants", type=names(kriging_names()), help="of " + ", ".join(kriging_names()))
    add("--sizes", type=counts, help="numbers of cases of the Kriging fits; 0 leaves them out")
    add("--predict-at", type=counts, help="cases with which predictions are timed too; 0: none")
    add("--queries", type=count, help="points that are predicted, scattered and as a grid")
    add("--surface-sizes", type=counts, help="cases of the response surfaces; 0 leaves them out")
    add("--seed", type=int, default=1, help="chooses the designs")
    add("--repeats", type=count, default=5, help="of which the least time is kept, at most")
    add("--seconds", type=float, default=1.0, help="a step that took longer is not repeated")
    add("--rounds", type=count, help="turns of each contestant through the same task")
    add("--peer-start", type=float, default=1.0, help="length at which peers start to search")
    add("--timeout", type=float, default=900.0, help="seconds after which a peer is given up")
    add("--driver", type=Path, default=PROJECT / "build/release/bin/CompareDriver")
    add("--json", type=Path, default=Path("compare.json"), help="where the figures are written")
    options = parser.parse_args(arguments)
    fill_in(options, QUICK if options.quick else THOROUGH)
    return options


def kriging_names():
    return [contestant.name for contestant in contestants.KRIGING]


def default_contestants():
    return [name for name in kriging_names() if name not in contestants.UNLESS_ASKED_FOR]


THOROUGH = {
    "problems": list(problems.PROBLEMS),
    "contestants": default_contestants(),
    "sizes": [50, 200, 500, 1000],
    "predict_at": [1000],
    "queries": 100000,
    "surface_sizes": [100000, 1000000],
    "rounds": 2,
}
QUICK = {
    **THOROUGH,
    "problems": ["borehole", "branin", "noisy1d"],
    "sizes": [50, 200],
    "predict_at": [200],
    "surface_sizes": [100000],
    "rounds": 1,
}


def fill_in(options, defaults):
    for name, value in defaults.items():
        if getattr(options, name) is None:
            setattr(options, name, value)


def names(known):
    def parse(text):
        chosen = text.split(",")
        for name in chosen:
            if name not in known:
                raise argparse.ArgumentTypeError(f"'{name}' is none of {', '.join(known)}")
        return chosen

    return parse


def count(text):
    if not text.isdigit() or int(text) == 0:
        raise argparse.ArgumentTypeError(f"'{text}' should be a positive whole number")
    return int(text)


def counts(text):
    return [] if text == "0" else [count(part) for part in text.split(",")]


class Comparison:
    """Asks the contestants and gathers what they answer."""

    def __init__(self, options, folder):
        self.options = options
        self.folder = Path(folder)
        self.programs = contestants.programs(options.driver, folder)
        self.unavailable = set()

    def stop(self):
        for program in self.programs.values():
            program.stop()

    def versions(self):
        return {name: program.version for name, program in self.programs.items()}

    def table_file(self, name, table):
        path = self.folder / name
        problems.write_table(path, table)
        return str(path)

    def ask(self, program_name, task):
        """None where the program cannot be had; that is said once."""
        if program_name in self.unavailable:
            return None
        try:
            return self.programs[program_name].ask(task, self.options.timeout)
        except contestants.Unavailable as reason:
            self.unavailable.add(program_name)
            clear_line()
            print(reason, file=sys.stderr)
            return None

    def run_rounds(self, task, entrants):
        """Turn by turn, so that a change of the machine's load meets all of them alike."""
        best = {}
        for _ in range(self.options.rounds):
            for contestant in entrants:
                if "failure" in best.get(contestant.name, {}):
                    continue
                say_what_runs(contestant.name, task)
                answer = self.ask(contestant.program, {**task, **contestant.options})
                if answer is not None:
                    best[contestant.name] = least_times(best.get(contestant.name), answer)
        clear_line()
        return best

    def compare_kriging(self, problem):
        results = []
        entrants = [c for c in contestants.KRIGING if c.name in self.options.contestants]
        for rows in self.options.sizes:
            task = self.kriging_task(problem, rows)
            before = self.measure_unit(task)
            best = self.run_rounds(task, entrants)
            unit = least_times(before, self.measure_unit(task)).get("unit_cpu")
            for name, answer in best.items():
                result = {"problem": problem.name, "cases": rows, "contestant": name, **answer}
                if unit and "fit_cpu" in answer and name in OURS:
                    result.update(unit_cpu=unit, units=answer["fit_cpu"] / unit)
                results.append(result)
            # What took too long with these cases would take longer with more.
            entrants = [c for c in entrants if "failure" not in best.get(c.name, {})]
        return results

    def measure_unit(self, task):
        # Often, since one alone is short and finds the caches cold.
        often = {"task": "unit", "repeats": UNIT_REPEATS, "seconds": UNIT_SECONDS}
        return self.ask("driver", {**task, **often}) or {}

    def kriging_task(self, problem, rows):
        options = self.options
        task = {
            "task": "kriging",
            "rows": rows,
            "inputs": problem.inputs,
            "noise": problem.noise,
            "start": options.peer_start,
            "repeats": options.repeats,
            "seconds": options.seconds,
            "cases": self.table_file("cases", problems.cases(problem, rows, options.seed)),
            "points": self.table_file(
                "points", problems.test_points(problem, TEST_POINTS, options.seed)
            ),
        }
        if rows in options.predict_at:
            queries = problems.scattered(problem, options.queries, options.seed)
            task["scattered"] = self.table_file("scattered", queries)
            task["grid"] = self.table_file("grid", problems.grid(problem, options.queries))
        return task

    def compare_surfaces(self):
        results = []
        for rows in self.options.surface_sizes:
            best = self.run_rounds(self.surface_task(rows), contestants.SURFACE)
            results += [
                {"problem": "surface", "cases": rows, "contestant": name, **answer}
                for name, answer in best.items()
            ]
        return results

    def surface_task(self, rows):
        problem, seed = SURFACE_PROBLEM, self.options.seed
        queries = problems.scattered(problem, self.options.queries, seed)
        return {
            "task": "surface",
            "rows": rows,
            "inputs": problem.inputs,
            "repeats": self.options.repeats,
            "seconds": self.options.seconds,
            "cases": self.table_file("cases", problems.surface_cases(problem, rows, seed)),
            "points": self.table_file("points", problems.test_points(problem, TEST_POINTS, seed)),
            "scattered": self.table_file("scattered", queries),
        }


def say_what_runs(name, task):
    """A slow peer keeps silent for minutes."""
    if sys.stderr.isatty():
        clear_line()
        print(f"{task['task']}, {task['rows']} cases: {name} ...", end="", file=sys.stderr)
        sys.stderr.flush()


def clear_line():
    if sys.stderr.isatty():
        print("\r\x1b[K", end="", file=sys.stderr, flush=True)


def least_times(known, answer):
    """`answer` with the lesser of each time; a failure in any round stays one."""
    if not known or "failure" in answer:
        return answer
    times = [name for name in answer if name.endswith(("_cpu", "_wall"))]
    return {**answer, **{name: min(known[name], answer[name]) for name in times}}


def machine():
    model = "unknown processor"
    with open("/proc/cpuinfo", encoding="utf-8") as lines:
        for line in lines:
            if line.startswith("model name"):
                model = line.split(":", 1)[1].strip()
                break
    return {"processor": model, "cores": os.cpu_count(), "system": platform.platform()}


def load_average():
    return round(os.getloadavg()[0], 2)


def show(results, title, make_table):
    if results:
        print(f"\n{title}\n{make_table(results)}")
    for sentence in report.failures(results):
        print(sentence)
    sys.stdout.flush()


def title_of(problem):
    plural = "s" if problem.inputs > 1 else ""
    noise = ""
    if problem.noise:
        noise = f", noise of standard deviation {problem.noise:g}"
    return f"Kriging: {problem.name}, {problem.inputs} input{plural}{noise}"


def heading(options):
    """What the figures depend on besides the program."""
    return {
        "started": datetime.datetime.now(datetime.timezone.utc).isoformat(timespec="seconds"),
        "machine": machine(),
        "load_at_start": load_average(),
        "options": {name: str(value) for name, value in vars(options).items()},
    }


def announce(figures):
    described = figures["machine"]
    print(
        f"{described['processor']}, {described['cores']} cores, load {figures['load_at_start']} "
        "before the start; CPU seconds of one thread."
    )
    if figures["load_at_start"] > QUIET_LOAD:
        print("Other programs are running: the figures are good for a look, not for keeping.")


def run(comparison, options, results):
    """Adds to `results` as it goes, so that an interrupted run keeps what it has."""
    for name in options.problems if options.sizes else []:
        found = comparison.compare_kriging(problems.PROBLEMS[name])
        show(found, title_of(problems.PROBLEMS[name]), report.kriging_table)
        results += found
    found = comparison.compare_surfaces()
    show(found, "Response surface: borehole, 8 inputs, noise of about 2 %", report.surface_table)
    results += found


def main():
    options = parse_options()
    figures = heading(options)
    announce(figures)
    results = []
    with tempfile.TemporaryDirectory(prefix="compare-") as folder:
        comparison = Comparison(options, folder)
        try:
            run(comparison, options, results)
            status = 0
        except KeyboardInterrupt:
            status = 130
        finally:
            comparison.stop()
    figures.update(load_at_end=load_average(), versions=comparison.versions(), results=results)
    options.json.write_text(json.dumps(figures, indent=1) + "\n", encoding="utf-8")
    print(f"\nLoad {figures['load_at_end']} at the end. Figures: {options.json}")
    return status


if __name__ == "__main__":
    sys.exit(main())
