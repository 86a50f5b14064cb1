#include <mirel_fitting/kriging/likelihood/KrigingEquations.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace {

// Columns of a large matrix between two reports of progress: a fraction of a tenth of a second.
constexpr std::size_t columnsAtOnce = 512;

/**
 * Of P = R^-1 - G G' for each row: the diagonal element of R^-1, and the sum of the squares of all
 * elements times the noise of their columns.
 */
class LeaveOneOutVisitor : public BlockedCholesky::Visitor
{
public:
    struct Sums
    {
        std::vector<double> diagonal;
        std::vector<double> noise;
    };

    /** @param projected G by columns. @param noise one per column of P; empty: no sums. */
    LeaveOneOutVisitor(const std::vector<double>& projected, const std::vector<double>& noise,
                       Sums& whole)
        : projected(projected), noise(noise), whole(whole)
    {}

    void visit(std::size_t firstColumn, std::size_t columns, const double* block,
               std::size_t stride) override
    {
        first = firstColumn;
        part.diagonal.resize(columns);
        for (std::size_t j = 0; j < columns; ++j) {
            part.diagonal[j] = block[j * stride + j];
        }
        if (!noise.empty()) {
            project(columns, block, stride);
            sum(columns);
        }
    }

    void handOver() override
    {
        std::copy(part.diagonal.begin(), part.diagonal.end(),
                  whole.diagonal.begin() + static_cast<std::ptrdiff_t>(first));
        for (std::size_t i = 0; i < part.noise.size(); ++i) {
            whole.noise[first + i] += part.noise[i];
        }
    }

private:
    void project(std::size_t columns, const double* block, std::size_t stride)
    {
        const std::size_t n = whole.diagonal.size();
        const std::size_t rows = n - first;
        elements.resize(rows * columns);
        for (std::size_t j = 0; j < columns; ++j) {
            std::copy(block + j * stride + j, block + j * stride + rows,
                      elements.begin() + static_cast<std::ptrdiff_t>(j * rows + j));
        }
        KrigingEquations::projectTrendOut(projected, n, first, columns, elements.data(), rows);
    }

    /** The block is of the lower triangle: each of its elements stands for two. */
    void sum(std::size_t columns)
    {
        const std::size_t rows = whole.diagonal.size() - first;
        part.noise.assign(rows, 0.0);
        for (std::size_t j = 0; j < columns; ++j) {
            const double* column = elements.data() + j * rows;
            part.noise[j] += column[j] * column[j] * noise[first + j];
            for (std::size_t i = j + 1; i < rows; ++i) {
                const double square = column[i] * column[i];
                part.noise[i] += square * noise[first + j];
                part.noise[j] += square * noise[first + i];
            }
        }
    }

    const std::vector<double>& projected;
    const std::vector<double>& noise;
    Sums& whole;
    std::size_t first = 0;
    Sums part;
    std::vector<double> elements; // of P, rows from `first` on
};

} // namespace

KrigingEquations::KrigingEquations(std::shared_ptr<const KrigingData> source)
    : data(std::move(source)), n(data->cases), p(data->terms),
      matern(n, data->inputs, data->coordinates.data()),
      correlationMatrix(AlignedBuffer::uninitialised(n * n)), cholesky(n, threadCount()),
      whitenedTrend(n, p)
{}

bool KrigingEquations::solve(const std::vector<double>& lengths, double nugget)
{
    const SingleThreadedBlas singleThreaded;
    diagonalNugget = nugget;
    matern.setLengths(lengths);
    return factorise() && estimateTrend();
}

double KrigingEquations::logTrendDeterminant() const
{
    return whitenedTrend.logDeterminant();
}

bool KrigingEquations::factorise()
{
    double* matrix = cholesky.values();
    const auto order = static_cast<double>(n);
    cholesky.forColumns(order * order, [&](std::size_t first, std::size_t last) {
        matern.fillLower(first, last, correlationMatrix.data());
        for (std::size_t j = first; j < last; ++j) {
            const std::size_t diagonal = j * n + j;
            std::copy_n(correlationMatrix.data() + diagonal, n - j, matrix + diagonal);
            matrix[diagonal] += diagonalNugget / data->replicates[j];
        }
    });
    if (!cholesky.factorise()) {
        return false;
    }
    logDeterminantOfR = 0.0;
    for (std::size_t j = 0; j < n; ++j) {
        logDeterminantOfR += 2.0 * std::log(matrix[j * n + j]);
    }
    return std::isfinite(logDeterminantOfR);
}

