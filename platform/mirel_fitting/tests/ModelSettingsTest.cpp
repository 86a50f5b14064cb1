#include <mirel_fitting/ModelSettings.h>

#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/TransformedOutput.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

/** An output that is the exponential of a line. */
struct ExponentialCases
{
    std::vector<std::vector<double>> inputs = {{}};
    std::vector<std::vector<double>> outputs = {{}};

    ExponentialCases()
    {
        for (int i = 0; i < 12; ++i) {
            inputs[0].push_back(i);
            outputs[0].push_back(std::exp(0.4 * i));
        }
    }

    std::unique_ptr<FittedModel> fit(const ModelSettings& settings)
    {
        return settings.fit(pointersTo(inputs), pointersTo(outputs), outputs[0].size());
    }
};

} // namespace

TEST(ModelSettings, MakesAResponseSurfaceOfTheOutputItselfByDefault)
{
    const auto model = ExponentialCases().fit({});

    const auto* surface = dynamic_cast<const SurrogateResponseSurfaceModel*>(model.get());
    ASSERT_NE(surface, nullptr);
    EXPECT_EQ(surface->fitMetrics(0).terms, 3u);
}

TEST(ModelSettings, ComparesTransformsForKrigingByDefault)
{
    ModelSettings settings;
    settings.isKriging = true;

    const auto model = ExponentialCases().fit(settings);

    const auto* transformed = dynamic_cast<const TransformedOutput*>(model.get());
    ASSERT_NE(transformed, nullptr);
    EXPECT_EQ(transformed->transform(0), OutputTransform::Logarithm);
    EXPECT_NE(dynamic_cast<const KrigingSurrogateModel*>(&transformed->inner()), nullptr);
}

TEST(ModelSettings, ModelsTheTransformThatIsAskedFor)
{
    const struct
    {
        TransformSetting setting;
        OutputTransform transform;
    } cases[] = {{TransformSetting::SquareRoot, OutputTransform::SquareRoot},
                 {TransformSetting::Logarithm, OutputTransform::Logarithm},
                 {TransformSetting::BoxCox, OutputTransform::Logarithm}};
    for (const auto& one : cases) {
        ModelSettings settings;
        settings.transform = one.setting;
        settings.responseSurface.terms = PolynomialTerms::Linear;

        const auto model = ExponentialCases().fit(settings);

        const auto* transformed = dynamic_cast<const TransformedOutput*>(model.get());
        ASSERT_NE(transformed, nullptr) << transformWord(one.setting);
        EXPECT_EQ(transformed->transform(0), one.transform) << transformWord(one.setting);
        EXPECT_EQ(transformed->fitMetrics(0).terms, 2u) << transformWord(one.setting);
    }
}
