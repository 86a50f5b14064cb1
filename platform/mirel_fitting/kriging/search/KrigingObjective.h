#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>
#include <mirel_fitting/kriging/search/KrigingSearchVariables.h>
#include <mirel_fitting/numerics/BoundedSearch.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

/** The likelihood of a Kriging model as a function of KrigingSearchVariables. */
class KrigingObjective : public BoundedObjective
{
public:
    /** @param variables, settings are borrowed for life. */
    KrigingObjective(const std::shared_ptr<const KrigingData>& data,
                     const KrigingSearchVariables& variables,
                     const KrigingSearchSettings& settings);

    /** Of the same point twice running, and without a gradient between, it is evaluated once. */
    double value(const std::vector<double>& point) override;
    bool curvature(std::vector<double>& result) override;
    void gradient(std::vector<double>& result) override;

    /** The variance that the nugget stands for; the output is standardised. Costs a value. */
    double noiseVariance(const std::vector<double>& point);

    std::size_t evaluations() const { return count; }

private:
    KrigingLikelihood likelihood;
    const KrigingSearchVariables& variables;
    double nuggetUnit;
    std::size_t inputs;
    std::size_t count = 0;
    std::vector<double> lastPoint;
    std::optional<double> lastValue;
};
