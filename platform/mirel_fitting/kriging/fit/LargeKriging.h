#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/neighbours/NearestNeighbourKriging.h>
#include <mirel_fitting/kriging/search/KrigingSearch.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

/** Numbers of cases at which Kriging changes its ways. */
struct KrigingSizes
{
    std::size_t mostSearched = 5000; ///< more take lengths and nugget from a subset
    /** Up to so many, the subset's are refined by two steps with all cases, beyond by one. */
    std::size_t mostRefinedTwice = 7000;
    std::size_t mostRefined = 10000; ///< more are not refined
    std::size_t mostExact = 10000;   ///< more have no correlation matrix of all of them
    std::size_t subset = 10000;      ///< what is then modelled exactly
    std::size_t searched = 2500;     ///< the subset for lengths and nugget
    std::size_t neighbours = 60;
    std::size_t measured = 5000;  ///< cases that are left out to choose by and to report
    std::size_t estimated = 1000; ///< of these, for the parameters of the neighbours' part
};

/**
 * Kriging of more cases than one correlation matrix can hold, in two layers: an exact model of a
 * space-filling subset, and nearest-neighbour Kriging of what it leaves at all cases. Besides the
 * subset's model alone and nearest-neighbour Kriging of what the trend alone leaves are tried; the
 * one that predicts cases outside of the subset best, each left out in turn, is chosen.
 */
class LargeKriging
{
public:
    struct Subset
    {
        std::vector<std::size_t> indices; ///< ascending
        std::shared_ptr<const KrigingData> data;
        std::shared_ptr<const KrigingTrend> trend; ///< of `data`
    };

    struct Result
    {
        /** Of the exact model of the subset; the likelihood of all cases where neighbours are
         *  used, else of the subset. */
        KrigingSearch::Result found;
        double processVariance = 0.0; ///< of the subset's model
        double condition = 0.0;       ///< of its correlation matrix
        bool meetsCases = false;
        std::vector<double> coefficients; ///< of the trend
        std::vector<double> weights;      ///< of the subset's cases; none: the trend alone
        std::shared_ptr<const NearestNeighbourKriging> neighbours; ///< null: none
        double neighbourVariance = 0.0;                            ///< of its process
        /** Of the subset's process as the nearest cases know it, by the errors at the measured
         *  cases; 0 where neighbours do not correct the subset's model. */
        double correctedVariance = 0.0;

        std::vector<std::size_t> measured; ///< random cases outside of the subset
        /** What their outputs lie above the prediction by the model, and by the model of all other
         *  cases. */
        std::vector<double> residuals;
        std::vector<double> leaveOneOutResiduals;
        /** Of the latter, relative to `neighbourVariance`; none where no neighbours are used. */
        std::vector<double> leaveOneOutVariances;
        double error = 0.0;       ///< root mean square of the latter
        double subsetError = 0.0; ///< the same of the subset's model
        std::size_t subsetSize = 0;

        /** A clause that says what was chosen and why. @param scale of errors. */
        std::string description(double scale) const;
    };

    /**
     * Reports to FitProgress.
     * @param data all cases; their trend is not used.
     * @param meetCases whether a nugget at its least bound is to be taken out of the prediction.
     * @throw SurrogateModelInterface::Error like KrigingSearch::run().
     */
    static Result run(const std::shared_ptr<const KrigingData>& data, const Subset& subset,
                      const KrigingSearch::Settings& settings, bool meetCases,
                      const KrigingSizes& sizes);
};
