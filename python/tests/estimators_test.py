"""estimators_test.py PROGRAM CASES: the estimators, beside the program where both do the same."""
import concurrent.futures
import io
import json
import os
import pickle
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest

import numpy as np
import pandas as pd
from sklearn.base import clone
from sklearn.model_selection import GridSearchCV, cross_val_score
from sklearn.pipeline import make_pipeline
from sklearn.preprocessing import StandardScaler
from sklearn.utils.estimator_checks import check_estimator

import surrogatemodel
from surrogatemodel import Kriging, ResponseSurface, _core

PROGRAM, CASES = sys.argv[1:3]
INPUTS = ["Pressure", "H2/WF6"]


def of_program(*arguments):
    command = [PROGRAM, *arguments]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def smooth_cases(rows=60, seed=1):
    x = np.random.default_rng(seed).uniform(size=(rows, 3))
    return x, np.sin(5 * x[:, 0]) + x[:, 1] * x[:, 2]


class Estimators(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.cases = pd.read_csv(CASES)

    def test_every_check_of_scikit_learn_passes(self):
        for estimator in (Kriging(), ResponseSurface()):
            check_estimator(estimator)

    def test_results_are_those_of_the_program(self):
        x = ["-x", ",".join(INPUTS), "-y", "Uniformity,Stress", "--json", "-q"]
        for estimator, options in (
                (Kriging(), ["-m", "kriging"]),
                (Kriging(output_transform="none"), ["-m", "kriging", "--transform", "none"]),
                (ResponseSurface(), []),
                (ResponseSurface(terms="linear", output_transform="log"),
                 ["--terms", "linear", "--transform", "log"]),
                (ResponseSurface(terms="Pressure + Pressure^2"),
                 ["--terms", "Pressure + Pressure^2"]),
                (ResponseSurface(select_terms=True), ["--select-terms"])):
            with self.subTest(str(estimator)):
                program = json.loads(of_program("predict", CASES, "--points", CASES, *x, *options,
                                                "--interval", "90"))
                expected = pd.DataFrame(program["table"]["rows"],
                                        columns=program["table"]["columns"])
                model = estimator.fit(self.cases[INPUTS], self.cases[["Uniformity", "Stress"]])
                table = model.table(self.cases[INPUTS], interval=0.9)
                for column in table.columns[2:]:
                    np.testing.assert_allclose(table[column], expected[column], rtol=1e-12)

    def test_weights_and_blocks_are_those_of_the_program(self):
        design = self.cases.assign(Weight=[1, 2, 0, 4, 1, 1, 3, 1, 2, 1, 1], Block=list("aabbababbab"))
        x, y = design[INPUTS], design["Stress"]
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "design.csv")
            design.to_csv(path, index=False)
            program = json.loads(of_program("fit", path, "-x", ",".join(INPUTS), "-y", "Stress", "-q",
                                            "--json", "--weights", "Weight", "--block", "Block"))
        model = ResponseSurface().fit(x, y, design["Weight"], blocks=design["Block"])
        for ours, theirs in zip(model.report()["coefficients"],
                                program["outputs"][0]["coefficients"], strict=True):
            for name in ("estimate", "standardError"):
                self.assertAlmostEqual(ours[name], theirs[name], 12)
        self.assertNotIn(2, model.leave_one_out()[:, 0])
        for name in ("blockEffects", "leverage", "residuals"):
            self.assertEqual(str(model.report()[name]), str(program["outputs"][0][name]))
        copy = pickle.loads(pickle.dumps(model))
        self.assertEqual(str(copy.report()), str(model.report()))
        with self.assertRaisesRegex(ValueError, "Negative"):
            ResponseSurface().fit(x, y, -design["Weight"])
        with self.assertRaisesRegex(ValueError, "inconsistent"):
            ResponseSurface().fit(x, y, blocks=["a"])

    def test_reports_are_those_of_the_program(self):
        for estimator, options in ((Kriging(), ["-m", "kriging"]), (ResponseSurface(), [])):
            program = json.loads(of_program("fit", CASES, "-x", ",".join(INPUTS), "-y", "Stress",
                                            "--json", "-q", *options))["outputs"][0]
            report = estimator.fit(self.cases[INPUTS], self.cases["Stress"]).report()
            self.assertLessEqual(set(program) - {"ranking"}, set(report))
            self.assertLessEqual(set(program["metrics"]), set(report["metrics"]))
            for name, value in program.pop("metrics").items():
                self.assertAlmostEqual(report["metrics"][name], value, 12, name)
            # Of the program alone: the ranking of the inputs, and notes such as why it took a transform.
            for name in set(program) - {"notes", "ranking"}:
                self.assertEqual(report[name], program[name], name)

    def test_standard_errors_and_limits_come_with_the_predictions(self):
        x, y = smooth_cases()
        model = Kriging().fit(x, y)
        values, errors, limits = model.predict(x + 0.01, return_std=True, interval=0.95)
        self.assertEqual((values.shape, errors.shape, limits.shape), ((60,), (60,), (60, 2)))
        self.assertTrue(np.all((limits[:, 0] <= values) & (values <= limits[:, 1])))
        self.assertEqual(model.leave_one_out().shape, (60, 4))

    def test_several_outputs_have_a_column_each(self):
        x, y = smooth_cases()
        both = Kriging().fit(x, np.column_stack([y, y * y + 1.0]))
        values, limits = both.predict(x, interval=0.5)
        self.assertEqual((values.shape, limits.shape), ((60, 2), (60, 2, 2)))
        np.testing.assert_array_equal(values[:, 0], Kriging().fit(x, y).predict(x))

    def test_any_layout_gives_the_same_values(self):
        x, y = smooth_cases()
        expected = Kriging().fit(x, y).predict(x)
        wide = np.zeros((60, 6))
        wide[:, ::2] = x
        for other in (np.asfortranarray(x), wide[:, ::2], x[::-1][::-1], pd.DataFrame(x).values,
                      x.tolist(), np.asfortranarray(x.astype(">f8")),
                      np.frombuffer(b"." + x.tobytes(), offset=1).reshape(x.shape)):
            np.testing.assert_array_equal(Kriging().fit(other, y).predict(other), expected)

    def test_contiguous_columns_are_read_in_place(self):
        x, y = smooth_cases(50)
        model = _core.fit_response_surface(np.asfortranarray(x), y[:, None], None, None, False, [],
                                            [], [])
        big = np.asfortranarray(np.random.default_rng(2).uniform(size=(2_000_000, 3)))
        with open("/proc/self/clear_refs", "w") as file:
            file.write("5")
        before = peak_memory()
        model.predict(big)
        # The result takes 16 MB; a copy of the points would take 48 MB more.
        self.assertLess(peak_memory() - before, 40e6)

    def test_works_with_pipelines_folds_and_searches(self):
        x, y = smooth_cases(40)
        self.assertGreater(cross_val_score(make_pipeline(StandardScaler(), Kriging()), x, y).min(),
                           0.9)
        search = GridSearchCV(ResponseSurface(), {"terms": ["linear", "quadratic"]}).fit(x, y)
        self.assertEqual(search.best_params_, {"terms": "quadratic"})
        self.assertEqual(clone(Kriging(trend_order=2)).get_params()["trend_order"], 2)

    def test_copies_by_pickle_lose_nothing(self):
        x, y = smooth_cases()
        for model in (Kriging(), ResponseSurface(output_transform="auto")):
            model.fit(x, np.exp(y))
            copy = pickle.loads(pickle.dumps(model))
            np.testing.assert_array_equal(copy.predict(x), model.predict(x))
            self.assertFalse(copy._model.has_cases)
            for one, other in zip(copy.predict(x, return_std=True, interval=0.9),
                                  model.predict(x, return_std=True, interval=0.9)):
                np.testing.assert_array_equal(one, other)
            self.assertEqual(str(copy.report()), str(model.report()))
        self.assertEqual(pickle.loads(pickle.dumps(Kriging(trend_order=0))).trend_order, 0)

    def test_copies_keep_the_parameters_of_the_fit(self):
        x, y = smooth_cases()
        model = Kriging(trend_order=0).fit(x, y)
        report = str(model.report())
        model.set_params(trend_order=2)
        self.assertEqual(str(pickle.loads(pickle.dumps(model)).report()), report)

    def test_names_can_be_numbers(self):
        table = pd.DataFrame(np.column_stack(smooth_cases()))
        model = ResponseSurface().fit(table[[1, 2]].to_numpy(), table[0])
        self.assertEqual(pickle.loads(pickle.dumps(model))._output_names, ["0"])

    def test_files_are_those_of_the_program(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "stress.json")
            model = Kriging(output_transform="log").fit(self.cases[INPUTS], self.cases["Stress"])
            model.save(path)
            table = pd.read_csv(io.StringIO(of_program("predict", path, "--points", CASES, "-q")))
            expected = model.predict(self.cases[INPUTS])
            np.testing.assert_allclose(table["Stress predicted"], expected, rtol=1e-5)

            loaded = surrogatemodel.load(path)
            np.testing.assert_array_equal(loaded.predict(self.cases[INPUTS]), expected)
            self.assertEqual(loaded.report()["transform"], model.report()["transform"])
            with self.assertRaisesRegex(surrogatemodel.ModelError, "fit it to its cases"):
                loaded.predict(self.cases[INPUTS], return_std=True)
            for ending in (".c", ".py", ".xlsx", ".txt"):
                model.save(os.path.join(folder, "stress" + ending))
            with self.assertRaisesRegex(ValueError, '".doc" is no format'):
                model.save(os.path.join(folder, "stress.doc"))

    def test_grids_vary_their_first_input_slowest(self):
        points = surrogatemodel.grid({"a": [1, 2], "b": [3, 4, 5]})
        self.assertEqual(points.values.tolist(), [[1, 3], [1, 4], [1, 5], [2, 3], [2, 4], [2, 5]])
        self.assertEqual(list(points.columns), ["a", "b"])
        np.testing.assert_array_equal(surrogatemodel.grid([[1, 2], [3, 4, 5]]), points.values)

    def test_threads_share_a_model(self):
        x, y = smooth_cases(200)
        alone = Kriging().fit(x, y)
        questions = [lambda model: model.predict(x, return_std=True)[1].tolist(),
                     lambda model: model.predict(x, interval=0.9)[1].tolist(),
                     lambda model: repr(model.report()), lambda model: model.equation(),
                     lambda model: model.leave_one_out().tolist(), pickle.dumps]
        answers = [question(alone) for question in questions]
        for _ in range(3):
            shared = Kriging().fit(x, y)
            with concurrent.futures.ThreadPoolExecutor(len(questions)) as pool:
                futures = [pool.submit(question, shared) for question in questions]
                for future, answer in zip(futures[:-1], answers):
                    self.assertEqual(future.result(), answer)
                self.assertEqual(pickle.loads(futures[-1].result()).predict(x).tolist(),
                                 alone.predict(x).tolist())

    def test_typed_texts_give_the_values_of_the_program(self):
        for text in ("4 - 80 : 20, 42", "12.5, 0 - 10 : 11", "1e-3", "-5 - -1 : 3"):
            table = of_program("evaluate", CASES, "-x", ",".join(INPUTS), "-y", "Stress", "-q",
                               "--sweep", f"Pressure={text}", "--at", "H2/WF6=5")
            np.testing.assert_array_equal(pd.read_csv(io.StringIO(table))["Pressure"],
                                          surrogatemodel.distribution_values(text))
        points = surrogatemodel.grid({"a": "1 - 2 : 2", "b": [3, 4, 5]})
        np.testing.assert_array_equal(points["a"], [1, 1, 1, 2, 2, 2])

    def test_a_faulty_text_says_what_is_wrong(self):
        with self.assertRaisesRegex(ValueError, "Expression: 0 - 10: .*Write numbers and ranges"):
            surrogatemodel.distribution_values("1, 0 - 10")

    def test_what_cannot_be_fitted_is_said_in_a_sentence(self):
        x, y = smooth_cases(10)
        for estimator, sentence in (
                (Kriging(trend_order=7), "trend"),
                (Kriging(output_transform="cube"), '"cube" is no transform: auto, none, sqrt, log'),
                (Kriging(output_transform="boxcox"), "response surfaces"),
                (Kriging(output_transform="usual"), '"usual" is no transform'),
                (ResponseSurface(terms="x0 + nothing"), "nothing")):
            with self.assertRaisesRegex(ValueError, sentence):
                estimator.fit(x, y)

    def test_ctrl_c_ends_a_fit(self):
        x, y = smooth_cases(2000)
        threading.Timer(0.3, os.kill, (os.getpid(), signal.SIGINT)).start()
        with self.assertRaises(KeyboardInterrupt):
            # One fit of the better part of an hour: the interpreter interrupts between fits anyway.
            Kriging().fit(x, np.tile(y[:, None], 1000))
        self.assertGreater(cross_val_score(Kriging(), x[:50], y[:50]).min(), 0.5)

    def test_other_threads_run_during_a_fit(self):
        x, y = smooth_cases(800)
        fitting = threading.Thread(target=Kriging().fit, args=(x, y))
        fitting.start()
        steps = 0
        while fitting.is_alive():
            steps += 1
            time.sleep(0)
        self.assertGreater(steps, 10)


def peak_memory():
    with open("/proc/self/status", encoding="ascii") as file:
        return next(int(line.split()[1]) * 1024 for line in file if line.startswith("VmHWM"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
