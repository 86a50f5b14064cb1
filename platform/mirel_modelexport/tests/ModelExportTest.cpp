#include "ExportTestSupport.h"

#include <functional>
#include <set>

#include <locale.h>

using namespace exporttest;

namespace {

const std::vector<ExportFormat> formats = {ExportFormat::Text, ExportFormat::Json, ExportFormat::C,
                                           ExportFormat::Python, ExportFormat::Excel};

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

TEST(ModelExport, TheSameModelGivesTheSameBytesInEveryFormat)
{
    for (const Kind kind : {Polynomial, Kriging}) {
        for (const ExportFormat format : formats) {
            EXPECT_EQ(exportModel(cvd().exported(kind), format),
                      exportModel(cvd().exported(kind), format));
        }
    }
}

TEST(ModelExport, TheUsersLocaleChangesNothing)
{
    const ExportedModel model = cvd().exported(Kriging);
    std::vector<std::string> before;
    for (const ExportFormat format : formats) {
        before.push_back(exportModel(model, format));
    }
    const char* const chosen = setlocale(LC_ALL, "de_DE.UTF-8");
    for (std::size_t k = 0; k < formats.size(); ++k) {
        EXPECT_EQ(exportModel(model, formats[k]), before[k]);
    }
    EXPECT_NO_THROW(readExportedModel(before[1]));
    setlocale(LC_ALL, "C");
    if (chosen == nullptr) {
        GTEST_SKIP() << "there is no locale with decimal commas here";
    }
}

TEST(ModelExport, AnOutputMayBeExportedAloneAndUnderAnotherName)
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

TEST(ModelExport, AnotherNumberOfNamesIsRefused)
{
    Cases cases = cvd();
    const auto model = cases.fit(Polynomial);

    EXPECT_EQ(errorOf([&] {
                  ExportedModel::of(*model, {{"a", 0, 1}}, {{"s", 1}});
              }),
              "The model has 2 inputs, but 1 are named.");
}

TEST(ModelExport, AnOutputThatCannotBeFittedIsNamed)
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

TEST(ModelExport, AModelThatDoesNotDescribeItselfIsRefused)
{
    EXPECT_EQ(errorOf([] {
                  ExportedModel::of(PlainModel(), {}, {{"s", 0}});
              }),
              "This kind of model cannot be exported: it does not describe itself.");
}

TEST(ModelExport, NoOutputsAreRefused)
{
    Cases cases = cvd();
    EXPECT_NE(errorOf([&] { ExportedModel::of(*cases.fit(Polynomial), {}, {}); }), "");
}
