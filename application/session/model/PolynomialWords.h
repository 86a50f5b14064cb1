#pragma once

#include <mirel_fitting/PolynomialTerms.h>

#include <surrogate_session/Export.h>

#include <optional>
#include <string>

/** "linear", "interactions" or "quadratic", as users write it and documents for programs say it. */
SURROGATE_SESSION_EXPORT const char* termsWord(PolynomialTerms terms);

/** The terms that such a word means; none for another one. */
SURROGATE_SESSION_EXPORT std::optional<PolynomialTerms> termsOfWord(const std::string& word);
