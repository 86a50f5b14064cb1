#include "session/model/InputValues.h"

#include "session/model/Workspace.h"
#include "session/project/ProjectDocument.h"
#include "session/text/AsciiText.h"
#include "session/text/CellValue.h"
#include "session/text/SessionErrors.h"
#include "session/text/WholeNumber.h"

#include <surrogatemodel/SurrogateModelUserDist.h>

#include <mirel_datamanagement/Project.h>

#include <algorithm>

namespace {
/** "1,5" in a file with decimal commas is one value to its author and two to a distribution text.
 */
bool hasCommaBetweenDigits(const std::string& text)
{
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        if (text[i] == ',' && isDigit(text[i - 1]) && isDigit(text[i + 1])) {
            return true;
        }
    }
    return false;
}
} // namespace

InputValues::InputValues(Workspace& workspace)
    : workspace(workspace), variables(namesOf(workspace.project().variables())),
      inputs(namesOf(workspace.inputs())), isTaken(inputs.size())
{}

bool InputValues::isName(const std::string& text) const
{
    const std::vector<std::string>& names = variables.names();
    return text.find('=') == std::string::npos ||
           std::find(names.begin(), names.end(), text) != names.end();
}

void InputValues::sweep(const std::string& assignment)
{
    const auto [variable, text] = variables.assignment(assignment);
    if (workspace.source().layout.hasDecimalComma && hasCommaBetweenDigits(text)) {
        throw UsageError("The values \"" + text + "\" of \"" + variables.names()[variable] +
                         "\" have a comma between digits, and commas separate values: write a "
                         "decimal point, or a blank behind each comma.");
    }
    const std::size_t input = take(variable);
    const std::size_t count = SurrogateModelUserDist(text).valueCount();
    typedValues += count;
    if (count <= ProjectDocument::maxTypedValues && typedValues > ProjectDocument::maxTypedValues) {
        throw DistributionTextError("The texts of the inputs ask for " +
                                    std::to_string(typedValues) + " values together, and at most " +
                                    std::to_string(ProjectDocument::maxTypedValues) +
                                    " can be typed. Ask for fewer values.");
    }
    workspace.sweep(input, text);
}

void InputValues::sweepEvenly(const std::string& name, std::size_t count)
{
    workspace.sweepEvenly(take(variables.position(name)), count);
}

void InputValues::sweepEvenly(const std::string& assignment)
{
    const auto [variable, text] = variables.assignment(assignment);
    const std::size_t input = take(variable);
    const std::size_t count = readWholeNumber("The count of \"" + inputs[input] + '"', text, 2,
                                              ProjectDocument::maxSweptValues);
    workspace.sweepEvenly(input, count);
}

void InputValues::hold(const std::string& assignment)
{
    const auto [variable, text] = variables.assignment(assignment);
    const std::size_t input = take(variable);
    workspace.stayAt(input, withPoint(text));
    heldInputs.push_back(input);
}

const std::vector<std::size_t>& InputValues::held() const
{
    return heldInputs;
}

/** One number as the case file writes numbers, with a decimal point. */
std::string InputValues::withPoint(std::string text) const
{
    if (workspace.source().layout.hasDecimalComma &&
        CellValue::read(text, true).mark == CellValue::Comma) {
        std::replace(text.begin(), text.end(), ',', '.');
    }
    return text;
}

std::size_t InputValues::take(std::size_t variable)
{
    const std::string& name = variables.names()[variable];
    const auto found = std::find(inputs.begin(), inputs.end(), name);
    if (found == inputs.end()) {
        throw UsageError('"' + name + "\" is no input, so that it takes no values.");
    }
    const auto input = static_cast<std::size_t>(found - inputs.begin());
    if (isTaken[input]) {
        throw UsageError('"' + name + "\" has values twice; name it once.");
    }
    isTaken[input] = true;
    return input;
}
