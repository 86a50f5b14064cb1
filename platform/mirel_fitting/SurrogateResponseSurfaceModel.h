#pragma once

#include <mirel_fitting/FitMetricsInterface.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <memory>

/**
 * Response surface: a full quadratic polynomial of the inputs, fitted by least squares.
 *
 * Terms: intercept, V1 ... Vd, then V_i V_j with i <= j (for two inputs V1^2, V1 V2, V2^2); they
 * are fitted, stored, printed and listed in this order. With fewer cases than terms the order is
 * lowered, full quadratic to linear to constant; terms that the cases cannot separate are dropped.
 * Both are said in the quality text.
 */
class MIREL_FITTING_EXPORT SurrogateResponseSurfaceModel : public virtual SurrogateModelInterface,
                                                           public virtual FitMetricsInterface
{
public:
    /**
     * @param independentColumns one array of `rowCount` finite values per input, borrowed for the
     *                           call; none at all gives a constant model.
     * @param dependentColumns   one array of `rowCount` values per output, borrowed for the call.
     * @throw Error if there is no case, a column is null, or an input is not finite.
     */
    SurrogateResponseSurfaceModel(const std::vector<double*>& independentColumns,
                                  const std::vector<double*>& dependentColumns,
                                  std::size_t rowCount);

    /** @param highestOrder 0 constant, 1 linear, 2 full quadratic; anything else is an Error. */
    SurrogateResponseSurfaceModel(const std::vector<double*>& independentColumns,
                                  const std::vector<double*>& dependentColumns,
                                  std::size_t rowCount, int highestOrder);

    ~SurrogateResponseSurfaceModel() override;

    void activateDependentVariables(const std::set<int>& offsets) override;
    void interpolateDependentValues(const std::vector<double*>& inputs,
                                    const std::set<int>& offsets, std::vector<double*>& outputs,
                                    std::size_t count) const override;
    bool surfaceCoefficientInformationAvailable() const override;
    bool qualityMetricInformationAvailable() const override;
    std::string surfaceCoefficientInformation(int offset) const override;
    std::string qualityMetricInformation(int offset) const override;

    FitMetrics fitMetrics(int offset) const override;
    std::vector<std::string> fitWarnings(int offset) const override;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
