// These tests run without an application object, as a console program would.
#include <surrogatemodel/SurrogateModelQueryToTable.h>

#include "QueryTest.h"

#include <QCoreApplication>

#include <vtkDataObject.h>
#include <vtkInformation.h>
#include <vtkInformationVector.h>
#include <vtkWeakPointer.h>

#include <cmath>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <type_traits>

namespace {

int breaksOnError = 0;

} // namespace

/** VTK's place for a debugger to stop at; this definition comes before that of VTK. */
void vtkObject::BreakOnError()
{
    ++breaksOnError;
}

namespace {

/** Whether Filter::New() can be called. */
template <class Filter, class = void>
struct CanBeMadeFromNothing : std::false_type
{};

template <class Filter>
struct CanBeMadeFromNothing<Filter, std::void_t<decltype(Filter::New())>> : std::true_type
{};

using Values = std::vector<double>;
using Names = std::vector<std::string>;

class SurrogateModelQueryToTableTest : public QueryTest
{
protected:
    /** What VTK calls to have the filter run, without an executive's preparations. */
    int requestData(vtkTable* table = vtkNew<vtkTable>()) const
    {
        vtkNew<vtkInformation> information;
        information->Set(vtkDataObject::DATA_OBJECT(), table);
        vtkNew<vtkInformationVector> outputs;
        outputs->Append(information);
        return filter->RequestData(nullptr, nullptr, outputs);
    }

    double* buffer(const std::string& name) const
    {
        return vtkArrayDownCast<vtkDoubleArray>(output()->GetColumnByName(name.c_str()))
            ->GetPointer(0);
    }

    std::string expectedErrorText(const std::string& message) const
    {
        std::ostringstream text;
        text << "ERROR: In analyzer/surrogatemodel/SurrogateModelQueryToTable.cpp, line 209\n"
             << "SurrogateModelQueryToTable (" << filter.GetPointer() << "): " << message
             << "\n\n\n";
        return text.str();
    }
};

} // namespace

TEST_F(SurrogateModelQueryToTableTest, IsASourceOfOneTableThatNeedsManagerAndVariables)
{
    EXPECT_EQ(filter->GetNumberOfInputPorts(), 0);
    EXPECT_EQ(filter->GetNumberOfOutputPorts(), 1);
    EXPECT_STREQ(filter->GetOutputPortInformation(0)->Get(vtkDataObject::DATA_TYPE_NAME()),
                 "vtkTable");
    EXPECT_STREQ(filter->GetClassName(), "SurrogateModelQueryToTable");
    EXPECT_TRUE(filter->IsA("vtkTableAlgorithm"));

    EXPECT_THROW(SurrogateModelQueryToTable::New(nullptr, variables), std::invalid_argument);
    EXPECT_THROW(SurrogateModelQueryToTable::New(manager, nullptr), std::invalid_argument);
    EXPECT_EQ(filter->NewInstance(), nullptr);
    EXPECT_TRUE(CanBeMadeFromNothing<vtkTableAlgorithm>::value);
    EXPECT_FALSE(CanBeMadeFromNothing<SurrogateModelQueryToTable>::value);
    EXPECT_FALSE(std::is_default_constructible<SurrogateModelQueryToTable>::value);
}

TEST_F(SurrogateModelQueryToTableTest, BelongsToTheSmartPointerAlone)
{
    EXPECT_EQ(filter->GetReferenceCount(), 1);
    update(); // makes an executive, which refers to its filter
    const EventRecorder deletions(filter, vtkCommand::DeleteEvent);
    const vtkWeakPointer<SurrogateModelQueryToTable> watched(filter);

    filter = nullptr;

    EXPECT_EQ(deletions.count(), 1U);
    EXPECT_EQ(watched.GetPointer(), nullptr);
}

