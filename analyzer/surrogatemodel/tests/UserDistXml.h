#pragma once

#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <string>

/** The element of a collection, around `children`. */
inline std::string userDistBlock(const std::string& children)
{
    const std::string tag = "SurrogateModelUserDefinedVariableDistribution";
    return "<" + tag + ">" + children + "</" + tag + ">";
}

/** The warning about a faulty text. */
inline std::string userDistWarning(const std::string& name)
{
    return "Warning: The Surrogate Model User Defined Variable Distribution Syntax for variable "
           "\"" +
           name + "\" is not valid. This variable will use Auto mode.\n";
}

/** `collection` with one more entry. */
inline SurrogateModelUserDistCollection with(SurrogateModelUserDistCollection collection,
                                             const std::string& name,
                                             SurrogateModelUserDistCollection::VariableMode mode,
                                             const std::string& text)
{
    collection.setMode(name, mode);
    collection.setUserDistString(name, text);
    return collection;
}
