#include "RecordedModels.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <algorithm>

RecordedModels& recordedModels()
{
    static RecordedModels models;
    return models;
}

namespace {

std::vector<std::vector<double>> copies(const std::vector<double*>& columns, std::size_t rowCount)
{
    std::vector<std::vector<double>> result;
    result.reserve(columns.size());
    for (const double* column : columns) {
        result.emplace_back(column, column + rowCount);
    }
    return result;
}

/** Counts itself; the number of constructions is part of the texts and identifies a model. */
class LiveModel
{
public:
    explicit LiveModel(RecordedFit fit)
    {
        RecordedModels& models = recordedModels();
        models.fits.push_back(std::move(fit));
        name = "model " + std::to_string(models.fits.size());
        if (models.onConstruct) {
            models.onConstruct();
        }
        ++models.alive;
        models.mostAlive = std::max(models.mostAlive, models.alive);
    }

    ~LiveModel() { --recordedModels().alive; }

    LiveModel(const LiveModel&) = delete;
    LiveModel& operator=(const LiveModel&) = delete;

    std::string name;
};

} // namespace

class KrigingSurrogateModel::Impl : public LiveModel
{
    using LiveModel::LiveModel;
};

class SurrogateResponseSurfaceModel::Impl : public LiveModel
{
    using LiveModel::LiveModel;
};

KrigingSurrogateModel::KrigingSurrogateModel(const std::vector<double*>& independentColumns,
                                             const std::vector<double*>& dependentColumns,
                                             int rowCount, double tolerance,
                                             const std::vector<double>& correlationLengths,
                                             int trendOrder, double initialCorrelationLength,
                                             double nugget, int nuggetMode)
{
    const auto rows = static_cast<std::size_t>(rowCount);
    impl = std::make_unique<Impl>(RecordedFit{
        true, copies(independentColumns, rows), copies(dependentColumns, rows), rows, tolerance,
        correlationLengths, trendOrder, initialCorrelationLength, nugget, nuggetMode});
}

KrigingSurrogateModel::~KrigingSurrogateModel() = default;

void KrigingSurrogateModel::activateDependentVariables(const std::set<int>&) {}

void KrigingSurrogateModel::interpolateDependentValues(const std::vector<double*>&,
                                                       const std::set<int>&, std::vector<double*>&,
                                                       std::size_t) const
{}

bool KrigingSurrogateModel::surfaceCoefficientInformationAvailable() const
{
    return false;
}

bool KrigingSurrogateModel::qualityMetricInformationAvailable() const
{
    return false;
}

std::string KrigingSurrogateModel::surfaceCoefficientInformation(int) const
{
    return impl->name;
}

std::string KrigingSurrogateModel::qualityMetricInformation(int) const
{
    return impl->name;
}

FitMetrics KrigingSurrogateModel::fitMetrics(int) const
{
    return {};
}

std::vector<std::string> KrigingSurrogateModel::fitWarnings(int,
                                                            const std::vector<std::string>&) const
{
    return {};
}

KrigingReport KrigingSurrogateModel::krigingReport(int) const
{
    return {};
}

SurrogateResponseSurfaceModel::SurrogateResponseSurfaceModel(
    const std::vector<double*>& independentColumns, const std::vector<double*>& dependentColumns,
    std::size_t rowCount)
    : impl(std::make_unique<Impl>(RecordedFit{false, copies(independentColumns, rowCount),
                                              copies(dependentColumns, rowCount), rowCount}))
{}

SurrogateResponseSurfaceModel::~SurrogateResponseSurfaceModel() = default;

void SurrogateResponseSurfaceModel::activateDependentVariables(const std::set<int>&) {}

void SurrogateResponseSurfaceModel::interpolateDependentValues(const std::vector<double*>&,
                                                               const std::set<int>&,
                                                               std::vector<double*>&,
                                                               std::size_t) const
{}

bool SurrogateResponseSurfaceModel::surfaceCoefficientInformationAvailable() const
{
    return true;
}

bool SurrogateResponseSurfaceModel::qualityMetricInformationAvailable() const
{
    return true;
}

std::string SurrogateResponseSurfaceModel::surfaceCoefficientInformation(int) const
{
    return impl->name;
}

std::string SurrogateResponseSurfaceModel::qualityMetricInformation(int) const
{
    return impl->name;
}

FitMetrics SurrogateResponseSurfaceModel::fitMetrics(int) const
{
    return {};
}

std::vector<std::string>
SurrogateResponseSurfaceModel::fitWarnings(int, const std::vector<std::string>&) const
{
    return {};
}
