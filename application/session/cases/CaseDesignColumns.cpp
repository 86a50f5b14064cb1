#include "session/cases/CaseDesignColumns.h"

#include "session/cases/VariableNames.h"
#include "session/text/DecimalText.h"
#include "session/text/QuotedText.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/isInvalidValue.h>

#include <algorithm>
#include <map>
#include <set>

namespace {
/** One per record, empty where the cell is missing. */
std::vector<std::string> blockTexts(const Project& project, const std::string& name)
{
    const VarPtr variable = project.variable(name);
    if (!variable.lock()->isNumeric()) {
        return project.textValues(variable);
    }
    std::vector<std::string> texts;
    for (const double value : project.numericValues(variable)) {
        texts.push_back(isInvalidNumber(value) ? std::string() : numberText(value));
    }
    return texts;
}
} // namespace

std::string CaseDesignColumns::fault(const Project& project) const
{
    for (const std::string& name : {weights, blocks}) {
        if (!name.empty() && project.variable(name).isNull()) {
            return VariableNames(namesOf(project.variables())).unknownMessage(name);
        }
    }
    if (weights.empty()) {
        return "";
    }
    const VarPtr variable = project.variable(weights);
    if (!variable.lock()->isNumeric()) {
        return quotedText(weights) + " cannot weigh the cases, it is a column of texts.";
    }
    const std::vector<double>& values = project.numericValues(variable);
    const auto negative =
        std::find_if(values.begin(), values.end(), [](double value) { return value < 0.0; });
    return negative == values.end()
               ? std::string()
               : "The weights " + quotedText(weights) + " must not be negative: that of case " +
                     std::to_string(negative - values.begin() + 1) + " is " +
                     numberText(*negative) + '.';
}

std::vector<std::pair<std::string, std::vector<std::size_t>>>
CaseDesignColumns::leftOut(const Project& project) const
{
    std::vector<std::pair<std::string, std::vector<std::size_t>>> result;
    const auto add = [&](const std::string& name, const auto& values, const auto& lacks) {
        std::vector<std::size_t> records;
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (lacks(values[i])) {
                records.push_back(i);
            }
        }
        if (!records.empty()) {
            result.emplace_back(name, std::move(records));
        }
    };
    if (!weights.empty()) {
        add(weights, project.numericValues(project.variable(weights)),
            [](double value) { return isInvalidNumber(value) || value == 0.0; });
    }
    if (!blocks.empty()) {
        add(blocks, blockTexts(project, blocks),
            [](const std::string& text) { return text.empty(); });
    }
    return result;
}

CaseDesign CaseDesignColumns::design(const Project& project,
                                     const std::vector<std::size_t>& records) const
{
    CaseDesign design;
    if (!weights.empty()) {
        design.weights = project.numericValues(project.variable(weights));
    }
    if (!blocks.empty()) {
        std::map<std::string, std::size_t> numbers;
        for (const std::string& name : blockNames(project)) {
            numbers.emplace(name, numbers.size());
        }
        for (const std::string& text : blockTexts(project, blocks)) {
            // Records without a block are none of those asked for.
            design.blocks.push_back(text.empty() ? 0 : numbers.at(text));
        }
    }
    return design.of(records);
}

std::vector<std::string> CaseDesignColumns::blockNames(const Project& project) const
{
    std::vector<std::string> names;
    std::set<std::string> seen;
    for (const std::string& text :
         blocks.empty() ? std::vector<std::string>() : blockTexts(project, blocks)) {
        if (!text.empty() && seen.insert(text).second) {
            names.push_back(text);
        }
    }
    return names;
}
