#pragma once

#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/cases/KrigingData.h>

#include "UniformNumbers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <numeric>
#include <vector>

using Columns = std::vector<std::vector<double>>;

/** One point in each of `count` slices of each input; over [0, 1). */
inline Columns latinHypercube(std::size_t count, std::size_t inputs, std::uint64_t seed)
{
    UniformNumbers numbers(seed);
    Columns columns(inputs, std::vector<double>(count));
    for (std::vector<double>& column : columns) {
        std::vector<std::size_t> slices(count);
        std::iota(slices.begin(), slices.end(), std::size_t{0});
        for (std::size_t i = count; i-- > 1;) {
            std::swap(slices[i], slices[numbers.generator() % (i + 1)]);
        }
        for (std::size_t i = 0; i < count; ++i) {
            column[i] =
                (static_cast<double>(slices[i]) + numbers.next()) / static_cast<double>(count);
        }
    }
    return columns;
}

using Function = std::function<double(const std::vector<double>&)>;

inline std::vector<double> valuesOf(const Function& function, const Columns& columns)
{
    std::vector<double> result;
    std::vector<double> point(columns.size());
    for (std::size_t i = 0; i < columns.front().size(); ++i) {
        for (std::size_t k = 0; k < columns.size(); ++k) {
            point[k] = columns[k][i];
        }
        result.push_back(function(point));
    }
    return result;
}

/** The cases of a likelihood with a constant trend. */
inline std::shared_ptr<KrigingData> dataOf(const Columns& inputs, const std::vector<double>& output)
{
    auto data = std::make_shared<KrigingData>();
    data->cases = output.size();
    data->inputs = inputs.size();
    data->terms = 1;
    for (const std::vector<double>& column : inputs) {
        data->coordinates.insert(data->coordinates.end(), column.begin(), column.end());
    }
    data->trend.assign(data->cases, 1.0);
    data->output = output;
    data->replicates.assign(data->cases, 1.0);
    data->withinSquares.assign(data->cases, 0.0);
    return data;
}

/** A model with the options that the application passes, where a test does not say others. */
struct KrigingArguments : KrigingOptions
{
    KrigingSurrogateModel model(Columns inputs, Columns outputs) const
    {
        const int rows = static_cast<int>((inputs.empty() ? outputs : inputs).front().size());
        return KrigingSurrogateModel(pointersTo(inputs), pointersTo(outputs), rows, *this);
    }
};

inline std::vector<double> predictions(const KrigingSurrogateModel& model, Columns points,
                                       int offset = 0)
{
    Columns values(1, std::vector<double>(points.front().size()));
    std::vector<double*> outputs = pointersTo(values);
    model.interpolateDependentValues(pointersTo(points), {offset}, outputs, values[0].size());
    return values[0];
}

/** Root mean square difference, relative to the standard deviation of what is expected. */
inline double relativeError(const std::vector<double>& found, const std::vector<double>& expected)
{
    const auto n = static_cast<double>(expected.size());
    const double mean = std::accumulate(expected.begin(), expected.end(), 0.0) / n;
    double errors = 0.0;
    double deviations = 0.0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        errors += (found[i] - expected[i]) * (found[i] - expected[i]);
        deviations += (expected[i] - mean) * (expected[i] - mean);
    }
    return std::sqrt(errors / deviations);
}

/**
 * Kriging by its definition, in extended precision and without anything clever: the whole matrix
 * of all rows, Gaussian elimination. What the library's results are checked against.
 */
class DirectKriging
{
public:
    using Real = long double;
    using Vector = std::vector<Real>;
    using Matrix = std::vector<Vector>;

