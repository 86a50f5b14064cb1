#include <surrogatemodel/SurrogateModelUserDistCollectionSerializer.h>

#include <surrogatemodel/NamedValueTranslator.h>
#include <surrogatemodel/SerializedNames.h>
#include <surrogatemodel/SurrogateModelUserDist.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_serialization/storableText.h>

#include <QApplication>
#include <QDomDocument>
#include <QMessageBox>

#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

bool isInProject(const std::string& name)
{
    return !Project::project()->variable(name).isNull();
}

std::string warningAbout(const std::string& name)
{
    return "Warning: The Surrogate Model User Defined Variable Distribution Syntax for variable "
           "\"" +
           name + "\" is not valid. This variable will use Auto mode.\n";
}

/** Without widgets a message box would abort the process. */
bool canShowBoxes()
{
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

void warnAbout(const std::string& name)
{
    const std::string warning = warningAbout(name);
    if (!canShowBoxes()) {
        std::cerr << warning << std::flush;
        return;
    }
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Format Error"),
                    QString::fromStdString(warning), QMessageBox::Ok);
    // Names may contain markup, which is not to be interpreted.
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

} // namespace

class SURROGATEMODEL_NO_EXPORT SurrogateModelUserDistCollectionSerializer::Impl
{
public:
    explicit Impl(boost::shared_ptr<CollectionProperty> property) : property(std::move(property))
    {
        if (!this->property) {
            throw std::invalid_argument(
                "A serializer of distributions needs a property, but got a null pointer.");
        }
        modes.add(SurrogateModelUserDistCollection::Auto, SerializedNames::autoMode);
        modes.add(SurrogateModelUserDistCollection::UserDefined, SerializedNames::userDefinedMode);
    }

    /** Adds the entry of the element `variable` to `collection`, or warns of its text. */
    void read(const QDomElement& variable, SurrogateModelUserDistCollection& collection) const
    {
        const std::string name = variable.attribute(SerializedNames::name).toStdString();
        const std::string text = variable.attribute(SerializedNames::distribution).toStdString();
        // Translated before the name is checked: an unknown mode ends every read.
        const SurrogateModelUserDistCollection::VariableMode mode = modes.toValue(
            variable.attribute(SerializedNames::mode, SerializedNames::userDefinedMode)
                .toStdString());
        if (name.empty() || !isInProject(name)) {
            return;
        }
        if (SurrogateModelUserDist(text).validate() != SurrogateModelUserDist::NoError) {
            warnAbout(name);
            return;
        }
        collection.setMode(name, mode);
        collection.setUserDistString(name, text);
    }

    const boost::shared_ptr<CollectionProperty> property;
    NamedValueTranslator<SurrogateModelUserDistCollection::VariableMode> modes;
};

SurrogateModelUserDistCollectionSerializer::SurrogateModelUserDistCollectionSerializer(
    boost::shared_ptr<CollectionProperty> property)
    : Serializer(SerializedNames::userDistributions),
      impl(std::make_unique<Impl>(std::move(property)))
{}

SurrogateModelUserDistCollectionSerializer::~SurrogateModelUserDistCollectionSerializer() = default;

void SurrogateModelUserDistCollectionSerializer::serializeSelf(QDomElement& block) const
{
    const SurrogateModelUserDistCollection collection = impl->property->get();
    for (const std::string& name : collection.getVarNameSet()) {
        if (!isInProject(name)) {
            continue;
        }
        QDomElement variable = block.ownerDocument().createElement(SerializedNames::variable);
        variable.setAttribute(SerializedNames::mode,
                              QString::fromStdString(impl->modes.toText(collection.getMode(name))));
        variable.setAttribute(SerializedNames::distribution,
                              storableText(collection.getUserDistString(name)));
        variable.setAttribute(SerializedNames::name, storableText(name));
        block.appendChild(variable);
    }
}

void SurrogateModelUserDistCollectionSerializer::deserializeSelf(QDomElement& block) const
{
    // The message box of a warning runs an event loop, in which anything may happen.
    const boost::shared_ptr<CollectionProperty> property = impl->property;
    SurrogateModelUserDistCollection collection = property->get();
    for (QDomElement variable = block.firstChildElement(); !variable.isNull();
         variable = variable.nextSiblingElement()) {
        impl->read(variable, collection);
    }
    property->set(collection);
}
