#include <property/Property.h>
#include <property/UndoablePropertyProxy.h>

#include <QUndoStack>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <vector>

TEST(UndoablePropertyProxy, RecordsOneStepThatUndoAndRedoRunThrough)
{
    UndoStack().stack().clear();
    const auto target = boost::make_shared<veska::Property<std::vector<int>>>();
    const auto proxy =
        boost::make_shared<veska::UndoablePropertyProxy<std::vector<int>>>("Numbers", target);

    proxy->set({1, 2});

    EXPECT_EQ(UndoStack().stack().count(), 1);
    EXPECT_EQ(UndoStack().stack().undoText(), "Change Numbers");
    UndoStack().stack().undo();
    EXPECT_EQ(target->get(), std::vector<int>());
    UndoStack().stack().redo();
    EXPECT_EQ(proxy->get(), (std::vector<int>{1, 2}));
    UndoStack().stack().clear();
}
