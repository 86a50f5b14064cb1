#include <surrogatemodel/InterpolationVariablesInterface.h>

InterpolationVariablesInterface::InterpolationVariablesInterface() = default;

InterpolationVariablesInterface::~InterpolationVariablesInterface()
{
    // A running emission keeps its slots: without this it would call them after this destructor.
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
