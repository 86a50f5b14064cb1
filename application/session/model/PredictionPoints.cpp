#include "session/model/PredictionPoints.h"

#include "session/cases/VariableNames.h"
#include "session/text/SessionErrors.h"

#include <algorithm>
#include <utility>

namespace {
std::string resultName(const std::string& output)
{
    return output + " predicted";
}
} // namespace

PredictionPoints::PredictionPoints(CaseTable points, const std::vector<std::string>& inputs,
                                   std::vector<std::string> outputs, Results results)
    : table(std::move(points)), outputNames(std::move(outputs))
{
    const std::vector<std::string> names = table.names();
    columns.reserve(inputs.size());
    for (const std::string& input : inputs) {
        const auto found = std::find(names.begin(), names.end(), input);
        if (found == names.end()) {
            throw CaseDataError(table.path + ", line 1: the model needs the input \"" + input +
                                "\". " + VariableNames(names).unknownMessage(input));
        }
        const CaseColumn& column = table.columns[static_cast<std::size_t>(found - names.begin())];
        if (!column.isNumeric) {
            throw CaseDataError(table.path + ", line " +
                                std::to_string(column.withoutNumber.firstLine) + ": the input \"" +
                                input + "\" must be a number, not \"" +
                                column.withoutNumber.spellings.front() + "\".");
        }
        if (column.withoutNumber.count > 0) {
            sentences.push_back(input + ": " + column.withoutNumber.text() +
                                (column.withoutNumber.count == 1
                                     ? ": this point has no prediction."
                                     : ": these points have no prediction."));
        }
        columns.push_back(column.numbers.data());
    }
    for (const std::string& output : outputNames) {
        std::vector<std::string> added = {resultName(output)};
        if (results == PredictionsAndLimits) {
            added.insert(added.end(),
                         {OutputTable::lowerName(output), OutputTable::upperName(output)});
        }
        for (const std::string& name : added) {
            if (std::find(names.begin(), names.end(), name) != names.end()) {
                throw CaseDataError(table.path + ", line 1: the table has a column \"" + name +
                                    "\" already.");
            }
        }
    }
}

std::size_t PredictionPoints::count() const
{
    return table.cases;
}

const std::vector<const double*>& PredictionPoints::inputColumns() const
{
    return columns;
}

OutputTable PredictionPoints::withPredictions(const std::vector<std::vector<double>>& predictions,
                                              const std::vector<PredictionIntervals>& limits) const
{
    OutputTable result;
    result.rows = table.cases;
    result.columns.reserve(table.columns.size() + predictions.size());
    for (const CaseColumn& column : table.columns) {
        result.columns.push_back(
            {column.name, column.isNumeric ? column.numbers.data() : nullptr, &column.cells});
    }
    for (std::size_t i = 0; i < predictions.size(); ++i) {
        const std::string& output = outputNames[i];
        result.columns.push_back({resultName(output), predictions[i].data(), nullptr});
        if (!limits.empty()) {
            result.addLimits(output, limits[i].lower.data(), limits[i].upper.data());
        }
    }
    return result;
}
