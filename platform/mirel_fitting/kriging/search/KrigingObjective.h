#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>
#include <mirel_fitting/kriging/search/KrigingSearch.h>
#include <mirel_fitting/numerics/BoundedSearch.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

/**
 * The likelihood of a Kriging model as a function of what is searched for: the logarithms of the
 * lengths unless they are fixed, then the logarithm of the nugget over nuggetUnit unless that is.
 */
class KrigingObjective : public BoundedObjective
{
public:
    /** The logarithm of the nugget is searched in steps of a factor of 20 where those of the
     *  lengths take one of 2.7: it has farther to go. */
    static constexpr double nuggetUnit = 3.0;

    /** @param settings is borrowed for life. */
    KrigingObjective(const std::shared_ptr<const KrigingData>& data,
                     const KrigingSearch::Settings& settings);

    /** What a point stands for. At the nugget's lower bound and below it is the bound exactly,
     *  whose logarithm does not lead back to the same number. */
    KrigingParameters parameters(const std::vector<double>& point) const;

    /** Of the same point twice running, and without a gradient between, it is evaluated once. */
    double value(const std::vector<double>& point) override;
    bool curvature(std::vector<double>& result) override;
    void gradient(std::vector<double>& result) override;

    /** What the nugget stands for at the point of the last gradient: the output is standardised. */
    double noiseVariance() const { return noise; }

    std::size_t evaluations() const { return count; }

private:
    KrigingLikelihood likelihood;
    const KrigingSearch::Settings& settings;
    std::size_t inputs;
    std::size_t count = 0;
    std::vector<double> lastPoint;
    std::optional<double> lastValue;
    double nugget = 0.0;
    double noise = 0.0;
};
