#include <surrogatemodel/SurrogateModelManagerSerializer.h>

#include <surrogatemodel/GenericSerializer.h>
#include <surrogatemodel/SerializedNames.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>
#include <surrogatemodel/SurrogateModelUserDistCollectionSerializer.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_serialization/storableText.h>

#include <boost/make_shared.hpp>

#include <QDomDocument>

#include <map>
#include <stdexcept>
#include <utility>
#include <vector>

class SURROGATEMODEL_NO_EXPORT SurrogateModelManagerSerializer::Impl
{
public:
    using ModelType = SurrogateModelManagerInterface::ModelType;

    explicit Impl(boost::shared_ptr<SurrogateModelManagerInterface> manager)
        : manager(std::move(manager))
    {
        if (!this->manager) {
            throw std::invalid_argument(
                "A serializer of settings needs a manager, but got a null pointer.");
        }
    }

    const boost::shared_ptr<SurrogateModelManagerInterface> manager;
    std::map<std::string, ModelType> nameToType;
    std::map<ModelType, std::string> typeToName;
};

SurrogateModelManagerSerializer::SurrogateModelManagerSerializer(
    boost::shared_ptr<SurrogateModelManagerInterface> manager)
    : Serializer(SerializedNames::manager), impl(std::make_unique<Impl>(std::move(manager)))
{
    initTypeMap();
    // By plain pointer: this serializer owns the sub-element; a shared pointer would be a cycle.
    addSubElement(boost::make_shared<GenericSerializer<std::string>>(
        SerializedNames::type, [this] { return getType(); },
        [this](const std::string& name) { setType(name); }));
    addSubElement(boost::make_shared<SurrogateModelUserDistCollectionSerializer>(
        impl->manager->evaluationPoint()));
}

SurrogateModelManagerSerializer::~SurrogateModelManagerSerializer() = default;

void SurrogateModelManagerSerializer::initTypeMap()
{
    const std::pair<const char*, SurrogateModelManagerInterface::ModelType> types[] = {
        {SerializedNames::kriging, SurrogateModelManagerInterface::Kriging},
        {SerializedNames::responseModel, SurrogateModelManagerInterface::ResponseSurface},
    };
    for (const auto& [name, type] : types) {
        impl->nameToType[name] = type;
        impl->typeToName[type] = name;
    }
}

std::string SurrogateModelManagerSerializer::getType() const
{
    // By indexing: a type that has no name is written as the empty text.
    return impl->typeToName[impl->manager->type()->get()];
}

void SurrogateModelManagerSerializer::setType(std::string name)
{
    // By indexing: a name that no type has gives 0, which is Kriging.
    impl->manager->type()->set(impl->nameToType[std::move(name)]);
}

void SurrogateModelManagerSerializer::serializeSelf(QDomElement& element) const
{
    const std::vector<VarPtr> variables = impl->manager->independentVars()->get();
    for (const VarPtr& variable : variables) {
        if (variable.isNull()) {
            continue;
        }
        QDomElement child = element.ownerDocument().createElement(SerializedNames::variable);
        child.setAttribute(SerializedNames::name, storableText(variable.lock()->name()));
        element.appendChild(child);
    }
}

void SurrogateModelManagerSerializer::deserializeSelf(QDomElement& element) const
{
    // A listener of the list may drop the last owner of this serializer.
    const boost::shared_ptr<SurrogateModelManagerInterface> manager = impl->manager;
    std::vector<VarPtr> variables;
    for (QDomElement child = element.firstChildElement(SerializedNames::variable); !child.isNull();
         child = child.nextSiblingElement(SerializedNames::variable)) {
        const VarPtr variable =
            Project::project()->variable(child.attribute(SerializedNames::name).toStdString());
        if (!variable.isNull() && variable.lock()->nature() == Variable::Independent) {
            variables.push_back(variable);
        }
    }
    manager->independentVars()->set(variables);
}
