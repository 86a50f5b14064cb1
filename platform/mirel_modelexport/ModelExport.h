#pragma once

#include <mirel_modelexport/ExportedModel.h>
#include <mirel_property/ExceptionBase.h>

#include <mirel_modelexport/Export.h>

#include <string>

/** What exportModel() writes. */
enum class ExportFormat
{
    Text,   ///< formulas for a reader
    Json,   ///< what readExportedModel() makes the same model of again
    C,      ///< one C99 file: surrogate_0() ..., surrogate_self_check()
    Python, ///< one module: predict(), self_check()
    Excel   ///< a workbook that computes the outputs of the inputs typed into it
};

/**
 * The file of a model, as bytes; the same model gives the same bytes. Each carries ten check
 * points inside the ranges of the cases, what the model predicts there, and, where it can compute,
 * a self-check that fails loudly when it does not come out the same.
 * @throw SurrogateModelInterface::Error for what the format cannot hold, with a sentence.
 */
MIREL_MODELEXPORT_EXPORT std::string exportModel(const ExportedModel& model, ExportFormat format);

/** A document that is no exported model, or a damaged one: what is wrong, a sentence that goes on
 *  from the document's name and names the member. */
class MIREL_MODELEXPORT_EXPORT ModelImportError : public veska::ExceptionBase
{
public:
    using veska::ExceptionBase::ExceptionBase;
    ~ModelImportError() override;
};

/**
 * Reads what exportModel() wrote as JSON, and computes its check points.
 * @throw ModelImportError
 */
MIREL_MODELEXPORT_EXPORT ExportedModel readExportedModel(const std::string& json);
