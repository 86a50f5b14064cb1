#pragma once

#include <mirel_modelexport/ExportedModel.h>

#include <string>

/** The model as formulas and numbers for a reader. */
std::string equationDocument(const ExportedModel& model);
