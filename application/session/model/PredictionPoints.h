#pragma once

#include <session/cases/CaseTable.h>
#include <session/files/OutputTable.h>
#include <session/model/Evaluator.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <vector>

/**
 * A table at whose rows outputs are predicted: it holds a numeric column for each input, and any
 * others, which pass through to the result.
 */
class SURROGATE_SESSION_EXPORT PredictionPoints
{
public:
    enum Results
    {
        Predictions,
        PredictionsAndLimits
    };

    /**
     * @param table  read with its cells kept.
     * @param inputs the names of the model's inputs.
     * @param outputs the names of the outputs to be predicted.
     * @param results what is wanted of each output.
     * @throw CaseDataError if a column of an input is missing or holds text, or a column has the
     *        name of a result already.
     */
    PredictionPoints(CaseTable table, const std::vector<std::string>& inputs,
                     std::vector<std::string> outputs, Results results = Predictions);

    std::size_t count() const;

    /** How the table was read. */
    const CaseFileLayout& layout() const { return table.layout; }

    /** Which inputs have cells that are no numbers, a sentence each. */
    const std::vector<std::string>& notes() const { return sentences; }

    /** One column per input, valid as long as this object. */
    const std::vector<const double*>& inputColumns() const;

    /**
     * The table with a column "NAME predicted" for each output at its end, each followed by the
     * columns "NAME lower" and "NAME upper" if there are limits.
     * @param predictions one column of count() numbers per output; borrowed, like this object, as
     *                    long as the result is used.
     * @param limits      likewise; or none at all.
     */
    OutputTable withPredictions(const std::vector<std::vector<double>>& predictions,
                                const std::vector<PredictionIntervals>& limits = {}) const;

private:
    CaseTable table;
    std::vector<std::string> outputNames;
    std::vector<const double*> columns;
    std::vector<std::string> sentences;
};
