#pragma once

#include <mirel_fitting/FitMetrics.h>

#include <array>

/** What writing and reading the document of a model have in common. */
namespace ModelJsonNames {

/** The schema of a document grows when older programs would misread it. */
constexpr int schema = 1;
/** With outputs whose transform is modelled. */
constexpr int schemaWithTransforms = 2;

/** By this member a document is known. */
constexpr const char* format = "surrogate-model";

constexpr const char* kriging = "kriging";
constexpr const char* responseSurface = "response-surface";

struct Metric
{
    const char* name;
    double FitMetrics::*value;
};

constexpr std::array<Metric, 7> metrics = {{{"r2", &FitMetrics::r2},
                                            {"adjustedR2", &FitMetrics::adjustedR2},
                                            {"rmse", &FitMetrics::rmse},
                                            {"press", &FitMetrics::press},
                                            {"predictedR2", &FitMetrics::predictedR2},
                                            {"looRmse", &FitMetrics::looRmse},
                                            {"q2", &FitMetrics::q2}}};

} // namespace ModelJsonNames
