#pragma once

#include <mirel_fitting/Export.h>

#include <functional>
#include <memory>
#include <string>

/**
 * While one lives, fits on this thread report to it. The newest one on a thread is asked; when it
 * goes, the one before it is asked again. Destroy them in reverse order of creation.
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
     * For the fitting code: while one lives, what this thread reports is a part of the whole, and
     * its fractions 0 to 1 are told as `from` to `to`. They nest.
     */
    class MIREL_FITTING_EXPORT Portion
    {
    public:
        Portion(double from, double to);
        ~Portion();

        Portion(const Portion&) = delete;
        Portion& operator=(const Portion&) = delete;

    private:
        double outerStart;
        double outerSize;
    };

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
