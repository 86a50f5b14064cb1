#include <mirel_datamanagement/Project.h>
#include <mirel_datamanagement/Record.h>

#include <boost/smart_ptr/make_shared.hpp>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

/** A record of another source, which decides by itself whether it takes part. */
class OddRecord : public Record
{
public:
    explicit OddRecord(unsigned long id) : Record(id) {}
    bool isIncluded() const override { return id() % 2 == 1; }
};

} // namespace

TEST(Record, IsIncludedWhenItIsNewAndInItsProjectUntilItIsRemoved)
{
    Project project;
    EXPECT_TRUE(project.addRecord().lock()->isIncluded());

    const RecordPtr handle = project.addRecord();
    EXPECT_TRUE(handle.lock()->isInProject());
    project.removeRecord(handle);
    EXPECT_FALSE(handle.lock()->isInProject());
}

TEST(Record, OutlivesItsProjectWhileLocked)
{
    boost::shared_ptr<Record> record;
    RecordPtr handle;
    {
        Project project;
        handle = project.addRecord();
        record = handle.lock();
        project.setIncluded(handle, false);
    }
    EXPECT_FALSE(handle.valid());
    EXPECT_FALSE(record->isInProject());
    EXPECT_EQ(record->id(), 1u);
    EXPECT_FALSE(record->isIncluded());
}

TEST(Record, LetsASubclassDecideWhetherItTakesPart)
{
    const boost::shared_ptr<Record> even = boost::make_shared<OddRecord>(2);
    const boost::shared_ptr<Record> odd = boost::make_shared<OddRecord>(3);
    EXPECT_FALSE(even->isIncluded());
    EXPECT_TRUE(odd->isIncluded());
    EXPECT_FALSE(odd->isInProject());
}

TEST(Record, IsNotCopyable)
{
    EXPECT_FALSE(std::is_copy_constructible<OddRecord>::value);
    EXPECT_FALSE(std::is_copy_assignable<OddRecord>::value);
}
