#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/neighbours/NearestNeighbours.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

/**
 * Kriging without trend of any number of cases: each prediction uses only the nearest of them, so
 * that its cost does not grow with their number. Distances are measured in correlation lengths,
 * the correlation is that of MaternCorrelation.
 *
 * Work is shared by threads point by point: their number does not change a bit of the results. It
 * is reported by FitProgress::advance(), in points.
 */
class NearestNeighbourKriging
{
public:
    struct Parameters
    {
        std::vector<double> lengths; ///< one per input; infinite: without influence
        double nugget = 0.0;         ///< relative to the variance
    };

    /** Of one case by others: mean and variance of its value, the latter relative to that of the
     *  process. */
    struct Prediction
    {
        double mean;
        double variance;
    };

    /**
     * @param cases      their coordinates and replicates; borrowed for the call.
     * @param values     one per case.
     * @param metric     correlation lengths that decide which cases are near.
     * @param neighbours number of cases that a prediction uses at most.
     */
    NearestNeighbourKriging(const KrigingData& cases, std::vector<double> values,
                            const std::vector<double>& metric, std::size_t neighbours);

    std::size_t neighbours() const { return used; }

    void setParameters(const Parameters& parameters);
    const Parameters& parameters() const { return chosen; }

    /** result[i] += prediction at point i. @param points one array of finite numbers per input. */
    void add(const std::vector<const double*>& points, std::size_t count, double* result) const;

    /**
     * gradients[k][i] += derivative of the prediction at point i by its coordinate k. Where another
     * case becomes one of the nearest, the prediction has a small step.
     */
    void addGradients(const std::vector<const double*>& points, std::size_t count,
                      const std::vector<double*>& gradients) const;

    /** result[i] = variance of a prediction at point i with these parameters, relative to that of
     *  the process, without the noise of a new case. */
    void variances(const std::vector<const double*>& points, std::size_t count,
                   const Parameters& parameters, double* result) const;

    /** Leave-one-out predictions of some cases by their nearest neighbours. */
    class LeftOut
    {
    public:
        /** @param kriging borrowed for life. */
        LeftOut(const NearestNeighbourKriging& kriging, std::vector<std::size_t> cases);

        /** With these parameters. The neighbours are those found by the constructor. */
        std::vector<Prediction> predict(const Parameters& parameters) const;

    private:
        const NearestNeighbourKriging& kriging;
        std::vector<std::size_t> cases;
        std::size_t stride;
        std::vector<std::uint32_t> neighbours; // `stride` for each case
        std::vector<std::size_t> found;
    };

private:
    struct Workspace;

    std::vector<double> factorsFor(const Parameters& parameters) const;
    Prediction predict(Workspace& workspace, const std::vector<const double*>& points,
                       std::size_t index, const std::vector<double>& scales, double nugget) const;
    const double* at(std::size_t index) const { return coordinates.data() + index * inputs; }
    void forPoints(std::size_t points,
                   const std::function<void(Workspace&, std::size_t)>& work) const;

    std::size_t inputs;
    std::size_t used; // neighbours
    std::vector<double> metric;
    std::vector<double> coordinates; // case by case, in lengths of the metric
    std::vector<double> values;
    std::vector<double> replicates;
    std::unique_ptr<NearestNeighbours> search;
    Parameters chosen;
    std::vector<double> factors; // turn coordinates of the metric into those of the kernels
};
