#pragma once

#include <mirel_fitting/CaseDesign.h>
#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/KrigingOptions.h>
#include <mirel_fitting/ResponseSurfaceOptions.h>
#include <mirel_fitting/TransformSetting.h>

#include <mirel_fitting/Export.h>

#include <memory>
#include <vector>

/** Which model is fitted to cases and how: the one place from which the programs and the Python
 *  module have their models, so that the same choices give the same model. */
struct MIREL_FITTING_EXPORT ModelSettings
{
    bool isKriging = false;                               ///< or a response surface
    TransformSetting transform = TransformSetting::Usual; ///< of each output
    KrigingOptions kriging = {};                          ///< unused for a response surface
    ResponseSurfaceOptions responseSurface = {}; ///< unused for Kriging; formula in V1, V2, ...

    /** @throw SurrogateModelInterface::Error as the constructors of the models, whose arguments
     *         these are. Kriging does not take the design into account. */
    std::unique_ptr<FittedModel> fit(const std::vector<double*>& independentColumns,
                                     const std::vector<double*>& dependentColumns,
                                     std::size_t rowCount, const CaseDesign& design = {}) const;
};
