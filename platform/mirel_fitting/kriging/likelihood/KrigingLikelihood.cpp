#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>
#include <mirel_fitting/machine/AlignedBuffer.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>
#include <mirel_fitting/numerics/BlockedCholesky.h>
#include <mirel_fitting/numerics/OrthonormalColumns.h>

#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace {

const double twoPi = 2.0 * std::acos(-1.0);
// Columns of a large matrix between two reports of progress: a fraction of a tenth of a second.
constexpr std::size_t columnsAtOnce = 512;

constexpr double notFactorised = -std::numeric_limits<double>::infinity();

/** Sums over the columns of the inverse, which are visited block by block. */
struct DerivativeTotals
{
    std::vector<double> sums;     ///< one per input
    std::vector<double> products; ///< of the derivatives of R with alpha, one column per input
    std::vector<double> diagonal; ///< of the inverse
};

class DerivativeVisitor : public BlockedCholesky::Visitor
{
public:
    /** @param alpha MaternCorrelation::productStride() elements. */
    DerivativeVisitor(const MaternCorrelation& correlation, const double* correlations,
                      const std::vector<double>& alpha, double variance, DerivativeTotals& totals)
        : correlation(correlation), correlations(correlations), alpha(alpha),
          factor(1.0 / variance), totals(totals)
    {}

    void visit(std::size_t first, std::size_t columns, const double* block,
               std::size_t stride) override
    {
        part.sums.assign(totals.sums.size(), 0.0);
        part.products.assign(totals.products.size(), 0.0);
        correlation.addDerivatives(first, first + columns, correlations, block, stride,
                                   alpha.data(), factor, part.sums.data(), part.products.data());
        part.diagonal.resize(columns);
        for (std::size_t j = 0; j < columns; ++j) {
            part.diagonal[j] = block[j * stride + j];
        }
    }

    void handOver() override
    {
        add(part.sums, totals.sums);
        add(part.products, totals.products);
        totals.diagonal.insert(totals.diagonal.end(), part.diagonal.begin(), part.diagonal.end());
    }

private:
    static void add(const std::vector<double>& from, std::vector<double>& to)
    {
        for (std::size_t i = 0; i < to.size(); ++i) {
            to[i] += from[i];
        }
    }

    const MaternCorrelation& correlation;
    const double* correlations;
    const std::vector<double>& alpha;
    double factor;
    DerivativeTotals& totals;
    DerivativeTotals part;
};

class DiagonalOfInverse : public BlockedCholesky::Visitor
{
public:
    explicit DiagonalOfInverse(std::vector<double>& diagonal) : diagonal(diagonal) {}

    void visit(std::size_t /*first*/, std::size_t columns, const double* block,
               std::size_t stride) override
    {
        elements.resize(columns);
        for (std::size_t j = 0; j < columns; ++j) {
            elements[j] = block[j * stride + j];
        }
    }

    void handOver() override { diagonal.insert(diagonal.end(), elements.begin(), elements.end()); }

private:
    std::vector<double>& diagonal;
    std::vector<double> elements;
};

} // namespace

class KrigingLikelihood::Impl
{
public:
    explicit Impl(std::shared_ptr<const KrigingData> source)
        : data(std::move(source)), n(data->cases), p(data->terms),
          correlation(n, data->inputs, data->coordinates.data()),
          correlations(AlignedBuffer::uninitialised(n * n)), cholesky(n, threadCount())
    {
        for (std::size_t i = 0; i < n; ++i) {
            rowCount += data->replicates[i];
            logReplicates += std::log(data->replicates[i]);
            withinSquares += data->withinSquares[i];
        }
    }

    bool factorise();
    bool estimateTrend();
    double solve(std::vector<double>& right, std::vector<double>& coefficients) const;
    std::vector<double> residuals() const;
    void subtractCorrelated(std::vector<double>& outputs) const;
    double normOfInverse() const;
    double logLikelihood();
    void differentiate();
    std::vector<double> derivativesTimesAlpha();
    void whitenAndProject(std::vector<double>& columns, std::size_t count) const;

