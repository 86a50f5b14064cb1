#include "ExportTestSupport.h"

using namespace exporttest;

namespace {

std::string documentOf(Cases cases, Kind kind)
{
    return exportModel(cases.exported(kind), ExportFormat::Text);
}

std::string without(const std::string& text, const std::string& from)
{
    return text.substr(0, text.find(from));
}

/** y = 5 + 2 x, exactly, also after rounding. */
Cases line()
{
    return {{"x\nspeed"}, {"y"}, {{0, 1, 2, 3, 4}}, {{1, 3, 5, 7, 9}}};
}

} // namespace

TEST(EquationDocument, WritesAResponseSurfaceInScaledInputs)
{
    ExportedModel model;
    model.inputs = {{"Speed\nup", 0.0, 4.0}, {"Load", -2.0, 2.0}};
    model.outputs.resize(1);
    model.outputs[0].name = "Wear";
    PredictorDescription& predictor = model.outputs[0].model.predictor;
    predictor.inputs = {{0.0, 4.0, false}, {-2.0, 2.0, false}};
    predictor.coordinates = {{0, 2.0, 2.0}, {1, 0.0, 1.0}};
    predictor.offset = 5.5;
    predictor.terms = {{0, PredictorDescription::noFactor, -1.25}, {0, 0, 2.0}, {0, 1, 0.5}};

    EXPECT_EQ(without(exportModel(model, ExportFormat::Text), "\nCheck points"),
              "Response surface\n\n"
              "V1: Speed<U+000A>up, from 0 to 4\n"
              "V2: Load, from -2 to 2\n\n"
              "Y1: Wear\n"
              "  Y1 = 5.5\n"
              "      - 1.25 * x1\n"
              "      + 2 * x1^2\n"
              "      + 0.5 * x1 * x2\n"
              "  x1 = (V1 - 2) / 2\n"
              "  x2 = V2\n");
}

TEST(EquationDocument, WritesAnOutputByItsTransform)
{
    ExportedModel model = line().exported(Polynomial);
    PredictorDescription& predictor = model.outputs[0].model.predictor;
    predictor.transform = OutputTransform::Logarithm;
    EXPECT_NE(exportModel(model, ExportFormat::Text).find("  Y1 = exp(T1)\n  T1 = 5"),
              std::string::npos);

    predictor.transform = OutputTransform::SquareRoot;
    EXPECT_NE(exportModel(model, ExportFormat::Text).find("  Y1 = max(0, T1)^2\n  T1 = 5"),
              std::string::npos);
}

TEST(EquationDocument, WritesKrigingAsAFormulaAndItsNumbers)
{
    ExportedModel model;
    model.inputs = {{"Speed", 0.0, 4.0}};
    model.outputs.resize(1);
    model.outputs[0].name = "Wear";
    PredictorDescription& predictor = model.outputs[0].model.predictor;
    predictor.kind = PredictorDescription::Kind::Kriging;
    predictor.inputs = {{0.0, 4.0, false}};
    predictor.coordinates = {{0, 0.0, 4.0}};
    predictor.offset = 5.5;
    predictor.scale = 2.0;
    predictor.terms = {{PredictorDescription::noFactor, PredictorDescription::noFactor, -0.5},
                       {0, PredictorDescription::noFactor, 0.25}};
    predictor.lengths = {0.75};
    predictor.cases = {0.0, 1.0};
    predictor.weights = {0.125, -3.0};

    EXPECT_EQ(
        without(exportModel(model, ExportFormat::Text), "\nCheck points"),
        "Kriging model\n\n"
        "V1: Speed, from 0 to 4\n\n"
        "Y1: Wear\n"
        "  Y1 = 5.5 + 2 * (trend + sum)\n"
        "  trend = -0.5\n"
        "      + 0.25 * x1\n"
        "  sum = w_1 c_1 + ... + w_2 c_2, over the cases\n"
        "  c_j = product over k of (1 + z + z^2 / 3) exp(-z), z = sqrt(5) |u_k - u_jk| / L_k\n"
        "  u1 = V1 / 4, x1 = 2 u1 - 1\n"
        "  L1 = 0.75\n"
        "  Cases: w_j u_j1\n"
        "    0.125 0\n"
        "    -3 1\n");
}

TEST(EquationDocument, EndsWithTheCheckPoints)
{
    const std::string text = documentOf(line(), Kriging);
    const std::string table = text.substr(text.find("Check points: V1 Y1\n"));

    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 11);
}

TEST(EquationDocument, ItsNumbersGiveTheModelsValues)
{
    // The value is put together from the text alone.
    const std::string text = documentOf(line(), Polynomial);
    const auto numberAfter = [&](const std::string& mark) {
        return std::strtod(text.c_str() + text.find(mark) + mark.size(), nullptr);
    };
    const double constant = numberAfter("Y1 = ");
    const double slope = numberAfter("      + ");
    EXPECT_EQ(numberAfter("x1 = (V1 - "), 2.0);
    EXPECT_NEAR(constant + slope * (3.0 - 2.0) / 2.0, 7.0, 1e-12);
}
