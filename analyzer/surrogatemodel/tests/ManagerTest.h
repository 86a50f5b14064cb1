#pragma once

#include "CaseTable.h"
#include "FakePipeline.h"
#include "ProjectTest.h"
#include "RecordedModels.h"

#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_fitting/SurrogateModelInterface.h>

/** Counts emissions of a signal. */
struct Counter
{
    int calls = 0;
    std::function<void()> slot()
    {
        return [this] { ++calls; };
    }
};

/**
 * A manager over three records, the inputs x1 and x2, the outputs y1 and y2 and a pipeline of the
 * test's own; the undo stack is empty and both inputs are chosen. Models are recorded, not fitted.
 */
class ManagerTest : public ProjectTest
{
protected:
    using Interface = SurrogateModelManagerInterface;
    using Variables = std::vector<VarPtr>;
    using Values = std::vector<double>;

    ManagerTest()
        : x1(addInput("x1", {1, 2, 3})), x2(addInput("x2", {4, 5, 6})),
          y1(addOutput("y1", {10, 20, 30})), y2(addOutput("y2", {40, 50, 60}))
    {
        recordedModels() = {};
        cases.addNumbers("x1", {1, 2, 3}).addNumbers("x2", {4, 5, 6});
        cases.addNumbers("y1", {10, 20, 30}).addNumbers("y2", {40, 50, 60});
        pipeline->show(cases);
        manager->independentVars()->set({x1, x2});
        undoStack().clear();
    }

    /** What the latest constructor was given. */
    static const RecordedFit& lastFit() { return recordedModels().fits.back(); }
    static std::size_t fitCount() { return recordedModels().fits.size(); }

    void includeAll(bool isIncluded) const
    {
        for (const RecordPtr& record : project->records()) {
            project->setIncluded(record, isIncluded);
        }
    }

    /** Which model that is, by the order of construction from 1. */
    static std::string nameOf(const SurrogateModelInterface& model)
    {
        return model.surfaceCoefficientInformation(0);
    }

    SurrogateModelInterface& model(const std::set<VarPtr>& dependents) const
    {
        return manager->model(dependents);
    }

    VarPtr x1;
    VarPtr x2;
    VarPtr y1;
    VarPtr y2;
    CaseTable cases = CaseTable(3);
    boost::shared_ptr<FakePipeline> pipeline = boost::make_shared<FakePipeline>();
    boost::shared_ptr<SurrogateModelManager> manager =
        boost::make_shared<SurrogateModelManager>(pipeline);
};

/** The message of the model error that `request` ends with; empty if it does not. */
template <class Request>
std::string errorOf(const Request& request)
{
    try {
        request();
    } catch (const SurrogateModelInterface::Error& error) {
        return error.what();
    }
    return {};
}
