#include <mirel_datamanagement/Record.h>

Record::Record(unsigned long id) : identifier(id) {}

Record::~Record() = default;

bool Record::isIncluded() const
{
    return included;
}

unsigned long Record::id() const
{
    return identifier;
}

bool Record::isInProject() const
{
    return inProject;
}
