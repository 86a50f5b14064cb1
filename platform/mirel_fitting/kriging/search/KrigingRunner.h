#pragma once

#include <mirel_fitting/kriging/search/KrigingObjective.h>
#include <mirel_fitting/kriging/search/KrigingSearchVariables.h>
#include <mirel_fitting/numerics/BoundedSearch.h>

#include <memory>
#include <vector>

/** One of several searches that compete: they take turns on one objective. */
class KrigingRunner
{
public:
    /** @param objective is borrowed for life. */
    KrigingRunner(KrigingObjective& objective, const KrigingSearchVariables& variables,
                  const std::vector<double>& start);

    /** A step, unless the search is done. @return what was gained. */
    double step(double smallestGain);

    int steps() const { return taken; }

    /** What the nugget stands for where this search is, whoever else has asked the objective since;
     *  the output is standardised. */
    double noiseVariance() const { return noise; }

    /** Outlives the runner where it is kept. */
    const std::shared_ptr<BoundedSearch>& search() const { return bounded; }

private:
    KrigingObjective& objective;
    std::shared_ptr<BoundedSearch> bounded;
    int taken = 0;
    double noise = 0.0;
};
