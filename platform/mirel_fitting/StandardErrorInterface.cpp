#include <mirel_fitting/StandardErrorInterface.h>

StandardErrorInterface::~StandardErrorInterface() = default;
