"""What maximum likelihood can reach with our correlation, constant trend and estimated nugget: a
plain search from several starts. It is there for its likelihood and error, not for its time."""

import math

import numpy as np

import worker

STARTS = 5
LENGTHS = (1e-2, 1e2)
NUGGETS = (1e-12, 1e1)
ROOT_OF_FIVE = math.sqrt(5.0)


def load():
    import scipy

    return f"SciPy {scipy.__version__}", {"kriging": fit_kriging}


class Likelihood:
    """Parameters are the logarithms of the lengths and of the nugget. The derivatives are those of
    Rasmussen, Williams: Gaussian Processes for Machine Learning, MIT Press 2006, ch. 5.4.1."""

    def __init__(self, points, output):
        self.points, self.output = points, output
        self.distances = [np.abs(column[:, None] - column[None, :]) for column in points.T]

    def correlations(self, distances, lengths):
        exponents, product = 0.0, 1.0
        for distance, length in zip(distances, lengths):
            z = distance * (ROOT_OF_FIVE / length)
            exponents = exponents + z
            product = product * (1 + z * (1 + z / 3))
        return product * np.exp(-exponents)

    def solve(self, parameters):
        """The correlations, the inverse of them with the nugget, mean, weights, variance and value.
        @throw LinAlgError if the matrix cannot be factorised."""
        from scipy.linalg import cho_solve, cholesky

        cases = len(self.output)
        lengths, nugget = np.exp(parameters[:-1]), math.exp(parameters[-1])
        correlations = self.correlations(self.distances, lengths)
        factor = cholesky(correlations + nugget * np.eye(cases), lower=True)
        ones = np.ones(cases)
        solved_ones = cho_solve((factor, True), ones)
        mean = solved_ones @ self.output / solved_ones.sum()
        weights = cho_solve((factor, True), self.output - mean)
        variance = (self.output - mean) @ weights / cases
        determinant = 2 * np.log(np.diag(factor)).sum()
        value = -0.5 * (cases * (math.log(2 * math.pi * variance) + 1) + determinant)
        return correlations, factor, mean, weights, variance, value

    def descent(self, parameters):
        """What is minimised, and its derivatives."""
        from scipy.linalg import cho_solve

        try:
            correlations, factor, _, weights, variance, value = self.solve(parameters)
        except (np.linalg.LinAlgError, ValueError):
            return 1e10, np.zeros_like(parameters)
        inverse = cho_solve((factor, True), np.eye(len(weights)))
        difference = inverse - np.outer(weights, weights) / variance
        product = difference * correlations
        derivatives = np.empty_like(parameters)
        for k, distance in enumerate(self.distances):
            z = distance * (ROOT_OF_FIVE / math.exp(parameters[k]))
            derivatives[k] = 0.5 * np.vdot(product, z * z * (1 + z) / (3 + z * (3 + z)))
        derivatives[-1] = 0.5 * math.exp(parameters[-1]) * np.trace(difference)
        return -value, derivatives

    def predict(self, parameters, block):
        _, _, mean, weights, _, _ = self.solve(parameters)
        return mean + np.concatenate(
            [self.correlations_to(part, parameters) @ weights for part in blocks(block)]
        )

    def correlations_to(self, part, parameters):
        distances = [np.abs(a[:, None] - b[None, :]) for a, b in zip(part.T, self.points.T)]
        return self.correlations(distances, np.exp(parameters[:-1]))


def blocks(points, rows=1000):
    return [points[i : i + rows] for i in range(0, len(points), rows)]


def starts(inputs):
    """Short and long lengths alike, then lengths that differ; little nugget and much."""
    generator = np.random.default_rng(1)
    for k in range(STARTS):
        if k < 2:
            lengths = np.full(inputs, (0.5, 2.0)[k])
        else:
            lengths = 10.0 ** generator.uniform(-0.7, 1.0, inputs)
        yield np.log(np.append(lengths, (1e-6, 1e-2)[k % 2]))


def search(likelihood, inputs):
    from scipy.optimize import minimize

    bounds = [tuple(np.log(LENGTHS))] * inputs + [tuple(np.log(NUGGETS))]
    ends = [
        minimize(
            likelihood.descent,
            start,
            jac=True,
            method="L-BFGS-B",
            bounds=bounds,
            options={"maxiter": 300, "ftol": 1e-10, "gtol": 1e-4},
        )
        for start in starts(inputs)
    ]
    return min(ends, key=lambda end: end.fun)


def fit_kriging(task):
    points, output = worker.read_cases(task)
    likelihood = Likelihood(points, output)
    answer = {}
    best = worker.measure(
        answer, {**task, "repeats": 1}, "fit", lambda: search(likelihood, task["inputs"])
    )
    answer["log_likelihood"] = float(-best.fun)
    answer["nugget"] = math.exp(best.x[-1])
    answer["lengths"] = list(np.exp(best.x[:-1]))
    only_the_error = {k: v for k, v in task.items() if k not in ("scattered", "grid")}
    worker.score_and_predict(
        answer, only_the_error, lambda block: likelihood.predict(best.x, block)
    )
    return answer


if __name__ == "__main__":
    worker.serve(load)
