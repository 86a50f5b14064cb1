#include <surrogatemodel/SurrogateModelFactory.h>

#include "ManagerTest.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <cmath>
#include <memory>

namespace {

using Interface = SurrogateModelManagerInterface;
using Values = std::vector<double>;

/** Two inputs and a noisy output: enough cases for every argument of Kriging to matter. */
class SurrogateModelFactoryTest : public testing::Test
{
protected:
    static constexpr int caseCount = 61;

    SurrogateModelFactoryTest()
    {
        for (int i = 0; i < caseCount; ++i) {
            x1.push_back(i);
            x2.push_back(7 * i % caseCount);
            y.push_back(std::sin(0.4 * i) + 0.01 * x2.back() * x2.back() + 0.1 * (i * i % 3));
        }
    }

    boost::shared_ptr<SurrogateModelInterface> make(Interface::ModelType type,
                                                    int rowCount = caseCount)
    {
        return SurrogateModelFactory().makeModel(type, {x1.data(), x2.data()}, {y.data()},
                                                 rowCount);
    }

    /** A prediction between the cases. */
    static double valueOf(SurrogateModelInterface& model)
    {
        double at1 = 3.3;
        double at2 = 8.8;
        double value = 0.0;
        std::vector<double*> values = {&value};
        model.activateDependentVariables({0});
        model.interpolateDependentValues({&at1, &at2}, {0}, values, 1);
        return value;
    }

    Values x1;
    Values x2;
    Values y;
};

} // namespace

TEST_F(SurrogateModelFactoryTest, MakesKrigingWithALinearTrendAndEverythingElseEstimated)
{
    const double tolerance = 0.0001;
    const int linearTrend = 1;
    const double initialCorrelationLength = 0.5;
    KrigingSurrogateModel expected({x1.data(), x2.data()}, {y.data()}, caseCount, tolerance, {},
                                   linearTrend, initialCorrelationLength, 0.0, 0);

    const boost::shared_ptr<SurrogateModelInterface> model = make(Interface::Kriging);

    EXPECT_NE(dynamic_cast<KrigingSurrogateModel*>(model.get()), nullptr);
    EXPECT_EQ(valueOf(*model), valueOf(expected));
    EXPECT_EQ(model->qualityMetricInformation(0), expected.qualityMetricInformation(0));
}

TEST_F(SurrogateModelFactoryTest, MakesAResponseSurfaceForEveryTypeButZero)
{
    SurrogateResponseSurfaceModel expected({x1.data(), x2.data()}, {y.data()}, caseCount);

    for (const int number : {1, 2, -1}) {
        const auto model = make(static_cast<Interface::ModelType>(number));

        EXPECT_NE(dynamic_cast<SurrogateResponseSurfaceModel*>(model.get()), nullptr);
        EXPECT_EQ(valueOf(*model), valueOf(expected));
    }
}

TEST_F(SurrogateModelFactoryTest, NeedsCasesAndPassesOnWhatAConstructorThrows)
{
    EXPECT_THROW(make(Interface::Kriging, 0), SurrogateModelInterface::Error);
    EXPECT_THROW(make(Interface::ResponseSurface, 0), SurrogateModelInterface::Error);
    EXPECT_TRUE(SurrogateModelFactory().needsCases());
}

TEST_F(SurrogateModelFactoryTest, SignalsTheTypeThatChanges)
{
    const RecordingFactory factory;
    std::vector<Interface::ModelType> types;
    factory.connectSignalChanged([&types](Interface::ModelType type) { types.push_back(type); });

    factory.emitChanged(Interface::ResponseSurface);
    factory.emitChanged(Interface::Kriging);

    EXPECT_EQ(types, (std::vector{Interface::ResponseSurface, Interface::Kriging}));
}

TEST_F(SurrogateModelFactoryTest, MayBeDestroyedByAListener)
{
    auto factory = std::make_unique<RecordingFactory>();
    Counter later;
    factory->connectSignalChanged([&factory](Interface::ModelType) { factory.reset(); });
    factory->connectSignalChanged([&later](Interface::ModelType) { ++later.calls; });

    factory->emitChanged(Interface::Kriging);

    EXPECT_EQ(factory, nullptr);
    EXPECT_EQ(later.calls, 0);
}
