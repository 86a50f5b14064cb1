#pragma once

#include <surrogatemodel/SurrogateModelManager.h>

#include <boost/shared_ptr.hpp>

/** A manager whose model is there from the start, without cases: it fits none. Its settings change
 *  nothing about the model. */
class RestoredModelManager : public SurrogateModelManager
{
public:
    /** @param model of all the project's outputs, at their offsets. */
    RestoredModelManager(boost::shared_ptr<const DataPipelineManagerInterface> pipeline,
                         boost::shared_ptr<SurrogateModelInterface> model);

    SurrogateModelInterface& model(const std::set<VarPtr>& dependents) const override;
    SurrogateModelInterface& model(const std::set<int>& dependentOffsets) const override;

private:
    boost::shared_ptr<SurrogateModelInterface> restored;
};
