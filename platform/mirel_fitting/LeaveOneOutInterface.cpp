#include <mirel_fitting/LeaveOneOutInterface.h>

LeaveOneOutInterface::~LeaveOneOutInterface() = default;
