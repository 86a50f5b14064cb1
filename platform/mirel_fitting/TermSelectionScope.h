#pragma once

#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <mirel_fitting/Export.h>

/**
 * While one lives, the constructors of SurrogateResponseSurfaceModel that are not told terms or a
 * selection take these, on this thread: for models that somebody else constructs, such as a
 * SurrogateModelManager. A model keeps the terms it was constructed with, so whoever caches it
 * must be made to drop it when they change.
 *
 * They nest; the newest one on a thread counts. Destroy them in reverse order of creation.
 */
class MIREL_FITTING_EXPORT TermSelectionScope
{
public:
    using Selection = SurrogateResponseSurfaceModel::Selection;

    explicit TermSelectionScope(Selection selection,
                                PolynomialTerms terms = PolynomialTerms::Quadratic);
    ~TermSelectionScope();

    TermSelectionScope(const TermSelectionScope&) = delete;
    TermSelectionScope& operator=(const TermSelectionScope&) = delete;

    /** For the fitting code: that of the newest one on this thread, Selection::All without any. */
    static Selection current();

    /** Likewise, PolynomialTerms::Quadratic without any. */
    static PolynomialTerms currentTerms();

private:
    Selection outer;
    PolynomialTerms outerTerms;
};
