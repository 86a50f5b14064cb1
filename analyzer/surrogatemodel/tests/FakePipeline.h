#pragma once

#include "CaseTable.h"

#include <mirel_datapipeline/DataPipelineManagerInterface.h>

#include <vtkInformation.h>
#include <vtkObjectFactory.h>
#include <vtkTableAlgorithm.h>

#include <functional>
#include <utility>

/** An algorithm whose output shows the arrays of a given table, and that counts its executions. */
class TableSource : public vtkTableAlgorithm
{
public:
    static TableSource* New() { VTK_STANDARD_NEW_BODY(TableSource); }
    vtkTypeMacro(TableSource, vtkTableAlgorithm)

    vtkSmartPointer<vtkTable> table = vtkSmartPointer<vtkTable>::New();
    std::function<void()> onExecute;
    int executions = 0;

protected:
    TableSource() { SetNumberOfInputPorts(0); }

    int RequestData(vtkInformation*, vtkInformationVector**, vtkInformationVector* outputs) override
    {
        ++executions;
        if (onExecute) {
            onExecute();
        }
        vtkTable::GetData(outputs, 0)->ShallowCopy(table);
        return 1;
    }
};

/** A pipeline over a table of the test's own; it emits its signal only on request. */
class FakePipeline : public DataPipelineManagerInterface
{
public:
    vtkSmartPointer<vtkTableAlgorithm> outputAlgorithm() const override
    {
        ++requests;
        return onRequest ? onRequest(requests) : source.GetPointer();
    }

    void show(const CaseTable& cases) const { show(cases.get()); }

    void show(vtkTable* table) const
    {
        source->table = table;
        source->Modified();
    }

    void emitChange() const { emitChanged(); }

    /** Answers the n-th request, counted from 1, in place of the source. */
    std::function<vtkSmartPointer<vtkTableAlgorithm>(int)> onRequest;
    mutable int requests = 0;
    vtkSmartPointer<TableSource> source = vtkSmartPointer<TableSource>::New();
};
