#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <string>
#include <vector>

/**
 * The terms of a polynomial as a user writes them: "A + B + A * B + A^2", terms of first and second
 * order joined by plus signs. A product is written with an asterisk or a colon. Blanks do not
 * count; a name that holds one of + : * ^ stands in single or double quotes; the term 1, the
 * constant, may be there or not. The order of the terms and repeated ones make no difference.
 *
 * The linear terms of all inputs belong to it, written or not: without them a fit would depend on
 * where the inputs are 0 (Peixoto: A property of well-formulated polynomial regression models,
 * Am. Stat. 44 (1990)).
 */
class MIREL_FITTING_EXPORT TermFormula
{
public:
    /** The positions of the inputs that are multiplied, ascending: one or two. */
    using Term = std::vector<std::size_t>;

    /**
     * @param inputNames one per input.
     * @throw SurrogateModelInterface::Error for a text that is no such formula, or a name that is
     *        no input's; the sentence names what is wrong.
     */
    TermFormula(const std::string& text, const std::vector<std::string>& inputNames);

    /** In the symbols V1, V2, ... of so many inputs. */
    TermFormula(const std::string& text, std::size_t inputs);

    /** All but the constant: linear ones by input, then those of second order; each once. */
    const std::vector<Term>& terms() const { return termList; }

    /** Inputs whose linear terms were not written. */
    const std::vector<std::size_t>& addedInputs() const { return added; }

    /** The formula in the symbols V1, V2, ..., as it was written. */
    std::string symbols() const;

private:
    std::vector<Term> termList;
    std::vector<std::size_t> added;
};
