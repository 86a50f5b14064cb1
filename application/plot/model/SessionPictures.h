#pragma once

#include <plot/data/PictureData.h>

#include <surrogate_plot/Export.h>

#include <cstddef>
#include <vector>

class CaseSession;
class Workspace;

/** The kinds of pictures of a session's model: what each needs, and one panel of it per output, in
 *  the order of the roles. */
namespace SessionPictures {
enum class Kind
{
    Sweep,
    Contour,
    Actual,
    Residuals,
    Normal,
    Coefficients,
    Ridge
};

/** Inputs that a picture sweeps: 1, 2 or, of kinds that show the cases, 0. */
SURROGATE_PLOT_EXPORT std::size_t sweptInputs(Kind kind);

/** Values of each swept input unless the user gives a number. */
SURROGATE_PLOT_EXPORT std::size_t defaultValues(Kind kind);

/**
 * Sweeps the remaining inputs evenly if they are exactly those that the kind needs beside the swept
 * ones; inputs without a range do not count.
 * @param held positions of inputs that are to stay where they are.
 */
SURROGATE_PLOT_EXPORT void sweepRemaining(Kind kind, CaseSession& session,
                                          const std::vector<std::size_t>& held);

/**
 * Needs no fit.
 * @param held as for sweepRemaining().
 * @throw UsageError if the session sweeps more inputs than the kind shows or leaves less than it
 *        needs, or the kind is one of response surfaces (coefficients, normal, ridge) and
 *        the model is another.
 */
SURROGATE_PLOT_EXPORT void check(Kind kind, const Workspace& workspace,
                                 const std::vector<std::size_t>& held = {});

/**
 * Fits first if need be. Where nothing is swept, a picture of kind sweep has the effects of all
 * inputs that are not held; what a contour lacks are the inputs that matter most, which the session
 * sweeps from then on.
 * @param held as for sweepRemaining().
 * @throw UsageError as check(), and where the swept values are all the same;
 *        SurrogateModelInterface::Error
 */
SURROGATE_PLOT_EXPORT std::vector<PictureData> make(Kind kind, CaseSession& session,
                                                    const std::vector<std::size_t>& held = {});
} // namespace SessionPictures
