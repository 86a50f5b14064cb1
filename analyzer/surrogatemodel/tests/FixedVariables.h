#pragma once

#include <surrogatemodel/InterpolationVariablesInterface.h>

#include <boost/make_shared.hpp>

#include <functional>
#include <map>
#include <set>
#include <vector>

/** Interpolation variables that answer what a test puts in, and run `onValues` before. */
class FixedVariables : public InterpolationVariablesInterface
{
public:
    boost::shared_ptr<std::map<VarPtr, std::vector<double>>>
    inputIndependentVariables() const override
    {
        if (onValues) {
            onValues();
        }
        return boost::make_shared<std::map<VarPtr, std::vector<double>>>(inputs);
    }
    std::set<VarPtr> dependentVariables() const override { return dependents; }
    bool isVariableEmployed(VarPtr variable) const override { return inputs.count(variable) != 0; }
    void suspend() override {}
    void resume() override {}

    std::map<VarPtr, std::vector<double>> inputs;
    std::set<VarPtr> dependents;
    std::function<void()> onValues;
};
