#pragma once

#include <mirel_fitting/ResponseSurfaceOptions.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <vector>

/** The cases that a model would be made from, as columns of finite numbers, and what it would be.
 */
struct SURROGATE_SESSION_EXPORT DiagnosedCases
{
    struct Column
    {
        std::string name;
        std::vector<double> values;

        /** Whether it has no two values that differ; cheap where it has. */
        bool isConstant() const;
        double minimum() const;
        double maximum() const;
        double range() const { return maximum() - minimum(); }
    };

    std::vector<Column> inputs;
    std::vector<Column> outputs;
    /** The numbers of the cases' blocks; empty without blocks. Cases repeat those of their block.
     */
    std::vector<double> blocks;
    /** Where the cases stand among all that were read, from 0, ascending. */
    std::vector<std::size_t> positions;

    bool isKriging = false;
    ResponseSurfaceOptions responseSurface; ///< without Kriging; its formula in V1, V2, ...
    /** Whether a transform of the outputs is modelled, or would be tried. */
    bool transformsOutputs = false;

    bool isSample = false; ///< of more cases

    std::size_t count() const { return positions.size(); }

    /** The terms of the response surface, without those of constant inputs or with them. */
    std::size_t termCount(bool withConstants = false) const;

    /**
     * At most so many of the cases: one at random of each of so many strata of neighbouring rows,
     * the same ones each time. Grids repeat their values at even steps, which even steps would
     * follow.
     */
    DiagnosedCases sample(std::size_t maxCases) const;
};

/** The values of columns, as models take them. */
SURROGATE_SESSION_EXPORT std::vector<const double*>
pointersTo(const std::vector<DiagnosedCases::Column>& columns);

/** Positions of at most `max` of `count` rows, ascending, chosen as sample() does. */
SURROGATE_SESSION_EXPORT std::vector<std::size_t> sampledRows(std::size_t count, std::size_t max);

/** How many values of a column differ, counted up to `max`. */
SURROGATE_SESSION_EXPORT std::size_t distinctValues(const std::vector<double>& values,
                                                    std::size_t max);

/** The step of the last digit that the values are written with; 0 if they have more than nine. */
SURROGATE_SESSION_EXPORT double lastDigit(const std::vector<double>& values);
