// A minimal desktop host: measurements of its own as the cases, a table of the model that follows
// every change, and a list of the steps that can be undone. "host --demo" makes some changes,
// prints the table after each, and ends.
#include <surrogatemodel/InterpolationVariablesAbstract.h>
#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelQueryToTable.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/DataPipelineManagerInterface.h>
#include <property/Property.h>

#include <boost/make_shared.hpp>

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QPushButton>
#include <QTableWidget>
#include <QUndoStack>
#include <QUndoView>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>
#include <vtkUnsignedLongArray.h>
#include <vtkVariant.h>

#include <cstring>
#include <iostream>

namespace {

/** The host's measurements, which it keeps in a table of its own. */
class Measurements : public vtkTableAlgorithm
{
public:
    static Measurements* New();
    vtkTypeMacro(Measurements, vtkTableAlgorithm)

    /** The project knows each measurement as a record, by which cases are excluded. */
    void add(double angle, double lift)
    {
        ids->InsertNextValue(Project::project()->addRecord().lock()->id());
        angles->InsertNextValue(angle);
        lifts->InsertNextValue(lift);
        Modified();
    }

protected:
    Measurements()
    {
        SetNumberOfInputPorts(0);
        ids->SetName("id");
        angles->SetName("angle");
        lifts->SetName("lift");
    }

    int RequestData(vtkInformation*, vtkInformationVector**, vtkInformationVector* outputs) override
    {
        vtkTable* const table = vtkTable::GetData(outputs);
        table->AddColumn(ids);
        table->AddColumn(angles);
        table->AddColumn(lifts);
        return 1;
    }

private:
    vtkNew<vtkUnsignedLongArray> ids;
    vtkNew<vtkDoubleArray> angles;
    vtkNew<vtkDoubleArray> lifts;
};
vtkStandardNewMacro(Measurements);

/** Delivers the measurements to the library, and says when there are more. */
class MeasurementPipeline : public DataPipelineManagerInterface
{
public:
    vtkSmartPointer<vtkTableAlgorithm> outputAlgorithm() const override { return source.Get(); }

    void add(double angle, double lift)
    {
        source->add(angle, lift);
        emitChanged();
    }

private:
    vtkNew<Measurements> source;
};

/** What the table shows: the lift at seven angles of the range. */
class AngleSweep : public InterpolationVariablesAbstract
{
public:
    AngleSweep(boost::shared_ptr<const SurrogateModelManagerInterface> manager,
               const veska::PropertyAbstract<SurrogateModelUserDistCollection>& distributions,
               VarPtr wanted)
        : InterpolationVariablesAbstract(manager, distributions), wanted(wanted)
    {}

    std::set<VarPtr> dependentVariables() const override { return {wanted}; }

protected:
    boost::shared_ptr<InterpolationPointsInterface>
    interpolationPoints(VarPtr variable) const override
    {
        return boost::make_shared<DistributedPoints>(variable.lock()->range(), 7);
    }

private:
    VarPtr wanted;
};

/** Shows what the library's filter computes now. */
void show(SurrogateModelQueryToTable& filter, QTableWidget& view)
{
    filter.Update();
    vtkTable* const table = filter.GetOutput();
    view.setRowCount(static_cast<int>(table->GetNumberOfRows()));
    view.setColumnCount(static_cast<int>(table->GetNumberOfColumns()));
    for (int column = 0; column < view.columnCount(); ++column) {
        view.setHorizontalHeaderItem(column, new QTableWidgetItem(table->GetColumnName(column)));
        for (int row = 0; row < view.rowCount(); ++row) {
            const double value = table->GetValue(row, column).ToDouble();
            view.setItem(row, column, new QTableWidgetItem(QString::number(value)));
        }
    }
}

void print(const char* heading, const QTableWidget& view)
{
    std::cout << heading << '\n';
    for (int row = 0; row < view.rowCount(); ++row) {
        std::cout << "  " << view.item(row, 0)->text().toStdString() << "  "
                  << view.item(row, 1)->text().toStdString() << '\n';
    }
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const QApplication application(argumentCount, arguments);

    // The project is opened before the manager is made, which looks up its variables in it.
    const auto project = Project::project();
    const VarPtr angle = project->addNumericVariable("angle", Variable::Independent);
    const VarPtr lift = project->addNumericVariable("lift", Variable::Dependent);
    project->setRange(angle, {0.0, 18.0});
    const auto pipeline = boost::make_shared<MeasurementPipeline>();
    for (const double degrees : {0.0, 3.0, 7.0, 10.0, 14.0, 18.0}) {
        pipeline->add(degrees, 0.11 * degrees - 2e-4 * degrees * degrees * degrees);
    }

    const auto manager = boost::make_shared<SurrogateModelManager>(pipeline);
    manager->independentVars()->set({angle});
    // What was set up so far is no step for the user.
    UndoStack().stack().clear();

    const veska::Property<SurrogateModelUserDistCollection> distributions;
    const auto sweep = boost::make_shared<AngleSweep>(manager, distributions, lift);
    const auto filter = SurrogateModelQueryToTable::New(manager, sweep);

    QWidget window;
    QComboBox types;
    types.addItems({"Kriging", "Response surface"});
    QPushButton measure("Measure 21 degrees");
    QTableWidget table;
    show(*filter, table);
    QUndoView undoView(&UndoStack().stack());
    QGridLayout layout(&window);
    layout.addWidget(&types, 0, 0);
    layout.addWidget(&measure, 1, 0);
    layout.addWidget(&undoView, 2, 0);
    layout.addWidget(&table, 0, 1, 3, 1);

    const auto showType = [&] { types.setCurrentIndex(manager->type()->get()); };
    showType();
    QObject::connect(&types, qOverload<int>(&QComboBox::activated), [&](int type) {
        manager->type()->set(static_cast<SurrogateModelManager::ModelType>(type));
    });
    QObject::connect(&measure, &QPushButton::clicked, [&] { pipeline->add(21.0, 0.9); });
    // A listener asks for no model before it has returned: the table follows when Qt is idle.
    manager->connectSignalModelChanged([&] {
        showType();
        QMetaObject::invokeMethod(
            &table, [&] { show(*filter, table); }, Qt::QueuedConnection);
    });
    window.show();

    if (argumentCount < 2 || std::strcmp(arguments[1], "--demo") != 0) {
        return QApplication::exec();
    }
    print("Response surface", table);
    emit types.activated(SurrogateModelManager::Kriging);
    QApplication::processEvents();
    print("Kriging", table);
    measure.click();
    QApplication::processEvents();
    print("One more measurement", table);
    UndoStack().stack().undo();
    QApplication::processEvents();
    print("After undo", table);
    return types.currentText() == "Response surface" ? 0 : 1;
}
