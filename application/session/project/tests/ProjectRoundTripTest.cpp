// Random projects through a document and back, and documents with damage. Seed and number of cases
// are fixed below; setting RC_PARAMS in the environment looks further.

#include <session/project/ProjectDocument.h>

#include "ElementSerializer.h"
#include "ProjectSample.h"
#include "TemporaryFolder.h"

#include <session/text/SessionErrors.h>

#include <mirel_property/Utf8.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <set>

namespace {
const bool isSeeded = ::setenv("RC_PARAMS", "seed=20260301 max_success=60 max_size=30", 0) == 0;

std::string utf8(std::uint32_t code)
{
    const char32_t character = code;
    return QString::fromUcs4(&character, 1).toStdString();
}

/** A character that XML can carry; every plane is as likely as the first. */
rc::Gen<std::string> anyCharacter()
{
    // The last two of each plane are no characters.
    const auto code = rc::gen::map(rc::gen::pair(rc::gen::inRange<std::uint32_t>(0, 17),
                                                 rc::gen::inRange<std::uint32_t>(0x20, 0xFFFE)),
                                   [](const auto& planeAndPlace) {
                                       return planeAndPlace.first * 0x10000 + planeAndPlace.second;
                                   });
    const auto isCharacter = [](std::uint32_t value) { return value < 0xD800 || value > 0xDFFF; };
    return rc::gen::map(rc::gen::suchThat(code, isCharacter), utf8);
}

/** What quoting, white space and encodings trip over. */
rc::Gen<std::string> awkwardPiece()
{
    return rc::gen::element<std::string>("\"", "'", "<", ">", "&", "&amp;", "&#10;", "]]>", "\n",
                                         "<![CDATA[", "<!--", "-->", "<?", "\t", "\r", "\r\n", " ",
                                         "%1%", "\xC2\x85", "\xE2\x80\xA8", "\xEF\xBB\xBF", "\x7F",
                                         "\xF0\x9F\x98\x80", "\xEF\xBF\xBD", "a", "-", "..", "温");
}

rc::Gen<std::string> anyText()
{
    const auto pieces = rc::gen::container<std::vector<std::string>>(
        rc::gen::oneOf(awkwardPiece(), anyCharacter()));
    return rc::gen::map(pieces, [](const std::vector<std::string>& parts) {
        std::string text;
        for (const std::string& part : parts) {
            text += part;
        }
        return text;
    });
}

/** Finite, of every size. */
rc::Gen<double> anyNumber()
{
    const auto number = rc::gen::map(rc::gen::arbitrary<std::uint64_t>(), [](std::uint64_t bits) {
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    });
    return rc::gen::suchThat(rc::gen::oneOf(number, rc::gen::element(0.0, -0.0, 0.1, 1e15, -3.0)),
                             [](double value) { return std::isfinite(value); });
}

std::optional<ProjectDocument::Range> anyRange(bool mayFall)
{
    if (*rc::gen::element(true, false)) {
        return std::nullopt;
    }
    ProjectDocument::Range range(*anyNumber(), *anyNumber());
    if (!mayFall && range.second < range.first) {
        std::swap(range.first, range.second);
    }
    return range;
}

void addVariables(ProjectDocument& project)
{
    const auto names = *rc::gen::container<std::set<std::string>>(rc::gen::nonEmpty(anyText()));
    for (const std::string& name : names) {
        ProjectDocument::VariableEntry variable;
        variable.name = name;
        variable.role =
            *rc::gen::element(Variable::Unassigned, Variable::Dependent, Variable::Independent);
        variable.range = anyRange(false);
        project.variables.push_back(variable);
        if (variable.role == Variable::Dependent) {
            project.outputs.insert(project.outputs.begin(), name);
        } else if (variable.role == Variable::Independent) {
            project.sweeps.push_back(
                {name, *rc::gen::inRange<std::size_t>(2, 1000), anyRange(true)});
        }
    }
}

ElementSerializer anyModel()
{
    std::vector<ElementSerializer::Child> children = {{"Type", *anyText(), {}}};
    for (const std::string& name : *rc::gen::container<std::vector<std::string>>(anyText())) {
        children.push_back({"Variable", "", {{"Name", name}}});
    }
    return {"SurrogateModel", children};
}

ElementSerializer anyDistributions()
{
    std::vector<ElementSerializer::Child> entries;
    for (const std::string& name : *rc::gen::container<std::vector<std::string>>(anyText())) {
        const std::string mode = *rc::gen::element<std::string>("Auto", "UserDefined");
        entries.push_back(
            {"Variable", "", {{"Name", name}, {"Mode", mode}, {"Distribution", *anyText()}}});
    }
    return {"SurrogateModelUserDefinedVariableDistribution", entries};
}

/** A project for a case file in a folder. */
ProjectDocument anyProject(const TemporaryFolder& folder)
{
    ProjectDocument project;
    project.caseFile.path = folder.path("温 \"<&>\n\r\xF0\x9F\x98\x80.csv");
    project.caseFile.fingerprint = {*rc::gen::arbitrary<std::uint64_t>(), std::string(64, '7')};
    project.caseFile.separator = *rc::gen::element(',', ';', '\t', '|', ' ');
    project.caseFile.hasDecimalComma = *rc::gen::element(true, false);
    if (*rc::gen::element(true, false)) {
        ReadingChoices& reading = project.caseFile.reading;
        reading.thousandsSeparator = *rc::gen::element(',', '.', ' ', '\'');
        reading.encoding = TextEncoding::Windows1252;
        reading.heading = false;
        reading.unitsRow = true;
        reading.skippedLines = 3;
        reading.commentMark = "";
        reading.missing = MissingWords("failed,999");
        reading.isStrict = true;
    }
    addVariables(project);
    const auto excluded =
        *rc::gen::container<std::set<std::size_t>>(rc::gen::inRange<std::size_t>(0, 40));
    project.excluded.assign(excluded.begin(), excluded.end());
    return project;
}

/** Loads, and uses what could be loaded; false if it is refused, with a sentence. */
bool isLoaded(const std::string& path)
{
    const ElementSerializer model("SurrogateModel", {});
    const ElementSerializer block("SurrogateModelUserDefinedVariableDistribution", {});
    try {
        const ProjectDocument project = ProjectDocument::load(path);
        project.evaluationPoint();
        project.modelInputs();
        project.checkCaseFile();
        project.giveSettings(model, block);
        return true;
    } catch (const ProjectDocumentError& error) {
        const std::string message = error.what();
        EXPECT_EQ(message.rfind(path + ", line ", 0), 0u) << message;
        EXPECT_EQ(message.back(), '.') << message;
        EXPECT_EQ(message.find('\n'), std::string::npos) << message;
        EXPECT_TRUE(isUtf8Text(message)) << message;
    } catch (const FileError& error) {
        // The damaged path is a folder's.
        EXPECT_NE(std::string(error.what()), "");
    }
    return false;
}

/** As isLoaded(), for the text of a document. */
bool isLoaded(const TemporaryFolder& folder, const std::string& text)
{
    const std::string path = folder.write("d.surrogate.xml", text);
    const bool result = isLoaded(path);
    // Writing over a file waits for the disk on some file systems.
    std::filesystem::remove(path);
    return result;
}

/** A small document with something of everything. */
std::string smallDocument(const TemporaryFolder& folder)
{
    ProjectDocument project = sampleProject(folder.path("c.csv"));
    project.takeSettings(
        ElementSerializer("SurrogateModel", {{"Type", "Kriging", {}}, {"New", "1&2", {}}}),
        ElementSerializer("SurrogateModelUserDefinedVariableDistribution",
                          {{"Variable", "", {{"Mode", "Auto"}, {"Name", "\n"}}}}));
    project.save(folder.path("p.surrogate.xml"));
    return folder.read("p.surrogate.xml");
}
} // namespace

