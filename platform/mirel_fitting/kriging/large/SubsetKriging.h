#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>

#include <cstddef>
#include <memory>
#include <vector>

/** The exact model of a subset of the cases: the first layer of LargeKriging. */
class SubsetKriging
{
public:
    struct Subset
    {
        std::vector<std::size_t> indices; ///< ascending
        std::shared_ptr<const KrigingData> data;
        std::shared_ptr<const KrigingTrend> trend; ///< of `data`
    };

    struct Model
    {
        double nugget = 0.0;
        bool isNuggetRaised = false; ///< since R could not be factorised
        bool interpolates = false;   ///< whether the weights are those without nugget
        double processVariance = 0.0;
        double condition = 0.0;
        std::vector<double> coefficients; ///< of the trend
        std::vector<double> weights;
    };

    /** @param all, subset are borrowed for life. @param lengths scaled. */
    SubsetKriging(const KrigingData& all, const Subset& subset, std::vector<double> lengths);

    /**
     * @param interpolate whether the model is to interpolate if the nugget only keeps the
     *                    factorisation sound.
     * @throw SurrogateModelInterface::Error if no nugget makes R positive definite.
     */
    Model fit(double nugget, bool interpolate);

    /** Output minus the model, at all cases; a model without weights is its trend. */
    std::vector<double> residuals(const Model& model) const;

private:
    const KrigingData& all;
    const Subset& subset;
    std::vector<double> lengths;
    KrigingLikelihood likelihood;
};
