// NumericalSoak [--seconds S] [--problems N] [--seed K]: fits random problems with both models and
// compares what they compute with the definitions in extended precision. Prints the worst deviation
// of each quantity for each kind of problem; exit code 1 where one is larger than its bound.
#include "KrigingTestSupport.h"
#include "TestFunctions.h"

#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

namespace {

using Real = long double;
using Vector = std::vector<Real>;
using Matrix = std::vector<Vector>;

// ---------------------------------------------------------------------------- problems

struct Problem
{
    Columns inputs;
    std::vector<double> output;
    Columns points; ///< some inside, some outside of the cases
};

enum Kind
{
    Smooth,
    Levels,
    Design,
    Replicates,
    Skewed,
    Rounded,
    Units,
    Batches,
    kinds
};
const char* const kindNames[] = {"closed forms", "few levels",     "designs with noise",
                                 "replicates",   "skewed outputs", "rounded inputs",
                                 "odd units",    "batches"};

std::size_t upTo(UniformNumbers& numbers, std::size_t least, std::size_t most)
{
    return least + numbers.generator() % (most - least + 1);
}

/** A random function over the unit cube: waves, products and a steep place. */
Function waves(UniformNumbers& numbers, std::size_t inputs)
{
    std::vector<double> a(4 * inputs + 2);
    std::generate(a.begin(), a.end(), [&] { return numbers.normal(); });
    return [a, inputs](const std::vector<double>& u) {
        double value = a[0];
        for (std::size_t k = 0; k < inputs; ++k) {
            value += a[4 * k + 2] * std::sin(2.0 * a[4 * k + 3] * u[k] + a[4 * k + 4]) +
                     a[4 * k + 5] * u[k] * u[(k + 1) % inputs];
        }
        return value + std::tanh(8.0 * (u[0] - 0.4)) * a[1];
    };
}

/** Each input takes a few values only. */
void toLevels(Columns& inputs, UniformNumbers& numbers)
{
    for (std::vector<double>& column : inputs) {
        const auto levels = static_cast<double>(upTo(numbers, 2, 7));
        for (double& value : column) {
            value = std::round(value * (levels - 1.0)) / (levels - 1.0);
        }
    }
}

/** The corners, the middles of the faces and some repeated centres of the unit cube. */
Columns centralComposite(std::size_t inputs, std::size_t centres)
{
    Columns columns(inputs);
    const auto add = [&](const auto& coordinate) {
        for (std::size_t k = 0; k < inputs; ++k) {
            columns[k].push_back(coordinate(k));
        }
    };
    for (std::size_t corner = 0; corner < std::size_t{1} << inputs; ++corner) {
        add([&](std::size_t k) { return static_cast<double>(corner >> k & 1); });
    }
    for (std::size_t face = 0; face < 2 * inputs; ++face) {
        add([&](std::size_t k) { return k == face / 2 ? static_cast<double>(face % 2) : 0.5; });
    }
    for (std::size_t centre = 0; centre < centres; ++centre) {
        add([](std::size_t) { return 0.5; });
    }
    return columns;
}

Problem makeProblem(Kind kind, UniformNumbers& numbers)
{
    std::size_t d = upTo(numbers, 1, 5);
    std::size_t n = upTo(numbers, 8, 70);
    double noise = numbers.next() < 0.5 ? 0.0 : numbers.next(0.01, 0.5);
    Function truth = waves(numbers, d);
    Problem problem;
    if (kind == Smooth) {
        const std::size_t which = numbers.generator() % 5;
        d = which == 0 ? 2 : which == 1 || which == 2 ? 6 : which == 3 ? 8 : d;
        truth = which == 0   ? Function(branin)
                : which == 1 ? Function(hartmann6)
                : which == 2 ? Function(circuit)
                : which == 3 ? Function(borehole)
                             : truth;
        noise = 0.0;
    }
    problem.inputs = latinHypercube(n, d, numbers.generator());
    if (kind == Levels || kind == Batches) {
        toLevels(problem.inputs, numbers);
    }
    if (kind == Levels && d > 1 && numbers.next() < 0.5) {
        problem.inputs[1] = problem.inputs[0]; // aliased
    }
    if (kind == Batches) {
        for (std::size_t i = 0; i < n; ++i) {
            problem.inputs[0][i] = static_cast<double>(i / 4) / static_cast<double>(n / 4 + 1);
        }
    }
    if (kind == Design) {
        problem.inputs = centralComposite(d, upTo(numbers, 1, 4));
        noise = numbers.next(0.05, 0.5);
    }
    if (kind == Replicates) {
        for (std::vector<double>& column : problem.inputs) {
            for (std::size_t i = 0; i < n; ++i) {
                column[i] = column[i / 3 * 3];
            }
        }
        noise = numbers.next(0.05, 0.5);
    }
    if (kind == Rounded) {
        for (std::vector<double>& column : problem.inputs) {
            for (double& value : column) {
                value = std::round(value * 10.0) / 10.0;
            }
        }
    }
    problem.output = valuesOf(truth, problem.inputs);
    for (double& value : problem.output) {
        value += noise * numbers.normal();
        value = kind == Skewed ? std::exp(2.0 * value) : value;
    }
    for (std::size_t k = 0; k < problem.inputs.size(); ++k) {
        problem.points.push_back(numbers.next(6));
        for (double& value : problem.points.back()) {
            value = 1.2 * value - 0.1;
        }
        if (kind == Units) {
            const double unit = std::pow(10.0, numbers.next(-9.0, 9.0));
            const double origin = unit * numbers.next(-1e4, 1e4);
            for (Columns* const columns : {&problem.inputs, &problem.points}) {
                for (double& value : (*columns)[k]) {
                    value = origin + unit * value;
                }
            }
        }
    }
    return problem;
}

// ---------------------------------------------------------------------------- references

/** The coordinates of a point as a model scales it. */
Vector coordinatesOf(const PredictorDescription& model, const Columns& columns, std::size_t row)
{
    Vector result;
    for (const PredictorDescription::Coordinate& coordinate : model.coordinates) {
        result.push_back((static_cast<Real>(columns[coordinate.input][row]) - coordinate.origin) /
                         coordinate.unit);
    }
    return result;
}

Vector termsOf(const PredictorDescription& model, Vector at)
{
    if (model.kind == PredictorDescription::Kind::Kriging) {
        for (Real& coordinate : at) {
            coordinate = 2.0L * coordinate - 1.0L;
        }
    }
    Vector result;
    // The constant of a polynomial is its offset, and no term.
    if (model.kind == PredictorDescription::Kind::Polynomial) {
        result.push_back(1.0L);
    }
    for (const PredictorDescription::Term& term : model.terms) {
        Real value = 1.0L;
        for (const std::size_t factor : {term.first, term.second}) {
            value *= factor == PredictorDescription::noFactor ? 1.0L : at[factor];
        }
        result.push_back(value);
    }
    return result;
}

Real dot(const Vector& left, const Vector& right)
{
    return std::inner_product(left.begin(), left.end(), right.begin(), 0.0L);
}

/** Least squares by Gram and Schmidt, each column made orthogonal three times. */
class DirectLeastSquares
{
public:
    DirectLeastSquares(Matrix rows, const Vector& output) : count(rows.front().size())
    {
        const std::size_t n = rows.size();
        triangle.assign(count, Vector(count, 0.0L));
        for (std::size_t j = 0; j < count; ++j) {
            Vector column(n);
            for (std::size_t i = 0; i < n; ++i) {
                column[i] = rows[i][j];
            }
            for (int pass = 0; pass < 3; ++pass) {
                for (std::size_t k = 0; k < j; ++k) {
                    const Real part = dot(orthonormal[k], column);
                    triangle[k][j] += part;
                    for (std::size_t i = 0; i < n; ++i) {
                        column[i] -= part * orthonormal[k][i];
                    }
                }
            }
            triangle[j][j] = std::sqrt(dot(column, column));
            for (Real& value : column) {
                value /= triangle[j][j];
            }
            orthonormal.push_back(column);
        }
        Vector residual = output;
        for (const Vector& column : orthonormal) {
            projected.push_back(dot(column, residual));
            for (std::size_t i = 0; i < n; ++i) {
                residual[i] -= projected.back() * column[i];
            }
        }
        rmse = std::sqrt(dot(residual, residual) / static_cast<Real>(n - count));
        for (std::size_t i = 0; i < n; ++i) {
            Real leverage = 0.0L;
            for (const Vector& column : orthonormal) {
                leverage += column[i] * column[i];
            }
            press += std::pow(residual[i] / (1.0L - leverage), 2);
        }
    }

