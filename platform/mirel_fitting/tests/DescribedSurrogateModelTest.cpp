#include <mirel_fitting/DescribedSurrogateModel.h>
#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace fittingtest;

namespace {

using Description = PredictorDescription;

/** Inputs in units far from 1, the second one constant, and two outputs. */
Cases threeInputs(std::size_t count)
{
    Random random(3);
    Cases cases{
        {random.column(count, 4e-12, 8e-12), Column(count, 7.0), random.column(count, -3e12, 5e12)},
        {{}, {}}};
    for (std::size_t k = 0; k < count; ++k) {
        const double a = cases.inputs[0][k] * 1e12;
        const double b = cases.inputs[2][k] * 1e-12;
        cases.outputs[0].push_back(1e6 + surface(a, b));
        cases.outputs[1].push_back(1e-9 * std::sin(a + 0.3 * b));
    }
    return cases;
}

KrigingSurrogateModel kriging(Cases cases)
{
    return {cases.inputPointers(), cases.outputPointers(), static_cast<int>(cases.count()),
            KrigingOptions()};
}

SurrogateResponseSurfaceModel polynomial(Cases cases)
{
    return {cases.inputPointers(), cases.outputPointers(), cases.count()};
}

template <class Model>
DescribedSurrogateModel described(const Model& model, int outputs)
{
    std::vector<DescribedSurrogateModel::Output> all;
    for (int offset = 0; offset < outputs; ++offset) {
        all.push_back({model.predictorDescription(offset), model.fitMetrics(offset),
                       model.fitWarnings(offset)});
    }
    return DescribedSurrogateModel(all);
}

bool areSameBits(const Column& a, const Column& b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

/** Single points inside and far outside, one that is not finite, and a grid. */
std::vector<std::vector<Column>> pointSets()
{
    Random random(5);
    std::vector<Column> scattered = {random.column(50, 3e-12, 9e-12), random.column(50, 6.0, 8.0),
                                     random.column(50, -4e12, 6e12)};
    scattered[1][7] = notANumber;
    scattered[2][9] = infinity;
    scattered[0][11] = 1e100;
    std::vector<Column> grid(3);
    for (int i = 0; i < 40; ++i) {
        for (int j = 0; j < 40; ++j) {
            grid[0].push_back(4e-12 + 1e-13 * i);
            grid[1].push_back(7.0);
            grid[2].push_back(-3e12 + 2e11 * j);
        }
    }
    return {scattered, grid};
}

template <class Model>
void expectSamePredictions(const Model& model, const DescribedSurrogateModel& copy, int outputs)
{
    for (const std::vector<Column>& points : pointSets()) {
        for (int offset = 0; offset < outputs; ++offset) {
            EXPECT_TRUE(areSameBits(predict(model, points, offset), predict(copy, points, offset)));
        }
    }
}

std::string refusalOf(const Description& description)
{
    return errorOf([&] { DescribedSurrogateModel({{description, {}, {}}}); });
}

} // namespace

TEST(DescribedSurrogateModel, PredictsWhatModelsDoToTheLastBitAndDescribesItselfAgain)
{
    const SurrogateResponseSurfaceModel surface = polynomial(threeInputs(30));
    expectSamePredictions(surface, described(surface, 2), 2);
    const KrigingSurrogateModel model = kriging(threeInputs(30));
    expectSamePredictions(model, described(model, 2), 2);
    expectSamePredictions(model, described(described(model, 1), 1), 1);

    EXPECT_EQ(described(model, 1).fitMetrics(0).cases, 30u);
    EXPECT_EQ(described(model, 1).fitMetrics(0).looRmse, model.fitMetrics(0).looRmse);
    EXPECT_EQ(described(model, 1).fitWarnings(0), model.fitWarnings(0));
}

TEST(DescribedSurrogateModel, PredictsModelsThatAreConstants)
{
    Cases same = threeInputs(12);
    same.outputs = {Column(12, 1e9)};
    Cases single = threeInputs(1);
    single.outputs.pop_back();
    for (const Cases& cases : {same, single}) {
        const KrigingSurrogateModel model = kriging(cases);
        expectSamePredictions(model, described(model, 1), 1);
        const SurrogateResponseSurfaceModel surface = polynomial(cases);
        expectSamePredictions(surface, described(surface, 1), 1);
    }
    const KrigingSurrogateModel withoutInputs = kriging({{}, {{1.0, 2.0, 4.0}}});
    EXPECT_EQ(predict(described(withoutInputs, 1), {}), predict(withoutInputs, {}));
}

TEST(DescribedSurrogateModel, KnowsWhichPointsLieOutsideTheCasesAndLeavesTheSameTermsOut)
{
    const SurrogateResponseSurfaceModel model = polynomial(threeInputs(30));
    std::vector<Column> points = pointSets()[0];
    const std::vector<double*> columns = pointersTo(points);

    EXPECT_NE(model.extrapolationWarning(columns, 7), "");
    EXPECT_EQ(described(model, 1).outsideCases(columns, 7), model.outsideCases(columns, 7));
    EXPECT_EQ(described(model, 1).extrapolationWarning(columns, 7),
              model.extrapolationWarning(columns, 7));

    Cases constant = twoInputs(20, 0.1);
    constant.inputs[1] = Column(20, 0.3);
    const DescribedSurrogateModel rounded = described(polynomial(constant), 1);
    std::vector<Column> nearby = {{constant.inputs[0][0], constant.inputs[0][0]}, {0.3000001, 0.4}};
    EXPECT_EQ(rounded.extrapolationWarning(pointersTo(nearby), 1), "");
    EXPECT_EQ(rounded.outsideCases(pointersTo(nearby), 2), (std::vector<char>{0, 1}));

    Cases cases = twoInputs(20, 0.1);
    cases.inputs[1] = cases.inputs[0];
    const SurrogateResponseSurfaceModel dependent = polynomial(cases);

    EXPECT_EQ(predict(described(dependent, 1), {{1.5}, {-0.5}}),
              predict(dependent, {{1.5}, {-0.5}}));
}

TEST(DescribedSurrogateModel, ChecksItsArgumentsLikeEveryModel)
{
    const SurrogateResponseSurfaceModel model = polynomial(twoInputs(20, 0.1));
    const DescribedSurrogateModel copy = described(model, 1);

    EXPECT_EQ(errorOf([&] { predict(copy, {{1.0}}); }), errorOf([&] { predict(model, {{1.0}}); }));
    EXPECT_EQ(errorOf([&] {
                  predict(copy, {{1.0}, {1.0}}, 1);
              }),
              errorOf([&] {
                  predict(model, {{1.0}, {1.0}}, 1);
              }));
    EXPECT_NE(errorOf([&] { copy.surfaceCoefficientInformation(0); }), "");
    EXPECT_NE(errorOf([&] { copy.qualityMetricInformation(0); }), "");
}

TEST(DescribedSurrogateModel, RefusesDescriptionsThatContradictThemselves)
{
    const std::string start = "The description of the model contradicts itself: ";
    struct
    {
        bool isKriging;
        void (*spoil)(Description& wrong);
        const char* fault;
    } const rows[] = {
        {false, [](Description& wrong) { wrong.coordinates[1].input = 2; },
         "a coordinate is that of input 2, counted from 0, of 2."},
        {false, [](Description& wrong) { wrong.coordinates[0].unit = 0.0; },
         "the unit of a coordinate is not positive."},
        {false, [](Description& wrong) { wrong.terms.back().second = 2; },
         "a term has a coordinate that does not exist."},
        {false,
         [](Description& wrong) {
             wrong.terms[0] = {1, 0, 1.0};
         },
         "the factors of a term are not in order."},
        {false, [](Description& wrong) { wrong.offset = notANumber; }, "the offset is not finite."},
        {false, [](Description& wrong) { wrong.weights = {1.0}; }, "a polynomial has no cases."},
        {false, [](Description& wrong) { wrong.inputs[0].minimum = 99.0; },
         "the range of an input is none."},
        {true, [](Description& wrong) { wrong.cases.pop_back(); },
         "the cases have 39 coordinates in all, not 2 for each of 20 weights."},
        {true, [](Description& wrong) { wrong.lengths = {1.0}; },
         "there are 1 lengths for 2 coordinates."},
        {true, [](Description& wrong) { wrong.lengths[0] = -1.0; }, "a length is not positive."},
        {true, [](Description& wrong) { wrong.weights[3] = infinity; }, "a weight is not finite."},
    };
    for (const auto& row : rows) {
        Description description = row.isKriging
                                      ? kriging(twoInputs(20, 0.0)).predictorDescription(0)
                                      : polynomial(twoInputs(20, 0.1)).predictorDescription(0);
        EXPECT_EQ(refusalOf(description), "");
        row.spoil(description);
        EXPECT_EQ(refusalOf(description), start + row.fault);
    }
    EXPECT_EQ(errorOf([] { DescribedSurrogateModel({}); }), start + "it has no output.");
}
