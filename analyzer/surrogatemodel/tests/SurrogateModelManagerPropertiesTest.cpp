// The settings of the manager: undo steps, signals, default evaluation points.
#include <surrogatemodel/SurrogateModelManager.h>

#include "ManagerTest.h"

#include <stdexcept>

namespace {

using Points = SurrogateModelUserDistCollection;

class SurrogateModelManagerPropertiesTest : public ManagerTest
{
protected:
    VarPtr addInputWithRange(const std::string& name, double minimum, double maximum) const
    {
        const VarPtr variable = addInput(name);
        project->setRange(variable, {minimum, maximum});
        return variable;
    }

    void choose(const Variables& variables) const { manager->independentVars()->set(variables); }

    std::string pointOf(const std::string& name) const
    {
        return manager->evaluationPoint()->get().getUserDistString(name);
    }

    Points::VariableMode modeOf(const std::string& name) const
    {
        return manager->evaluationPoint()->get().getMode(name);
    }

    void setPoint(const std::string& name, const std::string& text) const
    {
        Points points = manager->evaluationPoint()->get();
        points.setUserDistString(name, text);
        manager->evaluationPoint()->set(points);
    }
};

} // namespace

TEST_F(SurrogateModelManagerPropertiesTest, AreCalledByTheirDisplayNamesInUndoSteps)
{
    choose({x1});
    EXPECT_EQ(undoStack().undoText(), "Change Surrogate Model Variables");
    manager->type()->set(Interface::Kriging);
    EXPECT_EQ(undoStack().undoText(), "Change Surrogate Model Type");
    setPoint("x1", "2");
    EXPECT_EQ(undoStack().undoText(), "Change Surrogate Model Evaluation Point");
    EXPECT_EQ(undoStack().count(), 3);
}

TEST_F(SurrogateModelManagerPropertiesTest, BeginAtTheMinimumWithSixSignificantDigits)
{
    const std::pair<double, const char*> minima[] = {{-3.5, "-3.5"},     {1234567.0, "1.23457e+06"},
                                                     {0.0001, "0.0001"}, {0.00001, "1e-05"},
                                                     {-0.0, "0"},        {100000.0, "100000"}};
    for (const auto& [minimum, text] : minima) {
        const std::string name = std::string("from ") + text;
        choose({addInputWithRange(name, minimum, 1e300)});
        EXPECT_EQ(pointOf(name), text);
        EXPECT_EQ(modeOf(name), Points::UserDefined) << name;
    }
}

TEST_F(SurrogateModelManagerPropertiesTest, LeaveEvaluationPointsAloneThatAreHeldAlready)
{
    Points points;
    points.setUserDistString("x3", "7");
    points.setMode("x4", Points::UserDefined);
    manager->evaluationPoint()->set(points);

    choose({addInput("x3"), addInput("x4")});

    EXPECT_EQ(manager->evaluationPoint()->get(), points);
}

TEST_F(SurrogateModelManagerPropertiesTest, ChangeOnlyTheListWhenAllEvaluationPointsAreHeld)
{
    Counter changes;
    manager->connectSignalModelChanged(changes.slot());
    int pointChanges = 0;
    manager->evaluationPoint()->connectSignalChanged([&](const Points&) { ++pointChanges; });

    choose({x2, x1});

    EXPECT_EQ(changes.calls, 1);
    EXPECT_EQ(pointChanges, 0);
    EXPECT_EQ(undoStack().count(), 1);
}

TEST_F(SurrogateModelManagerPropertiesTest, UndoAndRedoTheListTogetherWithItsEvaluationPoints)
{
    const Points before = manager->evaluationPoint()->get();
    const VarPtr x3 = addInputWithRange("x3", 5, 6);
    choose({x3});
    const Points after = manager->evaluationPoint()->get();
    EXPECT_EQ(undoStack().count(), 1);
    EXPECT_EQ(undoStack().undoText(), "Change Surrogate Model Variables");

    undoStack().undo();
    EXPECT_EQ(manager->independentVars()->get(), (Variables{x1, x2}));
    EXPECT_EQ(manager->evaluationPoint()->get(), before);

    undoStack().redo();
    EXPECT_EQ(manager->independentVars()->get(), (Variables{x3}));
    EXPECT_EQ(manager->evaluationPoint()->get(), after);
    EXPECT_EQ(pointOf("x3"), "5");
    EXPECT_EQ(undoStack().count(), 1);
}

TEST_F(SurrogateModelManagerPropertiesTest, UndoTheListFirstAndRedoTheEvaluationPointFirst)
{
    choose({addInput("x3")});
    std::vector<std::string> log;
    const auto note = [&log](const char* name) {
        if (log.empty() || log.back() != name) {
            log.emplace_back(name);
        }
    };
    manager->independentVars()->connectSignalChanged([&](const Variables&) { note("list"); });
    manager->evaluationPoint()->connectSignalChanged([&](const Points&) { note("point"); });

    undoStack().undo();
    undoStack().redo();

    EXPECT_EQ(log, (std::vector<std::string>{"list", "point", "list"}));
}

TEST_F(SurrogateModelManagerPropertiesTest, SignalTheEvaluationPointThenTheListThenTheModel)
{
    model({y1});
    std::vector<std::string> log;
    const auto list = manager->independentVars();
    const auto note = [&](const std::string& signal) {
        log.push_back(signal + ": " + std::to_string(list->get().size()) + " inputs, " +
                      std::to_string(factory->alive()) + " models");
    };
    manager->connectSignalModelChanged([&] { note("model"); });
    list->connectSignalChanged([&](const Variables&) { note("list"); });
    manager->evaluationPoint()->connectSignalChanged([&](const Points&) { note("point"); });

    choose({addInput("x3"), addInput("x4"), x1});

    EXPECT_EQ(log,
              (std::vector<std::string>{"point: 2 inputs, 1 models", "list: 3 inputs, 0 models",
                                        "model: 3 inputs, 0 models"}));
}