    /** R'^-1 terms: its product with `projected` is the prediction, its norm the root of the
     *  leverage. */
    Vector solved(Vector terms) const
    {
        for (std::size_t j = 0; j < count; ++j) {
            for (std::size_t k = 0; k < j; ++k) {
                terms[j] -= triangle[k][j] * terms[k];
            }
            terms[j] /= triangle[j][j];
        }
        return terms;
    }

    std::size_t count;
    Matrix triangle;
    Matrix orthonormal; ///< by columns
    Vector projected;
    Real rmse = 0.0L;
    Real press = 0.0L;
};

// ---------------------------------------------------------------------------- comparison

struct Worst
{
    Real deviation = 0.0L;
    std::uint64_t problem = 0;
    std::size_t compared = 0;
};

/**
 * What is compared, and the largest deviation that rounding explains. An interpolating model has
 * the nugget's lower bound on its diagonal, so that its matrix may have a condition of 1e14, and
 * the nugget itself shows where nearly aliased inputs are extrapolated.
 */
const std::map<std::string, Real> bounds = {{"surface: prediction", 1e-10L},
                                            {"surface: standard error", 1e-7L},
                                            {"surface: RMSE", 1e-7L},
                                            {"surface: PRESS", 1e-5L},
                                            {"Kriging: prediction", 1e-4L},
                                            {"Kriging: interpolation", 1e-2L},
                                            {"Kriging: interpolated case", 1e-3L},
                                            {"Kriging: standard error", 1e-7L},
                                            {"Kriging: log-likelihood", 1e-4L}};

class Soak
{
public:
    void run(Kind kind, std::uint64_t seed)
    {
        UniformNumbers numbers(seed);
        problem = makeProblem(kind, numbers);
        at = {kind, seed};
        const auto [low, high] = std::minmax_element(problem.output.begin(), problem.output.end());
        spread = *high - *low;
        if (spread == 0.0) {
            return;
        }
        try {
            compareSurface();
            compareKriging();
        } catch (const SurrogateModelInterface::Error& error) {
            std::printf("%s, problem %llu: %s\n", kindNames[kind],
                        static_cast<unsigned long long>(seed), error.what());
            isFaulty = true;
        }
    }

