#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/neighbours/NearestNeighbourKriging.h>
#include <mirel_fitting/kriging/search/KrigingSizes.h>

#include <cstddef>
#include <memory>
#include <vector>

/**
 * Nearest-neighbour Kriging of the residuals of another model, with its leave-one-out errors: the
 * second layer of LargeKriging. Reports to FitProgress.
 */
class NeighbourLayer
{
public:
    /**
     * Lengths and nugget are those of greatest leave-one-out density of a sample of the cases that
     * are left out; the search begins at `start`, whose lengths also measure which cases are near.
     * @param data, residuals, leftOut are borrowed for life; residuals: one per case.
     */
    NeighbourLayer(const KrigingData& data, const std::vector<double>& residuals,
                   const std::vector<std::size_t>& leftOut,
                   const NearestNeighbourKriging::Parameters& start, double smallestNugget,
                   const KrigingSizes& sizes);

    std::shared_ptr<const NearestNeighbourKriging> kriging() const { return neighbours; }

    /** One per case left out: its residual minus the prediction by all other cases. */
    const std::vector<double>& leaveOneOutResiduals() const { return errors; }

    /** Of the former, relative to variance(). */
    const std::vector<double>& leaveOneOutVariances() const { return relativeVariances; }

    /** Root mean square of the leave-one-out residuals. */
    double error() const;

    /** The process variance: the mean of squared leave-one-out residuals over their relative
     *  variances. */
    double variance() const;

    /** leaveOneOutVariances() with other parameters. */
    std::vector<double>
    leaveOneOutVariances(const NearestNeighbourKriging::Parameters& parameters) const;

    /** Residuals minus predictions at the cases `leftOut`, from all cases, themselves included. */
    std::vector<double> residualsAtCases() const;

private:
    NearestNeighbourKriging::Parameters estimate(const NearestNeighbourKriging::Parameters& start,
                                                 std::size_t cases) const;

    const KrigingData& data;
    const std::vector<double>& residuals;
    const std::vector<std::size_t>& leftOut;
    double smallestNugget;
    std::shared_ptr<NearestNeighbourKriging> neighbours;
    std::vector<double> errors;
    std::vector<double> relativeVariances;
};
