#include <mirel_fitting/PredictorDescriptionInterface.h>

PredictorDescriptionInterface::~PredictorDescriptionInterface() = default;
