#pragma once

#include <surrogatemodel/Export.h>
#include <surrogatemodel/SurrogateModelUserDist.h>

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <memory>
#include <set>
#include <string>

/**
 * Per variable name: whether the values at which the variable is evaluated are chosen
 * automatically or typed by the user, and the distribution text. A value: copies share nothing.
 *
 * Names are compared byte by byte. Neither names nor texts are checked; a faulty text is kept as
 * it is and reports its fault when it is used. A name that is not held answers like one with mode
 * Auto and an empty text, and asking for it does not add it. Entries are never removed.
 */
class SURROGATEMODEL_EXPORT SurrogateModelUserDistCollection
{
public:
    /** Where the values of a variable come from. */
    enum VariableMode : std::int32_t
    {
        Auto = 0,       ///< the text is kept but not used
        UserDefined = 1 ///< the text gives the values
    };

    /** An empty collection. */
    SurrogateModelUserDistCollection();
    // No moves: a moved-from object would have no state and could not be used.
    SurrogateModelUserDistCollection(const SurrogateModelUserDistCollection&); ///< the same entries
    SurrogateModelUserDistCollection&
    operator=(const SurrogateModelUserDistCollection&); ///< the same entries
    virtual ~SurrogateModelUserDistCollection();

    /** The distribution text, empty for a name that is not held. */
    std::string getUserDistString(const std::string& name) const;

    /** Sets the text. A held name keeps its mode, a new one gets Auto. */
    void setUserDistString(const std::string& name, const std::string& text);

    /** The mode, Auto for a name that is not held. */
    VariableMode getMode(const std::string& name) const;

    /** Sets the mode. A held name keeps its text, a new one gets an empty one. */
    void setMode(const std::string& name, VariableMode mode);

    /** Every name held, in ascending byte order. */
    std::set<std::string> getVarNameSet() const;

    /**
     * A new object over the text of `name`, whatever the mode; never null and not checked. A name
     * that is not held gives one over the empty text, which is not valid.
     */
    boost::shared_ptr<SurrogateModelUserDist>
    getUserDistributionPoints(const std::string& name) const;

    /**
     * Whether both hold the same names with the same modes and texts. An entry with mode Auto and
     * an empty text differs from no entry. @{
     */
    bool operator==(const SurrogateModelUserDistCollection& other) const;
    bool operator!=(const SurrogateModelUserDistCollection& other) const;
    /** @} */

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
