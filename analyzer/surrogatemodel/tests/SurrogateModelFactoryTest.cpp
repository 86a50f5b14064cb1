#include <surrogatemodel/SurrogateModelFactory.h>

#include "ChoosingFactory.h"
#include "ManagerTest.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <array>
#include <memory>

namespace {

using Interface = SurrogateModelManagerInterface;

/** Two inputs and an output of three cases; models are recorded, not fitted. */
class SurrogateModelFactoryTest : public testing::Test
{
protected:
    SurrogateModelFactoryTest() { recordedModels() = {}; }

    boost::shared_ptr<SurrogateModelInterface> make(Interface::ModelType type)
    {
        return SurrogateModelFactory().makeModel(type, {x1.data(), x2.data()}, {y.data()}, 3);
    }

    std::array<double, 3> x1 = {1, 2, 3};
    std::array<double, 3> x2 = {4, 5, 6};
    std::array<double, 3> y = {10, 20, 30};
};

} // namespace

TEST_F(SurrogateModelFactoryTest, MakesKrigingWithALinearTrendAndEverythingElseEstimated)
{
    const boost::shared_ptr<SurrogateModelInterface> model = make(Interface::Kriging);

    EXPECT_NE(dynamic_cast<KrigingSurrogateModel*>(model.get()), nullptr);
    const RecordedFit& fit = recordedModels().fits.back();
    EXPECT_EQ(fit.inputs, (std::vector<std::vector<double>>{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(fit.outputs, (std::vector<std::vector<double>>{{10, 20, 30}}));
    EXPECT_EQ(fit.rowCount, 3U);
    EXPECT_EQ(fit.tolerance, 0.0001);
    EXPECT_TRUE(fit.correlationLengths.empty());
    EXPECT_EQ(fit.trendOrder, 1);
    EXPECT_EQ(fit.initialCorrelationLength, 0.5);
    EXPECT_EQ(fit.nugget, 0.0);
    EXPECT_EQ(fit.nuggetMode, 0);
}

TEST_F(SurrogateModelFactoryTest, MakesAResponseSurfaceForEveryTypeButZero)
{
    for (const int number : {1, 2, -1}) {
        const auto model = make(static_cast<Interface::ModelType>(number));

        EXPECT_NE(dynamic_cast<SurrogateResponseSurfaceModel*>(model.get()), nullptr);
        EXPECT_EQ(recordedModels().fits.back().rowCount, 3U);
    }
}

TEST_F(SurrogateModelFactoryTest, PassesOnWhatAConstructorThrows)
{
    recordedModels().onConstruct = [] { throw SurrogateModelInterface::Error("no fit"); };

    EXPECT_EQ(errorOf([this] { make(Interface::Kriging); }), "no fit");
    EXPECT_EQ(errorOf([this] { make(Interface::ResponseSurface); }), "no fit");
}

TEST_F(SurrogateModelFactoryTest, NeedsCases)
{
    EXPECT_TRUE(SurrogateModelFactory().needsCases());
}

TEST_F(SurrogateModelFactoryTest, SignalsTheTypeThatChanges)
{
    const ChoosingFactory factory;
    std::vector<Interface::ModelType> types;
    factory.connectSignalChanged([&types](Interface::ModelType type) { types.push_back(type); });

    factory.choice->set(1);
    factory.emitChanged(Interface::Kriging);

    EXPECT_EQ(types, (std::vector{Interface::ResponseSurface, Interface::Kriging}));
}

TEST_F(SurrogateModelFactoryTest, MayBeDestroyedByAListener)
{
    auto factory = std::make_unique<ChoosingFactory>();
    Counter later;
    factory->connectSignalChanged([&factory](Interface::ModelType) { factory.reset(); });
    factory->connectSignalChanged([&later](Interface::ModelType) { ++later.calls; });

    factory->emitChanged(Interface::Kriging);

    EXPECT_EQ(factory, nullptr);
    EXPECT_EQ(later.calls, 0);
}
