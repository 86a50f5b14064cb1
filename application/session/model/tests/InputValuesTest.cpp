#include <session/model/InputValues.h>

#include "CvdCases.h"
#include "CvdSession.h"
#include "MessageOf.h"

#include <session/text/SessionErrors.h>

#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
class InputValuesTest : public ::testing::Test
{
protected:
    /** The values of an input at the points of the evaluation. */
    std::vector<double> pointsOf(vtkIdType input)
    {
        const GridEvaluation evaluation = session.evaluate();
        auto* const column = vtkDoubleArray::SafeDownCast(evaluation.table->GetColumn(input));
        return {column->GetPointer(0), column->GetPointer(0) + column->GetNumberOfTuples()};
    }

    CaseSession session = cvdSession();
    InputValues values{session};
};
} // namespace

TEST_F(InputValuesTest, SweepsTypedValues)
{
    values.sweep("Pressure=10, 20");

    EXPECT_EQ(session.sweptInputs(), (std::vector<std::size_t>{0}));
    EXPECT_EQ(pointsOf(0), (std::vector<double>{10.0, 20.0}));
}

TEST_F(InputValuesTest, RefusesTextsOfTooManyValuesTogether)
{
    std::string text = "H2/WF6=1";
    for (int i = 0; i < 10; ++i) {
        text += ", 1 - 2 : 999999";
    }
    values.sweep("Pressure=1, 2, 3, 4, 5, 6, 7, 8, 9, 10");

    EXPECT_EQ(
        messageOf<DistributionTextError>([&] { values.sweep(text); }),
        "The texts of the inputs ask for 10000001 values together, and at most 10000000 can be "
        "typed. Ask for fewer values.");
}

TEST_F(InputValuesTest, SweepsEvenlyOverTheRange)
{
    values.sweepEvenly("H2/WF6=3");
    EXPECT_EQ(session.sweptInputs(), (std::vector<std::size_t>{1}));
    EXPECT_EQ(pointsOf(1), (std::vector<double>{2.0, 6.0, 10.0}));

    values.sweepEvenly("Pressure", 2);
    EXPECT_EQ(pointsOf(0), (std::vector<double>{4.0, 4.0, 4.0, 80.0, 80.0, 80.0}))
        << "a number of values where a name stands alone";
}

TEST_F(InputValuesTest, HoldsAnInputAtItsValue)
{
    values.hold("H2/WF6=5");

    EXPECT_EQ(values.held(), (std::vector<std::size_t>{1}));
    EXPECT_EQ(pointsOf(1), (std::vector<double>{5.0}));
}

TEST_F(InputValuesTest, DistinguishNamesFromNamesWithValues)
{
    EXPECT_TRUE(values.isName("Pressure"));
    EXPECT_TRUE(values.isName("Presure"));
    EXPECT_FALSE(values.isName("Pressure=5"));
}

TEST_F(InputValuesTest, RefuseWhatIsNoInputOrNoCountOrNamedTwice)
{
    const auto countRefusal = [this](const std::string& text) {
        return messageOf<UsageError>([&] { values.sweepEvenly(text); });
    };
    EXPECT_EQ(messageOf<UsageError>([&] { values.sweep("Stress=5"); }),
              "\"Stress\" is no input, so that it takes no values.");
    EXPECT_EQ(messageOf<UsageError>([&] { values.sweepEvenly("Uniformity", 5); }),
              "\"Uniformity\" is no input, so that it takes no values.");
    EXPECT_EQ(messageOf<UsageError>([&] { values.hold("Presure=5"); }),
              "There is no variable \"Presure\"; the nearest name is \"Pressure\". The variables "
              "are: \"Pressure\", \"H2/WF6\", \"Uniformity\", \"Stress\".");
    EXPECT_EQ(countRefusal("H2/WF6=1"),
              "The count of \"H2/WF6\" needs a whole number from 2 to 100000000, not \"1\".");
    values.hold("Pressure=5");
    EXPECT_EQ(countRefusal("Pressure=3"), "\"Pressure\" has values twice; name it once.");
}

TEST(InputValues, RefuseADecimalCommaInSweptValues)
{
    CaseTable table = cvdCases();
    table.layout.hasDecimalComma = true;
    CaseSession session(table, {{0, 1}, {3}}, {}, CaseSession::ResponseSurface);
    InputValues values(session);

    EXPECT_EQ(messageOf<UsageError>([&] { values.sweep("Pressure=10,5"); }),
              "The values \"10,5\" of \"Pressure\" have a comma between digits, and commas "
              "separate values: write a decimal point, or a blank behind each comma.");
    values.sweep("H2/WF6=3, 5");
    EXPECT_EQ(session.sweptInputs(), (std::vector<std::size_t>{1}));
}
