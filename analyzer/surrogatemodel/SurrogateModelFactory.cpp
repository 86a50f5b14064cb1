#include <surrogatemodel/SurrogateModelFactory.h>

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_signals/EmitSignal.h>

#include <boost/make_shared.hpp>

SurrogateModelFactory::SurrogateModelFactory() = default;

SurrogateModelFactory::~SurrogateModelFactory()
{
    // Also the slots that a running emission has yet to reach, should one of them destroy this.
    changedSignal.disconnect_all_slots();
}

boost::shared_ptr<SurrogateModelInterface>
SurrogateModelFactory::makeModel(ModelType type, const std::vector<double*>& independentColumns,
                                 const std::vector<double*>& dependentColumns, int rowCount) const
{
    if (type != SurrogateModelManagerInterface::Kriging) {
        return boost::make_shared<SurrogateResponseSurfaceModel>(
            independentColumns, dependentColumns, static_cast<std::size_t>(rowCount));
    }
    return boost::make_shared<KrigingSurrogateModel>(independentColumns, dependentColumns, rowCount,
                                                     KrigingOptions());
}

bool SurrogateModelFactory::needsCases() const
{
    return true;
}

boost::signals2::connection
SurrogateModelFactory::connectSignalChanged(const ChangedSignal::slot_type& slot) const
{
    return changedSignal.connect(slot);
}

void SurrogateModelFactory::emitChanged(ModelType type) const
{
    emitSignal(changedSignal, type);
}
