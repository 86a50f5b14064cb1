#include <mirel_fitting/SurrogateModelInterface.h>

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <locale>
#include <memory>
#include <thread>
#include <type_traits>

namespace {

using namespace fittingtest;

using Error = SurrogateModelInterface::Error;

/** A language that writes 1.234,5. */
class OtherNumbers : public std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

using Models = std::vector<std::unique_ptr<SurrogateModelInterface>>;

std::unique_ptr<FittedModel> makeResponseSurface(Cases& cases)
{
    return std::make_unique<SurrogateResponseSurfaceModel>(cases.inputPointers(),
                                                           cases.outputPointers(), cases.count());
}

std::unique_ptr<FittedModel> makeKriging(Cases& cases)
{
    return std::make_unique<KrigingSurrogateModel>(cases.inputPointers(), cases.outputPointers(),
                                                   static_cast<int>(cases.count()),
                                                   KrigingOptions());
}

Models bothModels(Cases cases)
{
    Models models;
    models.push_back(makeResponseSurface(cases));
    models.push_back(makeKriging(cases));
    return models;
}

std::string textsOf(const Models& models)
{
    std::string texts;
    for (const std::unique_ptr<SurrogateModelInterface>& model : models) {
        texts += model->surfaceCoefficientInformation(0) + model->qualityMetricInformation(0);
    }
    return texts;
}

} // namespace

TEST(SurrogateModelInterface, ErrorsCarryTheirMessageAndAreCaughtAsTheApplicationsAndTheLanguages)
{
    auto original = std::make_unique<Error>("There are 100% too few cases.");
    const Error copy = *original;
    Error assigned("another");
    assigned = *original;
    original.reset();

    EXPECT_STREQ(copy.what(), "There are 100% too few cases.");
    EXPECT_STREQ(assigned.what(), "There are 100% too few cases.");
    EXPECT_THROW(throw Error("refused"), veska::ExceptionBase);
    try {
        throw Error("refused");
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "refused");
    }
}

TEST(SurrogateModelInterface, IsAVirtualBaseOfBothModels)
{
    // Two ways to the interface are one only if both are virtual.
    class Both : public KrigingSurrogateModel, public virtual SurrogateModelInterface
    {};
    class AlsoBoth : public SurrogateResponseSurfaceModel, public virtual SurrogateModelInterface
    {};

    EXPECT_TRUE((std::is_convertible_v<Both*, SurrogateModelInterface*>));
    EXPECT_TRUE((std::is_convertible_v<AlsoBoth*, SurrogateModelInterface*>));
    EXPECT_TRUE(std::has_virtual_destructor_v<SurrogateModelInterface>);
}

TEST(SurrogateModelInterface, TextsOfBothModelsAreTheSameInEveryLocale)
{
    Cases cases = twoInputs(1200, 0.0);
    // Many cases and large numbers, but few points for Kriging.
    for (std::size_t i = 0; i < cases.count(); ++i) {
        cases.inputs[0][i] = static_cast<double>(i % 6) * 1000.5;
        cases.inputs[1][i] = static_cast<double>(i % 5) * 0.5;
        cases.outputs[0][i] = 1e6 * surface(i % 6, i % 5) + static_cast<double>(i % 7);
    }
    const std::string expected = textsOf(bothModels(cases));
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new OtherNumbers));

    const std::string found = textsOf(bothModels(cases));
    std::locale::global(before);

    EXPECT_EQ(found, expected);
}

