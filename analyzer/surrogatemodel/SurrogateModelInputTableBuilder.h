#pragma once

#include <surrogatemodel/Export.h>

#include <mirel_datamanagement/Variable.h>

#include <vtkSmartPointer.h>

#include <map>
#include <set>
#include <vector>

class InterpolationVariablesInterface;
class SurrogateModelManagerInterface;
class vtkTable;

/**
 * The two tables in which a surrogate model is evaluated: the grid of the independent variables'
 * values, and room for the results. All columns are vtkDoubleArrays named after their variables.
 */
class SURROGATEMODEL_EXPORT SurrogateModelInputTableBuilder
{
public:
    /**
     * Builds both tables; keeps neither argument.
     * @throw SurrogateModelInterface::Error if the grid has more points than can be counted, or
     *        its columns would take more than three quarters of the machine's memory. Nothing is
     *        allocated then.
     * @throw HandleError for a null handle or one whose variable is destroyed.
     */
    SurrogateModelInputTableBuilder(const SurrogateModelManagerInterface& manager,
                                    const InterpolationVariablesInterface& variables);

    SurrogateModelInputTableBuilder(const SurrogateModelInputTableBuilder&) = delete;
    SurrogateModelInputTableBuilder& operator=(const SurrogateModelInputTableBuilder&) = delete;

    virtual ~SurrogateModelInputTableBuilder();

    /**
     * One column per independent variable, in the order of the manager's list; one row per
     * combination of their values. The first variable varies slowest, the last one fastest.
     * Without independent variables there is no column, and hence no row. A variable that is
     * listed twice, like one that shares its name with another, has one column, and a variable
     * without values in the map has NaN in every row.
     *
     * The table is shared with the caller, who may keep it after the builder is destroyed.
     */
    virtual vtkSmartPointer<vtkTable> suppliedIndependentVarValues() const;

    /**
     * One column per dependent variable, in the order of the set, with one row per combination:
     * one row if there are no independent variables. Every value is NaN. Shared like the other
     * table.
     */
    virtual vtkSmartPointer<vtkTable> resultDependentVarValues() const;

private:
    void computeTable(const SurrogateModelManagerInterface& manager,
                      const InterpolationVariablesInterface& variables);
    void addColumnsToIndependentVarTable(const SurrogateModelManagerInterface& manager);
    void addResultingDepenedentVariables(const std::set<VarPtr>& dependents);
    void populateTableArrays(const std::vector<VarPtr>& independents,
                             const std::map<VarPtr, std::vector<double>>& values);

    vtkSmartPointer<vtkTable> suppliedIndependent;
    vtkSmartPointer<vtkTable> resultDependent;
};
