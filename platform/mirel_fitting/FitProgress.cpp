#include <mirel_fitting/FitProgress.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <algorithm>
#include <cmath>
#include <utility>

class FitProgress::Impl
{
public:
    Report report;
    FitProgress* outer = nullptr;
    Portion* outerPortion = nullptr;
};

namespace {

thread_local FitProgress* newest = nullptr;
thread_local FitProgress::Portion* innermost = nullptr;

} // namespace

FitProgress::FitProgress(Report report) : impl(std::make_unique<Impl>())
{
    impl->report = std::move(report);
    impl->outer = newest;
    impl->outerPortion = innermost;
    newest = this;
    // A report may itself run a fit, whose fractions are not part of this one's.
    innermost = nullptr;
}

FitProgress::~FitProgress()
{
    newest = impl->outer;
    innermost = impl->outerPortion;
}

void FitProgress::report(double fraction, const std::string& message)
{
    if (innermost) {
        innermost->reached = fraction;
    }
    const double ofTheWhole = innermost ? innermost->start + innermost->size * fraction : fraction;
    if (newest && newest->impl->report && !newest->impl->report(ofTheWhole, message)) {
        throw SurrogateModelInterface::Error("The fit was cancelled.");
    }
}

void FitProgress::advance(double work)
{
    constexpr double largestFraction = 0.98; // the end of the work is not known

    if (!innermost || innermost->message.empty()) {
        return;
    }
    innermost->done += work;
    const double share = innermost->done / innermost->expectedWork;
    const double fraction = innermost->expectedWork > 0.0
                                ? largestFraction * (1.0 - std::exp(-2.0 * share))
                                : innermost->reached;
    report(fraction, innermost->message);
}

FitProgress::Portion::Portion(double from, double to, std::string message, double expectedWork)
    : start(innermost ? innermost->start + innermost->size * from : from),
      size((innermost ? innermost->size : 1.0) * (to - from)), message(std::move(message)),
      expectedWork(expectedWork), outer(innermost)
{
    if (this->message.empty() && outer) {
        this->message = outer->message;
    }
    innermost = this;
}

FitProgress::Portion::~Portion()
{
    if (outer && outer->size > 0.0) {
        outer->reached =
            std::max(outer->reached, (start + size * reached - outer->start) / outer->size);
    }
    innermost = outer;
}
