#pragma once

#include <mirel_fitting/PredictiveModel.h>

#include <memory>
#include <string>
#include <vector>

/**
 * A model made from descriptions of its outputs instead of cases, such as one read back from a
 * file. It predicts the same bits as the described models. It has no standard errors, equations and
 * quality texts, which are computed from the cases.
 */
class MIREL_FITTING_EXPORT DescribedSurrogateModel : public PredictiveModel
{
public:
    /** What one output is predicted from, and what is known of its fit. */
    struct Output
    {
        PredictorDescription predictor; ///< what predictorDescription() answers
        FitMetrics metrics;             ///< what fitMetrics() answers
        std::vector<std::string>
            warnings; ///< what fitWarnings() answers, whatever the names; notes are none of them
    };

    /**
     * @param outputs the first one is at offset 0. All have the same inputs, those of the first.
     * @throw Error if there is no output, or a description contradicts itself: numbers that are not
     *        finite, sizes that do not fit together, inputs or factors that do not exist, units and
     *        lengths that are not positive, minima above maxima.
     */
    explicit DescribedSurrogateModel(const std::vector<Output>& outputs);
    ~DescribedSurrogateModel() override;

    void activateDependentVariables(const std::set<int>& offsets) override;
    void interpolateDependentValues(const std::vector<double*>& inputs,
                                    const std::set<int>& offsets, std::vector<double*>& outputs,
                                    std::size_t count) const override;
    bool surfaceCoefficientInformationAvailable() const override;
    bool qualityMetricInformationAvailable() const override;
    /** @throw Error always, as for qualityMetricInformation(). */
    std::string surfaceCoefficientInformation(int offset) const override;
    std::string qualityMetricInformation(int offset) const override;

    FitMetrics fitMetrics(int offset) const override;
    std::vector<std::string>
    fitWarnings(int offset, const std::vector<std::string>& inputNames = {}) const override;
    std::vector<double> extrapolations(const std::vector<double*>& inputs,
                                       std::size_t count) const override;
    Extrapolation extrapolation(const std::vector<double*>& inputs, std::size_t count,
                                const std::vector<std::string>& inputNames = {}) const override;
    std::vector<char> outsideCases(const std::vector<double*>& inputs,
                                   std::size_t count) const override;
    PredictorDescription predictorDescription(int offset) const override;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
