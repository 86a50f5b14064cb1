#include <surrogatemodel/SurrogateModelQueryToTable.h>

#include <surrogatemodel/InterpolationVariablesInterface.h>
#include <surrogatemodel/SurrogateModelInputTableBuilder.h>
#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_signals/SignalConnectionCollection.h>

#include <QCursor>
#include <QGuiApplication>

#include <boost/format.hpp>

#include <vtkCallbackCommand.h>
#include <vtkCompositeDataPipeline.h>
#include <vtkDoubleArray.h>
#include <vtkInformationVector.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkOutputWindow.h>
#include <vtkTable.h>

#include <locale>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace {

/** Suppresses the executive's own report of a failed filter for as long as it lives. */
class ExecutiveErrorSilencer
{
public:
    explicit ExecutiveErrorSilencer(vtkExecutive* executive)
        : executive(executive),
          tag(executive->AddObserver(vtkCommand::ErrorEvent, vtkNew<vtkCallbackCommand>()))
    {}

    ~ExecutiveErrorSilencer() { executive->RemoveObserver(tag); }

    ExecutiveErrorSilencer(const ExecutiveErrorSilencer&) = delete;
    ExecutiveErrorSilencer& operator=(const ExecutiveErrorSilencer&) = delete;

private:
    vtkExecutive* executive;
    unsigned long tag;
};

/**
 * VTK's own executive stays locked after an exception has passed through the algorithm, and writes
 * a second report into the output window when the algorithm fails, which tells users nothing more.
 */
class QueryExecutive : public vtkCompositeDataPipeline
{
public:
    static QueryExecutive* New();
    vtkTypeMacro(QueryExecutive, vtkCompositeDataPipeline)

protected:
    int CallAlgorithm(vtkInformation* request, int direction, vtkInformationVector** inputs,
                      vtkInformationVector* outputs) override
    {
        const ExecutiveErrorSilencer silence(this);
        try {
            return Superclass::CallAlgorithm(request, direction, inputs, outputs);
        } catch (...) {
            InAlgorithm = 0;
            throw;
        }
    }
};

vtkStandardNewMacro(QueryExecutive);

/**
 * The wait cursor while the model computes. The mouse buttons are read again at the end: a button
 * released meanwhile makes one restore too many, which does nothing; with one pressed meanwhile the
 * cursor is not restored.
 */
class WaitCursor
{
public:
    WaitCursor()
    {
        if (mayChangeCursor()) {
            QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        }
    }

    ~WaitCursor()
    {
        if (mayChangeCursor()) {
            QGuiApplication::restoreOverrideCursor();
        }
    }

    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    /** Making a cursor without a GUI application aborts the process. */
    static bool mayChangeCursor()
    {
        return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr &&
               QGuiApplication::mouseButtons() == Qt::NoButton;
    }
};

double* valuesOf(vtkTable* table, vtkIdType column)
{
    return vtkArrayDownCast<vtkDoubleArray>(table->GetColumn(column))->GetPointer(0);
}

void shareColumns(vtkTable* from, vtkTable* to)
{
    for (vtkIdType column = 0; column < from->GetNumberOfColumns(); ++column) {
        to->AddColumn(from->GetColumn(column));
    }
}

} // namespace

class SURROGATEMODEL_NO_EXPORT SurrogateModelQueryToTable::Impl
{
public:
    boost::shared_ptr<const InterpolationVariablesInterface> ivars;
    boost::shared_ptr<const SurrogateModelManagerInterface> manager;
    SignalConnectionCollection connections;
    std::string lastError;
};

vtkSmartPointer<SurrogateModelQueryToTable>
SurrogateModelQueryToTable::New(boost::shared_ptr<const SurrogateModelManagerInterface> manager,
                                boost::shared_ptr<const InterpolationVariablesInterface> ivars)
{
    if (manager == nullptr || ivars == nullptr) {
        throw std::invalid_argument("A query to a table needs a surrogate-model manager and "
                                    "interpolation variables, but was given a null pointer.");
    }
    auto* const created = new SurrogateModelQueryToTable;
    created->InitializeObjectBase();
    auto filter = vtkSmartPointer<SurrogateModelQueryToTable>::Take(created);
    filter->impl->manager = std::move(manager);
    filter->impl->ivars = std::move(ivars);

    // By raw pointer: a slot that shared the filter would make a cycle with the manager, which the
    // filter shares. The connections end with the filter.
    const auto markModified = [created] { created->Modified(); };
    filter->impl->connections.add(
        filter->impl->ivars->connectSignalInterpolationVariablesChanged(markModified));
    filter->impl->connections.add(filter->impl->manager->connectSignalModelChanged(markModified));
    return filter;
}

