#pragma once

#include <mirel_fitting/CaseDesign.h>
#include <session/project/ModelChoices.h>

#include <surrogatemodel/SurrogateModelFactory.h>

#include <property/PropertyAbstract.h>

#include <surrogate_session/Export.h>

#include <functional>
#include <string>
#include <vector>

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
    /** The same of other cases than those that setDesign() is about, whose design is given. Kriging
     *  does not take it into account.
     *  @param findsSecondOptimum see KrigingOptions. */
    boost::shared_ptr<SurrogateModelInterface>
    makeModel(ModelType type, const std::vector<double*>& independentColumns,
              const std::vector<double*>& dependentColumns, int rowCount, const CaseDesign& design,
              bool findsSecondOptimum = true) const;
    bool needsCases() const override;

    /** @param names gives those of the inputs of the models that are made, in the order of the
     *               columns: what a formula of chosen terms names. */
    void setInputNames(std::function<std::vector<std::string>()> names);

    /** @param design gives that of the valid cases, of which models are made. */
    void setDesign(std::function<CaseDesign()> design);

    /** The choice of columns that the design comes from. */
    boost::shared_ptr<veska::PropertyAbstract<CaseDesignColumns>> designColumns() const;

    ModelChoices choices() const;

    /** Each choice that changes is an undo step and invalidates the models that it concerns: the
     *  transform all, terms and columns response surfaces, the coding of coefficients none. */
    void choose(const ModelChoices& choices);

private:
    ResponseSurfaceOptions optionsOfColumns() const;

    boost::shared_ptr<SurrogateModelInterface> finishedModel;
    std::function<std::vector<std::string>()> inputNames;
    std::function<CaseDesign()> designOfCases;
    boost::shared_ptr<veska::PropertyAbstract<ResponseSurfaceOptions>> responseSurfaceOptions;
    boost::shared_ptr<veska::PropertyAbstract<TransformSetting>> transformSetting;
    boost::shared_ptr<veska::PropertyAbstract<CaseDesignColumns>> designColumnsSetting;
    boost::shared_ptr<veska::PropertyAbstract<InputCoding>> codingSetting;
    boost::signals2::scoped_connection designConnection;
    boost::signals2::scoped_connection termsConnection;
    boost::signals2::scoped_connection transformConnection;
};
