// The wait cursor of a program with a GUI application.
#include <surrogatemodel/SurrogateModelQueryToTable.h>

#include "QueryTest.h"

#include <QApplication>
#include <QTest>
#include <QWidget>

#include <stdexcept>

namespace {

class SurrogateModelQueryToTableCursorTest : public QueryTest
{
protected:
    SurrogateModelQueryToTableCursorTest()
    {
        manager->onModel = [this] {
            const QCursor* const cursor = QGuiApplication::overrideCursor();
            shapeMeanwhile = cursor != nullptr ? static_cast<int>(cursor->shape()) : noCursor;
        };
        button.show();
    }

    ~SurrogateModelQueryToTableCursorTest() override
    {
        release();
        while (isCursorSet()) {
            QGuiApplication::restoreOverrideCursor();
        }
    }

    void press() { QTest::mousePress(&button, Qt::LeftButton); }

    void release()
    {
        if (QGuiApplication::mouseButtons() != Qt::NoButton) {
            QTest::mouseRelease(&button, Qt::LeftButton);
        }
    }

    static bool isCursorSet() { return QGuiApplication::overrideCursor() != nullptr; }

    static constexpr int waitCursor = 3;
    static constexpr int noCursor = -1;

    QWidget button;
    int shapeMeanwhile = noCursor;
};

} // namespace

TEST_F(SurrogateModelQueryToTableCursorTest, ShowsTheWaitCursorWhileTheModelComputes)
{
    update();

    EXPECT_EQ(shapeMeanwhile, waitCursor);
    EXPECT_FALSE(isCursorSet());
}

TEST_F(SurrogateModelQueryToTableCursorTest, LeavesTheCursorAloneWhileAButtonIsHeld)
{
    QGuiApplication::setOverrideCursor(Qt::CrossCursor);
    press();

    update();

    EXPECT_EQ(shapeMeanwhile, static_cast<int>(Qt::CrossCursor));
    ASSERT_TRUE(isCursorSet());
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::CrossCursor);
}

// The buttons are read again before the restore, on purpose: a drag sets the cursor itself.
TEST_F(SurrogateModelQueryToTableCursorTest, LeavesTheWaitCursorWhenAButtonIsPressedMeanwhile)
{
    manager->onModel = [this] { press(); };

    update();

    EXPECT_TRUE(isCursorSet());
}

TEST_F(SurrogateModelQueryToTableCursorTest, RestoresOnceTooOftenWhenAButtonIsReleasedMeanwhile)
{
    QGuiApplication::setOverrideCursor(Qt::CrossCursor);
    press();
    manager->onModel = [this] { release(); };

    update();
    EXPECT_FALSE(isCursorSet());

    press();
    manager->signalModelChanged();
    update();
    EXPECT_FALSE(isCursorSet());
    EXPECT_EQ(output()->GetNumberOfRows(), 4);
}

TEST_F(SurrogateModelQueryToTableCursorTest, RestoresTheCursorAfterAModelError)
{
    const RecordingOutputWindow window;
    manager->failure = "no luck";

    update();

    EXPECT_EQ(shapeMeanwhile, waitCursor);
    EXPECT_FALSE(isCursorSet());
    EXPECT_EQ(filter->getLastError(), "no luck");
}

TEST_F(SurrogateModelQueryToTableCursorTest, HasRestoredTheCursorWhenItReportsAnError)
{
    manager->failure = "no luck";
    bool wasSet = true;
    EventRecorder errors(filter, vtkCommand::ErrorEvent);
    errors.onEvent = [&wasSet] { wasSet = isCursorSet(); };

    update();

    EXPECT_FALSE(wasSet);
}

TEST_F(SurrogateModelQueryToTableCursorTest, RestoresTheCursorAfterAnyOtherException)
{
    manager->onModel = [] { throw std::runtime_error("foreign"); };

    EXPECT_THROW(update(), std::runtime_error);

    EXPECT_FALSE(isCursorSet());
}

TEST_F(SurrogateModelQueryToTableCursorTest,
       ReportsAGridThatIsTooLargeLikeAModelErrorAndLeavesTheCursorAlone)
{
    const RecordingOutputWindow window;
    QGuiApplication::setOverrideCursor(Qt::CrossCursor);
    const VarPtr x3 = addInput("x3");
    manager->independents->set({x1, x2, x3});
    for (const VarPtr& variable : {x1, x2, x3}) {
        variables->inputs[variable] = std::vector<double>(1000000, 0.0);
    }

    update();

    EXPECT_NE(filter->getLastError(), "");
    EXPECT_EQ(output()->GetNumberOfRows(), 0);
    EXPECT_EQ(executions(), 0U);
    ASSERT_TRUE(isCursorSet());
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::CrossCursor);
}

int main(int argumentCount, char** arguments)
{
    ::testing::InitGoogleTest(&argumentCount, arguments);
    // The build lists the tests, without the environment that they run in.
    if (GTEST_FLAG_GET(list_tests)) {
        return RUN_ALL_TESTS();
    }
    const QApplication application(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
