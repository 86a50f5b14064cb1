#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <boost/math/constants/constants.hpp>
#include <cblas.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

using boost::math::double_constants::two_pi;

constexpr double notFactorised = -std::numeric_limits<double>::infinity();

/** ln det(F' F) of the rows' trend terms F. */
double logTrendDeterminant(const KrigingData& data)
{
    const SingleThreadedBlas singleThreaded;
    OrthonormalColumns columns(data.cases, data.terms);
    std::vector<double> column(data.cases);
    for (std::size_t t = 0; t < data.terms; ++t) {
        FitProgress::advance();
        for (std::size_t i = 0; i < data.cases; ++i) {
            column[i] = std::sqrt(data.replicates[i]) * data.trend[t * data.cases + i];
        }
        columns.append(column.data());
    }
    return columns.logDeterminant();
}

} // namespace

class KrigingLikelihood::DerivativeVisitor : public BlockedCholesky::Visitor
{
public:
    /** @param alpha MaternCorrelation::productStride() elements.
     *  @param trend KrigingEquations::trendInInverse(). */
    DerivativeVisitor(const KrigingEquations& equations, const std::vector<double>& alpha,
                      const std::vector<double>& trend, double variance, Derivatives& totals)
        : equations(equations), alpha(alpha), trend(trend), factor(1.0 / variance), totals(totals)
    {}

