#include <mirel_fitting/ModelInterfaces.h>
#include <session/model/SessionModelFactory.h>

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/TransformedOutput.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {
using Interface = SurrogateModelManagerInterface;
using ModelType = SurrogateModelFactory::ModelType;

const ResponseSurfaceOptions linear = {PolynomialTerms::Linear};

class SessionModelFactoryTest : public ::testing::Test
{
protected:
    boost::shared_ptr<SurrogateModelInterface> make(ModelType type)
    {
        return factory.makeModel(type, {x.data()}, {y.data()}, static_cast<int>(x.size()));
    }

    std::size_t termsOf(const SurrogateModelInterface& model) const
    {
        return dynamic_cast<const PredictiveModel&>(model).fitMetrics(0).terms;
    }

    OutputTransform transformOf(const SurrogateModelInterface& model) const
    {
        return ModelInterfaces(model).transform(0).transform;
    }

    SessionModelFactory factory;
    std::vector<double> x = {0, 1, 2, 3, 4, 5};
    std::vector<double> y = {0, 2, 3, 7, 8, 9};
};
} // namespace

TEST_F(SessionModelFactoryTest, MakesResponseSurfacesWithTheChosenTerms)
{
    EXPECT_EQ(termsOf(*make(Interface::ResponseSurface)), 3u);

    factory.choose({linear});

    EXPECT_EQ(termsOf(*make(Interface::ResponseSurface)), 2u);
}

TEST_F(SessionModelFactoryTest, MakesTheKrigingModelsOfTheLibraryForOutputsOrTheirTransforms)
{
    const auto model = make(Interface::Kriging);

    const auto& outer = dynamic_cast<const TransformedOutput&>(*model);
    EXPECT_NE(dynamic_cast<const KrigingSurrogateModel*>(&outer.inner()), nullptr);
    EXPECT_TRUE(factory.needsCases());
}

TEST_F(SessionModelFactoryTest, TransformsResponseSurfacesByBoxCox)
{
    factory.choose({linear, {}, TransformSetting::BoxCox});
    const double noise[] = {0.02, -0.01, -0.03, 0.03, 0.0, -0.01};
    for (std::size_t i = 0; i < 6; ++i) {
        y[i] = std::exp(x[i] + noise[i]);
    }
    const auto model = make(Interface::ResponseSurface);

    EXPECT_EQ(transformOf(*model), OutputTransform::Logarithm);
    const auto profile = ModelInterfaces(*model).transform(0).profile;
    ASSERT_TRUE(profile);
    EXPECT_NEAR(profile->power, 0.0, 0.1);

    y[0] = -1.0;
    const auto refused = make(Interface::ResponseSurface);
    EXPECT_EQ(transformOf(*refused), OutputTransform::None);
    EXPECT_FALSE(ModelInterfaces(*refused).transform(0).profile);
    EXPECT_EQ(dynamic_cast<const PredictiveModel&>(*refused).fitWarnings(0).front(),
              "The output is not positive in all cases: it was modelled itself, not its logarithm "
              "or square root.");
}

TEST_F(SessionModelFactoryTest, TransformsTheOutputsOfBothModelsAsChosen)
{
    y[0] = 1.0;
    for (const ModelType type : {Interface::Kriging, Interface::ResponseSurface}) {
        factory.choose({{}, {}, TransformSetting::SquareRoot});
        EXPECT_EQ(transformOf(*make(type)), OutputTransform::SquareRoot);

        factory.choose({{}, {}, TransformSetting::None});
        EXPECT_EQ(transformOf(*make(type)), OutputTransform::None);
    }
}

TEST_F(SessionModelFactoryTest, ChoosesTransformsForKrigingAloneIfNothingIsSaid)
{
    for (double& value : y) {
        value = std::exp(value + 0.1 * std::sin(value));
    }

    EXPECT_EQ(transformOf(*make(Interface::ResponseSurface)), OutputTransform::None);
    EXPECT_NE(dynamic_cast<const TransformedOutput*>(make(Interface::Kriging).get()), nullptr);
}

TEST_F(SessionModelFactoryTest, ReportsChangesForTheModelsThatTheyConcern)
{
    std::vector<ModelType> changed;
    factory.connectSignalChanged([&](ModelType type) { changed.push_back(type); });

    for (int i = 0; i < 2; ++i) {
        factory.choose({{}, {}, TransformSetting::Logarithm});
    }
    EXPECT_EQ(changed, (std::vector<ModelType>{Interface::Kriging, Interface::ResponseSurface}));
    changed.clear();
    for (int i = 0; i < 2; ++i) {
        factory.choose({linear, {}, TransformSetting::Logarithm});
    }
    EXPECT_EQ(changed, (std::vector<ModelType>{Interface::ResponseSurface}));
}

TEST_F(SessionModelFactoryTest, HandsOutAFinishedModelWhateverIsAskedFor)
{
    const auto finished = make(Interface::ResponseSurface);
    const SessionModelFactory restoring(finished);

    EXPECT_FALSE(restoring.needsCases());
    EXPECT_EQ(restoring.makeModel(Interface::Kriging, {}, {}, 0), finished);
}

TEST_F(SessionModelFactoryTest, ItsColumnsMayOutliveIt)
{
    boost::shared_ptr<veska::PropertyAbstract<CaseDesignColumns>> columns;
    {
        const SessionModelFactory other;
        columns = other.designColumns();
    }

    columns->set({"w", ""});

    EXPECT_EQ(columns->get().weights, "w");
}
