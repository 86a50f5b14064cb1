#pragma once

#include <mirel_modelexport/ExportedModel.h>

#include <string>

/** The model as one C99 file that needs nothing but the standard library. */
std::string cSource(const ExportedModel& model);
