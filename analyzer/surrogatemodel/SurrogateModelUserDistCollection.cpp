#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <surrogatemodel/SurrogateModelUserDist.h>

#include <boost/make_shared.hpp>

#include <map>
#include <memory>

class SURROGATEMODEL_NO_EXPORT SurrogateModelUserDistCollection::Impl
{
public:
    struct Entry
    {
        VariableMode mode = Auto;
        std::string text;

        bool operator==(const Entry& other) const
        {
            return mode == other.mode && text == other.text;
        }
    };

    /** The entry of `name`, or one with the defaults. */
    Entry entry(const std::string& name) const
    {
        const auto held = entries.find(name);
        return held == entries.end() ? Entry() : held->second;
    }

    std::map<std::string, Entry> entries;
};

SurrogateModelUserDistCollection::SurrogateModelUserDistCollection()
    : impl(std::make_unique<Impl>())
{}

SurrogateModelUserDistCollection::SurrogateModelUserDistCollection(
    const SurrogateModelUserDistCollection& other)
    : impl(std::make_unique<Impl>(*other.impl))
{}

SurrogateModelUserDistCollection&
SurrogateModelUserDistCollection::operator=(const SurrogateModelUserDistCollection& other)
{
    if (this != &other) {
        impl = std::make_unique<Impl>(*other.impl);
    }
    return *this;
}

SurrogateModelUserDistCollection::~SurrogateModelUserDistCollection() = default;

std::string SurrogateModelUserDistCollection::getUserDistString(const std::string& name) const
{
    return impl->entry(name).text;
}

void SurrogateModelUserDistCollection::setUserDistString(const std::string& name,
                                                         const std::string& text)
{
    impl->entries[name].text = text;
}

SurrogateModelUserDistCollection::VariableMode
SurrogateModelUserDistCollection::getMode(const std::string& name) const
{
    return impl->entry(name).mode;
}

void SurrogateModelUserDistCollection::setMode(const std::string& name, VariableMode mode)
{
    impl->entries[name].mode = mode;
}

std::set<std::string> SurrogateModelUserDistCollection::getVarNameSet() const
{
    std::set<std::string> names;
    for (const auto& [name, entry] : impl->entries) {
        names.insert(names.end(), name);
    }
    return names;
}

boost::shared_ptr<SurrogateModelUserDist>
SurrogateModelUserDistCollection::getUserDistributionPoints(const std::string& name) const
{
    return boost::make_shared<SurrogateModelUserDist>(getUserDistString(name));
}

bool SurrogateModelUserDistCollection::operator==(
    const SurrogateModelUserDistCollection& other) const
{
    return impl->entries == other.impl->entries;
}

bool SurrogateModelUserDistCollection::operator!=(
    const SurrogateModelUserDistCollection& other) const
{
    return !(*this == other);
}
