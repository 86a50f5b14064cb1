// A minimal host application: its own data, a model over them, values, the equation, undo.
#include <surrogatemodel/InterpolationVariablesAbstract.h>
#include <surrogatemodel/SurfaceCoefficientExporter.h>
#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelQueryToTable.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/ProjectDataPipelineManager.h>
#include <property/Property.h>

#include <boost/make_shared.hpp>

#include <QUndoStack>

#include <vtkTable.h>
#include <vtkVariant.h>

#include <cmath>
#include <iostream>

namespace {

/** The view's choice: one input swept over its range, the others at the evaluation point. */
class OneInputSwept : public InterpolationVariablesAbstract
{
public:
    OneInputSwept(boost::shared_ptr<const SurrogateModelManagerInterface> manager,
                  const veska::PropertyAbstract<SurrogateModelUserDistCollection>& distributions,
                  VarPtr swept, VarPtr wanted)
        : InterpolationVariablesAbstract(manager, distributions), swept(swept), wanted(wanted)
    {}

    std::set<VarPtr> dependentVariables() const override { return {wanted}; }

protected:
    boost::shared_ptr<InterpolationPointsInterface>
    interpolationPoints(VarPtr variable) const override
    {
        if (variable != swept) {
            return nullptr;
        }
        return boost::make_shared<DistributedPoints>(variable.lock()->range(), 5);
    }

private:
    VarPtr swept;
    VarPtr wanted;
};

void print(vtkTable* table)
{
    for (vtkIdType column = 0; column < table->GetNumberOfColumns(); ++column) {
        std::cout << (column ? "," : "") << table->GetColumnName(column);
    }
    std::cout << '\n';
    for (vtkIdType row = 0; row < table->GetNumberOfRows(); ++row) {
        for (vtkIdType column = 0; column < table->GetNumberOfColumns(); ++column) {
            std::cout << (column ? "," : "") << table->GetValue(row, column).ToDouble();
        }
        std::cout << '\n';
    }
}

} // namespace

int main()
{
    // Cases: a missing cell makes one of them invalid.
    auto project = boost::make_shared<Project>();
    const VarPtr angle = project->addNumericVariable("angle", Variable::Independent,
                                                     {0, 5, 10, 15, 20, 0, 5, 10, 15, 20});
    const VarPtr speed = project->addNumericVariable("speed", Variable::Independent,
                                                     {1, 1, 1, 1, 1, 2, 2, 2, 2, NAN});
    const VarPtr lift = project->addNumericVariable("lift", Variable::Dependent,
                                                    {0, 5, 9, 12, 13, 0, 20, 36, 48, 52});
    Project::setProject(project);

    auto manager = boost::make_shared<SurrogateModelManager>(
        boost::make_shared<ProjectDataPipelineManager>(project));
    manager->independentVars()->set({angle, speed});

    const veska::Property<SurrogateModelUserDistCollection> distributions;
    auto sweep = boost::make_shared<OneInputSwept>(manager, distributions, angle, lift);
    const auto filter = SurrogateModelQueryToTable::New(manager, sweep);

    std::cout << "Response surface at the lowest speed\n";
    filter->Update();
    print(filter->GetOutput());

    SurrogateModelUserDistCollection point = manager->evaluationPoint()->get();
    point.setUserDistString("speed", "2");
    manager->evaluationPoint()->set(point);
    manager->type()->set(SurrogateModelManagerInterface::Kriging);
    std::cout << "\nKriging at the highest speed\n";
    filter->Update();
    print(filter->GetOutput());

    std::cout << "\nAfter undoing \"" << UndoStack().stack().undoText().toStdString() << "\"\n";
    UndoStack().stack().undo();
    SurfaceCoefficientExporter(*manager, {lift}, std::cout).exportData();
    return filter->getLastError().empty() ? 0 : 1;
}
