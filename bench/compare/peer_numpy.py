"""NumPy: the response surface by the normal equations, the fastest way in a few lines."""

import numpy as np

import worker


def load():
    return f"NumPy {np.__version__}", {"surface": fit_surface}


def quadratic_terms(points):
    first, second = np.triu_indices(points.shape[1])
    linear = 1 + points.shape[1]
    terms = np.empty((len(points), linear + len(first)))
    terms[:, 0] = 1.0
    terms[:, 1:linear] = points
    np.multiply(points[:, first], points[:, second], out=terms[:, linear:])
    return terms


def solve_normal_equations(points, output):
    terms = quadratic_terms(points)
    return np.linalg.solve(terms.T @ terms, terms.T @ output)


def fit_surface(task):
    points, output = worker.read_cases(task)
    answer = {}
    coefficients = worker.measure(
        answer, task, "fit", lambda: solve_normal_equations(points, output)
    )
    worker.score_and_predict(answer, task, lambda block: quadratic_terms(block) @ coefficients)
    return answer


if __name__ == "__main__":
    worker.serve(load)
