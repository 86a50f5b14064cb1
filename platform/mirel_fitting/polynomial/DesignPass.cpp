#include <mirel_fitting/polynomial/DesignPass.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/ThreadCount.h>

#include <algorithm>

namespace {

/** Rows that a thread takes at a time. Fixed, so that the results do not depend on the number of
 *  threads; enough rows for the cost of merging two chunks not to count. */
constexpr std::size_t rowsPerChunk = 32 * DesignPass::rowsPerBlock;

/** With more terms, a triangular factor per thread takes too much memory: 32 MB here. */
constexpr std::size_t maxTermsPerThread = 2000;

constexpr char progressMessage[] = "Fitting the response surface";

} // namespace

void DesignPass::run(const FitColumns& columns,
                     const std::function<std::unique_ptr<DesignPass>()>& makePass, double from,
                     double to)
{
    const FitProgress::Portion portion(from, to, progressMessage);
    // Once at least: other threads may take all chunks.
    FitProgress::advance();
    const std::size_t chunks = (columns.cases + rowsPerChunk - 1) / rowsPerChunk;
    const int threads = columns.basis.size() < maxTermsPerThread ? threadCount() : 1;
    OrderedChunks::run(chunks, threads, makePass);
}

DesignPass::DesignPass(const FitColumns& columns, const std::vector<std::size_t>& terms)
    : columns(columns), terms(terms), design(terms.size() * rowsPerBlock),
      outputs(columns.outputs.size() * rowsPerBlock),
      scaledInputs(columns.inputs.size() * rowsPerBlock)
{
    for (std::size_t input = 0; input < columns.inputs.size(); ++input) {
        scaledInputColumns.push_back(scaledInputs.data() + input * rowsPerBlock);
    }
}

void DesignPass::compute(std::size_t chunk)
{
    begin();
    const std::size_t first = chunk * rowsPerChunk;
    const std::size_t last = std::min(first + rowsPerChunk, columns.cases);
    for (std::size_t start = first; start < last; start += rowsPerBlock) {
        // Without effect on other threads than the calling one.
        FitProgress::report(static_cast<double>(start) / static_cast<double>(columns.cases),
                            progressMessage);
        const std::size_t rows = std::min(rowsPerBlock, last - start);
        evaluate(start, rows);
        addBlock(start, rows);
    }
}

void DesignPass::evaluate(std::size_t firstRow, std::size_t rows)
{
    for (std::size_t input = 0; input < columns.inputs.size(); ++input) {
        columns.inputScales[input].apply(columns.inputs[input] + firstRow, rows,
                                         scaledInputs.data() + input * rowsPerBlock);
    }
    for (std::size_t output = 0; output < columns.outputs.size(); ++output) {
        columns.outputScales[output].apply(columns.outputs[output] + firstRow, rows,
                                           outputs.data() + output * rowsPerBlock);
        columns.weightedBlocks.weigh(firstRow, rows, outputs.data() + output * rowsPerBlock);
    }
    for (std::size_t column = 0; column < terms.size(); ++column) {
        double* const values = design.data() + column * rowsPerBlock;
        if (terms[column] < columns.basis.size()) {
            columns.basis.evaluateTerm(terms[column], scaledInputColumns.data(), rows, values);
        } else {
            columns.weightedBlocks.evaluate(terms[column] - columns.basis.size(), firstRow, rows,
                                            values);
        }
        columns.weightedBlocks.weigh(firstRow, rows, values);
    }
}
