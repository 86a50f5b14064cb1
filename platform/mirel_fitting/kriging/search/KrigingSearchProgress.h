#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/search/KrigingSearch.h>

#include <cstddef>

/** Counts the work that a search has done, in multiplications, and tells FitProgress. */
class KrigingSearchProgress
{
public:
    /** @param casesToCompete so many of them the search begins with. */
    KrigingSearchProgress(std::size_t casesToCompete, const KrigingData& data,
                          const KrigingSearch::Settings& settings);

    /** @throw SurrogateModelInterface::Error if the fit is cancelled. */
    void add(double multiplications);

private:
    double expectedWork;
    double done = 0.0;
};
