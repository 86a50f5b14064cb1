#include <mirel_fitting/kriging/prediction/KrigingVariance.h>

#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/kriging/likelihood/KrigingEquations.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <cblas.h>

#include <algorithm>
#include <cmath>

KrigingVariance::KrigingVariance(const FittedKriging& model)
    : model(model), cases(model.data->cases), terms(model.data->terms), basis(cases, terms)
{
    std::vector<double> columns = model.data->trend;
    if (model.correlation) {
        const SingleThreadedBlas singleThreaded;
        factorise();
        factor->solveLower(columns.data(), terms);
    } else {
        for (std::size_t t = 0; t < terms; ++t) {
            for (std::size_t i = 0; i < cases; ++i) {
                columns[t * cases + i] *= std::sqrt(model.data->replicates[i]);
            }
        }
    }

    const SingleThreadedBlas singleThreaded;
    for (std::size_t t = 0; t < terms; ++t) {
        basis.append(columns.data() + t * cases);
    }
}

void KrigingVariance::factorise()
{
    const SingleThreadedBlas singleThreaded;
    // As the fit did it, block by block: what it could factorise is not refused here.
    factor = std::make_unique<BlockedCholesky>(cases, threadCount());
    factor->forColumns(0.0, [&](std::size_t first, std::size_t last) {
        model.correlation->fillLower(first, last, factor->values());
        for (std::size_t j = first; j < last; ++j) {
            factor->values()[j * cases + j] += model.nugget / model.data->replicates[j];
        }
    });
    if (!factor->factorise()) {
        throw SurrogateModelInterface::Error("There are no standard errors: the correlation matrix "
                                             "of the cases cannot be factorised.");
    }
}

double KrigingVariance::noise() const
{
    if (!model.correlation) {
        return 1.0;
    }
    // A nugget that only stabilises the factorisation is no noise.
    return model.interpolates ? 0.0 : model.nugget;
}

KrigingVariance::Workspace::Workspace(const KrigingVariance& variance, std::size_t maxPoints)
    : correlations(variance.model.correlation
                       ? maxPoints * variance.model.correlation->correlationStride()
                       : 0),
      trend(maxPoints * variance.terms), isAtCase(maxPoints)
{}

void KrigingVariance::evaluate(const std::vector<const double*>& points, std::size_t count,
                               Workspace& workspace, double* result) const
{
    const int columns = static_cast<int>(terms);
    const int size = static_cast<int>(count);
    double* trend = workspace.trend.data(); // by columns, points x terms
    model.trend->evaluate(points, count, trend, count);
    cblas_dtrsm(CblasColMajor, CblasRight, CblasUpper, CblasNoTrans, CblasNonUnit, size, columns,
                1.0, basis.triangle().data(), columns, trend, size);

    std::fill_n(result, count, 0.0);
    std::fill_n(workspace.isAtCase.begin(), count, false);
    if (model.correlation) {
        model.correlation->correlate(points, count, workspace.correlations.data());
        explain(count, workspace, result);
    }
    for (std::size_t t = 0; t < terms; ++t) {
        for (std::size_t i = 0; i < count; ++i) {
            result[i] += trend[t * count + i] * trend[t * count + i];
        }
    }
    if (model.correlation && model.interpolates) {
        subtractNugget(count, workspace, result);
    }
    for (std::size_t i = 0; model.correlation && i < count; ++i) {
        result[i] =
            workspace.isAtCase[i] ? 0.0 : std::max(result[i], KrigingEquations::smallestVariance);
    }
}

/** Correlations become L^-1 r, the terms of the trend T^-T u. */
void KrigingVariance::explain(std::size_t count, Workspace& workspace, double* result) const
{
    // Given a case correlated so much, the variance is less than the rounding errors.
    constexpr double same = 1.0 - 1e-15;

    const int order = static_cast<int>(cases);
    const int columns = static_cast<int>(terms);
    const int size = static_cast<int>(count);
    const std::size_t stride = model.correlation->correlationStride();
    double* correlations = workspace.correlations.data();
    for (std::size_t i = 0; model.interpolates && i < count; ++i) {
        const double* ofPoint = correlations + i * stride;
        workspace.isAtCase[i] = *std::max_element(ofPoint, ofPoint + cases) >= same;
    }
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, CblasNoTrans, CblasNonUnit, order, size, 1.0,
                factor->values(), order, correlations, static_cast<int>(stride));
    cblas_dgemm(CblasColMajor, CblasTrans, CblasNoTrans, size, columns, order, -1.0, correlations,
                static_cast<int>(stride), basis.values().data(), order, 1.0, workspace.trend.data(),
                size);
    for (std::size_t i = 0; i < count; ++i) {
        const double* explained = correlations + i * stride;
        result[i] = 1.0 - cblas_ddot(order, explained, 1, explained, 1);
    }
}

/** After explain(): the weights are L^-T (L^-1 r + Q T^-T u). */
void KrigingVariance::subtractNugget(std::size_t count, Workspace& workspace, double* result) const
{
    const int order = static_cast<int>(cases);
    const int columns = static_cast<int>(terms);
    const int size = static_cast<int>(count);
    const std::size_t stride = model.correlation->correlationStride();
    double* weights = workspace.correlations.data();
    cblas_dgemm(CblasColMajor, CblasNoTrans, CblasTrans, order, size, columns, 1.0,
                basis.values().data(), order, workspace.trend.data(), size, 1.0, weights,
                static_cast<int>(stride));
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, CblasTrans, CblasNonUnit, order, size, 1.0,
                factor->values(), order, weights, static_cast<int>(stride));
    for (std::size_t i = 0; i < count; ++i) {
        const double* ofPoint = weights + i * stride;
        for (std::size_t j = 0; j < cases; ++j) {
            result[i] -= model.nugget / model.data->replicates[j] * ofPoint[j] * ofPoint[j];
        }
    }
}
