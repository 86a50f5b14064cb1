#!/usr/bin/python3
"""Fits and predicts the same designs with this project and with the open peers that Debian ships.

    apt-get install python3-openturns python3-sklearn
    scripts/build.sh release && bench/compare/compare.py --quick     a minute; all of it: half an hour

Processor time on one thread, the least of several runs; all take turns, so that a busy minute does
not fall on one of them. Inputs are scaled to [0, 1] before the clock starts. Error: root mean square
error at 10 000 other points, without noise, over the standard deviation of the true values there.
Ratios are to the first line of a table.

Peers have a constant trend and search lengths from 0.01 to 100 ranges of an input once, from one
range; else they have their defaults. OpenTURNS is told the true noise; scikit-learn estimates it where
there is any, else it adds 1e-10 to the diagonal, or 1e-8 or 1e-6 where that cannot be factorised. Their
Matern 5/2 is one of the scaled distance, ours a product over the inputs. Log-likelihoods are comparable
only for the same correlation, trend and criterion; ours are restricted ones. No peer knows grids: for
them a grid is as many scattered points.
"""
import argparse
import os
import sys
import time
import warnings
from pathlib import Path

for threads in ("OMP_NUM_THREADS", "OPENBLAS_NUM_THREADS", "OPENTURNS_NUM_THREADS", "TBB_NUM_THREADS"):
    os.environ[threads] = "1"  # before any library starts its threads

import numpy as np

import problems

ROOT = Path(__file__).resolve().parents[2]
TEST_POINTS = 10000
QUERIES = 100000
POINTS_PER_CALL = 10000  # bounds what a peer keeps in memory; larger blocks do not speed them up
LENGTHS = (1e-2, 1e2)
SURFACE_NOISE = 0.9  # some 2 % of the borehole's values: response surfaces are fitted to measurements


def import_ours():
    sys.path.insert(0, str(ROOT / "build" / "release" / "python"))
    import surrogatemodel
    surrogatemodel.set_thread_count(1)
    return surrogatemodel


class Peer:
    """A way to fit. `fit(points, output, noise)` gives a function that predicts and the log-likelihood."""

    def __init__(self, name, fit, blocks=True):
        self.name, self.fit, self.blocks = name, fit, blocks

    def predict(self, function, points):
        if not self.blocks:
            return function(points)
        starts = range(0, len(points), POINTS_PER_CALL)
        return np.concatenate([function(points[i:i + POINTS_PER_CALL]) for i in starts])


def our_peers():
    ours = import_ours()

    def kriging(trend):
        def fit(points, output, noise):
            model = ours.Kriging(trend_order=trend, output_transform="none").fit(points, output)
            return model.predict, lambda: model.report()["logLikelihood"]
        return fit

    def surface(points, output, noise):
        return ours.ResponseSurface().fit(points, output).predict, None

    return ([Peer("ours, constant trend", kriging(0), False), Peer("ours, linear trend", kriging(1), False)],
            [Peer("ours", surface, False)])


def numpy_peers():
    """The response surface by the normal equations, the fastest way in a few lines."""
    def terms(points):
        first, second = np.triu_indices(points.shape[1])
        return np.hstack([np.ones((len(points), 1)), points, points[:, first] * points[:, second]])

    def surface(points, output, noise):
        matrix = terms(points)
        coefficients = np.linalg.solve(matrix.T @ matrix, matrix.T @ output)
        return lambda block: terms(block) @ coefficients, None

    return [], [Peer("NumPy, normal equations", surface)]


def openturns_peers():
    import openturns as ot
    ot.Log.Show(ot.Log.NONE)
    ot.TBB.SetThreadsNumber(1)

    def evaluation(function):
        return lambda block: np.asarray(function(ot.Sample(block))).ravel()

    def kriging(correlation):
        def fit(points, output, noise):
            # Scaled where there is noise: it estimates no nugget and has to be told.
            centre, unit = (np.mean(output), np.std(output)) if noise else (0.0, 1.0)
            inputs = points.shape[1]
            scaled = ot.Sample(((output - centre) / unit).reshape(-1, 1))
            algorithm = ot.KrigingAlgorithm(ot.Sample(points), scaled, correlation(inputs),
                                            ot.ConstantBasisFactory(inputs).build())
            if noise:
                algorithm.setNoise([(noise / unit) ** 2] * len(output))
            # Its own bounds leave out inputs that hardly matter.
            others = algorithm.getOptimizationBounds().getDimension() - inputs  # the amplitude
            algorithm.setOptimizationBounds(ot.Interval([LENGTHS[0]] * inputs + [1e-12] * others,
                                                        [LENGTHS[1]] * inputs + [1e2] * others))
            algorithm.run()
            covariance = algorithm.getResult().getCovarianceModel()
            predict = evaluation(algorithm.getResult().getMetaModel())

            def log_likelihood():
                function = algorithm.getReducedLogLikelihoodFunction()
                found = list(covariance.getParameter())[:function.getInputDimension()]
                return function(found)[0] - len(output) * np.log(unit)

            return lambda block: centre + unit * predict(block), log_likelihood
        return fit

    def surface(points, output, noise):
        algorithm = ot.QuadraticLeastSquares(ot.Sample(points), ot.Sample(output.reshape(-1, 1)))
        algorithm.run()
        return evaluation(algorithm.getMetaModel()), None

    return ([Peer("OpenTURNS, squared exponential", kriging(lambda n: ot.SquaredExponential([1.0] * n))),
             Peer("OpenTURNS, Matern 5/2", kriging(lambda n: ot.MaternModel([1.0] * n, 2.5)))],
            [Peer("OpenTURNS", surface)])