SurrogateModelQueryToTable::SurrogateModelQueryToTable() : impl(std::make_unique<Impl>())
{
    SetNumberOfInputPorts(0);
    // Removing the port has made an executive, and the two refer to each other: without it the
    // caller has the only reference. The first use makes another.
    SetExecutive(nullptr);
}

SurrogateModelQueryToTable::~SurrogateModelQueryToTable() = default;

vtkObjectBase* SurrogateModelQueryToTable::NewInstanceInternal() const
{
    return nullptr;
}

vtkExecutive* SurrogateModelQueryToTable::CreateDefaultExecutive()
{
    return QueryExecutive::New();
}

std::string SurrogateModelQueryToTable::getLastError()
{
    return impl->lastError;
}

int SurrogateModelQueryToTable::RequestData(vtkInformation* /*request*/,
                                            vtkInformationVector** /*inputs*/,
                                            vtkInformationVector* outputs)
{
    vtkTable* const output = vtkTable::GetData(outputs, 0);
    impl->lastError.clear();
    try {
        evaluate(output);
        return 1;
    } catch (const SurrogateModelInterface::Error& error) {
        impl->lastError = error.what();
    }
    reportLastError();
    output->SetNumberOfRows(0);
    return 0;
}

void SurrogateModelQueryToTable::evaluate(vtkTable* output) const
{
    const SurrogateModelInputTableBuilder builder(*impl->manager, *impl->ivars);
    const vtkSmartPointer<vtkTable> supplied = builder.suppliedIndependentVarValues();
    const vtkSmartPointer<vtkTable> results = builder.resultDependentVarValues();

    std::vector<double*> inputs;
    for (vtkIdType column = 0; column < supplied->GetNumberOfColumns(); ++column) {
        inputs.push_back(valuesOf(supplied, column));
    }

    // The columns follow the order of the handles, the model that of the offsets. A name that the
    // manager does not know is answered with offset 0: of two columns with one offset the later
    // one is computed, the other stays unset.
    std::map<int, double*> resultsByOffset;
    for (vtkIdType column = 0; column < results->GetNumberOfColumns(); ++column) {
        const std::string name = results->GetColumn(column)->GetName();
        const int offset = static_cast<int>(impl->manager->offsetForVariableName(name));
        resultsByOffset[offset] = valuesOf(results, column);
    }
    std::set<int> offsets;
    std::vector<double*> outputs;
    for (const auto& [offset, values] : resultsByOffset) {
        offsets.insert(offset);
        outputs.push_back(values);
    }
    const auto rows = static_cast<std::size_t>(supplied->GetNumberOfRows());

    const WaitCursor waitCursor;
    // Also without rows or dependents: a model that cannot be fitted is an error all the same.
    SurrogateModelInterface& model = impl->manager->model(offsets);
    model.activateDependentVariables(offsets);
    model.interpolateDependentValues(inputs, offsets, outputs, rows);

    shareColumns(supplied, output);
    shareColumns(results, output);
}

void SurrogateModelQueryToTable::reportLastError()
{
    if (!GetGlobalWarningDisplay()) {
        return;
    }
    std::ostringstream address;
    address.imbue(std::locale::classic());
    address << static_cast<const void*>(this);

    // Error logs are searched for exactly this form. The line number is part of it and does not
    // follow the lines of this file.
    const std::string text =
        boost::str(boost::format("ERROR: In analyzer/surrogatemodel/SurrogateModelQueryToTable.cpp,"
                                 " line 209\n%1% (%2%): %3%\n\n\n") %
                   GetClassName() % address.str() % impl->lastError);
    if (HasObserver(vtkCommand::ErrorEvent)) {
        InvokeEvent(vtkCommand::ErrorEvent, const_cast<char*>(text.c_str()));
    } else {
        vtkOutputWindowDisplayErrorText(text.c_str());
    }
    vtkObject::BreakOnError();
}
