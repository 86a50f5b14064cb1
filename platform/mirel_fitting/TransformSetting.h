#pragma once

#include <mirel_fitting/Export.h>

/** Which transform of the outputs that are positive in all cases a model is fitted to. */
enum class TransformSetting
{
    Usual,      ///< Automatic for Kriging, None for a response surface
    Automatic,  ///< by likelihood and left-out cases, for each output: see TransformedOutput
    None,       ///< the outputs themselves
    SquareRoot, ///< of all of them
    Logarithm,  ///< natural, of all of them
    BoxCox      ///< by the likelihood of powers; Automatic for Kriging
};

/** The setting that a type of model uses: Usual and BoxCox as they say above, others themselves. */
MIREL_FITTING_EXPORT TransformSetting transformFor(TransformSetting setting, bool isKriging);

/** "auto", "none", "sqrt", "log", "boxcox", as users write it and documents for programs say it;
 * "usual". */
MIREL_FITTING_EXPORT const char* transformWord(TransformSetting setting);
