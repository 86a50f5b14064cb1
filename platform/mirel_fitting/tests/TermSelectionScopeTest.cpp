#include <mirel_fitting/TermSelectionScope.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

using Model = SurrogateResponseSurfaceModel;
using Selection = Model::Selection;

/** A straight line with a little noise: of a full quadratic polynomial the square is not needed. */
struct NoisyLine
{
    std::vector<double> input = {0, 1, 2, 3, 4, 5, 6, 7};
    std::vector<double> output = {1.1, 2.9, 5.1, 6.9, 9.1, 10.9, 13.1, 14.9};

    std::vector<double*> inputs() { return {input.data()}; }
    std::vector<double*> outputs() { return {output.data()}; }
};

std::vector<std::string> droppedBy(const Model& model)
{
    return model.responseSurfaceStatistics(0).droppedTerms;
}

std::vector<std::string> droppedByDefault()
{
    NoisyLine line;
    return droppedBy({line.inputs(), line.outputs(), line.input.size()});
}

const std::vector<std::string> none;
const std::vector<std::string> square = {"V1^2"};

} // namespace

TEST(TermSelectionScope, IsNotNeededByAModelWithAllTerms)
{
    EXPECT_EQ(TermSelectionScope::current(), Selection::All);
    EXPECT_EQ(droppedByDefault(), none);
}

TEST(TermSelectionScope, MakesResponseSurfacesSelectTheirTermsUntilItEnds)
{
    {
        const TermSelectionScope scope(Selection::BackwardAicc);
        EXPECT_EQ(droppedByDefault(), square);
    }
    EXPECT_EQ(droppedByDefault(), none);
}

TEST(TermSelectionScope, CountsForModelsOfAChosenOrderToo)
{
    NoisyLine line;
    const TermSelectionScope scope(Selection::BackwardAicc);

    EXPECT_EQ(droppedBy({line.inputs(), line.outputs(), line.input.size(), 2}), square);
}

TEST(TermSelectionScope, GivesWayToTheSelectionThatAConstructorIsTold)
{
    NoisyLine line;
    const TermSelectionScope scope(Selection::BackwardAicc);

    EXPECT_EQ(
        droppedBy({line.inputs(), line.outputs(), line.input.size(), ResponseSurfaceOptions{}}),
        none);
}

TEST(TermSelectionScope, IsReplacedByANewerOneUntilThatGoes)
{
    const TermSelectionScope outer(Selection::BackwardAicc);
    {
        const TermSelectionScope inner(Selection::All);
        EXPECT_EQ(droppedByDefault(), none);
    }
    EXPECT_EQ(droppedByDefault(), square);
}

TEST(TermSelectionScope, LeavesOtherThreadsAlone)
{
    const TermSelectionScope scope(Selection::BackwardAicc);
    std::vector<std::string> dropped = square;

    std::thread([&] { dropped = droppedByDefault(); }).join();

    EXPECT_EQ(dropped, none);
}

TEST(TermSelectionScope, LeavesFinishedModelsAsTheyAre)
{
    NoisyLine line;
    const Model whole(line.inputs(), line.outputs(), line.input.size());
    const TermSelectionScope scope(Selection::BackwardAicc);

    EXPECT_EQ(droppedBy(whole), none);
}
