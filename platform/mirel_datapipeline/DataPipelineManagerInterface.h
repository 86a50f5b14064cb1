#pragma once

#include <mirel_datapipeline/Export.h>

#include <boost/signals2/signal.hpp>
#include <vtkSmartPointer.h>

class vtkTableAlgorithm;

/** Delivers the cases of the project as one table, and a signal when they change. */
class MIREL_DATAPIPELINE_EXPORT DataPipelineManagerInterface
{
public:
    /** The signal does not say what has changed: slots read the table again. */
    using ChangedSignal = boost::signals2::signal<void()>;

    /** Disconnects every listener, also those that a running emission has yet to reach. */
    virtual ~DataPipelineManagerInterface();

    DataPipelineManagerInterface(const DataPipelineManagerInterface&) = delete;
    DataPipelineManagerInterface& operator=(const DataPipelineManagerInterface&) = delete;

    /**
     * The end of the pipeline, never null. After Update(), GetOutput() holds one row per case:
     * column 0 the record's id (read with vtkVariant::ToUnsignedLong), whatever it is called, then
     * one column per variable, named after it. The table is for reading only.
     */
    virtual vtkSmartPointer<vtkTableAlgorithm> outputAlgorithm() const = 0;

    /** Connects a listener, called after each change of the data that the algorithm will deliver.
     */
    boost::signals2::connection connectSignalChanged(const ChangedSignal::slot_type& slot) const;

protected:
    DataPipelineManagerInterface();

    /**
     * Calls the listeners. One of them may destroy this object: touch nothing of it afterwards.
     * What a listener throws passes through.
     */
    void emitChanged() const;

private:
    mutable ChangedSignal changedSignal;
};
