#include <mirel_fitting/TermSelectionScope.h>

namespace {

thread_local TermSelectionScope::Selection selectionOfThread =
    SurrogateResponseSurfaceModel::Selection::All;

thread_local PolynomialTerms termsOfThread = PolynomialTerms::Quadratic;

} // namespace

TermSelectionScope::TermSelectionScope(Selection selection, PolynomialTerms terms)
    : outer(selectionOfThread), outerTerms(termsOfThread)
{
    selectionOfThread = selection;
    termsOfThread = terms;
}

TermSelectionScope::~TermSelectionScope()
{
    selectionOfThread = outer;
    termsOfThread = outerTerms;
}

TermSelectionScope::Selection TermSelectionScope::current()
{
    return selectionOfThread;
}

PolynomialTerms TermSelectionScope::currentTerms()
{
    return termsOfThread;
}
