#include <mirel_datamanagement/CopyOnWriteColumn.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

using Values = std::vector<int>;

} // namespace

TEST(CopyOnWriteColumn, ChangesValuesInPlaceThatAreNotSharedAnyMore)
{
    CopyOnWriteColumn<int> column({1, 2});
    const int* before = column.get().data();
    column.writable()[0] = 5;
    EXPECT_EQ(column.get(), (Values{5, 2}));
    EXPECT_EQ(column.get().data(), before);

    column.share().reset();
    EXPECT_EQ(column.writable().data(), before);
}

TEST(CopyOnWriteColumn, ChangesOneCopyOfWhatIsShared)
{
    CopyOnWriteColumn<int> column({1, 2});
    const auto shared = column.share();
    EXPECT_EQ(shared->data(), column.get().data());
    column.writable()[0] = 5;
    EXPECT_EQ(*shared, (Values{1, 2}));
    EXPECT_EQ(column.get(), (Values{5, 2}));

    const int* copied = column.writable().data();
    EXPECT_EQ(column.writable().data(), copied);
}

TEST(CopyOnWriteColumn, AppendsWithinTheRoomThatWasPrepared)
{
    CopyOnWriteColumn<int> column({1, 2});
    column.prepareToAppend(3);
    const int* before = column.get().data();
    column.writable().insert(column.writable().end(), {3, 4, 5});
    EXPECT_EQ(column.get(), (Values{1, 2, 3, 4, 5}));
    EXPECT_EQ(column.get().data(), before);
}

TEST(CopyOnWriteColumn, DoesNotChangeSharedValuesWhenItMakesRoom)
{
    CopyOnWriteColumn<int> column({1, 2});
    const auto shared = column.share();
    column.prepareToAppend(1);
    const int* before = column.get().data();
    column.writable().push_back(3);
    EXPECT_EQ(*shared, (Values{1, 2}));
    EXPECT_EQ(column.get(), (Values{1, 2, 3}));
    EXPECT_EQ(column.get().data(), before);
}

TEST(CopyOnWriteColumn, GrowsByDoublingWhenValuesComeOneByOne)
{
    CopyOnWriteColumn<int> column;
    int moves = 0;
    for (int i = 0; i < 1000; ++i) {
        const int* before = column.get().data();
        column.prepareToAppend(1);
        column.writable().push_back(i);
        moves += column.get().data() != before ? 1 : 0;
    }
    // 1, 2, 4, ..., 1024.
    EXPECT_EQ(moves, 11);
}
