#include <mirel_fitting/ResponseSurfaceStatistics.h>

const char* natureName(StationaryPoint::Nature nature)
{
    switch (nature) {
    case StationaryPoint::Nature::Minimum:
        return "minimum";
    case StationaryPoint::Nature::Maximum:
        return "maximum";
    case StationaryPoint::Nature::Saddle:
        return "saddle";
    default:
        return "ridge";
    }
}
