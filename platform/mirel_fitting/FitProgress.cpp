#include <mirel_fitting/FitProgress.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <utility>

class FitProgress::Impl
{
public:
    Report report;
    FitProgress* outer = nullptr;
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
    newest = this;
}

FitProgress::~FitProgress()
{
    newest = impl->outer;
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
