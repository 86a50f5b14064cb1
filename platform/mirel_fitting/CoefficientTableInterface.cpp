#include <mirel_fitting/CoefficientTableInterface.h>

CoefficientTableInterface::~CoefficientTableInterface() = default;