TEST(SurrogateModelInterface, LetsThreadsUseModelsOfTheirOwn)
{
    const std::string expected = textsOf(bothModels(twoInputs(40, 1.0)));
    std::vector<std::string> found(4);
    std::vector<std::thread> threads;
    threads.reserve(found.size());
    for (std::string& texts : found) {
        threads.emplace_back([&texts] { texts = textsOf(bothModels(twoInputs(40, 1.0))); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(found, std::vector<std::string>(4, expected));
}

namespace {

/** What both models promise. */
struct Kind
{
    std::string name;
    std::unique_ptr<FittedModel> (*make)(Cases& cases);
};

class SurrogateModelInterfaceOf : public testing::TestWithParam<Kind>
{
protected:
    std::unique_ptr<FittedModel> fit() { return GetParam().make(cases); }
    std::string refusal()
    {
        return errorOf([this] { fit(); });
    }

    Cases cases = twoInputs(40, 1.0);
};

INSTANTIATE_TEST_SUITE_P(, SurrogateModelInterfaceOf,
                         testing::Values(Kind{"ResponseSurface", makeResponseSurface},
                                         Kind{"Kriging", makeKriging}),
                         [](const auto& kind) { return kind.param.name; });

} // namespace

TEST_P(SurrogateModelInterfaceOf, OwnsWhatItNeeds)
{
    const std::vector<Column> points = cases.inputs;
    const std::unique_ptr<FittedModel> reference = fit();
    reference->activateDependentVariables({0});
    const std::unique_ptr<FittedModel> model = fit();
    for (std::vector<Column>* columns : {&cases.inputs, &cases.outputs}) {
        for (Column& column : *columns) {
            std::fill(column.begin(), column.end(), notANumber);
        }
    }
    cases = {};

    EXPECT_EQ(predict(*model, points), predict(*reference, points));
    EXPECT_EQ(model->surfaceCoefficientInformation(0), reference->surfaceCoefficientInformation(0));
    EXPECT_EQ(model->qualityMetricInformation(0), reference->qualityMetricInformation(0));
}

TEST_P(SurrogateModelInterfaceOf, IgnoresOutputsThatAreNotFiniteUntilTheyAreWanted)
{
    const Column expected = predict(*fit(), cases.inputs);
    const Column good = cases.outputs[0];
    cases.outputs = {Column(40, notANumber), good, good};
    cases.outputs[1][7] = infinity;
    const std::unique_ptr<FittedModel> model = fit();

    model->activateDependentVariables({2});

    EXPECT_LT(largestDifference(predict(*model, cases.inputs, 2), expected), 1e-13);
    const std::string message =
        "The output at offset 1 holds a value that is not finite in case 8.";
    EXPECT_EQ(errorOf([&] { model->activateDependentVariables({1, 2}); }), message);
    EXPECT_EQ(errorOf([&] { predict(*model, cases.inputs, 1); }), message);
    EXPECT_EQ(errorOf([&] { model->surfaceCoefficientInformation(1); }), message);
    EXPECT_EQ(errorOf([&] { model->qualityMetricInformation(1); }), message);
    EXPECT_EQ(errorOf([&] { model->fitMetrics(1); }), message);
    EXPECT_EQ(errorOf([&] { model->fitWarnings(1); }), message);
    EXPECT_EQ(errorOf([&] { model->leaveOneOutPredictions(1); }), message);
    if (const auto* surface = dynamic_cast<const SurrogateResponseSurfaceModel*>(model.get())) {
        EXPECT_EQ(errorOf([&] { surface->responseSurfaceStatistics(1); }), message);
    }
    if (const auto* kriging = dynamic_cast<const KrigingSurrogateModel*>(model.get())) {
        EXPECT_EQ(errorOf([&] { kriging->krigingReport(1); }), message);
    }
}

TEST_P(SurrogateModelInterfaceOf, ChecksTheColumnsOfAFit)
{
    cases.inputs[1][2] = notANumber;
    EXPECT_EQ(refusal(), "The input V2 holds a value that is not finite in case 3.");
    cases.inputs.clear();
    cases.outputs = {{}};
    EXPECT_EQ(refusal(), "There is no case to fit the model to.");
}

TEST_P(SurrogateModelInterfaceOf, ChecksTheArraysOfAnEvaluation)
{
    using Kind = FittedModel::ErrorKind;
    const std::unique_ptr<FittedModel> model = fit();
    const std::string tooFew = "The model has 2 inputs, but values are given for 1.";
    const std::string noOutput =
        "There is no output at offset 1: the model has 1 output, counted from 0.";
    const std::vector<double*> one = {cases.inputs[0].data()};
    const std::vector<double*> both = cases.inputPointers();
    std::vector<double*> none;

    EXPECT_EQ(errorOf([&] { predict(*model, {{1.0}}); }), tooFew);
    EXPECT_EQ(errorOf([&] { model->standardErrors(one, 0, Kind::Mean, 1); }), tooFew);
    EXPECT_EQ(errorOf([&] { model->predictionIntervals(one, 0, 0.95, 1); }), tooFew);
    EXPECT_EQ(errorOf([&] { model->extrapolations(one, 1); }), tooFew);
    EXPECT_EQ(errorOf([&] { predict(*model, {{1.0}, {1.0}}, 1); }), noOutput);
    EXPECT_EQ(errorOf([&] { model->standardErrors(both, 1, Kind::Mean, 1); }), noOutput);
    EXPECT_EQ(errorOf([&] { model->interpolateDependentValues(both, {0}, none, 40); }),
              "The model is asked for 1 output, but there is room for 0.");
    EXPECT_EQ(errorOf([&] { model->surfaceCoefficientInformation(-1); }),
              "There is no output at offset -1: the model has 1 output, counted from 0.");
    for (const double level : {0.0, 1.0, -0.5}) {
        EXPECT_NE(errorOf([&] { model->predictionIntervals({}, 0, level, 0); }), "");
    }
    EXPECT_EQ(errorOf([&] { model->predictionIntervals({}, 0, 95.0, 0); }),
              "The level of an interval has to lie between 0 and 1, not at 95.");
}

TEST_P(SurrogateModelInterfaceOf, DoesNothingForNoOutputsAndNoPoints)
{
    const std::unique_ptr<FittedModel> model = fit();
    std::vector<double*> none;
    std::vector<double*> null = {nullptr};

    EXPECT_NO_THROW(model->activateDependentVariables({}));
    EXPECT_NO_THROW(model->interpolateDependentValues(cases.inputPointers(), {}, none, 40));
    EXPECT_NO_THROW(model->interpolateDependentValues({nullptr, nullptr}, {0}, null, 0));
}

TEST_P(SurrogateModelInterfaceOf, WritesOutputsInAscendingOrderOfTheirOffsets)
{
    cases.outputs = {cases.inputs[0], cases.inputs[1], cases.inputs[0]};
    const std::unique_ptr<FittedModel> model = fit();
    Column first(40, notANumber);
    Column second(40, notANumber);
    std::vector<double*> outputs{first.data(), second.data()};

    model->interpolateDependentValues(cases.inputPointers(), {2, 1}, outputs, 40);

    EXPECT_LT(largestDifference(first, cases.inputs[1]), 1e-9);
    EXPECT_LT(largestDifference(second, cases.inputs[0]), 1e-9);
}

TEST_P(SurrogateModelInterfaceOf, GivesNaNAtPointsThatAreNotFiniteOnly)
{
    // An input without influence, and yet its NaN counts; more points than a block has.
    cases.inputs[1].assign(40, 2.0);
    const std::unique_ptr<FittedModel> model = fit();
    std::vector<Column> points{Column(1100, 1.5), Column(1100, 2.0)};
    const double usual = predict(*model, points)[0];
    points[0][3] = notANumber;
    points[1][300] = infinity;
    points[0][1099] = -infinity;

    const Column values = predict(*model, points);
    const Column errors =
        model->standardErrors(pointersTo(points), 0, FittedModel::ErrorKind::Observation, 1100);

    for (std::size_t k = 0; k < values.size(); ++k) {
        EXPECT_EQ(std::isnan(errors[k]), std::isnan(values[k])) << k;
        if (k == 3 || k == 300 || k == 1099) {
            EXPECT_TRUE(std::isnan(values[k])) << k;
        } else {
            // Whole columns are predicted as a grid, whose sums round in another way.
            EXPECT_NEAR(values[k], usual, 1e-9) << k;
        }
    }
}

TEST_P(SurrogateModelInterfaceOf, SaysWhichPointsLieOutsideTheCases)
{
    cases = {{{10.0, 14.0, 12.0, 13.0}, {1.0, 0.0, -1.0, 0.5}}, {{1.0, 2.0, 4.0, 3.0}}};
    const std::unique_ptr<FittedModel> model = fit();
    std::vector<Column> points = {{11.0, 16.0}, {0.0, 0.0}};
    const std::vector<double*> columns = pointersTo(points);

    EXPECT_EQ(model->extrapolations(columns, 2), (Column{0.0, 0.5}));
    EXPECT_EQ(model->outsideCases(columns, 2), (std::vector<char>{0, 1}));
    EXPECT_EQ(model->extrapolationWarning(columns, 1), "");
    EXPECT_EQ(model->extrapolationWarning(columns, 2),
              "1 of 2 points lies outside the cases (row 2): V1 is up to 0.5 of its range beyond "
              "them. Do not rely on predictions there.");
    EXPECT_NE(model->extrapolationWarning(columns, 2, {"Pressure", "Ratio"})
                  .find("\"Pressure\" is up to 0.5"),
              std::string::npos);
}
