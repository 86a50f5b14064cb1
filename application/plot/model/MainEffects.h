#pragma once

#include <plot/model/ModelCut.h>

#include <surrogate_plot/Export.h>

#include <cstddef>
#include <vector>

class CaseSession;

/** The sweeps that a report shows: each input that varies over its range, with the others held
 *  where the session holds them. */
class SURROGATE_PLOT_EXPORT MainEffects
{
public:
    /** @throw SurrogateModelInterface::Error */
    explicit MainEffects(CaseSession& session);

    /** Six at most, that along which the output changes most first; valid as long as this object.
     */
    std::vector<const ModelCut*> mostInfluential(std::size_t output) const;

private:
    std::vector<ModelCut> cuts;
};
