#include <mirel_datapipeline/DataPipelineManagerInterface.h>

#include <mirel_signals/EmitSignal.h>

DataPipelineManagerInterface::DataPipelineManagerInterface() = default;

DataPipelineManagerInterface::~DataPipelineManagerInterface()
{
    // A running emission keeps its slots: without this it would go on calling them after one of
    // them has destroyed the pipeline.
    changedSignal.disconnect_all_slots();
}

boost::signals2::connection
DataPipelineManagerInterface::connectSignalChanged(const ChangedSignal::slot_type& slot) const
{
    return changedSignal.connect(slot);
}

void DataPipelineManagerInterface::emitChanged() const
{
    emitSignal(changedSignal);
}
