#include <mirel_fitting/ExtrapolationInterface.h>

ExtrapolationInterface::~ExtrapolationInterface() = default;
