#include <surrogatemodel/SurrogateModelQueryToTable.h>

#include "QueryTest.h"

#include <mirel_datamanagement/tests/MemoryGrowth.h>

#include <functional>
#include <stdexcept>

namespace {

using Values = std::vector<double>;

/** Bytes of a column of a large table, which has 200000 values of x1 and 2 of x2. */
const std::size_t largeColumn = 2 * 200000 * sizeof(double);

using SurrogateModelQueryToTableMemoryTest = QueryTest;

} // namespace

TEST_F(SurrogateModelQueryToTableMemoryTest, KeepsNoMemoryOfTablesThatAreReleased)
{
    if (!memoryCanBeMeasured) {
        GTEST_SKIP();
    }
    variables->inputs[x1] = Values(200000, 3.0);
    const std::size_t withoutTable = bytesInUse();
    update();
    const std::size_t withOneTable = bytesInUse();

    std::vector<vtkSmartPointer<vtkTable>> kept;
    for (int run = 0; run < 4; ++run) {
        kept.push_back(vtkSmartPointer<vtkTable>::New());
        kept.back()->ShallowCopy(output());
        filter->Modified();
        update();
    }
    EXPECT_GE(bytesInUse(), withoutTable + 5 * 3 * largeColumn);

    kept.clear();
    EXPECT_LE(bytesInUse(), withOneTable + largeColumn / 4);
    output()->Initialize();
    EXPECT_LE(bytesInUse(), withoutTable + largeColumn / 4);
}

TEST_F(SurrogateModelQueryToTableMemoryTest, KeepsNoMemoryOfALargeTableAfterAnError)
{
    if (!memoryCanBeMeasured) {
        GTEST_SKIP();
    }
    const RecordingOutputWindow window;
    update();
    const std::size_t before = bytesInUse();
    const std::vector<std::function<void()>> failures = {
        [] { throw SurrogateModelInterface::Error("no luck"); },
        [] { throw std::domain_error("foreign"); }};
    for (const auto& failure : failures) {
        variables->inputs[x1] = Values(200000, 3.0);
        manager->onModel = nullptr;
        filter->Modified();
        update();

        variables->inputs[x1] = Values{3.0};
        manager->onModel = failure;
        filter->Modified();
        try {
            update();
        } catch (const std::domain_error&) {
            // Other errors than the model's pass through.
        }

        EXPECT_LE(bytesInUse(), before + largeColumn / 4);
    }
}

TEST_F(SurrogateModelQueryToTableMemoryTest, TakesTheMemoryOfOneTableHoweverOftenItRuns)
{
    if (!memoryCanBeMeasured) {
        GTEST_SKIP();
    }
    variables->inputs = {{x1, std::vector<double>(1000, 1.0)},
                         {x2, std::vector<double>(1000, 2.0)}};

    const int growth = megabytesGrownBy([&] {
        for (int run = 0; run < 3; ++run) {
            filter->Modified();
            update();
        }
    });

    const int columns = 3 * 8; // megabytes
    const int fixed = 8;
    EXPECT_GE(growth, columns - 2);
    EXPECT_LE(growth, columns + fixed);
}
