#pragma once

#include <mirel_fitting/Export.h>
#include <mirel_fitting/ResponseSurfaceOptions.h>
#include <mirel_fitting/TermFormula.h>

#include <cstddef>
#include <vector>

/** Which terms of a response surface the cases can separate, as its fit decides it, whatever their
 *  weights and blocks and however few they are. */
struct MIREL_FITTING_EXPORT TermSeparation
{
    /** A dropped term of second order and those whose linear combination it is at all cases, for
     *  inputs measured from the middle of their ranges. */
    struct Dependence
    {
        TermFormula::Term term;
        std::vector<TermFormula::Term> others; ///< linear, squares, products
    };

    /** @param options its formula in V1, V2, ... @param inputs one array of `cases` finite values
     *  each, borrowed for the call. @throw SurrogateModelInterface::Error as TermFormula. */
    TermSeparation(const ResponseSurfaceOptions& options, const std::vector<const double*>& inputs,
                   std::size_t cases);

    std::size_t rank; ///< the number of kept terms, with the constant
    /** Squares before products, at most BlockedLeastSquares::maxDependences; without terms of
     *  constant or dropped inputs. */
    std::vector<Dependence> dependences;
};
