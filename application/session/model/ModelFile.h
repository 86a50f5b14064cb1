#pragma once

#include <mirel_modelexport/ModelExport.h>

#include <surrogate_session/Export.h>

#include <string>

class CaseSession;

/** Exported models as users see them: their files, and the session that they come from. */
namespace ModelFile {

/** What the name of a file that holds a model ends with. */
constexpr const char* fileEnding = ".json";

/** Whether a file is an exported model, by its name. */
SURROGATE_SESSION_EXPORT bool isModelFile(const std::string& path);

/**
 * The model of a session with the names and the ranges.
 * @param report an object that goes with the model; null: none.
 * @throw SurrogateModelInterface::Error if it cannot be fitted or described; the sentence names the
 *        output.
 */
SURROGATE_SESSION_EXPORT ExportedModel exported(CaseSession& session,
                                                nlohmann::ordered_json report);

/** @throw FileError if the file cannot be read; ModelFileError if it is no model that can be used.
 */
SURROGATE_SESSION_EXPORT ExportedModel read(const std::string& path);

} // namespace ModelFile
