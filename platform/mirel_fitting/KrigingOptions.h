#pragma once

#include <vector>

/** How a Kriging model is fitted. */
struct KrigingOptions
{
    /** Where the nugget comes from. */
    enum class NuggetMode : int
    {
        Estimated = 0, ///< by the same criterion as the lengths, not below `nugget`
        Fixed = 1      ///< at `nugget`
    };

    /** The search stops when the gain in log-likelihood per case that it still expects falls below
     *  this; positive. */
    double tolerance = 1e-4;
    /** Fixed lengths, one per input, in the input's unit, infinite for no influence; empty:
     *  estimated. */
    std::vector<double> correlationLengths;
    /**
     * Highest order of the trend: 0 constant, 1 linear, 2 full quadratic. Lowered when there are
     * fewer than 2.5 cases per term, and to a constant when there are fewer than 15 and they show
     * no noise (not with fixed lengths); terms that the cases cannot separate are dropped; all
     * reported in the warnings.
     */
    int trendOrder = 1;
    /** Where the search starts, as a fraction of each input's range; positive. */
    double initialCorrelationLength = 0.5;
    /** Lower bound of the nugget, relative to the process variance; 0: only the bound that keeps
     *  the factorisation sound, 1e-12. */
    double nugget = 0.0;
    NuggetMode nuggetMode = NuggetMode::Estimated; ///< whether `nugget` is a bound or the value
    /** Whether fits of up to 200 cases and 10 inputs also search for a second optimum, which only
     *  the report mentions. That takes more than half of their time and hardly ever changes the
     *  best optimum, so that refits of parts of the cases leave it out. */
    bool findsSecondOptimum = true;
};
