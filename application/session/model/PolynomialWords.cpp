#include "session/model/PolynomialWords.h"

const char* termsWord(PolynomialTerms terms)
{
    switch (terms) {
    case PolynomialTerms::Linear:
        return "linear";
    case PolynomialTerms::Interactions:
        return "interactions";
    default:
        return "quadratic";
    }
}

std::optional<PolynomialTerms> termsOfWord(const std::string& word)
{
    for (const PolynomialTerms terms :
         {PolynomialTerms::Linear, PolynomialTerms::Interactions, PolynomialTerms::Quadratic}) {
        if (word == termsWord(terms)) {
            return terms;
        }
    }
    return std::nullopt;
}
