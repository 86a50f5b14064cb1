#pragma once

#include <mirel_datamanagement/Variable.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

class Project;

/** How many cases there are, and why some of them cannot be used. */
struct CaseCounts
{
    std::size_t read = 0;
    std::size_t valid = 0;    ///< included, with finite numbers in all inputs and all outputs
    std::size_t excluded = 0; ///< taken out by the user, whatever their cells hold
    std::size_t invalid = 0;  ///< the others

    /** Of the included cases, those that lack a finite number here; one per input, per output. A
     *  case counts under each variable that it lacks. */
    std::vector<std::size_t> invalidByInput;
    std::vector<std::size_t> invalidByOutput;

    /** The included cases that the columns of weights and blocks leave out, by column: they are
     *  invalid, and count under no other variable. */
    std::vector<std::pair<std::string, std::size_t>> leftOutByDesign;

    /** The valid cases that each output would have if it were the only one. */
    std::vector<std::size_t> validAlone;
};

/**
 * Counts in one pass over the columns.
 * @param inputs   numeric variables of the project, like the outputs.
 * @param excluded positions of records, from 0 in project order, each once.
 */
SURROGATE_SESSION_EXPORT CaseCounts countCases(const Project& project,
                                               const std::vector<VarPtr>& inputs,
                                               const std::vector<VarPtr>& outputs,
                                               const std::vector<std::size_t>& excluded);

/** The positions of the valid cases, ascending: what a model calls its rows. Arguments as above. */
SURROGATE_SESSION_EXPORT std::vector<std::size_t>
validCases(const Project& project, const std::vector<VarPtr>& inputs,
           const std::vector<VarPtr>& outputs, const std::vector<std::size_t>& excluded);

/** The values of a column in some of its rows. */
SURROGATE_SESSION_EXPORT std::vector<double> valuesAt(const std::vector<double>& column,
                                                      const std::vector<std::size_t>& rows);

/**
 * The range over which an input is swept: as the user set it, else minimum and maximum over the
 * valid cases, so that a case that was excluded or lacks a value does not widen it; over all values
 * where no case is valid.
 * @param cases as validCases() gives them.
 */
SURROGATE_SESSION_EXPORT std::pair<double, double>
sweepRange(const Project& project, const VarPtr& input, const std::vector<std::size_t>& cases);
