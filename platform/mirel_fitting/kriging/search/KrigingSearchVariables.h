#pragma once

#include <mirel_fitting/KrigingReport.h>
#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/search/KrigingSearchSettings.h>

#include <cstddef>
#include <vector>

/**
 * The variables of a Kriging search, with their bounds and starts: the logarithms of the lengths,
 * then that of the nugget over SearchPolicy::nuggetUnit, each unless it is fixed.
 */
class KrigingSearchVariables
{
public:
    KrigingSearchVariables(const KrigingData& data, const KrigingSearchSettings& settings);

    std::size_t size() const { return lowest.size(); }
    /** The number of lengths that are searched for. */
    std::size_t lengthCount() const { return lengths; }
    bool hasNugget() const { return isNuggetSearched; }
    const std::vector<double>& lower() const { return lowest; }
    const std::vector<double>& upper() const { return highest; }
    /** Of the cases, on average along each axis, in ranges. */
    double spacing() const { return meanSpacing; }

    std::vector<double> at(const KrigingParameters& parameters) const;

    /** The parameters of a point. At the nugget's lower bound and below it is the bound exactly,
     *  whose logarithm does not lead back to the same number. */
    KrigingParameters parameters(const std::vector<double>& point) const;

    /** SearchPolicy::starts. */
    std::vector<std::vector<double>> starts() const;

    /**
     * Points spread evenly over lengths and nuggets, see SearchPolicy::shortestSpread: the sequence
     * of fractions of 1/2 + i a_k, i = 1, 2, ..., with a_k = c^-k and c the root of c^(d + 1) = c +
     * 1 for d variables (the golden ratio for one). Niederreiter: Random Number Generation and
     * Quasi-Monte Carlo Methods, SIAM 1992, ch. 3.
     */
    std::vector<std::vector<double>> spreadStarts(std::size_t count) const;

    /** Reduces lengths beyond SearchPolicy::recalledLength to it: more cases may show an influence
     *  of these inputs. */
    void limitLengths(std::vector<double>& point) const;

    /** Whether the points are the same optimum, or on their way to it. */
    bool areClose(const std::vector<double>& a, const std::vector<double>& b) const;

    bool isNuggetLargest(const std::vector<double>& point) const;

    /** One per length that is searched for. */
    std::vector<KrigingReport::Bound> boundsOf(const std::vector<double>& point) const;

private:
    std::vector<double> uniform(double length, double nugget) const;

    KrigingSearchSettings settings;
    std::size_t inputs;
    std::size_t lengths;
    bool isNuggetSearched;
    std::vector<double> lowest;
    std::vector<double> highest;
    double meanSpacing;
};
