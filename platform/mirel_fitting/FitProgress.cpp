#include <mirel_fitting/FitProgress.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <utility>

class FitProgress::Impl
{
public:
    Report report;
    FitProgress* outer = nullptr;
    // The portion of the fit that the outer one hears of.
    double outerStart = 0.0;
    double outerSize = 1.0;
};

namespace {

thread_local FitProgress* newest = nullptr;

// Where the present portion lies in the whole.
thread_local double portionStart = 0.0;
thread_local double portionSize = 1.0;

} // namespace

FitProgress::FitProgress(Report report) : impl(std::make_unique<Impl>())
{
    impl->report = std::move(report);
    impl->outer = newest;
    impl->outerStart = portionStart;
    impl->outerSize = portionSize;
    newest = this;
    // A report may itself run a fit: that is a whole again.
    portionStart = 0.0;
    portionSize = 1.0;
}

FitProgress::~FitProgress()
{
    newest = impl->outer;
    portionStart = impl->outerStart;
    portionSize = impl->outerSize;
}

void FitProgress::report(double fraction, const std::string& message)
{
    const double ofTheWhole = portionStart + portionSize * fraction;
    if (newest && newest->impl->report && !newest->impl->report(ofTheWhole, message)) {
        throw SurrogateModelInterface::Error("The fit was cancelled.");
    }
}

FitProgress::Portion::Portion(double from, double to)
    : outerStart(portionStart), outerSize(portionSize)
{
    portionStart = outerStart + outerSize * from;
    portionSize = outerSize * (to - from);
}

FitProgress::Portion::~Portion()
{
    portionStart = outerStart;
    portionSize = outerSize;
}
