#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>
#include <mirel_fitting/kriging/search/KrigingSearchVariables.h>
#include <mirel_fitting/kriging/search/LengthPrior.h>
#include <mirel_fitting/numerics/BoundedSearch.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

/** The criterion of a Kriging model's parameters as a function of KrigingSearchVariables: the
 *  restricted log-likelihood, plus the prior of each length that is searched for. */
class KrigingObjective : public BoundedObjective
{
public:
    /** @param variables are borrowed for life. */
    KrigingObjective(const std::shared_ptr<const KrigingData>& data,
                     const KrigingSearchVariables& variables);

    /** The value of the point asked for last comes from memory until gradient() is called. */
    double value(const std::vector<double>& point) override;
    void curvature(std::vector<double>& result) override;
    void gradient(std::vector<double>& result) override;

    /** Without the prior. One evaluation unless the point is the last one. */
    double logLikelihood(const std::vector<double>& point);

    /** Nugget times process variance; the output is standardised. One evaluation unless the point
     *  is the last one. */
    double noiseVariance(const std::vector<double>& point);

    std::size_t evaluations() const { return count; }

private:
    KrigingLikelihood likelihood;
    double logPrior(const std::vector<double>& point) const;

    const KrigingSearchVariables& variables;
    LengthPrior prior;
    std::size_t inputs;
    std::size_t count = 0;
    std::vector<double> lastPoint;
    std::optional<double> lastValue;
};