RC_GTEST_PROP(ProjectRoundTrip, BringsEveryProjectBack, ())
{
    const TemporaryFolder folder;
    const std::string path = folder.path("p.surrogate.xml");
    const ElementSerializer model = anyModel();
    const ElementSerializer block = anyDistributions();
    ProjectDocument project = anyProject(folder);
    project.takeSettings(model, block);

    project.save(path);
    const ProjectDocument loaded = ProjectDocument::load(path);
    loaded.giveSettings(model, block);

    RC_ASSERT(loaded == project);
    const std::string first = folder.read("p.surrogate.xml");
    loaded.save(path);
    RC_ASSERT(folder.read("p.surrogate.xml") == first);
    RC_ASSERT(loaded.caseFile.path == project.caseFile.path);
    RC_ASSERT(loaded.outputs == project.outputs);
    RC_ASSERT(loaded.excluded == project.excluded);
    RC_ASSERT(loaded.variables.size() == project.variables.size());
    for (std::size_t i = 0; i < project.variables.size(); ++i) {
        RC_ASSERT(loaded.variables[i].name == project.variables[i].name);
        RC_ASSERT(loaded.variables[i].range == project.variables[i].range);
    }
    RC_ASSERT(model.received() == model.written());
    RC_ASSERT(block.received() == block.written());
}

TEST(ProjectRoundTrip, EveryDamagedMissingOrDoubledByteIsRefusedWithASentenceOrDoesNoHarm)
{
    const TemporaryFolder folder;
    const std::string sound = smallDocument(folder);
    std::mt19937_64 random(7);

    std::size_t loaded = 0;
    for (std::size_t position = 0; position < sound.size(); ++position) {
        std::string damaged = sound;
        damaged[position] = static_cast<char>(random());
        loaded += isLoaded(folder, damaged) ? 1 : 0;
        std::string shifted = sound;
        isLoaded(folder, shifted.erase(position, 1));
        shifted = sound;
        isLoaded(folder, shifted.insert(position, 1, sound[position]));
    }

    // Letters of names and texts may be others.
    EXPECT_GT(loaded, 0u);
    EXPECT_LT(loaded, sound.size());
}

TEST(ProjectRoundTrip, EveryTruncatedDocumentIsRefusedWithASentence)
{
    const TemporaryFolder folder;
    const std::string sound = smallDocument(folder);
    // Without the newline at its end it is whole.
    const std::size_t whole = sound.size() - 1;

    for (std::size_t length = 0; length < whole; ++length) {
        EXPECT_FALSE(isLoaded(folder, sound.substr(0, length))) << length;
    }
    EXPECT_TRUE(isLoaded(folder, sound.substr(0, whole)));
}
