"""The problems that the models are compared on, and their designs.

Closed-form functions of the literature with the ranges they are commonly studied in. A design is a
pure function of the problem, the number of cases and a seed.
"""

import math
import zlib
from dataclasses import dataclass
from typing import Callable

import numpy as np


def branin(u, v):
    """Dixon, Szego: The global optimization problem: an introduction, in: Towards Global
    Optimisation 2, North-Holland 1978."""
    valley = v - 5.1 / (4 * math.pi**2) * u**2 + 5 / math.pi * u - 6
    return valley**2 + 10 * (1 - 1 / (8 * math.pi)) * np.cos(u) + 10


HARTMANN_WEIGHTS = (1.0, 1.2, 3.0, 3.2)
HARTMANN_RATES = (
    (10, 3, 17, 3.5, 1.7, 8),
    (0.05, 10, 17, 0.1, 8, 14),
    (3, 3.5, 1.7, 10, 17, 8),
    (17, 8, 0.05, 10, 0.1, 14),
)
HARTMANN_CENTRES = (
    (0.1312, 0.1696, 0.5569, 0.0124, 0.8283, 0.5886),
    (0.2329, 0.4135, 0.8307, 0.3736, 0.1004, 0.9991),
    (0.2348, 0.1451, 0.3522, 0.2883, 0.3047, 0.6650),
    (0.4047, 0.8828, 0.8732, 0.5743, 0.1091, 0.0381),
)


def hartmann6(*inputs):
    """Four dents in a plain. Dixon, Szego 1978, as for branin()."""
    total = 0.0
    for weight, rates, centres in zip(HARTMANN_WEIGHTS, HARTMANN_RATES, HARTMANN_CENTRES):
        distance = sum(a * (x - c) ** 2 for x, a, c in zip(inputs, rates, centres))
        total = total - weight * np.exp(-distance)
    return total


def borehole(well, influence, upper_t, upper_h, lower_t, lower_h, length, conductivity):
    """Water flow through a borehole. Harper, Gupta: Sensitivity/Uncertainty Analysis of a Borehole
    Scenario Comparing Latin Hypercube Sampling and Deterministic Sensitivity Approaches,
    BMI/ONWI-516, 1983."""
    logarithm = np.log(influence / well)
    resistance = 1 + upper_t / lower_t + 2 * length * upper_t / (logarithm * well**2 * conductivity)
    return 2 * math.pi * upper_t * (upper_h - lower_h) / (logarithm * resistance)


def otl_circuit(rb1, rb2, rf, rc1, rc2, gain):
    """Mid-point voltage of an amplifier without output transformer. Ben-Ari, Steinberg: Modeling
    Data from Computer Experiments, Quality Engineering 19, 2007."""
    base = 12 * rb2 / (rb1 + rb2) + 0.74
    load = gain * (rc2 + 9)
    return (base * load + 11.35 * rf + 0.74 * rf * load / rc1) / (load + rf)


def wing_weight(area, fuel, aspect, sweep, pressure, taper, thickness, load, gross, paint):
    """Weight of the wing of a light aircraft. Forrester, Sobester, Keane: Engineering Design via
    Surrogate Modelling, Wiley 2008, ch. 1."""
    cosine = np.cos(np.radians(sweep))
    shape = (aspect / cosine**2) ** 0.6 * taper**0.04 * (100 * thickness / cosine) ** -0.3
    loads = pressure**0.006 * (load * gross) ** 0.49
    return 0.036 * area**0.758 * fuel**0.0035 * shape * loads + area * paint


def waves(u):
    """A slow and a fast wave on a slope; ours."""
    return np.sin(8 * u) + 0.5 * np.cos(21 * u) + u


@dataclass(frozen=True)
class Problem:
    name: str
    function: Callable
    ranges: tuple
    noise: float = 0.0  # standard deviation, in the output's unit

    @property
    def inputs(self):
        return len(self.ranges)

    def values(self, unit_points):
        """The function without noise at rows of the unit cube."""
        columns = (low + x * (high - low) for x, (low, high) in zip(unit_points.T, self.ranges))
        return self.function(*columns)


BRANIN_RANGES = ((-5, 10), (0, 15))
# Morris, Mitchell, Ylvisaker: Bayesian Design and Analysis of Computer Experiments,
# Technometrics 35, 1993.
BOREHOLE_RANGES = (
    (0.05, 0.15), (100, 50000), (63070, 115600), (990, 1110),
    (63.1, 116), (700, 820), (1120, 1680), (9855, 12045),
)
OTL_RANGES = ((50, 150), (25, 70), (0.5, 3), (1.2, 2.5), (0.25, 1.2), (50, 300))
WING_RANGES = (
    (150, 200), (220, 300), (6, 10), (-10, 10), (16, 45),
    (0.5, 1), (0.08, 0.18), (2.5, 6), (1700, 2500), (0.025, 0.08),
)

PROBLEMS = {
    problem.name: problem
    for problem in (
        Problem("borehole", borehole, BOREHOLE_RANGES),
        Problem("branin", branin, BRANIN_RANGES),
        Problem("hartmann6", hartmann6, ((0, 1),) * 6),
        Problem("otl", otl_circuit, OTL_RANGES),
        Problem("wingweight", wing_weight, WING_RANGES),
        Problem("noisy1d", waves, ((0, 1),), noise=0.2),
        Problem("noisy2d", branin, BRANIN_RANGES, noise=5.0),
    )
}



def numbers(seed, *purpose):
    """A generator that depends on the seed and on what the numbers are for, nothing else."""
    return np.random.default_rng([seed, zlib.crc32(repr(purpose).encode())])


def latin_hypercube(generator, rows, columns):
    """Every column has one point in each of `rows` slices. McKay, Beckman, Conover: A Comparison of
    Three Methods for Selecting Values of Input Variables, Technometrics 21, 1979."""
    design = np.empty((rows, columns))
    for k in range(columns):
        design[:, k] = (generator.permutation(rows) + generator.random(rows)) / rows
    return design


def cases(problem, rows, seed):
    """Latin hypercube of the unit cube, and the output with its noise."""
    generator = numbers(seed, "cases", problem.name, rows)
    points = latin_hypercube(generator, rows, problem.inputs)
    return points, problem.values(points) + problem.noise * generator.standard_normal(rows)


def scattered(problem, rows, seed, purpose="scattered"):
    return numbers(seed, purpose, problem.name).random((rows, problem.inputs))


def grid(problem, rows):
    """A Cartesian grid with at most `rows` points, the last input fastest, and for each input as
    many even steps as for any other or one more."""
    steps = [1] * problem.inputs
    k = 0
    while math.prod(steps) // steps[k] * (steps[k] + 1) <= rows:
        steps[k] += 1
        k = (k + 1) % problem.inputs
    axes = [(np.arange(count) + 0.5) / count for count in steps]
    return np.stack([axis.ravel() for axis in np.meshgrid(*axes, indexing="ij")], axis=1)
