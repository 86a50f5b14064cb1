#pragma once

#include <mirel_modelexport/ExportedModel.h>

#include <string>

/**
 * The model as a workbook with live formulas: a row of inputs and outputs that can be copied
 * downwards, the cases of a Kriging model on sheets of their own, and the check points.
 * @throw SurrogateModelInterface::Error where a sheet has too few columns, or a formula would be
 *        too long.
 */
std::string excelWorkbook(const ExportedModel& model);
