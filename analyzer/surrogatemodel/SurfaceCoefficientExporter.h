#pragma once

#include <surrogatemodel/Export.h>

#include <mirel_datamanagement/Variable.h>

#include <iosfwd>
#include <memory>
#include <set>

class SurrogateModelManagerInterface;

/**
 * Writes the fitted equations as text: a legend of the symbols V1, V2, ... that stand for the
 * independent variables, then one equation per dependent variable, as the model writes it.
 * Meant for response surfaces; the text of another model is written too.
 */
class SURROGATEMODEL_EXPORT SurfaceCoefficientExporter
{
public:
    /** Borrows all three until the exporter is destroyed. */
    SurfaceCoefficientExporter(const SurrogateModelManagerInterface& manager,
                               const std::set<VarPtr>& dependents, std::ostream& out);
    ~SurfaceCoefficientExporter();

    SurfaceCoefficientExporter(const SurfaceCoefficientExporter&) = delete;
    SurfaceCoefficientExporter& operator=(const SurfaceCoefficientExporter&) = delete;

    /**
     * Writes the legend, asks the manager for the model of all dependents at once, then writes
     * their equations in the order of the set. The bytes do not depend on the format flags and the
     * locale of the stream.
     *
     * The legend numbers every variable of the manager's list, in its order. The model has columns
     * only for those of nature Variable::Independent, so that the numbers differ while the list
     * contains others.
     *
     * An exception of the model passes; what was written before stays written.
     * @throw HandleError for a null handle or one whose variable is destroyed.
     */
    void exportData() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
