// Documents that are damaged or no exported models.

#include "ExportTestSupport.h"

#include <nlohmann/json.hpp>

#include <cstring>
#include <functional>

using namespace exporttest;
using Json = nlohmann::ordered_json;

namespace {

/** The sentence with which a document is refused; empty if it is taken. */
std::string refusalOf(const std::string& json)
{
    try {
        readExportedModel(json);
    } catch (const ModelImportError& error) {
        return error.what();
    }
    return "";
}

/** The same for a Kriging model that was changed. */
std::string refusalOf(const std::function<void(Json&)>& change, Kind kind = Kriging)
{
    Json json = Json::parse(jsonOf(cvdWithTrend(), kind));
    change(json);
    return refusalOf(json.dump());
}

} // namespace

TEST(ModelJsonReader, RefusesWhatIsNoModel)
{
    EXPECT_EQ(refusalOf(std::string("Pressure,Stress\n1,2\n")),
              "it is no JSON document, or a damaged one: it cannot be read at byte 1.");
    EXPECT_EQ(refusalOf(std::string()),
              "it is no JSON document, or a damaged one: it cannot be read at byte 1.");
    EXPECT_EQ(refusalOf(std::string("{\"a\": 1e999}")),
              "it is no JSON document, or a damaged one: it holds a number that is none.");
    EXPECT_EQ(refusalOf(std::string("[]")), "it is no exported model: it is JSON, but no object.");
    EXPECT_EQ(refusalOf(std::string("{\"schema\": 1}")),
              "it is no exported model: its member \"format\" is not \"surrogate-model\".");
    EXPECT_EQ(refusalOf(std::string(100000, '[')),
              "it is no JSON document, or a damaged one: it cannot be read at byte 100001.");
}

TEST(ModelJsonReader, RefusesANewerSchemaAndAnUnknownTransform)
{
    EXPECT_EQ(refusalOf([](Json& json) { json["schema"] = 3; }),
              "its member \"schema\" is 3; this version reads schemas 1 and 2 only.");
    EXPECT_EQ(refusalOf([](Json& json) { json["outputs"][0]["transform"] = "cube"; }),
              "the member \"outputs[0].transform\" is not what it has to be: \"none\", \"sqrt\" or "
              "\"log\".");
}

TEST(ModelJsonReader, NamesTheMemberThatIsMissing)
{
    EXPECT_EQ(refusalOf([](Json& json) { json.erase("schema"); }),
              "the member \"schema\" is missing.");
    EXPECT_EQ(refusalOf([](Json& json) { json.erase("check"); }),
              "the member \"check\" is missing.");
    for (const char* name : {"name", "metrics", "warnings", "offset", "scale", "coordinates",
                             "terms", "lengths", "weights", "cases"}) {
        EXPECT_EQ(refusalOf([&](Json& json) { json["outputs"][1].erase(name); }),
                  "the member \"outputs[1]." + std::string(name) + "\" is missing.");
    }
    for (const char* name :
         {"name", "minimum", "maximum", "caseMinimum", "caseMaximum", "isConstant"}) {
        EXPECT_EQ(refusalOf([&](Json& json) { json["inputs"][0].erase(name); }),
                  "the member \"inputs[0]." + std::string(name) + "\" is missing.");
    }
    EXPECT_EQ(refusalOf([](Json& json) { json["outputs"][0]["terms"][1].erase("coefficient"); }),
              "the member \"outputs[0].terms[1].coefficient\" is missing.");
}

