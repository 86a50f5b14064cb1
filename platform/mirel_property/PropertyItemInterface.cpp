#include <mirel_property/PropertyItemInterface.h>

namespace veska {

PropertyItemInterface::PropertyItemInterface() = default;

PropertyItemInterface::~PropertyItemInterface()
{
    // A running emission holds its slots: without this it would go on calling them for an item that
    // one of them has destroyed.
    changedSignal.disconnect_all_slots();
}

boost::signals2::connection PropertyItemInterface::connectSignalPropertyChanged(
    const PropertyChangedSignal::slot_type& slot) const
{
    boost::signals2::connection connection = changedSignal.connect(slot);
    signalPropertyChangedConnected();
    return connection;
}

PropertyItemInterface::PropertyChangedSignal& PropertyItemInterface::signalPropertyChanged() const
{
    return changedSignal;
}

void PropertyItemInterface::signalPropertyChangedConnected() const {}

} // namespace veska
