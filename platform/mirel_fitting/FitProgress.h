#pragma once

#include <mirel_fitting/Export.h>

#include <functional>
#include <memory>
#include <string>

/**
 * While one lives, fits on this thread report to it; of several, to the newest. Destroy them in
 * reverse order of creation.
 */
class MIREL_FITTING_EXPORT FitProgress
{
public:
    /**
     * @param fraction of the running fit that is done, 0 to 1, never decreasing within a fit.
     * @param message  what the fit is doing, for the user.
     * @return false cancels the fit: it ends with SurrogateModelInterface::Error, and the
     *         dependent stays unfitted until it is wanted again. What the report throws ends the
     *         fit likewise, and passes through.
     */
    using Report = std::function<bool(double fraction, const std::string& message)>;

    /** @param report called on this thread only; an empty one reports nowhere. */
    explicit FitProgress(Report report);
    ~FitProgress();

    FitProgress(const FitProgress&) = delete;
    FitProgress& operator=(const FitProgress&) = delete;

    /**
     * For the fitting code: reports to the newest FitProgress of this thread, if any.
     * @throw SurrogateModelInterface::Error if the answer is to cancel.
     */
    static void report(double fraction, const std::string& message);

    /**
     * For the fitting code: a part of the whole. While one lives, the fractions 0 to 1 that this
     * thread reports are passed on as `from` to `to`. They nest.
     */
    class MIREL_FITTING_EXPORT Portion
    {
    public:
        /**
         * @param message      with which advance() reports; none: that of the outer portion.
         * @param expectedWork in any unit, that of advance(); 0: unknown, advance() repeats the
         *                     fraction that was reported last.
         */
        Portion(double from, double to, std::string message = {}, double expectedWork = 0.0);
        ~Portion();

        Portion(const Portion&) = delete;
        Portion& operator=(const Portion&) = delete;

    private:
        friend class FitProgress;
        double start;
        double size;
        std::string message;
        double expectedWork;
        double done = 0.0;
        double reached = 0.0;
        Portion* outer;
    };

    /**
     * For algorithms that do not know which fit they are a part of: reports so much more work in
     * the innermost portion of this thread. The fraction comes close to 1 without reaching it, as
     * the number of iterations that are left is unknown. Does nothing outside of portions with a
     * message, for example in a prediction.
     * @throw SurrogateModelInterface::Error like report().
     */
    static void advance(double work = 0.0);

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
