#include <mirel_fitting/PredictiveModel.h>

PredictiveModel::~PredictiveModel() = default;

std::vector<std::string> PredictiveModel::fitNotes(int, const std::vector<std::string>&) const
{
    return {};
}
