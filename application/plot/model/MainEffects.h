#pragma once

#include <plot/model/ModelSlice.h>

#include <surrogate_plot/Export.h>

#include <cstddef>
#include <string>
#include <vector>

class CaseSession;

/** What the outputs do along each input that varies over its range, with the others held where the
 *  session holds them. */
class SURROGATE_PLOT_EXPORT MainEffects
{
public:
    /** @param left   positions of inputs whose effects are not asked for.
     *  @param values along each input.
     *  @throw SurrogateModelInterface::Error */
    explicit MainEffects(CaseSession& session, const std::vector<std::size_t>& left = {},
                         std::size_t values = ModelSlice::sweepValues);

    /** How many inputs vary. */
    std::size_t size() const { return slices.size(); }

    /** Those along which the output changes most, the strongest first, `count` at most; valid as
     *  long as this object. */
    std::vector<const ModelSlice*> strongest(std::size_t output, std::size_t count) const;

    /** How much of its largest change along one input an output shows along each of them, with the
     *  inputs' positions, the strongest first: 1 for the first. 0 where it never changes. */
    std::vector<std::pair<std::size_t, double>> ranking(std::size_t output) const;

    /** The inputs along which all outputs together change most, each in proportion to its largest
     *  change; ascending. */
    std::vector<std::size_t> strongestInputs(std::size_t count) const;

    /** Where the inputs are held while others are swept: "Flow = 3, Power = 10". */
    std::string heldText() const { return heldInputs; }

private:
    std::vector<ModelSlice> slices;
    std::string heldInputs;
};
