#include <mirel_fitting/cases/ArgumentCheck.h>

#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace {

using Error = SurrogateModelInterface::Error;

std::string inputName(std::size_t input)
{
    return "The input V" + std::to_string(input + 1);
}

std::string outputName(std::size_t offset)
{
    return "The output at offset " + std::to_string(offset);
}

[[noreturn]] void refuseValue(const std::string& column, std::size_t row)
{
    throw Error(column + " holds a value that is not finite in case " + std::to_string(row + 1) +
                ".");
}

/** Position of the first NaN or infinity, `count` if there is none. */
std::size_t findNotFinite(const double* values, std::size_t count)
{
    const auto isNotFinite = [](double value) { return !std::isfinite(value); };
    return static_cast<std::size_t>(std::find_if(values, values + count, isNotFinite) - values);
}

} // namespace

ArgumentCheck::ArgumentCheck(const std::vector<double*>& independentColumns,
                             const std::vector<double*>& dependentColumns, std::size_t rowCount)
    : inputCount(independentColumns.size()), caseCount(rowCount)
{
    if (rowCount == 0) {
        throw Error("There is no case to fit the model to.");
    }
    // A negative int converted to std::size_t.
    if (rowCount > std::numeric_limits<std::ptrdiff_t>::max() / sizeof(double)) {
        throw Error("The model cannot be fitted to " + std::to_string(rowCount) +
                    " cases: no column can hold so many.");
    }
    for (std::size_t input = 0; input < inputCount; ++input) {
        if (!independentColumns[input]) {
            throw Error(inputName(input) + " has no column of values.");
        }
        const std::size_t row = findNotFinite(independentColumns[input], rowCount);
        if (row < rowCount) {
            refuseValue(inputName(input), row);
        }
    }
    firstBadCases.reserve(dependentColumns.size());
    for (const double* column : dependentColumns) {
        if (!column) {
            throw Error(outputName(firstBadCases.size()) + " has no column of values.");
        }
        firstBadCases.push_back(findNotFinite(column, rowCount));
    }
}

void ArgumentCheck::requireOutput(int offset) const
{
    if (offset < 0 || static_cast<std::size_t>(offset) >= outputs()) {
        throw Error("There is no output at offset " + std::to_string(offset) + ": the model has " +
                    countedText(outputs(), "output") + ", counted from 0.");
    }
    const auto output = static_cast<std::size_t>(offset);
    if (!isFittable(output)) {
        refuseValue(outputName(output), firstBadCases[output]);
    }
}

void ArgumentCheck::requireOutputs(const std::set<int>& offsets) const
{
    for (const int offset : offsets) {
        requireOutput(offset);
    }
}

void ArgumentCheck::requireEvaluation(const std::vector<double*>& inputs,
                                      const std::set<int>& offsets,
                                      const std::vector<double*>& outputs, std::size_t count) const
{
    if (inputs.size() != inputCount) {
        throw Error("The model has " + countedText(inputCount, "input") +
                    ", but values are given for " + std::to_string(inputs.size()) + ".");
    }
    if (outputs.size() != offsets.size()) {
        throw Error("The model is asked for " + countedText(offsets.size(), "output") +
                    ", but there is room for " + std::to_string(outputs.size()) + ".");
    }
    requireOutputs(offsets);
    if (count == 0) {
        return;
    }
    for (std::size_t input = 0; input < inputCount; ++input) {
        if (!inputs[input]) {
            throw Error(inputName(input) + " has no values to evaluate the model at.");
        }
    }
    std::size_t k = 0;
    for (const int offset : offsets) {
        if (!outputs[k++]) {
            throw Error(outputName(static_cast<std::size_t>(offset)) +
                        " has no room for its values.");
        }
    }
}