bool KrigingEquations::estimateTrend()
{
    std::vector<double> columns = data->trend;
    cholesky.solveLower(columns.data(), p);
    whitenedTrend = OrthonormalColumns(n, p);
    for (std::size_t j = 0; j < p; ++j) {
        if (!whitenedTrend.append(columns.data() + j * n)) {
            return false;
        }
    }

    alpha = data->output;
    weightedSquares = solveLeastSquares(alpha, beta);
    refinedAlpha = alpha;
    return std::isfinite(weightedSquares);
}

/**
 * Generalised least squares: `right` becomes R^-1 r, with the residual r of the trend.
 * @return r' R^-1 r.
 */
double KrigingEquations::solveLeastSquares(std::vector<double>& right,
                                           std::vector<double>& coefficients) const
{
    const int order = static_cast<int>(n);
    cholesky.solveLower(right.data(), 1);
    coefficients = whitenedTrend.solve(right.data());
    const double squares = cblas_ddot(order, right.data(), 1, right.data(), 1);
    cholesky.solveTransposed(right.data(), 1);
    return squares;
}

/** Higham's estimate in the 1-norm. */
double KrigingEquations::normOfInverse() const
{
    std::vector<double> probe(n);
    std::vector<double> work(n);
    std::vector<lapack_int> signs(n);
    std::array<lapack_int, 3> memory{};
    double estimate = 0.0;
    lapack_int request = 0; // not 0: multiply the probe by R^-1, or its transpose, the same
    for (;;) {
        LAPACKE_dlacn2_work(static_cast<lapack_int>(n), work.data(), probe.data(), signs.data(),
                            &estimate, &request, memory.data());
        if (request == 0) {
            return estimate;
        }
        cholesky.solveLower(probe.data(), 1);
        cholesky.solveTransposed(probe.data(), 1);
    }
}

/** The lengths of the rows of T^-1. */
std::vector<double> KrigingEquations::coefficientErrors() const
{
    const auto terms = static_cast<lapack_int>(p);
    std::vector<double> inverse = whitenedTrend.triangle();
    LAPACKE_dtrtri_work(LAPACK_COL_MAJOR, 'U', 'N', terms, inverse.data(), terms);
    std::vector<double> errors(p);
    for (std::size_t t = 0; t < p; ++t) {
        errors[t] = cblas_dnrm2(static_cast<int>(p - t), inverse.data() + t * p + t, terms);
    }
    return errors;
}

/** Whitens columns by L^-1, then projects out the trend. */
void KrigingEquations::whitenAndProject(std::vector<double>& columns, std::size_t count) const
{
    const int order = static_cast<int>(n);
    const int width = static_cast<int>(count);
    const int terms = static_cast<int>(p);
    cholesky.solveLower(columns.data(), count);
    std::vector<double> parts(p * count);
    cblas_dgemm(CblasColMajor, CblasTrans, CblasNoTrans, terms, width, order, 1.0,
                whitenedTrend.values().data(), order, columns.data(), order, 0.0, parts.data(),
                terms);
    cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, order, width, terms, -1.0,
                whitenedTrend.values().data(), order, parts.data(), terms, 1.0, columns.data(),
                order);
}

void KrigingEquations::refineWithoutNugget()
{
    constexpr int maxRounds = 20;
    constexpr double worthwhileReduction =
        0.7; // of the residual norm; a round that leaves more is the last

    const SingleThreadedBlas singleThreaded;
    const int order = static_cast<int>(n);
    std::vector<double> rest = residuals();
    double left = cblas_dnrm2(order, rest.data(), 1);
    std::vector<double> correction;
    for (int round = 0; round < maxRounds; ++round) {
        FitProgress::advance();
        const std::vector<double> lastCoefficients = beta;
        const std::vector<double> lastWeights = refinedAlpha;
        solveLeastSquares(rest, correction);
        for (std::size_t t = 0; t < p; ++t) {
            beta[t] += correction[t];
        }
        for (std::size_t i = 0; i < n; ++i) {
            refinedAlpha[i] += rest[i];
        }
        rest = residuals();
        const double now = cblas_dnrm2(order, rest.data(), 1);
        if (!(now < left)) {
            beta = lastCoefficients;
            refinedAlpha = lastWeights;
            return;
        }
        if (now > worthwhileReduction * left) {
            return;
        }
        left = now;
    }
}

std::vector<double> KrigingEquations::residuals() const
{
    const SingleThreadedBlas singleThreaded;
    const int order = static_cast<int>(n);
    std::vector<double> result = data->output;
    cblas_dgemv(CblasColMajor, CblasNoTrans, order, static_cast<int>(p), -1.0, data->trend.data(),
                order, beta.data(), 1, 1.0, result.data(), 1);
    subtractCorrelated(result);
    return result;
}

