#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/large/SubsetKriging.h>
#include <mirel_fitting/kriging/neighbours/NearestNeighbourKriging.h>
#include <mirel_fitting/kriging/search/KrigingSearch.h>
#include <mirel_fitting/kriging/search/KrigingSizes.h>

#include <cstddef>
#include <memory>
#include <vector>

/**
 * Kriging of more cases than one correlation matrix can hold, in two layers: an exact model of a
 * space-filling subset, and nearest-neighbour Kriging of its residuals at all cases. The subset's
 * model alone and nearest-neighbour Kriging of the residuals of the trend alone are tried, too; the
 * one that predicts cases outside of the subset best, each left out in turn, is chosen.
 *
 * The likelihood of all cases is not computed: nothing is chosen by it, and an approximation takes
 * four times as long as the rest of the fit.
 */
class LargeKriging
{
public:
    using Subset = SubsetKriging::Subset;

    struct Result
    {
        KrigingSearchResult found;   ///< of the subset
        SubsetKriging::Model subset; ///< without weights if only its trend is used
        std::shared_ptr<const NearestNeighbourKriging> neighbours; ///< null: not used
        double neighbourVariance = 0.0;                            ///< of its process
        /** The process variance for standard errors with the subset's parameters, estimated from
         *  the errors at the measured cases; 0 if there is no second layer on the subset's model.
         */
        double subsetVariance = 0.0;

        std::vector<std::size_t> measured; ///< random cases outside of the subset
        /** Their residuals, and those of the fits to all other cases. */
        std::vector<double> residuals;
        std::vector<double> leaveOneOutResiduals;
        /** Of the latter, relative to `neighbourVariance`; none where no neighbours are used. */
        std::vector<double> leaveOneOutVariances;
        double error = 0.0;       ///< root mean square of the latter
        double subsetError = 0.0; ///< the same of the subset's model
        std::size_t subsetSize = 0;
    };

    /**
     * Reports to FitProgress.
     * @param data all cases; their trend is not used.
     * @param interpolate whether the model is to interpolate if the nugget is at its least bound.
     * @throw SurrogateModelInterface::Error like KrigingSearch::run().
     */
    static Result run(const std::shared_ptr<const KrigingData>& data, const Subset& subset,
                      const KrigingSearchSettings& settings, bool interpolate,
                      const KrigingSizes& sizes);
};
