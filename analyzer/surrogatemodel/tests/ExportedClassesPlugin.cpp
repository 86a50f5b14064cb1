#include "ExportedClassesPlugin.h"

#include <surrogatemodel/SurrogateModelFactory.h>
#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelManagerSerializer.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <boost/make_shared.hpp>

namespace {

class Manager : public SurrogateModelManager
{
public:
    using SurrogateModelManager::SurrogateModelManager;
};

class RefusingFactory : public SurrogateModelFactory
{
public:
    explicit RefusingFactory(std::string message) : message(std::move(message)) {}

    boost::shared_ptr<SurrogateModelInterface> makeModel(ModelType, const std::vector<double*>&,
                                                         const std::vector<double*>&,
                                                         int) const override
    {
        throw SurrogateModelInterface::Error(message);
    }

private:
    std::string message;
};

} // namespace

boost::shared_ptr<SurrogateModelManagerInterface>
plugin::makeManager(const boost::shared_ptr<const DataPipelineManagerInterface>& pipeline)
{
    return boost::make_shared<Manager>(pipeline);
}

boost::shared_ptr<SurrogateModelManagerInterface>
plugin::makeRefusingManager(const boost::shared_ptr<const DataPipelineManagerInterface>& pipeline,
                            const std::string& message)
{
    return boost::make_shared<Manager>(pipeline, boost::make_shared<RefusingFactory>(message));
}

std::string plugin::errorOfRequest(const SurrogateModelManagerInterface& manager,
                                   const std::set<VarPtr>& dependents)
{
    try {
        manager.model(dependents);
    } catch (const SurrogateModelInterface::Error& error) {
        return error.what();
    }
    return {};
}

void plugin::makeSerializerOfNothing()
{
    SurrogateModelManagerSerializer(nullptr);
}
