#include "session/model/SessionSettings.h"

bool SessionSettings::VariableSettings::operator==(const VariableSettings& other) const
{
    return nature == other.nature && range == other.range;
}

bool SessionSettings::operator==(const SessionSettings& other) const
{
    return ModelChoices::operator==(other) && variables == other.variables &&
           excluded == other.excluded && type == other.type && inputs == other.inputs &&
           outputs == other.outputs && evaluationPoint == other.evaluationPoint &&
           userDistributions == other.userDistributions && sweeps == other.sweeps;
}
