#pragma once

#include "FakePipeline.h"
#include "RecordedModels.h"
#include "ThreeCasesTest.h"

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
 * A manager over three cases and a pipeline of the test's own; the undo stack is empty and both
 * inputs are chosen. Models are recorded, not fitted.
 */
class ManagerTest : public ThreeCasesTest
{
protected:
    using Interface = SurrogateModelManagerInterface;
    using Variables = std::vector<VarPtr>;

    ManagerTest()
    {
        recordedModels() = {};
        pipeline->show(cases);
        manager->independentVars()->set({x1, x2});
        undoStack().clear();
    }

    /** What the latest constructor was given. */
    static const RecordedFit& lastFit() { return recordedModels().fits.back(); }
    static std::size_t fitCount() { return recordedModels().fits.size(); }

    /** Which model that is, by the order of construction from 1. */
    static std::string nameOf(const SurrogateModelInterface& model)
    {
        return model.surfaceCoefficientInformation(0);
    }

    SurrogateModelInterface& model(const std::set<VarPtr>& dependents) const
    {
        return manager->model(dependents);
    }

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
