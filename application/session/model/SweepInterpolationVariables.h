#pragma once

#include <surrogatemodel/InterpolationVariablesAbstract.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

class Project;

/**
 * Interpolation variables by choice: some inputs are swept, evenly over their range in the valid
 * cases (sweepRange()) or a given one, all others stay at the manager's evaluation point; some
 * outputs are wanted, in an order. A swept input whose user distribution has mode UserDefined takes
 * the values typed there instead.
 *
 * signalInterpolationVariablesChanged reports each choice that changes something, unless suspended.
 */
class SURROGATE_SESSION_EXPORT SweepInterpolationVariables : public InterpolationVariablesAbstract
{
public:
    using Range = std::pair<double, double>;

    /** Even values of one variable: how many, and over which range if not sweepRange(). */
    struct Sweep
    {
        std::size_t count = 0;
        std::optional<Range> range;

        bool operator==(const Sweep& other) const
        {
            return count == other.count && range == other.range;
        }
    };

    /** Nothing is swept and nothing wanted at first; the first arguments as for the base class.
     *  @param project has the cases; shared from now on. */
    SweepInterpolationVariables(
        boost::shared_ptr<const SurrogateModelManagerInterface> manager,
        const veska::PropertyAbstract<SurrogateModelUserDistCollection>& userDistributions,
        boost::shared_ptr<const Project> project);
    ~SweepInterpolationVariables() override;

    /** Sweeps over the range that the valid cases have when values are asked for.
     *  @param count of values; one alone is NaN, as DistributedPoints has it. */
    void sweep(const VarPtr& variable, std::size_t count);

    void stayAtEvaluationPoint(const VarPtr& variable);

    /** The swept variables; all others stay at the evaluation point. */
    const std::map<VarPtr, Sweep>& sweeps() const;

    /** Chooses all at once, with one signal at most. */
    void setSweeps(const std::map<VarPtr, Sweep>& sweeps);

    /** @param outputs each once. */
    void setOutputs(const std::vector<VarPtr>& outputs);
    const std::vector<VarPtr>& outputs() const { return chosenOutputs; }

    /** The outputs as a set. */
    std::set<VarPtr> dependentVariables() const override;

    void suspend() override;
    void resume() override;

protected:
    boost::shared_ptr<InterpolationPointsInterface>
    interpolationPoints(VarPtr variable) const override;

private:
    void emitChanged() const;

    Range rangeOf(const VarPtr& variable) const;

    boost::shared_ptr<const SurrogateModelManagerInterface> manager;
    boost::shared_ptr<const Project> project;
    std::map<VarPtr, Sweep> chosenSweeps;
    std::vector<VarPtr> chosenOutputs;
    bool isSuspended = false;
};
