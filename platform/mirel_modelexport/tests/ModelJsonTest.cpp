// The exported JSON, read back.

#include "ExportTestSupport.h"

#include <nlohmann/json.hpp>

#include <cstring>

using namespace exporttest;
using Json = nlohmann::ordered_json;

TEST(ModelJson, ReadsBackAsTheSameModelToTheLastBit)
{
    for (NamedCases& variety : varieties()) {
        for (const Kind kind : {Polynomial, Kriging}) {
            const ExportedModel model = variety.cases.exported(kind);
            const ExportedModel read = readExportedModel(exportModel(model, ExportFormat::Json));
            const std::vector<Column> points = pointsFor(model, 20);
            const std::vector<Column> expected = predictions(model, points);
            const std::vector<Column> values = predictions(read, points);
            for (std::size_t i = 0; i < points.size(); ++i) {
                EXPECT_EQ(values[i], expected[i]) << variety.name;
            }
        }
    }
}

TEST(ModelJson, IsOfTheSchemaThatOlderProgramsReadIfNothingIsTransformed)
{
    ExportedModel model = cvd().exported(Kriging);
    const std::string plain = exportModel(model, ExportFormat::Json);
    model.outputs[1].model.predictor.transform = OutputTransform::Logarithm;
    const std::string transformed = exportModel(model, ExportFormat::Json);

    EXPECT_NE(plain.find("\"schema\": 1,"), std::string::npos);
    EXPECT_EQ(plain.find("\"transform\""), std::string::npos);
    EXPECT_NE(transformed.find("\"schema\": 2,"), std::string::npos);
    EXPECT_NE(transformed.find("\"transform\": \"log\""), std::string::npos);
}

TEST(ModelJson, AnInputWithoutInfluenceStaysWithout)
{
    ExportedModel model = cvd().exported(Kriging);
    model.outputs[0].model.predictor.lengths[1] = std::numeric_limits<double>::infinity();
    const std::string json = exportModel(model, ExportFormat::Json);

    EXPECT_NE(json.find(",null]"), std::string::npos);
    EXPECT_TRUE(std::isinf(readExportedModel(json).outputs[0].model.predictor.lengths[1]));
}

TEST(ModelJson, KeepsNamesRangesMetricsWarningsAndTheReport)
{
    ExportedModel model = cvd().exported(Kriging);
    model.inputs[0].minimum = -1e300;
    model.report = {{"z", 1}, {"a", {nullptr, "b"}}};
    const ExportedModel read = readExportedModel(exportModel(model, ExportFormat::Json));

    EXPECT_EQ(read.inputs[0].name, model.inputs[0].name);
    EXPECT_EQ(read.inputs[0].minimum, -1e300);
    EXPECT_EQ(read.outputs[1].name, "Stress\\");
    EXPECT_EQ(read.outputs[0].model.metrics.looRmse, model.outputs[0].model.metrics.looRmse);
    EXPECT_TRUE(std::isnan(read.outputs[0].model.metrics.adjustedR2));
    EXPECT_EQ(read.outputs[0].model.warnings, model.outputs[0].model.warnings);
    EXPECT_FALSE(read.outputs[0].model.warnings.empty());
    EXPECT_EQ(read.report, model.report);
}

TEST(ModelJson, WritesTheSameBytesAgainAndNamesThatAreNoUtf8)
{
    for (const Kind kind : {Polynomial, Kriging}) {
        const std::string json = jsonOf(cvd(), kind);
        EXPECT_EQ(exportModel(readExportedModel(json), ExportFormat::Json), json);
    }

    Cases cases = cvd();
    cases.inputNames[0] = "\xFF";

    EXPECT_NO_THROW(readExportedModel(jsonOf(cases, Polynomial)));
}
