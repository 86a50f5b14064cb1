"""OpenTURNS: Kriging by KrigingAlgorithm, response surface by QuadraticLeastSquares."""

import math

import numpy as np

import worker

# Its default bounds depend on the cases and leave out inputs that hardly matter; these are the ones
# that the other contestants search in, in units of the inputs' ranges.
SHORTEST, LONGEST = 1e-2, 1e2


def load():
    import openturns

    openturns.Log.Show(openturns.Log.NONE)
    openturns.TBB.SetThreadsNumber(1)
    peer = OpenTurns(openturns)
    functions = {"kriging": peer.fit_kriging, "surface": peer.fit_surface}
    return f"OpenTURNS {openturns.__version__}", functions


class OpenTurns:
    def __init__(self, library):
        self.ot = library

    def covariance(self, task):
        """Its lengths are where the search starts."""
        lengths = [task["start"]] * task["inputs"]
        if task["kernel"] == "squared-exponential":
            return self.ot.SquaredExponential(lengths)
        if task["kernel"] == "matern":
            return self.ot.MaternModel(lengths, 2.5)  # of the scaled distance, no product
        if task["kernel"] == "matern-product":
            factors = [self.ot.MaternModel([length], 2.5) for length in lengths]
            return self.ot.ProductCovarianceModel(factors)
        raise ValueError(f"unknown kernel '{task['kernel']}'")

    def fit_kriging(self, task):
        points, output = worker.read_cases(task)
        # Scaled by the noise's scale too, since it estimates no nugget and has to be told.
        centre, unit = (np.mean(output), np.std(output)) if task["noise"] else (0.0, 1.0)
        inputs = self.ot.Sample(points)
        scaled = self.ot.Sample(((output - centre) / unit).reshape(-1, 1))

        answer = {}
        algorithm = worker.measure(
            answer, task, "fit", lambda: self.run_kriging(task, inputs, scaled, unit)
        )
        result = algorithm.getResult()
        covariance = result.getCovarianceModel()
        parameters = list(covariance.getParameter())
        likelihood = algorithm.getReducedLogLikelihoodFunction()
        searched = parameters[: likelihood.getInputDimension()]
        answer["log_likelihood"] = likelihood(searched)[0] - len(output) * math.log(unit)
        noise = (task["noise"] / unit / covariance.getAmplitude()[0]) ** 2
        answer["nugget"] = covariance.getNuggetFactor() + noise
        surface = result.getMetaModel()
        worker.score_and_predict(
            answer, task, lambda block: centre + unit * self.evaluate(surface, block)
        )
        return answer

    def run_kriging(self, task, inputs, output, unit):
        dimension = task["inputs"]
        trend = self.ot.ConstantBasisFactory(dimension).build()
        algorithm = self.ot.KrigingAlgorithm(inputs, output, self.covariance(task), trend)
        if task["noise"]:
            algorithm.setNoise([(task["noise"] / unit) ** 2] * len(output))
        others = algorithm.getOptimizationBounds().getDimension() - dimension  # the amplitude
        algorithm.setOptimizationBounds(
            self.ot.Interval(
                [SHORTEST] * dimension + [1e-12] * others, [LONGEST] * dimension + [1e2] * others
            )
        )
        algorithm.run()
        return algorithm

    def fit_surface(self, task):
        points, output = worker.read_cases(task)
        inputs, outputs = self.ot.Sample(points), self.ot.Sample(output.reshape(-1, 1))

        def run():
            algorithm = self.ot.QuadraticLeastSquares(inputs, outputs)
            algorithm.run()
            return algorithm.getMetaModel()

        answer = {}
        surface = worker.measure(answer, task, "fit", run)
        worker.score_and_predict(answer, task, lambda block: self.evaluate(surface, block))
        return answer

    def evaluate(self, function, block):
        return np.asarray(function(self.ot.Sample(block))).ravel()


if __name__ == "__main__":
    worker.serve(load)