    bool print() const
    {
        bool isGood = !isFaulty;
        std::printf("%zu interpolating models are beyond extended precision and not compared\n",
                    withoutReference);
        for (const auto& [key, worst] : found) {
            const bool isBounded = worst.deviation <= bounds.at(key.second);
            std::printf("%-20s %-28s %8zu compared, worst %.1Le (problem %llu)%s\n",
                        kindNames[key.first], key.second.c_str(), worst.compared, worst.deviation,
                        static_cast<unsigned long long>(worst.problem),
                        isBounded ? "" : "  MORE THAN ROUNDING");
            isGood = isGood && isBounded;
        }
        return isGood;
    }

private:
    void note(const std::string& quantity, Real computed, Real expected, Real unit)
    {
        const Real deviation = std::fabs(computed - expected) / unit;
        Worst& worst = found[{at.first, quantity}];
        ++worst.compared;
        // Not a number counts as infinite.
        if (!(deviation <= worst.deviation)) {
            worst.deviation = std::isnan(deviation) ? INFINITY : deviation;
            worst.problem = at.second;
        }
    }

    std::vector<double> predicted(const SurrogateModelInterface& model, Columns& points) const
    {
        std::vector<double> values(points.front().size());
        std::vector<double*> outputs = {values.data()};
        model.interpolateDependentValues(pointersTo(points), {0}, outputs, values.size());
        return values;
    }

    void compareSurface()
    {
        std::vector<double*> outputs = {problem.output.data()};
        const SurrogateResponseSurfaceModel model(pointersTo(problem.inputs), outputs,
                                                  problem.output.size());
        const PredictorDescription description = model.predictorDescription(0);
        const std::size_t n = problem.output.size();
        if (description.terms.size() + 1 >= n) {
            return;
        }
        Matrix rows;
        for (std::size_t i = 0; i < n; ++i) {
            rows.push_back(termsOf(description, coordinatesOf(description, problem.inputs, i)));
        }
        const DirectLeastSquares direct(rows, {problem.output.begin(), problem.output.end()});
        const FitMetrics metrics = model.fitMetrics(0);
        // What is exact but for rounding has no relative figures.
        const bool isExact = direct.rmse < 1e-9L * spread;
        note("surface: RMSE", metrics.rmse, direct.rmse, isExact ? spread : direct.rmse);
        if (!isExact && std::isfinite(metrics.press)) {
            note("surface: PRESS", metrics.press, direct.press, direct.press);
        }
        const std::vector<double> values = predicted(model, problem.points);
        const std::vector<double> errors = model.standardErrors(
            pointersTo(problem.points), 0, FittedModel::ErrorKind::Mean, values.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const Vector solved =
                direct.solved(termsOf(description, coordinatesOf(description, problem.points, i)));
            // Far from the cases, along a direction that they hardly determine, all is large.
            const Real size = 1.0L + std::sqrt(dot(solved, solved));
            note("surface: prediction", values[i], dot(solved, direct.projected), spread * size);
            if (!isExact) {
                note("surface: standard error", errors[i],
                     direct.rmse * std::sqrt(dot(solved, solved)), direct.rmse * size);
            }
        }
    }

