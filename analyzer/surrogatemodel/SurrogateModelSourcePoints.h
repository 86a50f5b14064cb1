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
 * A case is valid when its record is included and its values of the independent variables and of
 * the requested dependent variables are valid (isInvalidValue()). Other dependents are not checked:
 * a cell of theirs that is no number is NaN in the copy.
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
     * Collects the valid cases again; O(rows x columns).
     * @param independentVars the chosen variables, in list order, of any nature.
     * @param dependents      the requested dependents.
     * @param pipelineTable   column 0 holds the record's identity, every variable has a column of
     *                        its name; borrowed for the call. The cells of a variable that has no
     *                        column, of a null handle or of a destroyed variable are invalid.
     * @param fullRebuild     false: the independent values are not read; the rows in which the
     *                        last full rebuild found invalid ones stay excluded, by row number. The
     *                        state of the records and the requested dependents are always checked.
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
     *  order, whether requested or not. */
    std::vector<double*> dependentColumns() const;

    /** The valid cases: a column per chosen variable, then one per dependent variable of the
     *  project; one column per name. The next rebuild makes a new table. */
    vtkSmartPointer<vtkTable> sourceTable() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
