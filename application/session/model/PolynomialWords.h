#pragma once

#include <mirel_fitting/PolynomialTerms.h>

#include <surrogate_session/Export.h>

/** "linear", "interactions" or "quadratic", as users write it and documents for programs say it. */
SURROGATE_SESSION_EXPORT const char* termsWord(PolynomialTerms terms);
