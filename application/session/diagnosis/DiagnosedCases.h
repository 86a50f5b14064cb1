#pragma once

#include <session/cases/ColumnFigures.h>

#include <mirel_fitting/ResponseSurfaceOptions.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <optional>
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
        /** Whether it has two values. */
        bool isTwoValued() const { return distinctValues(values, 3) == 2; }
        /** The row of the only case whose value differs; none if there are others, and of fewer
         *  than three cases. */
        std::optional<std::size_t> onlyOtherRow() const;
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

    /** Where the cases of some rows stand, ascending. */
    std::vector<std::size_t> positionsOf(const std::vector<std::size_t>& rows) const;

    /** The names of the inputs that have two values. */
    std::vector<std::string> twoValuedInputs() const;

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

/** The step of the last digit that the values are written with; 0 if they have more than nine. */
SURROGATE_SESSION_EXPORT double lastDigit(const std::vector<double>& values);