TEST_F(SurrogateModelQueryToTableTest, WritesTheValuesThenTheResults)
{
    ASSERT_EQ(QCoreApplication::instance(), nullptr) << "none is needed";
    addOutputAt("y2", 5);

    update();

    EXPECT_EQ(columnNames(), (Names{"x1", "x2", "y1", "y2"}));
    EXPECT_EQ(column("x1"), (Values{1, 1, 2, 2}));
    EXPECT_EQ(column("x2"), (Values{10, 20, 10, 20}));
    EXPECT_EQ(column("y1"), (Values{11, 21, 12, 22}));
    EXPECT_EQ(column("y2"), (Values{16, 26, 17, 27}));
    EXPECT_EQ(filter->getLastError(), "");
}

TEST_F(SurrogateModelQueryToTableTest, HasTheModelReadAndWriteTheColumnsOfItsOutput)
{
    update();

    const std::vector<double*> supplied = {buffer("x1"), buffer("x2")};
    EXPECT_EQ(manager->fakeModel.lastInputs, supplied);
    EXPECT_EQ(manager->fakeModel.lastOutputs, (std::vector<double*>{buffer("y1")}));
}

TEST_F(SurrogateModelQueryToTableTest, PutsResultsUnderTheirNamesWhenOffsetsDoNotFollowTheHandles)
{
    manager->offsets["y1"] = 2;
    addOutputAt("y2", 0);
    addOutputAt("y3", 1);

    update();

    EXPECT_EQ(columnNames(), (Names{"x1", "x2", "y1", "y2", "y3"}));
    EXPECT_EQ(column("y1")[0], 13);
    EXPECT_EQ(column("y2")[0], 11);
    EXPECT_EQ(column("y3")[0], 12);
}

// A name that the manager does not know is answered with offset 0, like the first dependent.
TEST_F(SurrogateModelQueryToTableTest, ComputesTheLaterOfTwoColumnsWithOneOffset)
{
    addOutputAt("y2", 0);

    update();

    for (const double value : column("y1")) {
        EXPECT_TRUE(std::isnan(value));
    }
    EXPECT_EQ(column("y2"), (Values{11, 21, 12, 22}));
}

TEST_F(SurrogateModelQueryToTableTest, AsksByOffsetsAndActivatesThemBeforeItInterpolates)
{
    manager->offsets = {{"y1", 3}};
    manager->fakeModel.onActivate = [this] {
        EXPECT_TRUE(manager->fakeModel.interpolatedCounts.empty());
    };

    update();

    EXPECT_TRUE(manager->requests.empty());
    EXPECT_EQ(manager->offsetRequests, (std::vector<std::set<int>>{{3}}));
    EXPECT_EQ(manager->fakeModel.activated, (std::vector<std::set<int>>{{3}}));
    EXPECT_EQ(manager->fakeModel.interpolatedCounts, (std::vector<std::size_t>{4}));
}

TEST_F(SurrogateModelQueryToTableTest, AsksForTheModelAlsoWithoutRowsAndWithoutDependents)
{
    variables->inputs[x2].clear();
    update();
    EXPECT_EQ(executions(), 1U);
    EXPECT_EQ(manager->fakeModel.interpolatedCounts, (std::vector<std::size_t>{0}));
    EXPECT_EQ(output()->GetNumberOfRows(), 0);
    EXPECT_EQ(columnNames(), (Names{"x1", "x2", "y1"}));

    variables->inputs[x2] = {10, 20};
    variables->dependents.clear();
    variables->signalInterpolationVariablesChanged();
    update();
    EXPECT_EQ(manager->offsetRequests.back(), std::set<int>());
    EXPECT_EQ(manager->fakeModel.activated.back(), std::set<int>());
    EXPECT_EQ(columnNames(), (Names{"x1", "x2"}));
    EXPECT_EQ(output()->GetNumberOfRows(), 4);
}

TEST_F(SurrogateModelQueryToTableTest, LeavesOneUnsetRowWithoutIndependentVariables)
{
    manager->independents->set({});
    variables->inputs.clear();

    update();

    EXPECT_EQ(manager->fakeModel.interpolatedCounts, (std::vector<std::size_t>{0}));
    EXPECT_EQ(columnNames(), (Names{"y1"}));
    ASSERT_EQ(output()->GetNumberOfRows(), 1);
    EXPECT_TRUE(std::isnan(column("y1")[0]));
}

