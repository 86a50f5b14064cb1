#pragma once

#include <surrogatemodel/Export.h>

#include <vector>

/**
 * A source of the values at which one variable is evaluated, in the variable's units:
 * evenly distributed points, or a distribution that the user types.
 *
 * Inherited virtually, so that a class may reach it along several paths. It has no state: copying
 * copies nothing.
 */
class SURROGATEMODEL_EXPORT InterpolationPointsInterface
{
public:
    InterpolationPointsInterface();
    InterpolationPointsInterface(const InterpolationPointsInterface&); ///< copies nothing
    InterpolationPointsInterface&
    operator=(const InterpolationPointsInterface&); ///< copies nothing

    /**
     * Writes the source's values to `values`. Each implementation documents whether they are
     * appended or replace the former contents; for an empty vector both are the same.
     */
    virtual void get(std::vector<double>& values) const = 0;

    virtual ~InterpolationPointsInterface();
};
