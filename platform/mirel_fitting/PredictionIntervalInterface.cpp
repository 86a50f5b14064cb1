#include <mirel_fitting/PredictionIntervalInterface.h>

PredictionIntervalInterface::~PredictionIntervalInterface() = default;
