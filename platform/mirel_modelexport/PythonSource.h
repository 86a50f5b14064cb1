#pragma once

#include <mirel_modelexport/ExportedModel.h>

#include <string>

/** The model as one Python 3 module that needs nothing but the standard library. */
std::string pythonSource(const ExportedModel& model);
