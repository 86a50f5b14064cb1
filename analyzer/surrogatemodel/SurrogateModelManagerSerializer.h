#pragma once

#include <surrogatemodel/Export.h>
#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include <mirel_serialization/Serializer.h>

#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>

/**
 * The settings of a manager as an element "SurrogateModel", for project documents:
 *
 *     <SurrogateModel>
 *       <Type>ResponseModel</Type>                               "Kriging" or "ResponseModel"
 *       <SurrogateModelUserDefinedVariableDistribution>...       the evaluation point
 *       <Variable Name="X"/>                                     the independent variables, in the
 *       <Variable Name="Y"/>                                     order of the list
 *     </SurrogateModel>
 *
 * The distribution element is that of SurrogateModelUserDistCollectionSerializer. Everything is
 * read, in this order too, and handed to the set() of the manager's properties: it is validated and
 * compared first, and with the properties of SurrogateModelManager each value that changes is an
 * undo step. Suspend the recording or open a macro around a load for another number of steps.
 *
 * Variables are found by name in the open project. The manager's other user distributions are not
 * part of this: a second SurrogateModelUserDistCollectionSerializer writes them, under a parent of
 * their own, since two elements of one tag in one parent cannot be distinguished.
 */
class SURROGATEMODEL_EXPORT SurrogateModelManagerSerializer : public Serializer
{
public:
    /**
     * @param manager shared from now on.
     * @throw std::invalid_argument if `manager` is null.
     */
    explicit SurrogateModelManagerSerializer(
        boost::shared_ptr<SurrogateModelManagerInterface> manager);
    ~SurrogateModelManagerSerializer() override;

    /** Fills the table of the types and their names; the constructor has done it. */
    void initTypeMap();

private:
    /** The name of the manager's type; empty for a type that has none. */
    std::string getType() const;

    /** Sets the type with this name. Every other text, the empty one too, means Kriging: documents
     *  that name types this release does not know stay readable. */
    void setType(std::string name);

    /**
     * Writes the list of independent variables. Variables that were removed from the project are
     * written too, null handles are left out.
     * @throw HandleError for a handle whose variable has been destroyed.
     */
    void serializeSelf(QDomElement& element) const override;

    /**
     * Sets the list to the independent variables that the "Variable" children name, in document
     * order; an element without any clears the list. Names that the project does not have or whose
     * variable is of another nature are skipped without a message.
     */
    void deserializeSelf(QDomElement& element) const override;

    class Impl;
    std::unique_ptr<Impl> impl;
};
