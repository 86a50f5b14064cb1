#include <mirel_fitting/PolynomialTerms.h>

const char* termsWord(PolynomialTerms terms)
{
    switch (terms) {
    case PolynomialTerms::Linear:
        return "linear";
    case PolynomialTerms::Interactions:
        return "interactions";
    case PolynomialTerms::Quadratic:
        return "quadratic";
    default:
        return "chosen";
    }
}

PolynomialTerms termsOfWord(const std::string& text)
{
    for (const PolynomialTerms terms :
         {PolynomialTerms::Linear, PolynomialTerms::Interactions, PolynomialTerms::Quadratic}) {
        if (text == termsWord(terms)) {
            return terms;
        }
    }
    return PolynomialTerms::Chosen;
}
