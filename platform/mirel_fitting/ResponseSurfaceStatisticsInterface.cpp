#include <mirel_fitting/ResponseSurfaceStatisticsInterface.h>

ResponseSurfaceStatisticsInterface::~ResponseSurfaceStatisticsInterface() = default;
