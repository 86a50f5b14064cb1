#include <mirel_fitting/KrigingLikelihood.h>

#include <mirel_fitting/MaternCorrelation.h>
#include <mirel_fitting/SingleThreadedBlas.h>

#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

const double twoPi = 2.0 * std::acos(-1.0);
constexpr double impossible = -std::numeric_limits<double>::infinity();

} // namespace

class KrigingLikelihood::Impl
{
public:
    explicit Impl(std::shared_ptr<const KrigingData> source)
        : data(std::move(source)), n(data->cases), p(data->terms),
          correlation(n, data->inputs, data->coordinates.data()), correlations(n * n), factor(n * n)
    {
        for (std::size_t i = 0; i < n; ++i) {
            rowCount += data->rows[i];
            logRows += std::log(data->rows[i]);
            scatter += data->scatter[i];
        }
    }

    bool factorise();
    bool estimateTrend();
    double solve(std::vector<double>& right, std::vector<double>& coefficients) const;
    std::vector<double> residuals() const;
    double logLikelihood();
    void invert();

    std::shared_ptr<const KrigingData> data;
    std::size_t n;
    std::size_t p;
    double rowCount = 0.0;
    double logRows = 0.0;
    double scatter = 0.0;

    MaternCorrelation correlation;
    std::vector<double> correlations; // lower triangle of C
    std::vector<double> factor;       // lower: L of R = L L', later the inverse of R
    bool isInverse = false;

    double nugget = 0.0;
    double logDeterminant = 0.0;
    double variance = 0.0;
    std::vector<double> basis;    // orthonormal: Q of L^-1 F = Q T
    std::vector<double> triangle; // T, p x p
    std::vector<double> beta;
    std::vector<double> alpha;
    std::vector<double> refinedAlpha;
};

bool KrigingLikelihood::Impl::factorise()
{
    correlation.fillLower(correlations.data());
    for (std::size_t j = 0; j < n; ++j) {
        const std::size_t diagonal = j * n + j;
        std::copy(correlations.begin() + static_cast<std::ptrdiff_t>(diagonal),
                  correlations.begin() + static_cast<std::ptrdiff_t>((j + 1) * n),
                  factor.begin() + static_cast<std::ptrdiff_t>(diagonal));
        factor[diagonal] += nugget / data->rows[j];
    }
    isInverse = false;

    const auto order = static_cast<lapack_int>(n);
    if (LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', order, factor.data(), order) != 0) {
        return false;
    }
    logDeterminant = 0.0;
    for (std::size_t j = 0; j < n; ++j) {
        logDeterminant += 2.0 * std::log(factor[j * n + j]);
    }
    return std::isfinite(logDeterminant);
}

bool KrigingLikelihood::Impl::estimateTrend()
{
    const int order = static_cast<int>(n);
    const int terms = static_cast<int>(p);
    basis = data->trend;
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, CblasNoTrans, CblasNonUnit, order, terms, 1.0,
                factor.data(), order, basis.data(), order);

    std::vector<double> reflectors(p);
    std::vector<double> work(std::max<std::size_t>(p, 1) * 64);
    const auto workSize = static_cast<lapack_int>(work.size());
    LAPACKE_dgeqrf_work(LAPACK_COL_MAJOR, order, terms, basis.data(), order, reflectors.data(),
                        work.data(), workSize);
    triangle.assign(p * p, 0.0);
    for (std::size_t j = 0; j < p; ++j) {
        for (std::size_t i = 0; i <= j; ++i) {
            triangle[j * p + i] = basis[j * n + i];
        }
        if (triangle[j * p + j] == 0.0 || !std::isfinite(triangle[j * p + j])) {
            return false;
        }
    }
    LAPACKE_dorgqr_work(LAPACK_COL_MAJOR, order, terms, terms, basis.data(), order,
                        reflectors.data(), work.data(), workSize);

    alpha = data->output;
    variance = solve(alpha, beta);
    if (scatter > 0.0) {
        variance += scatter / nugget;
    }
    variance /= rowCount;
    refinedAlpha = alpha;
    return variance > 0.0 && std::isfinite(variance);
}

/**
 * Generalised least squares: `right` becomes R^-1 times what the trend leaves of it.
 * @return the weighted square of what is left.
 */
double KrigingLikelihood::Impl::solve(std::vector<double>& right,
                                      std::vector<double>& coefficients) const
{
    const int order = static_cast<int>(n);
    const int terms = static_cast<int>(p);
    cblas_dtrsv(CblasColMajor, CblasLower, CblasNoTrans, CblasNonUnit, order, factor.data(), order,
                right.data(), 1);

    // The second round removes the rounding of the first, which is large where the trend explains
    // nearly everything.
    coefficients.assign(p, 0.0);
    std::vector<double> part(p);
    for (int round = 0; round < 2; ++round) {
        cblas_dgemv(CblasColMajor, CblasTrans, order, terms, 1.0, basis.data(), order, right.data(),
                    1, 0.0, part.data(), 1);
        cblas_dgemv(CblasColMajor, CblasNoTrans, order, terms, -1.0, basis.data(), order,
                    part.data(), 1, 1.0, right.data(), 1);
        for (std::size_t j = 0; j < p; ++j) {
            coefficients[j] += part[j];
        }
    }
    cblas_dtrsv(CblasColMajor, CblasUpper, CblasNoTrans, CblasNonUnit, terms, triangle.data(),
                terms, coefficients.data(), 1);

    const double squares = cblas_ddot(order, right.data(), 1, right.data(), 1);
    cblas_dtrsv(CblasColMajor, CblasLower, CblasTrans, CblasNonUnit, order, factor.data(), order,
                right.data(), 1);
    return squares;
}

