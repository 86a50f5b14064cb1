#include <mirel_fitting/kriging/search/KrigingRunner.h>

KrigingRunner::KrigingRunner(KrigingObjective& objective, const KrigingSearchVariables& variables,
                             const std::vector<double>& start)
    : objective(objective),
      bounded(std::make_shared<BoundedSearch>(objective, variables.lower, variables.upper, start))
{
    variables.limitRises(*bounded);
    noise = objective.noiseVariance();
}

double KrigingRunner::step(double smallestGain)
{
    const double before = bounded->value();
    const std::vector<double> from = bounded->point();
    bounded->advance(1, smallestGain);
    ++taken;
    if (bounded->point() != from) {
        // The search has just asked for the gradient there.
        noise = objective.noiseVariance();
    }
    return bounded->value() - before;
}
