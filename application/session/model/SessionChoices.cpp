#include "session/model/SessionChoices.h"

#include "session/cases/CaseNumbers.h"
#include "session/cases/CaseRoles.h"
#include "session/cases/VariableNames.h"
#include "session/project/ProjectCases.h"
#include "session/project/ProjectDocument.h"
#include "session/text/QuotedText.h"
#include "session/text/SessionErrors.h"
#include "session/text/SettingHint.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/TermFormula.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <utility>

namespace {
std::vector<std::size_t> excludedCases(const std::string& text, std::size_t cases)
{
    return text == "none" ? std::vector<std::size_t>() : readCaseNumbers(text, cases);
}

void requireFormula(const std::string& formula, const std::vector<std::string>& inputs)
{
    try {
        TermFormula(formula, inputs);
    } catch (const SurrogateModelInterface::Error& error) {
        throw UsageError(std::string(error.what()) + " Terms" + settingHint(Setting::Terms) +
                         " are linear, interactions, quadratic or a sum of terms such as "
                         "A + B + A * B + A^2 of the inputs, which are: " +
                         joinedText(inputs) + '.');
    }
}

/** How many inputs have different values in the valid cases. */
std::size_t varyingInputs(const Workspace& workspace)
{
    const std::vector<std::size_t> cases = workspace.validCases();
    return static_cast<std::size_t>(std::count_if(
        workspace.inputs().begin(), workspace.inputs().end(), [&](const VarPtr& input) {
            const std::vector<double>& values = workspace.project().numericValues(input);
            return std::any_of(cases.begin(), cases.end(), [&](std::size_t row) {
                return values[row] != values[cases.front()];
            });
        }));
}

void chooseModelOptions(const SessionChoices& choices, const CaseDesignColumns& design,
                        CaseSession& session)
{
    ModelChoices chosen = session.modelChoices();
    chosen.designColumns = design;
    chosen.transform = choices.transform.value_or(chosen.transform);
    chosen.coding = choices.coding.value_or(chosen.coding);
    ResponseSurfaceOptions& options = chosen.responseSurface;
    options.selection = choices.selection.value_or(options.selection);
    if (choices.terms) {
        options.terms = *choices.terms;
        options.formula = choices.formula;
    }
    session.choose(chosen);
    if (options.terms == PolynomialTerms::Chosen) {
        requireFormula(options.formula, namesOf(session.inputs()));
    }
}

CaseDesignColumns chosenDesign(CaseDesignColumns design, const SessionChoices& choices)
{
    if (choices.weights) {
        design.weights = *choices.weights == "none" ? "" : *choices.weights;
    }
    if (choices.blocks) {
        design.blocks = *choices.blocks == "none" ? "" : *choices.blocks;
    }
    return design;
}

/** The inputs, by their positions, for which these values choose none: one of mode Auto is a median
 *  of the cases that were valid when it was saved. */
std::vector<std::size_t>
inputsWithoutValue(const Workspace& workspace,
                   const std::vector<ProjectDocument::Distribution>& values)
{
    std::set<std::string> chosen;
    for (const ProjectDocument::Distribution& value : values) {
        if (value.mode != "Auto") {
            chosen.insert(value.name);
        }
    }
    std::vector<std::size_t> inputs;
    const std::vector<std::string> names = namesOf(workspace.inputs());
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (chosen.count(names[i]) == 0) {
            inputs.push_back(i);
        }
    }
    return inputs;
}

/** The library passes over inputs that are none, and the predictions are others without them. */
void noteMissingInputs(const ProjectDocument& document, OpenedProject& opened)
{
    const std::vector<std::string> present = namesOf(opened.session->inputs());
    for (const std::string& name : document.modelInputs()) {
        if (std::find(present.begin(), present.end(), name) == present.end()) {
            opened.notes.push_back("the input " + quotedText(name) +
                                   " of the project is left out, it is no independent variable "
                                   "there.");
        }
    }
}

/** The library takes every type that it does not know for Kriging. */
void noteUnknownModel(const ProjectDocument& document, OpenedProject& opened)
{
    const std::string type = document.modelType();
    if (!type.empty() && type != "Kriging" && type != "ResponseModel") {
        opened.notes.push_back("the model " + quotedText(type) +
                               " of the project is not known to this version, which takes "
                               "kriging.");
    }
}
/** Why the columns are no inputs, as the end of a sentence. */
std::string missingInputText(const Workspace& workspace)
{
    const ReasonedNames reasons = workspace.reasonsAgainstInputs();
    return reasons.empty()
               ? ": there is no other column; if the file has more, name what separates "
                 "them" +
                     settingHint(Setting::Separator) + '.'
               : ": " + reasonsText(reasons) + ". Name the inputs" + settingHint(Setting::Inputs) +
                     '.';
}
} // namespace

