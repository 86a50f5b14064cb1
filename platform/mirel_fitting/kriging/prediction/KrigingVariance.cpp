#include <mirel_fitting/kriging/prediction/KrigingVariance.h>

#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <cblas.h>

#include <algorithm>
#include <cmath>
#include <limits>

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
      trend(maxPoints * variance.terms)
{}

void KrigingVariance::evaluate(const std::vector<const double*>& points, std::size_t count,
                               Workspace& workspace, double* result) const
{
    // The rounding of the difference from 1.
    constexpr double rounding = 100.0 * std::numeric_limits<double>::epsilon();

    const int order = static_cast<int>(cases);
    const int columns = static_cast<int>(terms);
    const int size = static_cast<int>(count);
    double* trend = workspace.trend.data(); // by columns, points x terms
    model.trend->evaluate(points, count, trend, count);
    cblas_dtrsm(CblasColMajor, CblasRight, CblasUpper, CblasNoTrans, CblasNonUnit, size, columns,
                1.0, basis.triangle().data(), columns, trend, size);

    std::fill_n(result, count, 0.0);
    if (model.correlation) {
        const std::size_t stride = model.correlation->correlationStride();
        double* correlations = workspace.correlations.data();
        model.correlation->correlate(points, count, correlations);
        cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, CblasNoTrans, CblasNonUnit, order, size,
                    1.0, factor->values(), order, correlations, static_cast<int>(stride));
        cblas_dgemm(CblasColMajor, CblasTrans, CblasNoTrans, size, columns, order, -1.0,
                    correlations, static_cast<int>(stride), basis.values().data(), order, 1.0,
                    trend, size);
        for (std::size_t i = 0; i < count; ++i) {
            const double* explained = correlations + i * stride;
            result[i] = 1.0 - cblas_ddot(order, explained, 1, explained, 1);
        }
    }
    for (std::size_t t = 0; t < terms; ++t) {
        for (std::size_t i = 0; i < count; ++i) {
            result[i] += trend[t * count + i] * trend[t * count + i];
        }
    }
    // Interpolating, the nugget only stabilises the factorisation: it is what is left at a case.
    const double nugget = model.interpolates ? model.nugget : 0.0;
    for (std::size_t i = 0; model.correlation && i < count; ++i) {
        result[i] = result[i] - nugget > rounding ? result[i] - nugget : 0.0;
    }
}
