#pragma once

#include <mirel_fitting/PolynomialTerms.h>

#include <surrogate_session/Export.h>

/** "linear", "interactions", "quadratic" or "chosen", as documents for programs say it; all but the
 *  last as users write it. */
SURROGATE_SESSION_EXPORT const char* termsWord(PolynomialTerms terms);