    void compareKriging()
    {
        std::vector<double*> outputs = {problem.output.data()};
        KrigingSurrogateModel model(pointersTo(problem.inputs), outputs,
                                    static_cast<int>(problem.output.size()), KrigingOptions());
        model.activateDependentVariables({0});
        const KrigingReport report = model.krigingReport(0);
        const PredictorDescription description = model.predictorDescription(0);
        if (description.weights.empty() || report.degreesOfFreedom == 0.0) {
            return;
        }
        // Rows with the same inputs are one case, with the mean of their outputs.
        std::map<Vector, std::vector<double>> cases;
        for (std::size_t i = 0; i < problem.output.size(); ++i) {
            cases[coordinatesOf(description, problem.inputs, i)].push_back(problem.output[i]);
        }
        Matrix points;
        Matrix trend;
        Vector output;
        std::vector<double> replicates;
        const bool isCounted =
            report.degreesOfFreedom + static_cast<double>(description.terms.size()) >
            static_cast<double>(cases.size()) + 0.5;
        for (const auto& [point, values] : cases) {
            points.push_back(point);
            trend.push_back(termsOf(description, point));
            output.push_back(std::accumulate(values.begin(), values.end(), 0.0L) /
                             static_cast<Real>(values.size()));
            replicates.push_back(isCounted ? static_cast<double>(values.size()) : 1.0);
        }
        const bool interpolates = report.noiseDeviation == 0.0;
        const DirectKriging direct(points, trend, output, description.lengths,
                                   interpolates ? 0.0 : report.nugget, replicates);
        if (interpolates) {
            Columns inputs = problem.inputs;
            const std::vector<double> values = predicted(model, inputs);
            for (std::size_t i = 0; i < values.size() && cases.size() == values.size(); ++i) {
                note("Kriging: interpolated case", values[i], problem.output[i], spread);
            }
            // Without a nugget the matrix may be singular in extended precision, too.
            for (std::size_t i = 0; i < points.size(); ++i) {
                if (!(std::fabs(direct.predict(points[i], trend[i]) - output[i]) <
                      1e-9L * spread)) {
                    ++withoutReference;
                    return;
                }
            }
        } else if (cases.size() == problem.output.size()) {
            note("Kriging: log-likelihood", report.logLikelihood, direct.logLikelihood,
                 report.degreesOfFreedom);
        }
        const std::vector<double> values = predicted(model, problem.points);
        const std::vector<double> errors = model.standardErrors(
            pointersTo(problem.points), 0, FittedModel::ErrorKind::Mean, values.size());
        const Real deviation = std::sqrt(static_cast<Real>(report.processVariance));
        for (std::size_t i = 0; i < values.size(); ++i) {
            const Vector point = coordinatesOf(description, problem.points, i);
            const Vector terms = termsOf(description, point);
            note(interpolates ? "Kriging: interpolation" : "Kriging: prediction", values[i],
                 direct.predict(point, terms), spread);
            if (!interpolates) {
                const Real variance = direct.relativeVariance(point, terms);
                note("Kriging: standard error", errors[i], deviation * std::sqrt(variance),
                     deviation);
            }
        }
    }

    Problem problem;
    std::pair<Kind, std::uint64_t> at;
    double spread = 0.0;
    bool isFaulty = false;
    std::size_t withoutReference = 0;
    std::map<std::pair<Kind, std::string>, Worst> found;
};

} // namespace

int main(int count, char** arguments)
{
    double seconds = 0.0;
    std::uint64_t problems = 50;
    std::uint64_t seed = 1;
    for (int i = 1; i + 1 < count; i += 2) {
        const double value = std::atof(arguments[i + 1]);
        if (std::strcmp(arguments[i], "--seconds") == 0) {
            seconds = value;
        } else if (std::strcmp(arguments[i], "--problems") == 0) {
            problems = static_cast<std::uint64_t>(value);
        } else {
            seed = static_cast<std::uint64_t>(value);
        }
    }
    const auto begin = std::chrono::steady_clock::now();
    const auto elapsed = [&] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    Soak soak;
    std::uint64_t done = 0;
    for (; done < problems || elapsed() < seconds; ++done) {
        soak.run(static_cast<Kind>(done % kinds), seed + done);
    }
    std::printf("%llu problems from seed %llu in %.0f s\n", static_cast<unsigned long long>(done),
                static_cast<unsigned long long>(seed), elapsed());
    return soak.print() ? 0 : 1;
}
