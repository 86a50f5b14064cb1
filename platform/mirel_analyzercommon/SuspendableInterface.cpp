#include <mirel_analyzercommon/SuspendableInterface.h>

SuspendableInterface::~SuspendableInterface() = default;