def sklearn_peers():
    from sklearn.gaussian_process import GaussianProcessRegressor
    from sklearn.gaussian_process.kernels import RBF, ConstantKernel, Matern, WhiteKernel
    from sklearn.linear_model import LinearRegression
    from sklearn.pipeline import make_pipeline
    from sklearn.preprocessing import PolynomialFeatures
    warnings.filterwarnings("ignore")

    def kriging(correlation):
        def fit(points, output, noise):
            kernel = ConstantKernel(1.0, (1e-3, 1e6)) * correlation(np.ones(points.shape[1]))
            if noise:
                kernel += WhiteKernel(0.1, (1e-8, 1e1))
            for nugget in (1e-10, 1e-8, 1e-6):
                try:
                    model = GaussianProcessRegressor(kernel, alpha=nugget, normalize_y=True)
                    model.fit(points, output)
                    break
                except np.linalg.LinAlgError:
                    pass
            return model.predict, lambda: (model.log_marginal_likelihood_value_
                                           - len(output) * np.log(np.std(output)))
        return fit

    def surface(points, output, noise):
        steps = PolynomialFeatures(2, include_bias=False), LinearRegression()
        return make_pipeline(*steps).fit(points, output).predict, None

    return ([Peer("scikit-learn, squared exponential", kriging(lambda start: RBF(start, LENGTHS))),
             Peer("scikit-learn, Matern 5/2", kriging(lambda start: Matern(start, LENGTHS, nu=2.5)))],
            [Peer("scikit-learn", surface)])


def least(action, repeats):
    """What the action returns, and its least processor time; none is begun after a second."""
    times = []
    while not times or (len(times) < repeats and sum(times) < 1.0):
        begin = time.process_time()
        result = action()
        times.append(time.process_time() - begin)
    return result, min(times)


def run(peer, problem, points, output, seed, options):
    """The figures of one peer: fit, error, log-likelihood, scattered points, grid."""
    (function, likelihood), fit = least(lambda: peer.fit(points, output, problem.noise), options.repeats)
    test = problems.scattered(problem, TEST_POINTS, seed, "test")
    truth = problem.values(test)
    error = np.sqrt(np.mean((peer.predict(function, test) - truth) ** 2)) / np.std(truth)
    figures = {"fit s": fit, "error": error, "log-likelihood": likelihood() if likelihood else np.nan}
    for name, queries in (("scattered s", problems.scattered(problem, QUERIES, seed)),
                          ("grid s", problems.grid(problem, QUERIES))):
        figures[name] = least(lambda: peer.predict(function, queries), options.repeats)[1]
    return figures


def compare(title, peers, problem, points, output, options):
    best = {}
    for _ in range(options.rounds):
        for peer in peers:
            found = run(peer, problem, points, output, options.seed, options)
            known = best.setdefault(peer.name, found)
            known.update({name: min(value, known[name]) for name, value in found.items() if name.endswith(" s")})
    print(f"\n{title}\n{'':36}" + "".join(f"{name:>22}" for name in found))
    first = best[peers[0].name]
    for name, figures in best.items():
        cells = [f"{value:.4g}" + (f" ({value / first[key]:.3g})" if key != "log-likelihood" else "")
                 for key, value in figures.items()]
        print(f"{name:36}" + "".join(f"{cell:>22}" for cell in cells), flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--quick", action="store_true", help="three problems and few cases")
    parser.add_argument("--problems", nargs="+", choices=problems.PROBLEMS, help="default: all")
    parser.add_argument("--sizes", nargs="*", type=int, help="cases of Kriging; default: 50 200 500 1000")
    parser.add_argument("--surface-sizes", nargs="*", type=int, help="default: 100000 1000000")
    parser.add_argument("--seed", type=int, default=1, help="chooses the designs")
    parser.add_argument("--repeats", type=int, default=5)
    parser.add_argument("--rounds", type=int, default=2)
    options = parser.parse_args()
    names = options.problems or (["borehole", "branin", "noisy1d"] if options.quick else list(problems.PROBLEMS))
    sizes = options.sizes if options.sizes is not None else [50, 200] + [500, 1000] * (not options.quick)
    surface_sizes = options.surface_sizes
    if surface_sizes is None:
        surface_sizes = [100000] + [1000000] * (not options.quick)

    kriging, surfaces = our_peers()
    for make in (numpy_peers, openturns_peers, sklearn_peers):
        try:
            more = make()
            kriging, surfaces = kriging + more[0], surfaces + more[1]
        except ImportError as reason:
            print(f"Left out: {reason}.", file=sys.stderr)
    print(f"Load {os.getloadavg()[0]:.1f} at the start; processor seconds of one thread.")
    for problem in (problems.PROBLEMS[name] for name in names):
        for rows in sizes:
            compare(f"Kriging: {problem.name}, {problem.inputs} inputs, noise {problem.noise}, {rows} cases",
                    kriging, problem, *problems.cases(problem, rows, options.seed), options)
    problem = problems.PROBLEMS["borehole"]
    for rows in surface_sizes:
        generator = problems.numbers(options.seed, "surface", rows)
        points = generator.random((rows, problem.inputs))
        output = problem.values(points) + SURFACE_NOISE * generator.standard_normal(rows)
        compare(f"Response surface: borehole, 8 inputs, {rows} cases", surfaces, problem, points, output, options)


if __name__ == "__main__":
    main()
