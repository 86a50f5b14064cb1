#pragma once

#include <surrogatemodel/SurrogateModelManagerInterface.h>

/** "Kriging", "response surface". */
inline const char* modelName(SurrogateModelManagerInterface::ModelType type)
{
    return type == SurrogateModelManagerInterface::Kriging ? "Kriging" : "response surface";
}
