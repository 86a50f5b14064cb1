#include <mirel_fitting/PredictiveModel.h>

PredictiveModel::~PredictiveModel() = default;

std::vector<char> PredictiveModel::outsideCases(const std::vector<double*>& inputs,
                                                std::size_t count) const
{
    constexpr double negligible = 0.01; // as in extrapolation()
    std::vector<char> flags;
    for (const double distance : extrapolations(inputs, count)) {
        flags.push_back(distance > negligible ? 1 : 0);
    }
    return flags;
}

std::vector<std::string> PredictiveModel::fitNotes(int, const std::vector<std::string>&) const
{
    return {};
}
