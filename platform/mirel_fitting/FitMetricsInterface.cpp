#include <mirel_fitting/FitMetricsInterface.h>

FitMetricsInterface::~FitMetricsInterface() = default;
