#include <surrogatemodel/InterpolationPointsInterface.h>

InterpolationPointsInterface::InterpolationPointsInterface() = default;
InterpolationPointsInterface::InterpolationPointsInterface(const InterpolationPointsInterface&) =
    default;
InterpolationPointsInterface&
InterpolationPointsInterface::operator=(const InterpolationPointsInterface&) = default;
InterpolationPointsInterface::~InterpolationPointsInterface() = default;
