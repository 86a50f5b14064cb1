#include <mirel_fitting/GradientInterface.h>

GradientInterface::~GradientInterface() = default;
