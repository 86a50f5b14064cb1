#pragma once

#include <surrogatemodel/Export.h>
#include <surrogatemodel/InterpolationPointsInterface.h>
#include <surrogatemodel/InterpolationVariablesInterface.h>

#include <property/PropertyAbstract.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

class SignalConnectionCollection;
class SurrogateModelManagerInterface;
class SurrogateModelUserDistCollection;

/**
 * Interpolation variables whose subclass chooses, variable by variable, whether it is swept and
 * over which points. What the user typed comes first:
 *
 * - The subclass gives no points: the values of the manager's evaluation point.
 * - It gives points, and the mode of the variable's user distribution is UserDefined: the values of
 *   that distribution. A faulty or empty text gives none, so that the grid is empty.
 * - It gives points otherwise: those.
 *
 * Nothing is cached: the settings are read on every call. A change of the user distributions or of
 * the evaluation point emits signalInterpolationVariablesChanged; a change of the list of
 * independent variables or of the model's type does not, it emits the manager's signal.
 */
class SURROGATEMODEL_EXPORT InterpolationVariablesAbstract
    : public virtual InterpolationVariablesInterface
{
public:
    /** Evenly spaced values, ends included. */
    class SURROGATEMODEL_EXPORT DistributedPoints : public virtual InterpolationPointsInterface
    {
    public:
        /**
         * @param range low and high end, in the variable's units; not checked, the low end may be
         *              the greater one.
         * @param count number of values. One value is NaN, since it has no step.
         */
        DistributedPoints(const std::pair<double, double>& range, std::size_t count);

        /**
         * Appends the values range.first + i * step to `values`, where step is
         * (range.second - range.first) / (count - 1). The last one is computed like the others, so
         * that rounding can leave it next to the high end.
         */
        void get(std::vector<double>& values) const override;

        ~DistributedPoints() override;

    private:
        std::pair<double, double> range;
        std::size_t count;
    };

    /**
     * @param manager           shared from now on.
     * @param userDistributions mode and text by variable name; borrowed:
     *                          inputIndependentVariables() reads it, the destructor does not.
     * @throw std::invalid_argument if `manager` is null.
     */
    InterpolationVariablesAbstract(
        boost::shared_ptr<const SurrogateModelManagerInterface> manager,
        const veska::PropertyAbstract<SurrogateModelUserDistCollection>& userDistributions);

    /** Stops listening to the settings. */
    ~InterpolationVariablesAbstract() override;

    /** @throw HandleError for a listed variable that is destroyed. */
    boost::shared_ptr<std::map<VarPtr, std::vector<double>>>
    inputIndependentVariables() const override;

    /** Whether the subclass gives points for `variable`; the user's mode does not matter. */
    bool isVariableEmployed(VarPtr variable) const override;

    /** Blocks signalInterpolationVariablesChanged. Calls are not counted. */
    void suspend() override;

    /** Unblocks the signal; changes made meanwhile are not emitted later. */
    void resume() override;

protected:
    /**
     * The points over which `variable` is swept unless the user chose others; null if it stays at
     * the evaluation point.
     */
    virtual boost::shared_ptr<InterpolationPointsInterface>
    interpolationPoints(VarPtr variable) const = 0;

private:
    boost::shared_ptr<const InterpolationPointsInterface>
    sweptPoints(const VarPtr& variable,
                const SurrogateModelUserDistCollection& distributions) const;

    boost::shared_ptr<const SurrogateModelManagerInterface> manager;
    std::unique_ptr<SignalConnectionCollection> connections;
    const veska::PropertyAbstract<SurrogateModelUserDistCollection>& userDistributions;
};
