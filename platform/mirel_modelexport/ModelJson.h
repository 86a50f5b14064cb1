#pragma once

#include <mirel_modelexport/ExportedModel.h>

#include <string>

/** The model as a document that readExportedModel() reads; numbers read back as the same doubles.
 */
std::string modelJson(const ExportedModel& model);
