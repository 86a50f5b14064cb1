#pragma once

#include <session/diagnosis/DiagnosedCases.h>
#include <session/diagnosis/Finding.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

/** Cases with these columns, none left out before. */
inline DiagnosedCases casesOf(std::vector<DiagnosedCases::Column> inputs,
                              std::vector<DiagnosedCases::Column> outputs = {})
{
    DiagnosedCases cases;
    const std::size_t count = (inputs.empty() ? outputs : inputs).front().values.size();
    for (std::size_t row = 0; row < count; ++row) {
        cases.positions.push_back(row);
    }
    cases.inputs = std::move(inputs);
    cases.outputs = std::move(outputs);
    return cases;
}

/** Numbers between 0 and 1 that fill the interval evenly, in no order: multiples of an irrational
 *  number, without their whole parts. */
inline std::vector<double> spread(std::size_t count, double irrational = 0.6180339887498949)
{
    std::vector<double> values;
    for (std::size_t k = 1; k <= count; ++k) {
        const double multiple = irrational * static_cast<double>(k);
        values.push_back(multiple - std::floor(multiple));
    }
    return values;
}

/** A second column, independent of spread(). */
inline std::vector<double> otherSpread(std::size_t count)
{
    return spread(count, 0.4142135623730951);
}

/** The kinds with the texts, "constantInput: Mass is the same ...". */
inline std::vector<std::string> textsOf(const std::vector<Finding>& findings)
{
    std::vector<std::string> texts;
    for (const Finding& finding : findings) {
        texts.push_back(finding.kind + ": " + finding.text);
    }
    return texts;
}

/** The one finding that there should be. */
inline Finding onlyOf(const std::vector<Finding>& findings)
{
    EXPECT_EQ(findings.size(), 1u);
    return findings.empty() ? Finding("", Finding::Note, {}, "") : findings.front();
}

using Texts = std::vector<std::string>;
