#include <mirel_fitting/kriging/grid/GridSums.h>

#include "KrigingGridTestSupport.h"

using namespace gridtest;

TEST(GridSums, SumsAlongALineForEveryInputAndTrend)
{
    for (const int order : {0, 1, 2}) {
        const Model model(3, order, 30);
        expectTheScatteredPredictions(model, gridOf(4, {{0, evenly(900, -1.5, 1.5)}}));
        expectTheScatteredPredictions(model, gridOf(4, {{2, evenly(1201, -1.0, 4.0)}}));
        expectTheScatteredPredictions(model, gridOf(4, {{3, evenly(5000, 1.0, 5.5)}}));
    }
    expectTheScatteredPredictions(Model(1, 1, 40), gridOf(2, {{0, evenly(1000, -1.5, 1.5)}}));
}

TEST(GridSums, SumsAlongALongAxisWhereverItIsNested)
{
    const Model model(4, 2, 25);
    std::vector<std::pair<std::size_t, std::vector<double>>> axes = {
        {0, evenly(3, -1.5, 1.5)}, {2, evenly(211, -1.0, 4.0)}, {4, evenly(4, 1.0, 5.5)}};
    do {
        expectTheScatteredPredictions(model, gridOf(5, axes));
    } while (std::next_permutation(axes.begin(), axes.end()));
}

TEST(GridSums, SumsOverValuesInAnyOrder)
{
    const Model model(2, 2, 25);
    UniformNumbers numbers(4);
    std::vector<double> shuffled = evenly(600, -1.0, 4.0);
    for (std::size_t i = shuffled.size(); i-- > 1;) {
        std::swap(shuffled[i], shuffled[numbers.generator() % (i + 1)]);
    }
    std::vector<double> repeated = shuffled;
    for (std::size_t i = 0; i < repeated.size(); ++i) {
        repeated[i] = repeated[i % 170];
    }
    for (const auto& values : {evenly(600, 4.0, -1.0), shuffled, repeated}) {
        expectTheScatteredPredictions(model, gridOf(3, {{2, values}}));
        expectTheScatteredPredictions(model, gridOf(3, {{0, evenly(5, -1.0, 1.0)}, {2, values}}));
        expectTheScatteredPredictions(model, gridOf(3, {{2, values}, {0, evenly(5, -1.0, 1.0)}}));
    }
}

TEST(GridSums, SumsOverTheFiniteValuesOfALine)
{
    const Model model(2, 1, 25);
    std::vector<double> values = evenly(800, -1.0, 4.0);
    for (const std::size_t v : {0, 1, 17, 400, 799}) {
        values[v] = v == 400 ? infinity : notANumber;
    }
    for (const bool isLine : {true, false}) {
        Columns columns = isLine ? gridOf(3, {{2, values}})
                                 : gridOf(3, {{2, values}, {0, {-1.0, notANumber, 1.0}}});
        expectTheScatteredPredictions(model, columns);
    }
}

TEST(GridSums, GivesNaNAlongALineWithoutAFiniteValue)
{
    std::vector<double> values(700, notANumber);
    values[3] = infinity;
    expectTheScatteredPredictions(Model(2, 1, 25), gridOf(3, {{2, values}}));
}

TEST(GridSums, SumsAlongALineBesideAColumnThatIsNoInput)
{
    const Model model(2, 1, 25);
    Columns columns = gridOf(3, {{2, evenly(800, -1.0, 4.0)}});
    columns[1] = columns[2];
    expectTheScatteredPredictions(model, columns);

    columns[1][5] = notANumber;
    expectTheScatteredPredictions(model, columns);
}