std::unique_ptr<CaseSession> openCases(CaseTable table, const SessionChoices& choices)
{
    const CaseDesignColumns design = chosenDesign({}, choices);
    const CaseRoles roles =
        chooseCaseRoles(table, choices.inputs, choices.outputs, choices.unnamedOutputs, design);
    const std::vector<std::size_t> excluded =
        excludedCases(choices.excluded.value_or("none"), table.cases);
    auto session = std::make_unique<CaseSession>(
        std::move(table), roles, excluded, choices.model.value_or(CaseSession::ResponseSurface));
    chooseModelOptions(choices, design, *session);
    session->holdAtMedians(inputsWithoutValue(*session, {}));
    return session;
}

OpenedProject openProject(CaseTable table, const ProjectDocument& document,
                          const SessionChoices& choices)
{
    const CaseDesignColumns design = chosenDesign(document.designColumns, choices);
    const CaseRoles roles =
        chooseCaseRoles(table, choices.inputs, choices.outputs, rolesIn(document, table), design);
    const std::size_t cases = table.cases;

    OpenedProject opened;
    opened.session = std::make_unique<CaseSession>(std::move(table));
    CaseSession& session = *opened.session;
    session.load(document);
    if (choices.inputs.empty()) {
        noteMissingInputs(document, opened);
    }
    if (!choices.inputs.empty() || !choices.outputs.empty() || choices.weights || choices.blocks) {
        session.chooseRoles(roles);
    }
    if (choices.excluded) {
        session.exclude(excludedCases(*choices.excluded, cases));
    }
    if (choices.model) {
        session.chooseModel(*choices.model);
    } else {
        noteUnknownModel(document, opened);
    }
    chooseModelOptions(choices, design, session);
    session.holdAtMedians(inputsWithoutValue(session, document.evaluationPoint()));
    return opened;
}

void requireRoles(const Workspace& workspace, bool isOfProject)
{
    if (workspace.counts().read == 0) {
        throw SurrogateModelInterface::Error(
            "The case file names columns and holds no case; add a row for each case.");
    }
    if (workspace.outputs().empty()) {
        std::vector<std::string> numeric;
        for (const VarPtr& variable : workspace.project().variables()) {
            if (variable.lock()->isNumeric()) {
                numeric.push_back('"' + variable.lock()->name() + '"');
            }
        }
        throw UsageError("An output is needed: name one" + settingHint(Setting::Outputs) + ". " +
                         (numeric.empty()
                              ? "No column is numeric."
                              : "The numeric columns are: " + joinedText(numeric) + '.'));
    }
    if (workspace.inputs().empty()) {
        throw UsageError(
            isOfProject ? "The project has no input; name one" + settingHint(Setting::Inputs) + '.'
                        : "No column is left to be an input" + missingInputText(workspace));
    }
}

void requireFewInputs(const Workspace& workspace, bool comparesModels)
{
    std::size_t count = workspace.inputs().size();
    const auto refuse = [&](const std::string& model, std::size_t limit, const std::string& need) {
        throw UsageError(std::to_string(count) + " columns would be inputs, and " + model +
                         " takes at most " + std::to_string(limit) + ": it would need " + need +
                         ". Name the inputs that matter" + settingHint(Setting::Inputs) + '.');
    };
    if (comparesModels || workspace.modelType() == Workspace::Kriging) {
        if (count <= KrigingSurrogateModel::maxInputs) {
            return;
        }
        count = varyingInputs(workspace); // constant ones cost nothing
        if (count > KrigingSurrogateModel::maxInputs) {
            const std::size_t megabytes = count * count / 125000; // 8 bytes per pair of inputs
            refuse("a Kriging model", KrigingSurrogateModel::maxInputs,
                   std::to_string(megabytes) +
                       " MB of memory for each search for their correlation lengths, and time that "
                       "grows with the cube of their number");
        }
    } else if (count >= SurrogateResponseSurfaceModel::maxTerms &&
               workspace.modelChoices().responseSurface.terms != PolynomialTerms::Chosen) {
        refuse("a response surface", SurrogateResponseSurfaceModel::maxTerms - 1,
               std::to_string(count + 1) + " valid cases for the linear terms alone");
    }
}