    void visit(std::size_t first, std::size_t columns, const double* block,
               std::size_t stride) override
    {
        projected.assign(block, block + stride * columns);
        KrigingEquations::projectTrendOut(trend, equations.correlation().cases(), first, columns,
                                          projected.data(), stride);
        part.sums.assign(totals.sums.size(), 0.0);
        part.products.assign(totals.products.size(), 0.0);
        equations.correlation().addDerivatives(first, first + columns, equations.correlations(),
                                               projected.data(), stride, alpha.data(), factor,
                                               part.sums.data(), part.products.data());
        part.diagonal.resize(columns);
        for (std::size_t j = 0; j < columns; ++j) {
            part.diagonal[j] = projected[j * stride + j];
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

    const KrigingEquations& equations;
    const std::vector<double>& alpha;
    const std::vector<double>& trend;
    double factor;
    std::vector<double> projected; // of P
    Derivatives& totals;
    Derivatives part;
};

KrigingLikelihood::KrigingLikelihood(std::shared_ptr<const KrigingData> source)
    : data(std::move(source)), equationsOfCases(data),
      logDeterminantOfTerms(logTrendDeterminant(*data))
{
    for (std::size_t i = 0; i < data->cases; ++i) {
        rowCount += data->replicates[i];
        logReplicates += std::log(data->replicates[i]);
        withinSquares += data->withinSquares[i];
    }
    degreesOfFreedom = rowCount - static_cast<double>(data->terms);
}

/** Of replicates about their means, weighted like the residuals of cases. */
double KrigingLikelihood::weightedWithinSquares() const
{
    return withinSquares > 0.0 ? withinSquares / equationsOfCases.nugget() : 0.0;
}

double KrigingLikelihood::logLikelihood() const
{
    double determinants = equationsOfCases.logDeterminant() +
                          equationsOfCases.logTrendDeterminant() - logDeterminantOfTerms;
    const double repeated = rowCount - static_cast<double>(data->cases);
    if (repeated > 0.0) {
        determinants += repeated * std::log(equationsOfCases.nugget()) + logReplicates;
    }
    return -0.5 * (degreesOfFreedom * (std::log(two_pi * variance) + 1.0) + determinants);
}

/** Once for each evaluation: gradient and average information use the same derivatives. */
void KrigingLikelihood::differentiate()
{
    if (isDifferentiated) {
        return;
    }
    const std::size_t stride = equationsOfCases.correlation().productStride();
    const std::vector<double>& alpha = equationsOfCases.smoothingWeights();
    std::vector<double> vector(stride, 0.0);
    std::copy(alpha.begin(), alpha.end(), vector.begin());
    const std::vector<double> trend = equationsOfCases.trendInInverse();
    derivatives.sums.assign(data->inputs, 0.0);
    derivatives.products.assign(stride * data->inputs, 0.0);
    derivatives.diagonal.clear();
    equationsOfCases.factor().visitInverse([&] {
        return std::make_unique<DerivativeVisitor>(equationsOfCases, vector, trend, variance,
                                                   derivatives);
    });
    isDifferentiated = true;
}

/** Column k: the derivative of R by parameter k, lengths and last the nugget, times R^-1 r. */
std::vector<double> KrigingLikelihood::derivativesTimesAlpha()
{
    differentiate();
    const std::vector<double>& alpha = equationsOfCases.smoothingWeights();
    const std::size_t n = data->cases;
    std::vector<double> columns;
    columns.reserve(n * (data->inputs + 1));
    for (std::size_t k = 0; k < data->inputs; ++k) {
        const double* column =
            derivatives.products.data() + k * equationsOfCases.correlation().productStride();
        columns.insert(columns.end(), column, column + n);
    }
    for (std::size_t i = 0; i < n; ++i) {
        columns.push_back(equationsOfCases.nugget() / data->replicates[i] * alpha[i]);
    }
    return columns;
}

double KrigingLikelihood::evaluate(const std::vector<double>& lengths, double nugget)
{
    isDifferentiated = false;
    if (!equationsOfCases.solve(lengths, nugget)) {
        return notFactorised;
    }
    variance = (equationsOfCases.squares() + weightedWithinSquares()) / degreesOfFreedom;
    if (!(variance > 0.0)) {
        return notFactorised;
    }
    const double value = logLikelihood();
    return std::isfinite(value) ? value : notFactorised;
}

void KrigingLikelihood::gradient(std::vector<double>& result)
{
    const SingleThreadedBlas singleThreaded;
    differentiate();
    result = derivatives.sums;

    // The mean of r replicates has the nugget / r.
    const std::vector<double>& alpha = equationsOfCases.smoothingWeights();
    double explained = weightedWithinSquares();
    double trace = rowCount - static_cast<double>(data->cases);
    for (std::size_t i = 0; i < data->cases; ++i) {
        const double share = equationsOfCases.nugget() / data->replicates[i];
        explained += share * alpha[i] * alpha[i];
        trace += share * derivatives.diagonal[i];
    }
    result.push_back(0.5 * (explained / variance - trace));
}

void KrigingLikelihood::averageInformation(std::vector<double>& result)
{
    const SingleThreadedBlas singleThreaded;
    const std::size_t count = data->inputs + 1;
    const std::size_t n = data->cases;
    const int order = static_cast<int>(n);
    const int columns = static_cast<int>(count);

    const std::vector<double>& alpha = equationsOfCases.smoothingWeights();
    std::vector<double> changes = derivativesTimesAlpha();
    std::vector<double> slopes(count);
    for (std::size_t k = 0; k < count; ++k) {
        slopes[k] = cblas_ddot(order, alpha.data(), 1, changes.data() + k * n, 1);
    }
    equationsOfCases.whitenAndProject(changes, count);
    result.assign(count * count, 0.0);
    cblas_dgemm(CblasColMajor, CblasTrans, CblasNoTrans, columns, columns, order, 1.0,
                changes.data(), order, changes.data(), order, 0.0, result.data(), columns);
    slopes.back() += weightedWithinSquares();
    result.back() += weightedWithinSquares();

    // The variance is profiled out.
    const double squares = variance * degreesOfFreedom;
    for (std::size_t k = 0; k < count; ++k) {
        for (std::size_t l = 0; l < count; ++l) {
            double& element = result[k * count + l];
            element = 0.5 * (element - slopes[k] * slopes[l] / squares) / variance;
        }
    }
}
