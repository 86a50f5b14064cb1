#include <surrogatemodel/SurrogateModelManagerInterface.h>

SurrogateModelManagerInterface::SurrogateModelManagerInterface() = default;

SurrogateModelManagerInterface::~SurrogateModelManagerInterface()
{
    // A slot may destroy the manager: later slots of the same emission must not run then.
    signalModelChanged.disconnect_all_slots();
}

void SurrogateModelManagerInterface::signalModelChangedConnected() const {}

boost::signals2::connection SurrogateModelManagerInterface::connectSignalModelChanged(
    const ModelChangedSignal::slot_type& slot) const
{
    const boost::signals2::connection connection = signalModelChanged.connect(slot);
    signalModelChangedConnected();
    return connection;
}

boost::signals2::connection SurrogateModelManagerInterface::connectSignalModelChangedExtended(
    const ModelChangedSignal::extended_slot_type& slot) const
{
    const boost::signals2::connection connection = signalModelChanged.connect_extended(slot);
    signalModelChangedConnected();
    return connection;
}