    std::shared_ptr<const KrigingData> data;
    std::size_t n;
    std::size_t p;
    double rowCount = 0.0;
    double logReplicates = 0.0;
    double withinSquares = 0.0;

    MaternCorrelation correlation;
    AlignedBuffer correlations; // lower triangle of C
    BlockedCholesky cholesky;   // L of R = L L'

    double nugget = 0.0;
    double logDeterminant = 0.0;
    double variance = 0.0;
    OrthonormalColumns whitenedTrend{n, p}; // L^-1 F = Q T
    std::vector<double> beta;
    std::vector<double> alpha;
    std::vector<double> refinedAlpha;
    bool isDifferentiated = false;
    DerivativeTotals derivatives;
};

bool KrigingLikelihood::Impl::factorise()
{
    double* matrix = cholesky.values();
    const auto order = static_cast<double>(n);
    cholesky.forColumns(order * order, [&](std::size_t first, std::size_t last) {
        correlation.fillLower(first, last, correlations.data());
        for (std::size_t j = first; j < last; ++j) {
            const std::size_t diagonal = j * n + j;
            std::copy_n(correlations.data() + diagonal, n - j, matrix + diagonal);
            matrix[diagonal] += nugget / data->replicates[j];
        }
    });
    if (!cholesky.factorise()) {
        return false;
    }
    logDeterminant = 0.0;
    for (std::size_t j = 0; j < n; ++j) {
        logDeterminant += 2.0 * std::log(matrix[j * n + j]);
    }
    return std::isfinite(logDeterminant);
}

bool KrigingLikelihood::Impl::estimateTrend()
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
    variance = solve(alpha, beta);
    if (withinSquares > 0.0) {
        variance += withinSquares / nugget;
    }
    variance /= rowCount;
    refinedAlpha = alpha;
    return variance > 0.0 && std::isfinite(variance);
}

/**
 * Generalised least squares: `right` becomes R^-1 r, with the residual r of the trend.
 * @return r' R^-1 r.
 */
double KrigingLikelihood::Impl::solve(std::vector<double>& right,
                                      std::vector<double>& coefficients) const
{
    const int order = static_cast<int>(n);
    cholesky.solveLower(right.data(), 1);
    coefficients = whitenedTrend.solve(right.data());
    const double squares = cblas_ddot(order, right.data(), 1, right.data(), 1);
    cholesky.solveTransposed(right.data(), 1);
    return squares;
}

/** The outputs minus trend and correlated part, without nugget. */
std::vector<double> KrigingLikelihood::Impl::residuals() const
{
    const int order = static_cast<int>(n);
    std::vector<double> result = data->output;
    cblas_dgemv(CblasColMajor, CblasNoTrans, order, static_cast<int>(p), -1.0, data->trend.data(),
                order, beta.data(), 1, 1.0, result.data(), 1);
    subtractCorrelated(result);
    return result;
}