TEST(ModelJsonReader, NamesTheMemberThatIsOfAnotherKind)
{
    const auto expected = [](const std::string& place, const std::string& what) {
        return "the member \"" + place + "\" is not what it has to be: " + what + ".";
    };
    EXPECT_EQ(refusalOf([](Json& json) { json["model"] = "spline"; }),
              expected("model", "\"kriging\" or \"response-surface\""));
    EXPECT_EQ(refusalOf([](Json& json) { json["inputs"] = 3; }), expected("inputs", "a list"));
    EXPECT_EQ(refusalOf([](Json& json) { json["inputs"][0] = 3; }),
              expected("inputs[0]", "an object"));
    EXPECT_EQ(refusalOf([](Json& json) { json["outputs"] = Json::array(); }),
              expected("outputs", "a list of at least one output"));
    EXPECT_EQ(refusalOf([](Json& json) { json["outputs"][0]["offset"] = "5"; }),
              expected("outputs[0].offset", "a number"));
    EXPECT_EQ(refusalOf([](Json& json) { json["outputs"][0]["offset"] = nullptr; }),
              expected("outputs[0].offset", "a number"));
    EXPECT_EQ(refusalOf([](Json& json) { json["outputs"][0]["weights"][3] = nullptr; }),
              expected("outputs[0].weights", "a list of numbers"));
    EXPECT_EQ(refusalOf([](Json& json) { json["outputs"][0]["coordinates"][0]["input"] = -1; }),
              expected("outputs[0].coordinates[0].input", "a whole number that is not negative"));
    EXPECT_EQ(refusalOf([](Json& json) {
                  json["outputs"][0]["terms"][0]["factors"] = {0, 0, 0};
              }),
              expected("outputs[0].terms[0].factors", "a list of up to two factors"));
    EXPECT_EQ(refusalOf([](Json& json) { json["inputs"][0]["maximum"] = -1e9; }),
              expected("inputs[0].maximum", "at least the minimum"));
    EXPECT_EQ(refusalOf([](Json& json) { json["inputs"][0]["name"] = 7; }),
              expected("inputs[0].name", "a text"));
    EXPECT_EQ(refusalOf([](Json& json) { json["report"] = 7; }), expected("report", "an object"));
}

TEST(ModelJsonReader, NamesTheMemberOfAnotherSize)
{
    EXPECT_EQ(refusalOf([](Json& json) { json["outputs"][0]["cases"][2].push_back(1.0); }),
              "the member \"outputs[0].cases[2]\" has 3 numbers where 2 are expected.");
    EXPECT_EQ(refusalOf([](Json& json) { json["outputs"][0]["cases"].erase(0); }),
              "the member \"outputs[0].cases\" is not what it has to be: a case for each weight.");
    EXPECT_EQ(refusalOf([](Json& json) { json["outputs"][0]["lengths"].push_back(1.0); }),
              "the member \"outputs[0].lengths\" is not what it has to be: a length for each "
              "coordinate.");
    EXPECT_EQ(refusalOf([](Json& json) { json["check"]["points"][4].erase(0); }),
              "the member \"check.points[4]\" has 1 numbers where 2 are expected.");
    EXPECT_EQ(refusalOf([](Json& json) { json["check"]["values"].erase(1); }),
              "the member \"check.values\" is not what it has to be: a list for each output.");
}

TEST(ModelJsonReader, SaysWhichOutputContradictsItself)
{
    EXPECT_EQ(refusalOf([](Json& json) { json["outputs"][1]["coordinates"][0]["unit"] = 0; }),
              "the member \"outputs[1]\" cannot be used. The description of the model contradicts "
              "itself: the unit of a coordinate is not positive.");
    EXPECT_EQ(refusalOf([](Json& json) { json["outputs"][1]["terms"][1]["factors"] = {7}; }),
              "the member \"outputs[1]\" cannot be used. The description of the model contradicts "
              "itself: a term has a coordinate that does not exist.");
}

TEST(ModelJsonReader, ASelfCheckFindsANumberThatHasChanged)
{
    for (const Kind kind : {Polynomial, Kriging}) {
        const std::string sentence = refusalOf(
            [](Json& json) {
                Json& coefficient = json["outputs"][1]["terms"][1]["coefficient"];
                coefficient = coefficient.get<double>() * (1.0 + 1e-6);
            },
            kind);
        EXPECT_EQ(sentence.rfind("its self-check fails: \"Stress\\\" comes out as ", 0), 0u)
            << sentence;
    }
}

TEST(ModelJsonReader, ADamagedDocumentIsRefusedOrTakenNeverACrash)
{
    UniformNumbers random(12);
    std::size_t refused = 0;
    for (const Kind kind : {Polynomial, Kriging}) {
        const std::string whole = jsonOf(cvd(), kind);
        for (std::size_t length = 0; length + 2 < whole.size(); length += 13) {
            EXPECT_NE(refusalOf(whole.substr(0, length)), "") << length;
        }
        for (int i = 0; i < 500; ++i) {
            std::string damaged = whole;
            const int changes = 1 + static_cast<int>(3.0 * random.next());
            for (int change = 0; change < changes; ++change) {
                const auto at =
                    static_cast<std::size_t>(random.next() * static_cast<double>(whole.size()));
                // Bytes that keep a document readable more often than not.
                constexpr char bytes[] = "0123456789-eE.,:[]{}\"\\ ntf\x01\xFF";
                damaged[at] = bytes[static_cast<std::size_t>(random.next() * (sizeof bytes - 1))];
            }
            refused += refusalOf(damaged).empty() ? 0 : 1;
        }
    }
    EXPECT_GT(refused, 333u);
}
