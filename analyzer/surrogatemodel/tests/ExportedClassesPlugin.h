#pragma once

#include <surrogatemodel_plugin/Export.h>

#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include <mirel_datapipeline/DataPipelineManagerInterface.h>

#include <boost/shared_ptr.hpp>

#include <set>
#include <string>
#include <vector>

/**
 * A shared library beside the surrogate-model library, as an application loads them: it derives
 * from every exported class and uses it.
 */
namespace plugin {

/** A manager whose class is the plugin's own. */
SURROGATEMODEL_PLUGIN_EXPORT boost::shared_ptr<SurrogateModelManagerInterface>
makeManager(const boost::shared_ptr<const DataPipelineManagerInterface>& pipeline);

/** A manager that has no model: asking for one throws SurrogateModelInterface::Error(message). */
SURROGATEMODEL_PLUGIN_EXPORT boost::shared_ptr<SurrogateModelManagerInterface>
makeRefusingManager(const std::string& message);

/** The values of the only dependent through the filter, the first independent swept over 0 to 2
 *  with three values; empty after an error, which is then in `error`. */
SURROGATEMODEL_PLUGIN_EXPORT std::vector<double>
evaluate(const boost::shared_ptr<const SurrogateModelManagerInterface>& manager,
         const VarPtr& dependent, std::string& error);

/** The equations as the exporter writes them. */
SURROGATEMODEL_PLUGIN_EXPORT std::string equations(const SurrogateModelManagerInterface& manager,
                                                   const std::set<VarPtr>& dependents);

/** The message of the model error that the request ends with, caught in here; empty for none. */
SURROGATEMODEL_PLUGIN_EXPORT std::string
errorOfRequest(const SurrogateModelManagerInterface& manager, const std::set<VarPtr>& dependents);

/** The values of a distribution text, through a class derived from the one that reads it. */
SURROGATEMODEL_PLUGIN_EXPORT std::vector<double> valuesOf(const std::string& text);

/** A text that goes into a derived collection and comes out of a copy. */
SURROGATEMODEL_PLUGIN_EXPORT std::string keepText(const std::string& name, const std::string& text);

/** The settings as XML text, through a class derived from the one that writes them. */
SURROGATEMODEL_PLUGIN_EXPORT std::string
savedSettings(const boost::shared_ptr<SurrogateModelManagerInterface>& manager);

/** Reads what savedSettings() has written. */
SURROGATEMODEL_PLUGIN_EXPORT void
loadSettings(const boost::shared_ptr<SurrogateModelManagerInterface>& manager,
             const std::string& text);

/** The distribution of `name` after one that is read from XML text, through a class derived from
 *  the one that reads it. */
SURROGATEMODEL_PLUGIN_EXPORT std::string loadedDistribution(const std::string& name,
                                                            const std::string& text);

} // namespace plugin
