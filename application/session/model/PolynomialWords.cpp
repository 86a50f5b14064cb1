#include "session/model/PolynomialWords.h"

const char* termsWord(PolynomialTerms terms)
{
    switch (terms) {
    case PolynomialTerms::Linear:
        return "linear";
    case PolynomialTerms::Interactions:
        return "interactions";
    case PolynomialTerms::Chosen:
        return "chosen";
    default:
        return "quadratic";
    }
}
