#include <surrogatemodel/InterpolationVariablesInterface.h>

InterpolationVariablesInterface::InterpolationVariablesInterface() = default;

InterpolationVariablesInterface::~InterpolationVariablesInterface()
{
    // Explicitly: an emission that is under way keeps the slots alive.
    signalInterpolationVariablesChanged.disconnect_all_slots();
}

void InterpolationVariablesInterface::signalInterpolationVariablesChangedConnected() const {}

boost::signals2::connection
InterpolationVariablesInterface::connectSignalInterpolationVariablesChanged(
    const InterpolationVariablesChangedSignal::slot_type& slot) const
{
    boost::signals2::connection connection = signalInterpolationVariablesChanged.connect(slot);
    signalInterpolationVariablesChangedConnected();
    return connection;
}
