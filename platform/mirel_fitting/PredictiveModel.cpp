#include <mirel_fitting/PredictiveModel.h>

PredictiveModel::~PredictiveModel() = default;