TEST_F(SurrogateModelQueryToTableTest, AnswersOneForSuccessAndZeroWithoutRowsForAModelError)
{
    const RecordingOutputWindow window;
    vtkNew<vtkTable> table;
    EXPECT_EQ(requestData(table), 1);
    EXPECT_EQ(table->GetNumberOfRows(), 4);

    manager->failure = "no luck";
    EXPECT_EQ(requestData(table), 0);
    EXPECT_EQ(table->GetNumberOfRows(), 0);
}

TEST_F(SurrogateModelQueryToTableTest, HasNoRowsAndAMessageAfterAnErrorOfTheFitOrOfTheEvaluation)
{
    const RecordingOutputWindow window;
    manager->failure = "The model cannot be fitted: 100% of %1% are missing.";
    update();
    EXPECT_EQ(filter->getLastError(), manager->failure);
    EXPECT_EQ(output()->GetNumberOfRows(), 0);

    manager->failure.clear();
    manager->fakeModel.onActivate = [] { throw SurrogateModelInterface::Error("no fit"); };
    manager->signalModelChanged();
    update();
    EXPECT_EQ(filter->getLastError(), "no fit");
    EXPECT_EQ(output()->GetNumberOfRows(), 0);

    manager->fakeModel.onActivate = nullptr;
    manager->signalModelChanged();
    update();
    EXPECT_EQ(filter->getLastError(), "") << "forgotten with the next success";
    EXPECT_EQ(output()->GetNumberOfRows(), 4);
}

TEST_F(SurrogateModelQueryToTableTest, ForgetsTheErrorBeforeAnExecutionThatDoesNotFinish)
{
    const RecordingOutputWindow window;
    manager->failure = "no luck";
    update();
    manager->onModel = [] { throw std::runtime_error("foreign"); };
    manager->signalModelChanged();

    EXPECT_THROW(update(), std::runtime_error);

    EXPECT_EQ(filter->getLastError(), "");
}

TEST_F(SurrogateModelQueryToTableTest, PassesErrorsToItsObserversWordForWordInEveryLocale)
{
    class Grouping : public std::numpunct<char>
    {
    protected:
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\1"; }
    };
    const RecordingOutputWindow window;
    const EventRecorder errors(filter, vtkCommand::ErrorEvent);
    manager->failure = "The model cannot be fitted: 100% of %1% are missing.";
    const std::string expected = expectedErrorText(manager->failure);
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new Grouping));

    update();

    std::locale::global(before);
    EXPECT_EQ(errors.texts, (Names{expected}));
    EXPECT_EQ(window.everything(), "");
}

TEST_F(SurrogateModelQueryToTableTest, WritesErrorsToTheOutputWindowWithoutObservers)
{
    const RecordingOutputWindow window;
    manager->failure = "no luck";

    update();

    EXPECT_EQ(window.errors(), Names{expectedErrorText("no luck")}) << "none of the executive";
}

TEST_F(SurrogateModelQueryToTableTest, CallsBreakOnErrorOncePerReport)
{
    const RecordingOutputWindow window;
    manager->failure = "no luck";
    breaksOnError = 0;

    vtkObject::SetGlobalWarningDisplay(0);
    requestData();
    vtkObject::SetGlobalWarningDisplay(1);
    EXPECT_EQ(breaksOnError, 0);

    requestData();
    EXPECT_EQ(breaksOnError, 1);

    int breaksWhenObserved = -1;
    EventRecorder errors(filter, vtkCommand::ErrorEvent);
    errors.onEvent = [&breaksWhenObserved] { breaksWhenObserved = breaksOnError; };
    requestData();
    EXPECT_EQ(breaksWhenObserved, 1);
    EXPECT_EQ(breaksOnError, 2);
}

TEST_F(SurrogateModelQueryToTableTest, ReportsNothingWhenVtksWarningsAreOff)
{
    const RecordingOutputWindow window;
    const EventRecorder errors(filter, vtkCommand::ErrorEvent);
    manager->failure = "no luck";
    vtkObject::SetGlobalWarningDisplay(0);

    update();

    vtkObject::SetGlobalWarningDisplay(1);
    EXPECT_EQ(errors.count(), 0U);
    EXPECT_EQ(window.everything(), "");
    EXPECT_EQ(filter->getLastError(), "no luck");
}

