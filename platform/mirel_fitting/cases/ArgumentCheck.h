#pragma once

#include <cstddef>
#include <set>
#include <vector>

/**
 * Checks the arguments of a model's constructor and later of its other operations, so that every
 * model refuses the same arguments with the same messages. Remembers the numbers of columns and
 * cases and which outputs cannot be fitted, but no pointer. Inputs are named V1, V2, ... and
 * outputs by their offset, since a model does not know the variables' names.
 */
class ArgumentCheck
{
public:
    /**
     * @throw SurrogateModelInterface::Error if there is no case, a column is null, or an input
     *        holds a value that is not finite. Such a value in an output is no error yet.
     */
    ArgumentCheck(const std::vector<double*>& independentColumns,
                  const std::vector<double*>& dependentColumns, std::size_t rowCount);

    /** Of a model that has no cases, all of whose outputs can be evaluated. */
    ArgumentCheck(std::size_t inputs, std::size_t outputs)
        : inputCount(inputs), caseCount(0), firstBadCases(outputs, 0)
    {}

    std::size_t inputs() const { return inputCount; }
    std::size_t outputs() const { return firstBadCases.size(); }
    std::size_t cases() const { return caseCount; }

    /** Whether the output has finite values only. `offset` must be in range. */
    bool isFittable(std::size_t offset) const { return firstBadCases[offset] == caseCount; }

    /** @throw SurrogateModelInterface::Error if there is no such output, or it holds a value that
     *         is not finite. */
    void requireOutput(int offset) const;
    void requireOutputs(const std::set<int>& offsets) const;

    /**
     * The arguments of interpolateDependentValues().
     * @throw SurrogateModelInterface::Error for another number of inputs than there are columns,
     *        another number of outputs than offsets, a null array while `count` is not 0, or an
     *        offset that requireOutput() refuses.
     */
    void requireEvaluation(const std::vector<double*>& inputs, const std::set<int>& offsets,
                           const std::vector<double*>& outputs, std::size_t count) const;

    /** Those of an operation that returns its results. @throw like requireEvaluation(). */
    void requirePoints(const std::vector<double*>& inputs, std::size_t count) const
    {
        requireEvaluation(inputs, {}, {}, count);
    }

private:
    std::size_t inputCount;
    std::size_t caseCount;
    /** Per output the row of the first value that is not finite; caseCount: there is none. */
    std::vector<std::size_t> firstBadCases;
};
