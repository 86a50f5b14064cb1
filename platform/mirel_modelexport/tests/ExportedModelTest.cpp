#include <mirel_modelexport/ExportedModel.h>

#include "ExportTestSupport.h"

#include <functional>
#include <set>

using namespace exporttest;

namespace {

std::string errorOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const SurrogateModelInterface::Error& error) {
        return error.what();
    }
    return "";
}

/** A model that can do no more than it has to. */
class PlainModel : public SurrogateModelInterface
{
public:
    void activateDependentVariables(const std::set<int>&) override {}
    void interpolateDependentValues(const std::vector<double*>&, const std::set<int>&,
                                    std::vector<double*>&, std::size_t) const override
    {}
    bool surfaceCoefficientInformationAvailable() const override { return false; }
    bool qualityMetricInformationAvailable() const override { return false; }
    std::string surfaceCoefficientInformation(int) const override { return ""; }
    std::string qualityMetricInformation(int) const override { return ""; }
};

} // namespace

TEST(ExportedModel, AnOutputMayBeExportedAloneAndUnderAnotherName)
{
    Cases cases = cvd();
    const auto model = cases.fit(Kriging);
    const ExportedModel exported =
        ExportedModel::of(*model, {{"a", 0, 1}, {"b", 0, 1}}, {{"s", 1}});
    const std::vector<Column> points = {{20.0, 3.0}, {70.0, 8.0}};

    ASSERT_EQ(exported.outputs.size(), 1u);
    EXPECT_EQ(predictions(exported, points)[1][0],
              predictions(cases.exported(Kriging), points)[1][1]);
}

TEST(ExportedModel, AnotherNumberOfNamesIsRefused)
{
    Cases cases = cvd();
    const auto model = cases.fit(Polynomial);

    EXPECT_EQ(errorOf([&] {
                  ExportedModel::of(*model, {{"a", 0, 1}}, {{"s", 1}});
              }),
              "The model has 2 inputs, but 1 are named.");
}

TEST(ExportedModel, AnOutputThatCannotBeFittedIsNamed)
{
    Cases cases = cvd();
    cases.outputs[1][3] = std::numeric_limits<double>::quiet_NaN();
    const auto model = cases.fit(Kriging);

    EXPECT_EQ(
        errorOf([&] {
            ExportedModel::of(*model, {{"a", 0, 1}, {"b", 0, 1}}, {{"s", 1}});
        }),
        "\"s\" cannot be exported. The output at offset 1 holds a value that is not finite in "
        "case 4.");
}

TEST(ExportedModel, AModelThatDoesNotDescribeItselfIsRefused)
{
    EXPECT_EQ(errorOf([] {
                  ExportedModel::of(PlainModel(), {}, {{"s", 0}});
              }),
              "This kind of model cannot be exported: it does not describe itself.");
}

TEST(ExportedModel, NoOutputsAreRefused)
{
    Cases cases = cvd();
    EXPECT_NE(errorOf([&] { ExportedModel::of(*cases.fit(Polynomial), {}, {}); }), "");
}
