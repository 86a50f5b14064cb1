#pragma once

#include "FakePipeline.h"
#include "RecordingFactory.h"
#include "ThreeCasesTest.h"

#include <surrogatemodel/SurrogateModelManager.h>

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
 * inputs are chosen. Fits are recorded, not made.
 */
class ManagerTest : public ThreeCasesTest
{
protected:
    using Interface = SurrogateModelManagerInterface;
    using Variables = std::vector<VarPtr>;

    ManagerTest()
    {
        pipeline->show(cases);
        manager->independentVars()->set({x1, x2});
        undoStack().clear();
    }

    /** What the factory was asked for last. */
    const RecordedFit& lastFit() const { return factory->fits.back(); }
    std::size_t fitCount() const { return factory->fits.size(); }

    /** Which model that is, by the order of the fits from 1. */
    static std::string nameOf(const SurrogateModelInterface& model)
    {
        return model.surfaceCoefficientInformation(0);
    }

    SurrogateModelInterface& model(const std::set<VarPtr>& dependents) const
    {
        return manager->model(dependents);
    }

    boost::shared_ptr<FakePipeline> pipeline = boost::make_shared<FakePipeline>();
    boost::shared_ptr<RecordingFactory> factory = boost::make_shared<RecordingFactory>();
    boost::shared_ptr<SurrogateModelManager> manager =
        boost::make_shared<SurrogateModelManager>(pipeline, factory);
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