    /** @param points, trend, replicates one row or number per case; no replicates: 1. */
    DirectKriging(Matrix points, const Matrix& trend, Vector output, std::vector<double> lengths,
                  double nugget, std::vector<double> replicates = {})
        : points(std::move(points)), trend(trend), lengths(std::move(lengths))
    {
        replicates.resize(output.size(), 1.0);
        const std::size_t n = output.size();
        const std::size_t p = trend.front().size();
        Matrix r(n, Vector(n));
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < n; ++j) {
                r[i][j] = correlation(this->points[i], this->points[j]);
            }
            r[i][i] += nugget / static_cast<Real>(replicates[i]);
        }
        correlations = r;
        // Right-hand sides: the trend's columns, then the output.
        Matrix right(n);
        for (std::size_t i = 0; i < n; ++i) {
            right[i] = trend[i];
            right[i].push_back(output[i]);
        }
        logDeterminant = eliminate(r, right);

        Matrix normal(p, Vector(p, 0.0L));
        Matrix normalRight(p, Vector(1, 0.0L));
        Matrix plain(p, Vector(p, 0.0L)); // F' F of the rows
        for (std::size_t a = 0; a < p; ++a) {
            for (std::size_t i = 0; i < n; ++i) {
                for (std::size_t b = 0; b < p; ++b) {
                    normal[a][b] += trend[i][a] * right[i][b];
                    plain[a][b] += static_cast<Real>(replicates[i]) * trend[i][a] * trend[i][b];
                }
                normalRight[a][0] += trend[i][a] * right[i][p];
            }
        }
        const Real logWeighted = eliminate(normal, normalRight);
        Matrix none(p, Vector(1, 0.0L));
        const Real logPlain = eliminate(plain, none);
        variance = 0.0L;
        for (std::size_t a = 0; a < p; ++a) {
            coefficients.push_back(normalRight[a][0]);
        }
        for (std::size_t i = 0; i < n; ++i) {
            Real weight = right[i][p];
            Real residual = output[i];
            for (std::size_t a = 0; a < p; ++a) {
                weight -= right[i][a] * coefficients[a];
                residual -= trend[i][a] * coefficients[a];
            }
            weights.push_back(weight);
            variance += residual * weight / static_cast<Real>(n - p);
        }
        const Real twoPi = 2.0L * std::acos(-1.0L);
        logLikelihood = -0.5L * (static_cast<Real>(n - p) * (std::log(twoPi * variance) + 1.0L) +
                                 logDeterminant + logWeighted - logPlain);
    }

    Real predict(const Vector& point, const Vector& trendTerms) const
    {
        Real value = 0.0L;
        for (std::size_t a = 0; a < coefficients.size(); ++a) {
            value += coefficients[a] * trendTerms[a];
        }
        for (std::size_t i = 0; i < points.size(); ++i) {
            value += weights[i] * correlation(point, points[i]);
        }
        return value;
    }

    /** Of the mean at a point, over the process variance: 1 - (r, f)' [R F; F' 0]^-1 (r, f), the
     *  Kriging system with Lagrange multipliers. */
    Real relativeVariance(const Vector& point, const Vector& trendTerms) const
    {
        return 1.0L - quadraticForm(system(), rightHandSide(point, trendTerms));
    }

    /** The same where the cases have no noise although the mean is that with the nugget: 1 - 2 r' w
     *  + w' C w with the weights w of the cases. */
    Real errorWithoutNoise(const Vector& point, const Vector& trendTerms) const
    {
        const std::size_t n = points.size();
        Matrix matrix = system();
        Matrix solution;
        for (const Real value : rightHandSide(point, trendTerms)) {
            solution.push_back({value});
        }
        eliminate(matrix, solution);
        Real error = 1.0L;
        for (std::size_t i = 0; i < n; ++i) {
            error -= 2.0L * solution[i][0] * correlation(point, points[i]);
            for (std::size_t j = 0; j < n; ++j) {
                error += solution[i][0] * solution[j][0] * correlation(points[i], points[j]);
            }
        }
        return error;
    }

    /** right' matrix^-1 right */
    static Real quadraticForm(Matrix matrix, const Vector& right)
    {
        Matrix solution;
        for (const Real value : right) {
            solution.push_back({value});
        }
        eliminate(matrix, solution);
        Real sum = 0.0L;
        for (std::size_t i = 0; i < right.size(); ++i) {
            sum += right[i] * solution[i][0];
        }
        return sum;
    }

    Real correlation(const Vector& a, const Vector& b) const
    {
        Real product = 1.0L;
        for (std::size_t k = 0; k < a.size(); ++k) {
            const Real z = std::sqrt(5.0L) * std::fabs(a[k] - b[k]) / lengths[k];
            product *= (1.0L + z + z * z / 3.0L) * std::exp(-z);
        }
        return product;
    }

    Vector coefficients;
    Vector weights;
    Real variance = 0.0L;
    Real logDeterminant = 0.0L;
    Real logLikelihood = 0.0L;

private:
    /** [R F; F' 0] */
    Matrix system() const
    {
        const std::size_t n = points.size();
        const std::size_t p = trend.front().size();
        Matrix result = correlations;
        for (std::size_t i = 0; i < n; ++i) {
            result[i].insert(result[i].end(), trend[i].begin(), trend[i].end());
        }
        for (std::size_t t = 0; t < p; ++t) {
            result.emplace_back(n + p, 0.0L);
            for (std::size_t i = 0; i < n; ++i) {
                result.back()[i] = trend[i][t];
            }
        }
        return result;
    }

    /** (r, f) */
    Vector rightHandSide(const Vector& point, const Vector& trendTerms) const
    {
        Vector result;
        for (const Vector& one : points) {
            result.push_back(correlation(point, one));
        }
        result.insert(result.end(), trendTerms.begin(), trendTerms.end());
        return result;
    }

    /** Solves in place; returns the logarithm of the determinant's magnitude. */
    static Real eliminate(Matrix& matrix, Matrix& right)
    {
        const std::size_t n = matrix.size();
        Real logDeterminant = 0.0L;
        for (std::size_t j = 0; j < n; ++j) {
            std::size_t pivot = j;
            for (std::size_t i = j + 1; i < n; ++i) {
                pivot = std::fabs(matrix[i][j]) > std::fabs(matrix[pivot][j]) ? i : pivot;
            }
            std::swap(matrix[j], matrix[pivot]);
            std::swap(right[j], right[pivot]);
            logDeterminant += std::log(std::fabs(matrix[j][j]));
            for (std::size_t i = 0; i < n; ++i) {
                if (i == j) {
                    continue;
                }
                const Real factor = matrix[i][j] / matrix[j][j];
                for (std::size_t k = j; k < n; ++k) {
                    matrix[i][k] -= factor * matrix[j][k];
                }
                for (std::size_t k = 0; k < right[i].size(); ++k) {
                    right[i][k] -= factor * right[j][k];
                }
            }
        }
        for (std::size_t i = 0; i < n; ++i) {
            for (Real& value : right[i]) {
                value /= matrix[i][i];
            }
        }
        return logDeterminant;
    }

    Matrix points;
    Matrix trend;
    Matrix correlations; // with the nugget
    std::vector<double> lengths;
};
