#include <surrogatemodel/SurfaceCoefficientExporter.h>

#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <ostream>
#include <string>

class SURROGATEMODEL_NO_EXPORT SurfaceCoefficientExporter::Impl
{
public:
    void writeLegend() const;
    void writeEquations() const;

    const SurrogateModelManagerInterface& manager;
    const std::set<VarPtr>& dependents;
    std::ostream& out;

private:
    /** Unformatted: independent of the width, fill and number format of the stream. */
    void write(const std::string& text) const
    {
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
    }
};

void SurfaceCoefficientExporter::Impl::writeLegend() const
{
    write("Independent Variables\n");
    std::size_t number = 0;
    for (const VarPtr& variable : manager.independentVars()->get()) {
        write("V" + std::to_string(++number) + " = " + variable.lock()->name() + "\n");
    }
}

void SurfaceCoefficientExporter::Impl::writeEquations() const
{
    const SurrogateModelInterface& model = manager.model(dependents);
    for (const VarPtr& variable : dependents) {
        const std::string name = variable.lock()->name();
        write("\nEquation for dependent variable: " + name + "\n");
        const int offset = static_cast<int>(manager.offsetForVariableName(name));
        write("Result = ");
        // No line end: the model's text has its own.
        write(model.surfaceCoefficientInformation(offset));
    }
}

SurfaceCoefficientExporter::SurfaceCoefficientExporter(
    const SurrogateModelManagerInterface& manager, const std::set<VarPtr>& dependents,
    std::ostream& out)
    : impl(new Impl{manager, dependents, out})
{}

SurfaceCoefficientExporter::~SurfaceCoefficientExporter() = default;

void SurfaceCoefficientExporter::exportData() const
{
    impl->writeLegend();
    impl->writeEquations();
}