TEST_F(SurrogateModelManagerPropertiesTest, SignalTheTypeThenTheModelOnce)
{
    model({y1});
    std::vector<std::string> log;
    std::ptrdiff_t aliveWhenSignalled = -1;
    manager->connectSignalModelChanged([&] { log.emplace_back("model"); });
    manager->type()->connectSignalChanged([&](Interface::ModelType) {
        log.emplace_back("type");
        aliveWhenSignalled = factory->alive();
    });
    manager->type()->connectSignalPropertyChanged([&] { log.emplace_back("type"); });

    manager->type()->set(Interface::Kriging);

    EXPECT_EQ(log, (std::vector<std::string>{"type", "type", "model"}));
    EXPECT_EQ(aliveWhenSignalled, 0);
}

TEST_F(SurrogateModelManagerPropertiesTest, KeepTheModelWhenOnlyTheEvaluationPointChanges)
{
    model({y1});
    Counter changes;
    manager->connectSignalModelChanged(changes.slot());

    setPoint("x1", "2.25");
    model({y1});
    EXPECT_EQ(fitCount(), 1U);
    EXPECT_EQ(changes.calls, 0);

    choose({x2});
    EXPECT_EQ(pointOf("x1"), "2.25") << "kept for a variable that is removed";
    choose({x1, x2});
    EXPECT_EQ(pointOf("x1"), "2.25") << "and added again";
}

TEST_F(SurrogateModelManagerPropertiesTest, DoNothingWhenSetToWhatTheyHold)
{
    model({y1});
    Counter changes;
    manager->connectSignalModelChanged(changes.slot());
    manager->independentVars()->connectSignalPropertyChanged(changes.slot());
    manager->independentVars()->connectSignalChanged([&](const Variables&) { ++changes.calls; });
    manager->type()->connectSignalPropertyChanged(changes.slot());
    manager->type()->connectSignalChanged([&](Interface::ModelType) { ++changes.calls; });
    manager->evaluationPoint()->connectSignalPropertyChanged(changes.slot());
    manager->evaluationPoint()->connectSignalChanged([&](const Points&) { ++changes.calls; });

    choose({x1, x2});
    manager->type()->set(Interface::ResponseSurface);
    manager->evaluationPoint()->set(manager->evaluationPoint()->get());
    model({y1});

    EXPECT_EQ(changes.calls, 0);
    EXPECT_EQ(undoStack().count(), 0);
    EXPECT_EQ(fitCount(), 1U);
}

TEST_F(SurrogateModelManagerPropertiesTest, AcceptAnyListOfHandlesThatCanBeLocked)
{
    const auto other = boost::make_shared<Project>();
    const VarPtr foreign = other->addNumericVariable("foreign", Variable::Unassigned);
    const Variables anything{x1, x1, y1, foreign};

    choose(anything);

    EXPECT_EQ(manager->independentVars()->get(), anything);
    EXPECT_EQ(pointOf("foreign"), "0");
}

TEST_F(SurrogateModelManagerPropertiesTest, StayAsTheyAreWhenAHandleCannotBeLocked)
{
    model({y1});
    const Points points = manager->evaluationPoint()->get();
    const VarPtr x3 = addInput("x3");

    EXPECT_THROW(choose({x3, VarPtr()}), HandleError);

    EXPECT_EQ(manager->independentVars()->get(), (Variables{x1, x2}));
    EXPECT_EQ(manager->evaluationPoint()->get(), points);
    EXPECT_EQ(factory->alive(), 1);
    EXPECT_EQ(undoStack().count(), 0);

    choose({x3});
    EXPECT_EQ(manager->independentVars()->get(), (Variables{x3}));
    EXPECT_EQ(undoStack().count(), 1);
}

TEST_F(SurrogateModelManagerPropertiesTest, DiscardTheModelAgainWhenAChangeIsUndone)
{
    manager->type()->set(Interface::Kriging);
    model({y1});

    undoStack().undo();

    EXPECT_EQ(factory->alive(), 0);
}

TEST_F(SurrogateModelManagerPropertiesTest, StayUsableWhenAListenerHasThrown)
{
    model({y1});
    const boost::signals2::connection thrower = manager->type()->connectSignalChanged(
        [](Interface::ModelType) { throw std::runtime_error("listener"); });
    EXPECT_THROW(manager->type()->set(Interface::Kriging), std::runtime_error);
    EXPECT_EQ(factory->alive(), 0);
    EXPECT_EQ(undoStack().count(), 0);
    thrower.disconnect();

    manager->type()->set(Interface::ResponseSurface);

    EXPECT_EQ(undoStack().count(), 1);
    undoStack().undo();
    EXPECT_EQ(manager->type()->get(), Interface::Kriging);
}

// The entries are kept by name: a renamed variable needs an entry of its own, which the list gives
// only when it changes.
TEST_F(SurrogateModelManagerPropertiesTest, KeepEvaluationPointsUnderTheNameThatAVariableHad)
{
    project->renameVariable(x1, "renamed");
    pipeline->emitChange();

    EXPECT_EQ(manager->evaluationPoint()->get().getVarNameSet(),
              (std::set<std::string>{"x1", "x2"}));

    choose({x2, x1});
    EXPECT_EQ(pointOf("renamed"), "1");
}
