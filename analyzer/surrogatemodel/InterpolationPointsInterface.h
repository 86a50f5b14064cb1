#pragma once

#include <surrogatemodel/Export.h>

#include <vector>

/**
 * A source of the values at which one variable is evaluated, in the variable's units. Evenly
 * distributed points and distributions typed by the user stand behind it alike.
 *
 * Inherited virtually, so that a class may reach it along several paths. It has no state: copying
 * copies nothing.
 */
class SURROGATEMODEL_EXPORT InterpolationPointsInterface
{
public:
    InterpolationPointsInterface();
    InterpolationPointsInterface(const InterpolationPointsInterface&);
    InterpolationPointsInterface& operator=(const InterpolationPointsInterface&);

    /**
     * Hands the source's values to `values`. Whether they come after what `values` held or instead
     * of it is said by the implementation; an empty vector gets the same from both kinds.
     */
    virtual void get(std::vector<double>& values) const = 0;

    virtual ~InterpolationPointsInterface();
};
