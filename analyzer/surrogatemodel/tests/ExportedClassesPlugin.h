#pragma once

#include <surrogatemodel_plugin/Export.h>

#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include <mirel_datapipeline/DataPipelineManagerInterface.h>

#include <boost/shared_ptr.hpp>

#include <set>
#include <string>

/** A shared library beside the surrogate-model library, as an application loads them. */
namespace plugin {

/** A manager whose class is the plugin's own. */
SURROGATEMODEL_PLUGIN_EXPORT boost::shared_ptr<SurrogateModelManagerInterface>
makeManager(const boost::shared_ptr<const DataPipelineManagerInterface>& pipeline);

/** A manager of the plugin's that has no model: its factory throws
 *  SurrogateModelInterface::Error(message). */
SURROGATEMODEL_PLUGIN_EXPORT boost::shared_ptr<SurrogateModelManagerInterface>
makeRefusingManager(const boost::shared_ptr<const DataPipelineManagerInterface>& pipeline,
                    const std::string& message);

/** The message of the model error that the request ends with, caught in here; empty for none. */
SURROGATEMODEL_PLUGIN_EXPORT std::string
errorOfRequest(const SurrogateModelManagerInterface& manager, const std::set<VarPtr>& dependents);

/** Throws as the serializer does that it makes of a null pointer. */
SURROGATEMODEL_PLUGIN_EXPORT void makeSerializerOfNothing();

} // namespace plugin
