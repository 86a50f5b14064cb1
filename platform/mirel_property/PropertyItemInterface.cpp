#include <mirel_property/PropertyItemInterface.h>

namespace veska {

PropertyItemInterface::PropertyItemInterface() = default;

PropertyItemInterface::~PropertyItemInterface()
{
    // A running emission keeps its slots: without this it would go on calling them after one of
    // them has destroyed the item.
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
