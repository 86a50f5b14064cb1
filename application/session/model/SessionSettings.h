#pragma once

#include <session/model/SweepInterpolationVariables.h>
#include <session/project/ModelChoices.h>

#include <surrogatemodel/SurrogateModelManagerInterface.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_datamanagement/Variable.h>

#include <cstddef>
#include <map>
#include <optional>
#include <utility>
#include <vector>

/** Everything that can be chosen in a session besides its cases, as a value. */
struct SessionSettings : ModelChoices
{
    struct VariableSettings
    {
        Variable::Nature nature = Variable::Unassigned;
        std::optional<std::pair<double, double>> range;

        bool operator==(const VariableSettings& other) const;
    };

    bool operator==(const SessionSettings& other) const;

    std::map<VarPtr, VariableSettings> variables;
    std::vector<std::size_t> excluded; ///< by the user: positions of records, ascending
    SurrogateModelManagerInterface::ModelType type =
        SurrogateModelManagerInterface::ResponseSurface;
    std::vector<VarPtr> inputs;
    std::vector<VarPtr> outputs;
    SurrogateModelUserDistCollection evaluationPoint;
    SurrogateModelUserDistCollection userDistributions;
    std::map<VarPtr, SweepInterpolationVariables::Sweep> sweeps;
};
