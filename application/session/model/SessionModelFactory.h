#pragma once

#include <mirel_fitting/ResponseSurfaceOptions.h>
#include <session/project/TransformSetting.h>

#include <surrogatemodel/SurrogateModelFactory.h>

#include <property/PropertyAbstract.h>

#include <surrogate_session/Export.h>

/** Makes the library's models, of outputs or their transforms, and response surfaces with the
 * chosen terms; or hands out a model that is finished already. */
class SURROGATE_SESSION_EXPORT SessionModelFactory : public SurrogateModelFactory
{
public:
    /** @param model what makeModel() returns whatever it is asked for; null: it fits models. */
    explicit SessionModelFactory(boost::shared_ptr<SurrogateModelInterface> model = nullptr);

    boost::shared_ptr<SurrogateModelInterface>
    makeModel(ModelType type, const std::vector<double*>& independentColumns,
              const std::vector<double*>& dependentColumns, int rowCount) const override;
    bool needsCases() const override;

    /** A change is an undo step, and invalidates all models that were made before. */
    boost::shared_ptr<veska::PropertyAbstract<TransformSetting>> transform() const;

    /** The terms of response surfaces. A change is an undo step, and invalidates response
     *  surfaces that were made before. */
    boost::shared_ptr<veska::PropertyAbstract<ResponseSurfaceOptions>> responseSurface() const;

private:
    boost::shared_ptr<SurrogateModelInterface> finishedModel;
    boost::shared_ptr<veska::PropertyAbstract<ResponseSurfaceOptions>> responseSurfaceOptions;
    boost::shared_ptr<veska::PropertyAbstract<TransformSetting>> transformSetting;
    boost::signals2::scoped_connection termsConnection;
    boost::signals2::scoped_connection transformConnection;
};
