#include <mirel_fitting/ModelSettings.h>

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/TransformedOutput.h>

std::unique_ptr<FittedModel> ModelSettings::fit(const std::vector<double*>& independentColumns,
                                                const std::vector<double*>& dependentColumns,
                                                std::size_t rowCount,
                                                const CaseDesign& design) const
{
    // Copied: a transformed output makes its models when they are first needed.
    const auto untransformed =
        [settings = *this](const std::vector<double*>& inputs, const std::vector<double*>& outputs,
                           std::size_t rows,
                           const CaseDesign& ofRows) -> std::unique_ptr<FittedModel> {
        if (settings.isKriging) {
            return std::make_unique<KrigingSurrogateModel>(inputs, outputs, static_cast<int>(rows),
                                                           settings.kriging);
        }
        return std::make_unique<SurrogateResponseSurfaceModel>(
            inputs, outputs, rows, settings.responseSurface, ofRows,
            SurrogateResponseSurfaceModel::Fallback::InteractionsOfTwoLevels);
    };
    const TransformSetting setting = transformFor(transform, isKriging);
    if (setting == TransformSetting::None) {
        return untransformed(independentColumns, dependentColumns, rowCount, design);
    }
    return std::make_unique<TransformedOutput>(independentColumns, dependentColumns, rowCount,
                                               untransformed, setting,
                                               isKriging ? CaseDesign() : design);
}
