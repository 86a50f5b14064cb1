#pragma once

#include <mirel_modelexport/ModelExport.h>

#include <string>

/** The model as formulas and numbers for a reader. */
std::string equationDocument(const ExportedModel& model);
