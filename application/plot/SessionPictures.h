#pragma once

#include <plot/PictureData.h>
#include <plot/ReportSweep.h>

#include <surrogate_plot/Export.h>

#include <cstddef>
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
 * Sweeps evenly, in pictures of a sweep and of a contour, the inputs that nothing is said about: if
 * they are exactly those that the kind needs beside the swept ones, not counting inputs without a
 * range.
 * @param held positions of inputs that are to stay where they are.
 */
SURROGATE_PLOT_EXPORT void sweepWhatIsLeft(Kind kind, CaseSession& session,
                                           const std::vector<std::size_t>& held);

/** How many values of an input a picture takes if nobody has said. */
SURROGATE_PLOT_EXPORT std::size_t usualValues(Kind kind);

/**
 * What a page about the model shows: per output a sweep of each input over its range with the
 * others in the middle of theirs, the input that the output follows most first; at most six.
 * @throw SurrogateModelInterface::Error where the model cannot be evaluated.
 */
SURROGATE_PLOT_EXPORT std::vector<std::vector<ReportSweep>> reportSweeps(CaseSession& session);

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
