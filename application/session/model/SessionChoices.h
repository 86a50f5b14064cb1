#pragma once

#include <session/cases/CaseRoles.h>
#include <session/cases/CaseTable.h>
#include <session/model/CaseSession.h>

#include <surrogate_session/Export.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

class ProjectDocument;

/** What a user chooses about cases as they are opened. */
struct SessionChoices
{
    std::vector<std::string> inputs;                      ///< as chooseCaseRoles() takes them
    std::vector<std::string> outputs;                     ///< likewise
    UnnamedOutputs unnamedOutputs = UnnamedOutputs::None; ///< of cases without a project
    std::optional<std::string> excluded; ///< as readCaseNumbers() reads it, or "none"
    std::optional<CaseSession::ModelType> model;
    std::optional<ResponseSurfaceOptions::Selection> selection;
    std::optional<PolynomialTerms> terms;
    std::string formula; ///< of chosen terms, in names of inputs
    std::optional<TransformSetting> transform;
    std::optional<InputCoding> coding;
    std::optional<std::string> weights; ///< a column, or "none"
    std::optional<std::string> blocks;  ///< likewise
};

struct OpenedProject
{
    std::unique_ptr<CaseSession> session;
    std::vector<std::string> notes; ///< sentences on what of the document was not taken over
};

/**
 * Opens cases with these choices. Without a choice the inputs are the columns that
 * chooseCaseRoles() takes, no case is excluded, and the model is a response surface of all terms.
 * Each input stays at the median of the valid cases until it is given values.
 * @throw UsageError for names and case numbers that do not exist; CaseDataError
 */
SURROGATE_SESSION_EXPORT std::unique_ptr<CaseSession> openCases(CaseTable table,
                                                                const SessionChoices& choices);

/**
 * Opens the cases of a project with the choices of its document; `choices` take precedence. An
 * input for which the document chooses no value stays at the median of the valid cases.
 * @throw UsageError for names and case numbers that do not exist; CaseDataError;
 *        ProjectDocumentError if the document does not fit the cases.
 */
SURROGATE_SESSION_EXPORT OpenedProject openProject(CaseTable table, const ProjectDocument& document,
                                                   const SessionChoices& choices);

/**
 * Refuses a workspace without an output, or without an input.
 * @param isOfProject whether a project chose the roles; else all suitable columns are inputs.
 * @throw UsageError
 */
SURROGATE_SESSION_EXPORT void requireRoles(const Workspace& workspace, bool isOfProject);

/**
 * Refuses more inputs than the workspace's model can have, before anything is fitted. Of a Kriging
 * model those that vary count; a response surface of chosen terms may have any number.
 * @param comparesModels whether a Kriging model is fitted, whatever the workspace's model is.
 * @throw UsageError
 */
SURROGATE_SESSION_EXPORT void requireFewInputs(const Workspace& workspace, bool comparesModels);
