#pragma once

#include <mirel_fitting/KrigingReport.h>
#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/search/KrigingSearch.h>
#include <mirel_fitting/numerics/BoundedSearch.h>

#include <cstddef>
#include <vector>

/**
 * Bounds and starts of the variables of a Kriging search, which are those of KrigingObjective: the
 * logarithms of the lengths, then that of the nugget in its unit, each unless it is fixed.
 */
class KrigingSearchVariables
{
public:
    static constexpr double smoothNugget = 1e-6; ///< where starts for smooth data begin
    static constexpr double noisyNugget = 0.05;  ///< and those for noisy data
    static constexpr double faint = 20.0;        ///< the influence of an input, beyond this length

    KrigingSearchVariables(const KrigingData& data, const KrigingSearch::Settings& settings);

    std::size_t size() const { return lower.size(); }

    std::vector<double> at(const KrigingParameters& parameters) const;

    /** All lengths the same. */
    std::vector<double> uniform(double length, double nugget) const;

    /** Half the range suits most data; twice the range smooth functions of many inputs. */
    std::vector<std::vector<double>> commonStarts(double initialLength) const;

    /** Inputs of unlike influence: lengths between a fifth of the range and ten ranges. */
    std::vector<std::vector<double>> scatteredStarts() const;

    /**
     * Brings lengths that have run far out back to where the input still has some influence. More
     * cases may show it, but from far outside no slope leads back: the likelihood has a maximum
     * there, too.
     */
    void recall(std::vector<double>& point) const;

    /** Where the nugget is too small to be felt, the likelihood says that it may rise without end:
     *  a search raises it by little at a time. */
    void limitRises(BoundedSearch& search) const;

    /** Whether the points are the same optimum, or on their way to it. */
    bool areClose(const std::vector<double>& a, const std::vector<double>& b) const;

    bool isNuggetLargest(const std::vector<double>& point) const;

    /** One per length that is searched for. */
    std::vector<KrigingReport::Bound> boundsOf(const std::vector<double>& point) const;

    std::size_t lengths; ///< that are searched for
    bool hasNugget;
    std::vector<double> lower;
    std::vector<double> upper;
};
