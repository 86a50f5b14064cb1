"""Surrogate models of cases: Kriging and response surfaces as scikit-learn estimators.

    from surrogatemodel import Kriging
    model = Kriging().fit(cases[["Pressure", "H2/WF6"]], cases["Stress"])
    values, limits = model.predict(points, interval=0.95)

The same cases and choices give the same model as the program `surrogate`.
"""

from __future__ import annotations

import copy
import json
import os
from collections.abc import Mapping, Sequence
from typing import Any

import numpy as np
from sklearn.base import BaseEstimator, RegressorMixin
from sklearn.utils.validation import _check_sample_weight, check_consistent_length, check_is_fitted

from . import _core
from ._core import (ModelError, ModelFileError, __version__, distribution_values,
                    set_thread_count)

__all__ = ["Kriging", "ResponseSurface", "ModelError", "ModelFileError", "distribution_values",
           "grid", "load", "set_thread_count", "__version__"]


class _SurrogateModel(RegressorMixin, BaseEstimator):
    """What both models have in common. X: one row per case, y: one column per output."""

    def fit(self, X: Any, y: Any) -> Any:
        """Fits every output. Ctrl-C ends a fit; other threads go on meanwhile."""
        return self._fit(X, y)

    def _fit(self, X: Any, y: Any, sample_weight: Any = None, blocks: Any = None) -> Any:
        names = getattr(y, "columns", None)
        name = getattr(y, "name", None)
        single = ["y" if name is None else str(name)]
        X, y = self._validate_data(X, y, dtype=np.float64, multi_output=True, y_numeric=True)
        self._is_single = y.ndim == 1
        y = y.reshape(len(y), -1)
        self._output_names = (single if self._is_single
                              else [f"y{i}" for i in range(y.shape[1])] if names is None
                              else list(map(str, names)))
        rows = np.arange(len(y))
        weights: list[float] = []
        if sample_weight is not None:
            checked = _check_sample_weight(sample_weight, X, dtype=np.float64, only_non_negative=True)
            rows = np.flatnonzero(checked)
            weights = checked[rows].tolist()
        numbers: list[int] = []
        if blocks is not None:
            check_consistent_length(X, blocks)
            self._block_names, of_cases = np.unique(np.asarray(blocks), return_inverse=True)
            numbers = of_cases[rows].tolist()
        self._rows = rows
        # Kept for unpickling: a model that is fitted again, with the same parameters even if
        # set_params() has changed them since, has the same bits.
        self._cases: tuple[np.ndarray, np.ndarray, list[float], list[int]] | None = (
            np.array(X[rows], order="F"), np.array(y[rows], dtype=np.float64, order="F"), weights,
            numbers)
        self._parameters = copy.deepcopy(self.get_params())
        self._model = self._fitted(*self._cases, **self._parameters)
        self.is_fitted_ = True
        return self

    def predict(self, X: Any, return_std: bool = False, interval: float | None = None) -> Any:
        """The outputs at X; with `return_std` a tuple that goes on with their standard errors, and
        with `interval`, such as 0.95, with prediction limits: their last axis is lower, upper."""
        check_is_fitted(self)
        X = self._validate_data(X, dtype=np.float64, reset=False)
        results = [self._model.predict(X)]
        if return_std:
            results.append(self._complete().standard_errors(X, False))
        if interval is not None:
            results.append(np.stack(self._complete().intervals(X, interval), axis=-1))
        if self._is_single:
            results = [result[:, 0] for result in results]
        return results[0] if len(results) == 1 else tuple(results)

    def table(self, X: Any, interval: float | None = None) -> Any:
        """A DataFrame X with the columns "NAME predicted" and, for an `interval`, "NAME lower" and
        "NAME upper", as `surrogate predict` writes them."""
        check_is_fitted(self)
        points = self._validate_data(X, dtype=np.float64, reset=False)
        table = X.copy()
        predicted = self._model.predict(points)
        limits = None if interval is None else self._complete().intervals(points, interval)
        for i, name in enumerate(self._output_names):
            table[f"{name} predicted"] = predicted[:, i]
            if limits is not None:
                table[f"{name} lower"], table[f"{name} upper"] = (one[:, i] for one in limits)
        return table

    def report(self, output: int = 0) -> dict[str, Any]:
        """Metrics, warnings and the parameters or coefficients with their statistics, named as in
        the JSON of `surrogate fit`. Cases are counted from 1; None is a figure that does not exist,
        or an infinite one. The first call calibrates the intervals, as predict() with `interval`
        does."""
        check_is_fitted(self)

        def named(figures: dict[str, Any]) -> dict[str, Any]:
            if "case" in figures:
                figures["case"] = int(self._rows[figures["case"] - 1]) + 1
            if "suspectedOutliers" in figures:
                figures["suspectedOutliers"] = [int(self._rows[case - 1]) + 1
                                                for case in figures["suspectedOutliers"]]
            if "block" in figures:
                figures["block"] = str(self._block_names[int(figures["block"])])
            return figures

        return {"name": self._output_names[output],
                **json.loads(self._complete().report(output, self._input_names()),
                             object_hook=named)}

    def equation(self, output: int = 0) -> str:
        """The fitted polynomial in the symbols V1, V2, ... for the inputs."""
        check_is_fitted(self)
        return self._complete().equation(output).strip()

    def leave_one_out(self, output: int = 0) -> np.ndarray:
        """A row for each case: its row in X, output, prediction by a fit to the other cases and the
        standard error of that."""
        check_is_fitted(self)
        result = self._complete().leave_one_out(output)
        result[:, 0] = self._rows[result[:, 0].astype(int)]
        return result

    def save(self, path: str | os.PathLike[str]) -> None:
        """Writes the model by the ending of `path`: .json (which load() and `surrogate` read), .c,
        .py, .xlsx or .txt."""
        check_is_fitted(self)
        content = self._exported(os.path.splitext(path)[1])
        with open(path, "wb") as file:
            file.write(content)

    def _input_names(self) -> list[str]:
        names = getattr(self, "feature_names_in_", None)
        return [f"x{i}" for i in range(self.n_features_in_)] if names is None else list(names)

    def _exported(self, ending: str) -> bytes:
        return self._model.export(ending, self._input_names(), self._output_names)

    def _complete(self) -> _core.Model:
        """The model with what is computed from its cases."""
        if not self._model.has_cases and self._cases is not None:
            self._model = self._fitted(*self._cases, **self._parameters)
        return self._model

    def _fitted(self, x: np.ndarray, y: np.ndarray, weights: list[float], blocks: list[int],
                **parameters: Any) -> _core.Model:
        raise NotImplementedError

    def __getstate__(self) -> dict[str, Any]:
        # A copy predicts at once, and is fitted again when more than predictions is asked for.
        state = dict(super().__getstate__())
        if isinstance(state.get("_model"), _core.Model):
            try:
                state["_model"] = self._exported(".json")
            except ModelError:
                del state["_model"]
        return state

    def __setstate__(self, state: dict[str, Any]) -> None:
        super().__setstate__(state)
        if "_model" in state:
            self._model = _core.load(state["_model"])[0]
        elif "is_fitted_" in state:
            self._model = self._fitted(*self._cases, **self._parameters)

    def _more_tags(self) -> dict[str, bool]:
        return {"multioutput": True}


