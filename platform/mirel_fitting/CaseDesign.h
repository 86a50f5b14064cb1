#pragma once

#include <cstddef>
#include <vector>

/** What a response surface takes into account about its cases beside inputs and outputs. */
struct CaseDesign
{
    /** One per case, positive and finite: the reciprocal of the variance of its error, of which
     *  only the ratios count. Empty: all equal. */
    std::vector<double> weights = {};
    /** One per case: the number of its block, any. A block adds an effect of its own to the output;
     *  the effects sum to 0 over the blocks. Empty: no blocks. */
    std::vector<std::size_t> blocks = {};

    /** Whether all cases count alike and are one block. */
    bool isEmpty() const { return weights.empty() && blocks.empty(); }

    /** Of these rows only. */
    CaseDesign of(const std::vector<std::size_t>& rows) const
    {
        CaseDesign part;
        for (const std::size_t row : rows) {
            if (!weights.empty()) {
                part.weights.push_back(weights[row]);
            }
            if (!blocks.empty()) {
                part.blocks.push_back(blocks[row]);
            }
        }
        return part;
    }
};
