#include <mirel_datapipeline/DataPipelineManagerInterface.h>

DataPipelineManagerInterface::DataPipelineManagerInterface()
    : changedSignal(std::make_shared<ChangedSignal>())
{}

DataPipelineManagerInterface::~DataPipelineManagerInterface() = default;

boost::signals2::connection
DataPipelineManagerInterface::connectSignalChanged(const ChangedSignal::slot_type& slot) const
{
    return changedSignal->connect(slot);
}

void DataPipelineManagerInterface::emitChanged() const
{
    const std::shared_ptr<ChangedSignal> emitting = changedSignal;
    (*emitting)();
}