/** outputs -= C refinedAlpha, a block of columns at a time. */
void KrigingEquations::subtractCorrelated(std::vector<double>& outputs) const
{
    const int stride = static_cast<int>(n);
    for (std::size_t first = 0; first < n; first += columnsAtOnce) {
        const std::size_t width = std::min(columnsAtOnce, n - first);
        const std::size_t last = first + width;
        const int columns = static_cast<int>(width);
        const int below = static_cast<int>(n - last);
        const double* corner = correlationMatrix.data() + first * n + first;
        cblas_dsymv(CblasColMajor, CblasLower, columns, -1.0, corner, stride,
                    refinedAlpha.data() + first, 1, 1.0, outputs.data() + first, 1);
        if (below > 0) {
            cblas_dgemv(CblasColMajor, CblasNoTrans, below, columns, -1.0, corner + width, stride,
                        refinedAlpha.data() + first, 1, 1.0, outputs.data() + last, 1);
            cblas_dgemv(CblasColMajor, CblasTrans, below, columns, -1.0, corner + width, stride,
                        refinedAlpha.data() + last, 1, 1.0, outputs.data() + first, 1);
        }
        FitProgress::advance();
    }
}

std::vector<double> KrigingEquations::trendInInverse() const
{
    std::vector<double> columns = whitenedTrend.values();
    cholesky.solveTransposed(columns.data(), p);
    return columns;
}

void KrigingEquations::projectTrendOut(const std::vector<double>& trend, std::size_t rows,
                                       std::size_t first, std::size_t columns, double* block,
                                       std::size_t stride)
{
    const int order = static_cast<int>(rows);
    cblas_dgemm(CblasColMajor, CblasNoTrans, CblasTrans, static_cast<int>(rows - first),
                static_cast<int>(columns), static_cast<int>(trend.size() / rows), -1.0,
                trend.data() + first, order, trend.data() + first, order, 1.0, block,
                static_cast<int>(stride));
}

double KrigingEquations::conditionEstimate() const
{
    const SingleThreadedBlas singleThreaded;
    std::vector<double> sums(n); // of the magnitudes of each column; correlations are positive
    for (std::size_t j = 0; j < n; ++j) {
        if (j % columnsAtOnce == 0) {
            FitProgress::advance();
        }
        const double* column = correlationMatrix.data() + j * n;
        sums[j] += 1.0 + diagonalNugget / data->replicates[j];
        for (std::size_t i = j + 1; i < n; ++i) {
            sums[j] += column[i];
            sums[i] += column[i];
        }
    }
    return *std::max_element(sums.begin(), sums.end()) * normOfInverse();
}

bool KrigingEquations::areCasesFarApart() const
{
    const double z = std::sqrt(5.0);
    const double ofOneLength = (1.0 + z + z * z / 3.0) * std::exp(-z);

    std::vector<double> largest(n, 0.0);
    for (std::size_t j = 0; j < n; ++j) {
        if (j % columnsAtOnce == 0) {
            FitProgress::advance();
        }
        const double* column = correlationMatrix.data() + j * n;
        for (std::size_t i = j + 1; i < n; ++i) {
            largest[i] = std::max(largest[i], column[i]);
            largest[j] = std::max(largest[j], column[i]);
        }
    }
    const auto apart = std::count_if(largest.begin(), largest.end(),
                                     [&](double correlation) { return correlation < ofOneLength; });
    return 2 * static_cast<std::size_t>(apart) > n;
}

KrigingEquations::LeftOut KrigingEquations::leaveOneOut(bool isNoise)
{
    // A smaller fraction of a diagonal element is its rounding error: without the case the trend is
    // not determined.
    constexpr double determined = 1e-10;
    const SingleThreadedBlas singleThreaded;
    const std::vector<double> projected = trendInInverse();
    std::vector<double> noise;
    for (std::size_t i = 0; !isNoise && i < n; ++i) {
        noise.push_back(diagonalNugget / data->replicates[i]);
    }
    LeaveOneOutVisitor::Sums sums{std::vector<double>(n), std::vector<double>(n)};
    cholesky.visitInverse(
        [&] { return std::make_unique<LeaveOneOutVisitor>(projected, noise, sums); });

    // The diagonal of P = R^-1 - R^-1 F (F' R^-1 F)^-1 F' R^-1; P y are the weights, and -P_ij /
    // P_ii those of the cases j in the prediction of case i by the others.
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    LeftOut result{std::vector<double>(n, none), std::vector<double>(n, none)};
    for (std::size_t i = 0; i < n; ++i) {
        double left = sums.diagonal[i];
        for (std::size_t j = 0; j < p; ++j) {
            left -= projected[j * n + i] * projected[j * n + i];
        }
        if (left > determined * sums.diagonal[i]) {
            result.residuals[i] = alpha[i] / left;
            result.variances[i] =
                std::max(1.0 / left - sums.noise[i] / (left * left), smallestVariance);
        }
    }
    return result;
}
