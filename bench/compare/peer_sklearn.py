"""scikit-learn: Kriging by GaussianProcessRegressor, response surface by PolynomialFeatures."""

import math
import warnings

import numpy as np

import worker

# Added to the diagonal, relative to the standardised output. The first is its default; smooth
# kernels often need more to be factorised at all. Only the fit that succeeds is timed.
NUGGETS = (1e-10, 1e-8, 1e-6)


def load():
    import sklearn

    warnings.filterwarnings("ignore")
    functions = {"kriging": fit_kriging, "surface": fit_surface}
    return f"scikit-learn {sklearn.__version__}", functions


def kernel_of(task):
    from sklearn.gaussian_process.kernels import RBF, ConstantKernel, Matern, WhiteKernel

    start = np.full(task["inputs"], task["start"])
    bounds = (1e-2, 1e2)  # those that the other contestants search in
    if task["kernel"] == "squared-exponential":
        correlation = RBF(start, bounds)
    elif task["kernel"] == "matern":
        correlation = Matern(start, bounds, nu=2.5)
    else:
        raise ValueError(f"unknown kernel '{task['kernel']}'")
    kernel = ConstantKernel(1.0, (1e-3, 1e6)) * correlation
    return kernel + WhiteKernel(0.1, (1e-8, 1e1)) if task["noise"] else kernel


def fit_kriging(task):
    from sklearn.gaussian_process import GaussianProcessRegressor

    points, output = worker.read_cases(task)

    def fit(nugget):
        regressor = GaussianProcessRegressor(kernel_of(task), alpha=nugget, normalize_y=True)
        return regressor.fit(points, output)

    for nugget in NUGGETS:
        answer = {}
        try:
            regressor = worker.measure(answer, task, "fit", lambda: fit(nugget))
            break
        except np.linalg.LinAlgError:
            if nugget == NUGGETS[-1]:
                raise
    answer["nugget"] = relative_nugget(regressor.kernel_, nugget)
    # Of the output standardised by its deviation.
    standardised = regressor.log_marginal_likelihood_value_
    answer["log_likelihood"] = float(standardised - len(output) * math.log(np.std(output)))
    worker.score_and_predict(answer, task, regressor.predict)
    return answer


def relative_nugget(kernel, diagonal):
    """What is on the diagonal in units of the process variance, as the others tell it."""
    parameters = kernel.get_params()
    noise = next((v for k, v in parameters.items() if k.endswith("noise_level")), 0.0)
    variance = next(v for k, v in parameters.items() if k.endswith("constant_value"))
    return float((noise + diagonal) / variance)


def fit_surface(task):
    from sklearn.linear_model import LinearRegression
    from sklearn.pipeline import make_pipeline
    from sklearn.preprocessing import PolynomialFeatures

    points, output = worker.read_cases(task)
    answer = {}
    model = worker.measure(
        answer,
        task,
        "fit",
        lambda: make_pipeline(
            PolynomialFeatures(2, include_bias=False), LinearRegression()
        ).fit(points, output),
    )
    worker.score_and_predict(answer, task, model.predict)
    return answer


if __name__ == "__main__":
    worker.serve(load)