TEST_F(SurrogateModelQueryToTableTest, LetsOtherExceptionsPassAndExecutesAgain)
{
    manager->onModel = [] { throw std::domain_error("foreign"); };
    EXPECT_THROW(update(), std::domain_error);

    manager->onModel = nullptr;
    update();

    EXPECT_EQ(output()->GetNumberOfRows(), 4);
    EXPECT_EQ(column("y1"), (Values{11, 21, 12, 22}));
}

TEST_F(SurrogateModelQueryToTableTest, IsModifiedOnceForEachSignalAndExecutesOnlyThen)
{
    const EventRecorder modifications(filter, vtkCommand::ModifiedEvent);
    update();
    update();
    EXPECT_EQ(executions(), 1U);

    variables->signalInterpolationVariablesChanged();
    EXPECT_EQ(modifications.count(), 1U);
    update();
    EXPECT_EQ(executions(), 2U);
    manager->signalModelChanged();
    manager->signalModelChanged();
    EXPECT_EQ(modifications.count(), 3U);
    update();
    EXPECT_EQ(executions(), 3U);
}

TEST_F(SurrogateModelQueryToTableTest, DoesNotRetryAFailureUntilSomethingChanges)
{
    const RecordingOutputWindow window;
    manager->failure = "no luck";
    update();
    update();
    EXPECT_EQ(executions(), 1U);
    EXPECT_EQ(filter->getLastError(), "no luck");

    manager->signalModelChanged();
    update();
    EXPECT_EQ(executions(), 2U);
}

TEST_F(SurrogateModelQueryToTableTest, DoesNotExecuteAgainForAChangeOfTheModelMeanwhile)
{
    manager->onModel = [this] { manager->signalModelChanged(); };

    update();
    update();

    EXPECT_EQ(executions(), 1U);
    EXPECT_EQ(column("y1"), (Values{11, 21, 12, 22}));
}

TEST_F(SurrogateModelQueryToTableTest, ConnectsThroughTheHooksOfTheVariablesThenOfTheManager)
{
    static Names hooks;
    hooks.clear();
    class HookedVariables : public FixedVariables
    {
        void signalInterpolationVariablesChangedConnected() const override
        {
            hooks.emplace_back("variables");
        }
    };
    class Hooked : public FakeManager
    {
        void signalModelChangedConnected() const override { hooks.emplace_back("manager"); }
    };

    const auto other = SurrogateModelQueryToTable::New(boost::make_shared<Hooked>(),
                                                       boost::make_shared<HookedVariables>());

    EXPECT_EQ(hooks, (Names{"variables", "manager"}));
}

TEST_F(SurrogateModelQueryToTableTest, SharesManagerAndVariablesUntilItIsDestroyed)
{
    const boost::shared_ptr<FakeManager> keptManager = manager;
    const boost::shared_ptr<FixedVariables> keptVariables = variables;
    manager.reset();
    variables.reset();
    update();
    EXPECT_EQ(output()->GetNumberOfRows(), 4);
    EXPECT_EQ(keptManager->signalModelChanged.num_slots(), 1U);
    EXPECT_EQ(keptVariables->signalInterpolationVariablesChanged.num_slots(), 1U);

    filter = nullptr;

    EXPECT_EQ(keptManager->signalModelChanged.num_slots(), 0U);
    EXPECT_EQ(keptVariables->signalInterpolationVariablesChanged.num_slots(), 0U);
    EXPECT_EQ(keptManager.use_count(), 1);
    EXPECT_EQ(keptVariables.use_count(), 1);
}

TEST_F(SurrogateModelQueryToTableTest, LeavesTheColumnsOfEarlierResultsAlone)
{
    const RecordingOutputWindow window;
    update();
    const vtkSmartPointer<vtkDoubleArray> kept =
        vtkArrayDownCast<vtkDoubleArray>(output()->GetColumnByName("y1"));

    manager->failure = "no luck";
    manager->signalModelChanged();
    update();

    ASSERT_EQ(kept->GetNumberOfValues(), 4);
    EXPECT_EQ(kept->GetValue(3), 22);
}