class Kriging(_SurrogateModel):
    """Universal Kriging with a Matern 5/2 correlation, estimated by restricted likelihood.

    output_transform: "auto", "none", "sqrt" or "log" of outputs that are positive in all cases.
    trend_order: 0 constant, 1 linear, 2 quadratic, lowered where the cases are too few.
    nugget: its lower bound, relative to the process variance.
    correlation_lengths: fixed ones in the inputs' units instead of estimated ones.
    None is what `surrogate -m kriging` does.
    """

    def __init__(self, output_transform: str | None = None, trend_order: int | None = None,
                 nugget: float | None = None,
                 correlation_lengths: Sequence[float] | None = None) -> None:
        self.output_transform = output_transform
        self.trend_order = trend_order
        self.nugget = nugget
        self.correlation_lengths = correlation_lengths

    def _fitted(self, x: np.ndarray, y: np.ndarray, weights: list[float], blocks: list[int],
                **parameters: Any) -> _core.Model:
        return _core.fit_kriging(x, y, parameters["output_transform"], parameters["trend_order"],
                                 parameters["nugget"], parameters["correlation_lengths"])


class ResponseSurface(_SurrogateModel):
    """A polynomial of at most second order, fitted by least squares.

    terms: "linear", "interactions", "quadratic" or a sum of terms, "A + B + A:B + A^2".
    select_terms: keeps only the terms that lower the corrected Akaike criterion.
    output_transform: "auto", "none", "sqrt", "log" or "boxcox" of outputs that are positive in all
        cases.
    None is what `surrogate` does.
    """

    def __init__(self, terms: str | None = None, select_terms: bool = False,
                 output_transform: str | None = None) -> None:
        self.terms = terms
        self.select_terms = select_terms
        self.output_transform = output_transform

    def fit(self, X: Any, y: Any, sample_weight: Any = None, blocks: Any = None) -> Any:
        """Fits every output by weighted least squares.

        sample_weight: one per case, the reciprocal of the variance of its error, of which only the
            ratios count; 0 leaves a case out.
        blocks: the label of each case's block. A block adds an effect to the outputs; the effects
            sum to 0, and predictions are those of a block of average effect."""
        return self._fit(X, y, sample_weight, blocks)

    def _fitted(self, x: np.ndarray, y: np.ndarray, weights: list[float], blocks: list[int],
                **parameters: Any) -> _core.Model:
        return _core.fit_response_surface(x, y, parameters["output_transform"],
                                          parameters["terms"], parameters["select_terms"],
                                          self._input_names(), weights, blocks)


def load(path: str | os.PathLike[str]) -> Kriging | ResponseSurface:
    """Reads what save() or `surrogate export --format json` wrote: a model that predicts."""
    with open(path, "rb") as file:
        content, is_kriging, inputs, outputs = _core.load(file.read())
    model = Kriging() if is_kriging else ResponseSurface()
    model._model, model._cases, model._output_names = content, None, outputs
    model._is_single = len(outputs) == 1
    model.feature_names_in_ = np.array(inputs, dtype=object)
    model.n_features_in_ = len(inputs)
    model.is_fitted_ = True
    return model


Values = Sequence[float] | str


def grid(values: Mapping[str, Values] | Sequence[Values]) -> Any:
    """Every combination of the inputs' values, the first input varying slowest: a DataFrame for
    values by name, else an array. An input's values may be a text, "4 - 80 : 20, 42". Kriging
    predicts such grids fast."""
    axes = [distribution_values(axis) if isinstance(axis, str) else axis
            for axis in (values.values() if isinstance(values, Mapping) else values)]
    points = np.array(np.meshgrid(*axes, indexing="ij"), dtype=np.float64)
    points = points.reshape(len(axes), -1).T
    if not isinstance(values, Mapping):
        return points
    import pandas
    return pandas.DataFrame(points, columns=list(values), copy=False)
