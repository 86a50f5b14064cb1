#include "session/model/RestoredModelManager.h"

#include <utility>

RestoredModelManager::RestoredModelManager(
    boost::shared_ptr<const DataPipelineManagerInterface> pipeline,
    boost::shared_ptr<SurrogateModelInterface> model)
    : SurrogateModelManager(std::move(pipeline)), restored(std::move(model))
{}

SurrogateModelInterface& RestoredModelManager::model(const std::set<VarPtr>&) const
{
    return *restored;
}

SurrogateModelInterface& RestoredModelManager::model(const std::set<int>&) const
{
    return *restored;
}