/** outputs -= C refinedAlpha, a block of columns at a time. */
void KrigingLikelihood::Impl::subtractCorrelated(std::vector<double>& outputs) const
{
    const int stride = static_cast<int>(n);
    for (std::size_t first = 0; first < n; first += columnsAtOnce) {
        const std::size_t width = std::min(columnsAtOnce, n - first);
        const std::size_t last = first + width;
        const int columns = static_cast<int>(width);
        const int below = static_cast<int>(n - last);
        const double* corner = correlations.data() + first * n + first;
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

/** Higham's estimate in the 1-norm. */
double KrigingLikelihood::Impl::normOfInverse() const
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

double KrigingLikelihood::Impl::logLikelihood()
{
    double determinant = logDeterminant;
    const double repeated = rowCount - static_cast<double>(n);
    if (repeated > 0.0) {
        determinant += repeated * std::log(nugget) + logReplicates;
    }
    return -0.5 * (rowCount * std::log(twoPi * variance) + determinant + rowCount);
}

/** Once for each evaluation: gradient and average information use the same derivatives. */
void KrigingLikelihood::Impl::differentiate()
{
    if (isDifferentiated) {
        return;
    }
    const std::size_t stride = correlation.productStride();
    std::vector<double> vector(stride, 0.0);
    std::copy(alpha.begin(), alpha.end(), vector.begin());
    derivatives.sums.assign(data->inputs, 0.0);
    derivatives.products.assign(stride * data->inputs, 0.0);
    derivatives.diagonal.clear();
    cholesky.visitInverse([&] {
        return std::make_unique<DerivativeVisitor>(correlation, correlations.data(), vector,
                                                   variance, derivatives);
    });
    isDifferentiated = true;
}

/** Column k: the derivative of R by parameter k, lengths and last the nugget, times R^-1 r. */
std::vector<double> KrigingLikelihood::Impl::derivativesTimesAlpha()
{
    differentiate();
    std::vector<double> columns;
    columns.reserve(n * (data->inputs + 1));
    for (std::size_t k = 0; k < data->inputs; ++k) {
        const double* column = derivatives.products.data() + k * correlation.productStride();
        columns.insert(columns.end(), column, column + n);
    }
    for (std::size_t i = 0; i < n; ++i) {
        columns.push_back(nugget / data->replicates[i] * alpha[i]);
    }
    return columns;
}

/** Whitens columns by L^-1, then projects out the trend. */
void KrigingLikelihood::Impl::whitenAndProject(std::vector<double>& columns,
                                               std::size_t count) const
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

KrigingLikelihood::KrigingLikelihood(std::shared_ptr<const KrigingData> data)
    : impl(std::make_unique<Impl>(std::move(data)))
{}

KrigingLikelihood::~KrigingLikelihood() = default;

double KrigingLikelihood::evaluate(const std::vector<double>& lengths, double nugget)
{
    const SingleThreadedBlas singleThreaded;
    impl->nugget = nugget;
    impl->isDifferentiated = false;
    impl->correlation.setLengths(lengths);
    if (!impl->factorise() || !impl->estimateTrend()) {
        return notFactorised;
    }
    const double value = impl->logLikelihood();
    return std::isfinite(value) ? value : notFactorised;
}

void KrigingLikelihood::gradient(std::vector<double>& result)
{
    const SingleThreadedBlas singleThreaded;
    impl->differentiate();
    result = impl->derivatives.sums;

    // The mean of r replicates has the nugget / r.
    double explained = impl->withinSquares > 0.0 ? impl->withinSquares / impl->nugget : 0.0;
    double trace = impl->rowCount - static_cast<double>(impl->n);
    for (std::size_t i = 0; i < impl->n; ++i) {
        const double share = impl->nugget / impl->data->replicates[i];
        explained += share * impl->alpha[i] * impl->alpha[i];
        trace += share * impl->derivatives.diagonal[i];
    }
    result.push_back(0.5 * (explained / impl->variance - trace));
}

void KrigingLikelihood::averageInformation(std::vector<double>& result)
{
    const SingleThreadedBlas singleThreaded;
    const std::size_t count = impl->data->inputs + 1;
    const int order = static_cast<int>(impl->n);
    const int columns = static_cast<int>(count);

    std::vector<double> changes = impl->derivativesTimesAlpha();
    std::vector<double> slopes(count);
    for (std::size_t k = 0; k < count; ++k) {
        slopes[k] = cblas_ddot(order, impl->alpha.data(), 1, changes.data() + k * impl->n, 1);
    }
    impl->whitenAndProject(changes, count);
    result.assign(count * count, 0.0);
    cblas_dgemm(CblasColMajor, CblasTrans, CblasNoTrans, columns, columns, order, 1.0,
                changes.data(), order, changes.data(), order, 0.0, result.data(), columns);
    if (impl->withinSquares > 0.0) {
        slopes.back() += impl->withinSquares / impl->nugget;
        result.back() += impl->withinSquares / impl->nugget;
    }

    // The variance is profiled out.
    const double squares = impl->variance * impl->rowCount;
    for (std::size_t k = 0; k < count; ++k) {
        for (std::size_t l = 0; l < count; ++l) {
            double& element = result[k * count + l];
            element = 0.5 * (element - slopes[k] * slopes[l] / squares) / impl->variance;
        }
    }
}

double KrigingLikelihood::processVariance() const
{
    return impl->variance;
}

const std::vector<double>& KrigingLikelihood::coefficients() const
{
    return impl->beta;
}

const std::vector<double>& KrigingLikelihood::weights() const
{
    return impl->refinedAlpha;
}

void KrigingLikelihood::refineWithoutNugget()
{
    constexpr int maxRounds = 20;
    constexpr double worthwhileReduction =
        0.7; // of the residual norm; a round that leaves more is the last

    const SingleThreadedBlas singleThreaded;
    const int order = static_cast<int>(impl->n);
    std::vector<double> residuals = impl->residuals();
    double left = cblas_dnrm2(order, residuals.data(), 1);
    std::vector<double> correction;
    for (int round = 0; round < maxRounds; ++round) {
        FitProgress::advance();
        const std::vector<double> beta = impl->beta;
        const std::vector<double> alpha = impl->refinedAlpha;
        impl->solve(residuals, correction);
        for (std::size_t t = 0; t < impl->p; ++t) {
            impl->beta[t] += correction[t];
        }
        for (std::size_t i = 0; i < impl->n; ++i) {
            impl->refinedAlpha[i] += residuals[i];
        }
        residuals = impl->residuals();
        const double now = cblas_dnrm2(order, residuals.data(), 1);
        if (!(now < left)) {
            impl->beta = beta;
            impl->refinedAlpha = alpha;
            return;
        }
        if (now > worthwhileReduction * left) {
            return;
        }
        left = now;
    }
}

std::vector<double> KrigingLikelihood::residuals() const
{
    const SingleThreadedBlas singleThreaded;
    return impl->residuals();
}

double KrigingLikelihood::conditionEstimate() const
{
    const SingleThreadedBlas singleThreaded;
    const std::size_t n = impl->n;
    std::vector<double> sums(n); // of the magnitudes of each column; correlations are positive
    for (std::size_t j = 0; j < n; ++j) {
        if (j % columnsAtOnce == 0) {
            FitProgress::advance();
        }
        const double* column = impl->correlations.data() + j * n;
        sums[j] += 1.0 + impl->nugget / impl->data->replicates[j];
        for (std::size_t i = j + 1; i < n; ++i) {
            sums[j] += column[i];
            sums[i] += column[i];
        }
    }
    return *std::max_element(sums.begin(), sums.end()) * impl->normOfInverse();
}

std::vector<double> KrigingLikelihood::leaveOneOutResiduals(std::vector<double>* variances)
{
    // A smaller fraction of a diagonal element is its rounding error: without the case the trend is
    // not determined.
    constexpr double determined = 1e-10;

    const SingleThreadedBlas singleThreaded;
    const std::size_t n = impl->n;
    std::vector<double> projected = impl->whitenedTrend.values();
    impl->cholesky.solveTransposed(projected.data(), impl->p);
    std::vector<double> diagonals;
    impl->cholesky.visitInverse([&] { return std::make_unique<DiagonalOfInverse>(diagonals); });

    // The diagonal of Q = R^-1 - R^-1 F (F' R^-1 F)^-1 F' R^-1; Q y are the weights.
    std::vector<double> residuals(n);
    if (variances) {
        variances->assign(n, std::numeric_limits<double>::quiet_NaN());
    }
    for (std::size_t i = 0; i < n; ++i) {
        const double diagonal = diagonals[i];
        double left = diagonal;
        for (std::size_t j = 0; j < impl->p; ++j) {
            left -= projected[j * n + i] * projected[j * n + i];
        }
        const bool isDetermined = left > determined * diagonal;
        residuals[i] =
            isDetermined ? impl->alpha[i] / left : std::numeric_limits<double>::quiet_NaN();
        if (variances && isDetermined) {
            (*variances)[i] = 1.0 / left;
        }
    }
    return residuals;
}
