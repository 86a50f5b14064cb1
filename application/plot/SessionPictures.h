#pragma once

#include <plot/PictureData.h>

#include <surrogate_plot/Export.h>

#include <string>
#include <vector>

class CaseSession;

/**
 * Pictures of the model of a session: one per output, in the order of the roles. They fit first if
 * need be.
 *
 * Cases are those that the model was fitted to. Of these a cut through the inputs shows the ones
 * near it: all inputs that it holds lie within a tenth of their range of where it holds them.
 */
namespace SessionPictures {
enum class Kind
{
    Sweep,
    Contour,
    Actual,
    Residuals,
    Coefficients
};

/** @param word as users write it: sweep, contour, actual, residuals, coefficients.
 *  @throw UsageError for another one, naming those. */
SURROGATE_PLOT_EXPORT Kind kindOf(const std::string& word);

/**
 * Whether the session has chosen what the kind needs; asks before a long fit.
 * @throw UsageError if a sweep has not one swept input, a contour not two, or coefficients are
 *        wanted of a model that has none.
 */
SURROGATE_PLOT_EXPORT void check(Kind kind, const CaseSession& session);

/** @throw UsageError as check(), and where the swept values are all the same;
 *         SurrogateModelInterface::Error */
SURROGATE_PLOT_EXPORT std::vector<PictureData> make(Kind kind, CaseSession& session);
} // namespace SessionPictures
