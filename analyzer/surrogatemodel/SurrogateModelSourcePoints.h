#pragma once

#include <mirel_datamanagement/Variable.h>

#include <vtkSmartPointer.h>

#include <memory>
#include <set>
#include <vector>

class vtkTable;

/**
 * The training data of a model: the valid cases of the pipeline's table, copied into dense columns
 * of doubles.
 *
 * A case is valid when its record takes part and its values of the independent variables and of
 * the dependent variables asked for are valid (isInvalidValue()). Dependents that nobody asked for
 * are not looked at: what is no number in them is NaN in the copy.
 */
class SurrogateModelSourcePoints
{
public:
    /** No cases and no columns. */
    SurrogateModelSourcePoints();
    virtual ~SurrogateModelSourcePoints();

    SurrogateModelSourcePoints(const SurrogateModelSourcePoints&) = delete;
    SurrogateModelSourcePoints& operator=(const SurrogateModelSourcePoints&) = delete;

    /**
     * Gathers the valid cases anew; O(rows x columns).
     * @param independentVars the chosen variables, in list order, of whatever nature.
     * @param dependents      the dependents asked for.
     * @param pipelineTable   column 0 holds the record's identity, every variable has a column of
     *                        its name; borrowed for the call. The cells of a variable that has no
     *                        column, of a null handle or of a destroyed variable are invalid.
     * @param fullRebuild     false: the verdicts of the last full rebuild about the independent
     *                        values are used again, row number by row number, and these values are
     *                        not read. The state of the records and the dependents asked for are
     *                        examined in any case.
     */
    void rebuild(const std::vector<VarPtr>& independentVars, const std::set<VarPtr>& dependents,
                 vtkTable* pipelineTable, bool fullRebuild);

    /**
     * The first value of each column that a model takes: of the numeric variables of nature
     * Variable::Independent among the chosen ones, in list order. Each points to as many values
     * as sourceTable() has rows, valid until the next rebuild.
     */
    std::vector<double*> independentColumns() const;

    /** The same for the project's numeric variables of nature Variable::Dependent, in project
     *  order, whether asked for or not. */
    std::vector<double*> dependentColumns() const;

    /** The valid cases: a column per chosen variable, then one per dependent variable of the
     *  project, of one name only one. The next rebuild makes a new table. */
    vtkSmartPointer<vtkTable> sourceTable() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