/** The outputs minus trend and correlated part, without nugget. */
std::vector<double> KrigingLikelihood::Impl::residuals() const
{
    const int order = static_cast<int>(n);
    std::vector<double> result = data->output;
    cblas_dgemv(CblasColMajor, CblasNoTrans, order, static_cast<int>(p), -1.0, data->trend.data(),
                order, beta.data(), 1, 1.0, result.data(), 1);
    cblas_dsymv(CblasColMajor, CblasLower, order, -1.0, correlations.data(), order,
                refinedAlpha.data(), 1, 1.0, result.data(), 1);
    return result;
}

double KrigingLikelihood::Impl::logLikelihood()
{
    double determinant = logDeterminant;
    const double repeated = rowCount - static_cast<double>(n);
    if (repeated > 0.0) {
        determinant += repeated * std::log(nugget) + logRows;
    }
    return -0.5 * (rowCount * std::log(twoPi * variance) + determinant + rowCount);
}

void KrigingLikelihood::Impl::invert()
{
    if (!isInverse) {
        const auto order = static_cast<lapack_int>(n);
        LAPACKE_dpotri_work(LAPACK_COL_MAJOR, 'L', order, factor.data(), order);
        isInverse = true;
    }
}

KrigingLikelihood::KrigingLikelihood(std::shared_ptr<const KrigingData> data)
    : impl(std::make_unique<Impl>(std::move(data)))
{}

KrigingLikelihood::~KrigingLikelihood() = default;

double KrigingLikelihood::evaluate(const std::vector<double>& lengths, double nugget)
{
    const SingleThreadedBlas singleThreaded;
    impl->nugget = nugget;
    impl->correlation.setLengths(lengths);
    if (!impl->factorise() || !impl->estimateTrend()) {
        return impossible;
    }
    const double value = impl->logLikelihood();
    return std::isfinite(value) ? value : impossible;
}

void KrigingLikelihood::gradient(std::vector<double>& result)
{
    const SingleThreadedBlas singleThreaded;
    impl->invert();
    impl->correlation.weightedDerivatives(impl->correlations.data(), impl->factor.data(),
                                          impl->alpha.data(), 1.0 / impl->variance, result);

    // The rows that a case stands for share its nugget.
    double explained = impl->scatter > 0.0 ? impl->scatter / impl->nugget : 0.0;
    double trace = impl->rowCount - static_cast<double>(impl->n);
    for (std::size_t i = 0; i < impl->n; ++i) {
        const double share = impl->nugget / impl->data->rows[i];
        explained += share * impl->alpha[i] * impl->alpha[i];
        trace += share * impl->factor[i * impl->n + i];
    }
    result.push_back(0.5 * (explained / impl->variance - trace));
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
    constexpr int mostRounds = 20;
    constexpr double worthARound = 0.7; // of the residual must be left at most

    const SingleThreadedBlas singleThreaded;
    const int order = static_cast<int>(impl->n);
    std::vector<double> residuals = impl->residuals();
    double left = cblas_dnrm2(order, residuals.data(), 1);
    std::vector<double> correction;
    for (int round = 0; round < mostRounds; ++round) {
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
        if (now > worthARound * left) {
            return;
        }
        left = now;
    }
}

std::vector<double> KrigingLikelihood::leaveOneOutResiduals()
{
    // Less than this share of a diagonal element left over is its rounding error: without the case
    // the trend is not determined.
    constexpr double determined = 1e-10;

    const SingleThreadedBlas singleThreaded;
    const std::size_t n = impl->n;
    const int order = static_cast<int>(n);
    std::vector<double> projected = impl->basis;
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, CblasTrans, CblasNonUnit, order,
                static_cast<int>(impl->p), 1.0, impl->factor.data(), order, projected.data(),
                order);
    impl->invert();

    // The diagonal of Q = R^-1 - R^-1 F (F' R^-1 F)^-1 F' R^-1; Q y are the weights.
    std::vector<double> residuals(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double diagonal = impl->factor[i * n + i];
        double left = diagonal;
        for (std::size_t j = 0; j < impl->p; ++j) {
            left -= projected[j * n + i] * projected[j * n + i];
        }
        residuals[i] = left > determined * diagonal ? impl->alpha[i] / left
                                                    : std::numeric_limits<double>::quiet_NaN();
    }
    return residuals;
}
