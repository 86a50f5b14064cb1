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
    if (newest && newest->impl->report && !newest->impl->report(fraction, message)) {
        throw SurrogateModelInterface::Error("The fit was cancelled.");
    }
}
