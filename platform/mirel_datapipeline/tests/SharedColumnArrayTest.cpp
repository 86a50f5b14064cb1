#include <mirel_datapipeline/SharedColumnArray.h>

#include <boost/smart_ptr/make_shared.hpp>
#include <boost/smart_ptr/weak_ptr.hpp>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkSmartPointer.h>
#include <vtkUnsignedLongArray.h>
#include <vtkVariant.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

using Numbers = std::vector<double>;

} // namespace

TEST(SharedColumnArray, ShowsTheVectorItselfAndAnEmptyOne)
{
    const auto column = boost::make_shared<const Numbers>(Numbers{1.0, 2.0, 3.0});
    vtkNew<SharedColumnArray<vtkDoubleArray>> array;
    array->show(column);
    EXPECT_EQ(array->GetNumberOfTuples(), 3);
    EXPECT_EQ(array->GetPointer(0), column->data());
    EXPECT_EQ(array->GetVariantValue(1).ToDouble(), 2.0);

    vtkNew<SharedColumnArray<vtkDoubleArray>> empty;
    empty->show(boost::make_shared<const Numbers>());
    EXPECT_EQ(empty->GetNumberOfTuples(), 0);
}

TEST(SharedColumnArray, KeepsTheVectorAliveUntilItIsDestroyed)
{
    auto column = boost::make_shared<const Numbers>(Numbers{1.0, 2.0});
    const boost::weak_ptr<const Numbers> observed = column;
    auto array = vtkSmartPointer<SharedColumnArray<vtkDoubleArray>>::New();
    array->show(column);
    column.reset();
    EXPECT_EQ(array->GetValue(1), 2.0);
    array = nullptr;
    EXPECT_TRUE(observed.expired());
}

TEST(SharedColumnArray, IsAnArrayOfItsClassForEveryReader)
{
    vtkNew<SharedColumnArray<vtkUnsignedLongArray>> array;
    array->show(boost::make_shared<const std::vector<unsigned long>>(3, 7ul));
    EXPECT_NE(vtkUnsignedLongArray::SafeDownCast(array), nullptr);
    EXPECT_TRUE(array->IsA("vtkUnsignedLongArray"));
    EXPECT_EQ(array->GetDataType(), VTK_UNSIGNED_LONG);
}

TEST(SharedColumnArray, CopiesIntoMemoryOfItsOwnWhenItGrows)
{
    const auto column = boost::make_shared<const Numbers>(Numbers{1.0, 2.0});
    vtkNew<SharedColumnArray<vtkDoubleArray>> array;
    array->show(column);
    array->InsertNextValue(3.0);
    EXPECT_EQ(array->GetNumberOfTuples(), 3);
    EXPECT_EQ(array->GetValue(0), 1.0);
    EXPECT_EQ(*column, (Numbers{1.0, 2.0}));
}
