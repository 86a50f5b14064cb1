#pragma once

#include <surrogatemodel/Export.h>

#include <boost/shared_ptr.hpp>

#include <vtkSmartPointer.h>
#include <vtkTableAlgorithm.h>

#include <memory>
#include <string>

class InterpolationVariablesInterface;
class SurrogateModelManagerInterface;

/**
 * A pipeline source that evaluates the current surrogate model: one table with a column of values
 * for each independent variable, then one of results for each dependent variable wanted, all of
 * them vtkDoubleArrays named after the variables.
 *
 * It is marked modified, and so executes on the next update, whenever the interpolation variables
 * or the model change. A model that cannot be fitted or evaluated is an error of the pipeline: it
 * is reported as VTK reports errors (to the filter's ErrorEvent observers, else to VTK's output
 * window), the output has no rows, getLastError() has the message. Other exceptions pass through
 * Update(); the next update executes again.
 *
 * While the model computes and no mouse button is held, a program with a GUI application shows the
 * wait cursor. Main thread only.
 */
class SURROGATEMODEL_EXPORT SurrogateModelQueryToTable : public vtkTableAlgorithm
{
public:
    vtkAbstractTypeMacro(SurrogateModelQueryToTable, vtkTableAlgorithm)

    /**
     * The only way to make one; shares ownership of both arguments.
     * @throw std::invalid_argument if one of them is null.
     */
    static vtkSmartPointer<SurrogateModelQueryToTable>
    New(boost::shared_ptr<const SurrogateModelManagerInterface> manager,
        boost::shared_ptr<const InterpolationVariablesInterface> ivars);

    /**
     * Evaluates the model into the table of `outputs`; the other two are not used. The pipeline
     * calls it when it updates.
     * @return 1, or 0 after a model error.
     */
    int RequestData(vtkInformation* request, vtkInformationVector** inputs,
                    vtkInformationVector* outputs) override;

    /** The message of the model error that ended the last execution; empty if there was none. */
    std::string getLastError();

    SurrogateModelQueryToTable(const SurrogateModelQueryToTable&) = delete;
    SurrogateModelQueryToTable& operator=(const SurrogateModelQueryToTable&) = delete;

protected:
    SurrogateModelQueryToTable();
    ~SurrogateModelQueryToTable() override;

    /** An executive that survives exceptions and leaves the report of an error to the filter. */
    vtkExecutive* CreateDefaultExecutive() override;

private:
    /** Null: a filter without manager and interpolation variables would be of no use. */
    vtkObjectBase* NewInstanceInternal() const override;

    void evaluate(vtkTable* output) const;
    void reportLastError();

    class Impl;
    std::unique_ptr<Impl> impl;
};
