"""What the programs of the peers have in common: a worker answers tasks until its input ends.

A task is a JSON object on one line, and so is its answer. The first line that a worker writes is
{"ready": name and version} or {"missing": a sentence}. Tasks hold

  task       "kriging", "surface" (full quadratic response surface) or "unit" (our driver only)
  rows       how many cases
  cases      file of a table: the inputs in [0, 1], then the output
  inputs     how many inputs
  points     file of a table: inputs and true outputs for the error
  scattered  file of a table of inputs whose prediction is timed; may be left out
  grid       likewise, a Cartesian grid
  repeats    how often a step is repeated at most,
  seconds    and after how long not again
  noise      standard deviation of the noise in the output, which some peers have to be told
  start      length at which the search of a peer begins

and what tells the variants of one program apart. Answers hold NAME_cpu and NAME_wall for the steps
fit, scattered and grid, the least of the repeats in seconds; error, log_likelihood, nugget; or
"failure": a sentence.
"""

import json
import os
import sys
import time

import numpy as np

POINTS_PER_CALL = 10000  # bounds what a peer keeps in memory; larger blocks do not speed them up


def read_table(path, columns):
    return np.ascontiguousarray(np.fromfile(path).reshape(columns, -1).T)


def read_cases(task):
    table = read_table(task["cases"], task["inputs"] + 1)
    return np.ascontiguousarray(table[:, :-1]), np.ascontiguousarray(table[:, -1])


def measure(answer, task, name, action):
    """Runs at least once and keeps the least of each time; returns what the last run returned."""
    least_cpu = least_wall = float("inf")
    spent = 0.0
    for repeat in range(task["repeats"]):
        if repeat > 0 and spent >= task["seconds"]:
            break
        wall, cpu = time.perf_counter(), time.process_time()
        result = action()
        cpu, wall = time.process_time() - cpu, time.perf_counter() - wall
        least_cpu, least_wall = min(least_cpu, cpu), min(least_wall, wall)
        spent += wall
    answer[name + "_cpu"], answer[name + "_wall"] = least_cpu, least_wall
    return result


def relative_error(predicted, truth):
    return float(np.sqrt(np.mean((predicted - truth) ** 2)) / np.std(truth))


def in_blocks(predict, points):
    starts = range(0, len(points), POINTS_PER_CALL)
    return np.concatenate([predict(points[i : i + POINTS_PER_CALL]) for i in starts])


def score_and_predict(answer, task, predict):
    points = read_table(task["points"], task["inputs"] + 1)
    answer["error"] = relative_error(in_blocks(predict, points[:, :-1]), points[:, -1])
    for name in ("scattered", "grid"):
        if name in task:
            queries = read_table(task[name], task["inputs"])
            measure(answer, task, name, lambda: in_blocks(predict, queries))


def serve(load):
    """`load` imports the peer and returns its name with version and a function per kind of task; a
    peer that is not installed is an ImportError."""
    # What a peer prints must not come between the answers.
    answers = os.fdopen(os.dup(1), "w")
    os.dup2(2, 1)

    def say(**answer):
        print(json.dumps(answer), file=answers, flush=True)

    try:
        name, functions = load()
    except ImportError as reason:
        say(missing=str(reason))
        return
    say(ready=name)
    for line in sys.stdin:
        task = json.loads(line)
        try:
            say(**functions[task["task"]](task))
        except Exception as failure:  # whatever a peer throws is a result too
            say(failure=f"{type(failure).__name__}: {failure}".splitlines()[0])
