#include <mirel_fitting/KrigingReportInterface.h>

KrigingReportInterface::~KrigingReportInterface() = default;
