// Random settings through a document and back. Seed and number of cases are fixed below; setting
// RC_PARAMS in the environment looks further.
#include <surrogatemodel/GenericSerializer.h>
#include <surrogatemodel/SurrogateModelManagerSerializer.h>
#include <surrogatemodel/SurrogateModelUserDist.h>
#include <surrogatemodel/SurrogateModelUserDistCollectionSerializer.h>

#include "CapturedErrors.h"
#include "FakeManager.h"
#include "UserDistXml.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_serialization/tests/XmlText.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <set>

namespace {

const bool isSeeded = ::setenv("RC_PARAMS", "seed=20260301 max_success=60 max_size=30", 0) == 0;

using Collection = SurrogateModelUserDistCollection;
using Variables = std::vector<VarPtr>;

std::string utf8(std::uint32_t code)
{
    const char32_t character = code;
    return QString::fromUcs4(&character, 1).toStdString();
}

/** A character that XML can carry, as UTF-8; every plane is as likely as the first. */
rc::Gen<std::string> anyCharacter()
{
    const auto inPlane = rc::gen::map(rc::gen::pair(rc::gen::inRange<std::uint32_t>(0, 17),
                                                    rc::gen::inRange<std::uint32_t>(0x20, 0xFFFE)),
                                      [](const std::pair<std::uint32_t, std::uint32_t>& code) {
                                          return code.first * 0x10000U + code.second;
                                      });
    const auto isCharacter = [](std::uint32_t code) { return code < 0xD800 || code > 0xDFFF; };
    return rc::gen::map(rc::gen::suchThat(inPlane, isCharacter), utf8);
}

/** What quoting, white space and encodings trip over. */
rc::Gen<std::string> awkwardPiece()
{
    return rc::gen::element<std::string>(
        "\"", "'", "<", ">", "&", "&amp;", "&#10;", "]]>", "<![CDATA[", "<!--", "-->", "<?", "\n",
        "\t", "\r", "\r\n", " ", "  ", "%1%", "\xC3\x9F", "\xE6\xB8\xA9", "\xF0\x9F\x98\x80",
        "\xC2\x85", "\xE2\x80\xA8", "\xEF\xBB\xBF", "\xEF\xBF\xBD", "\x7F", "a", "B", "0");
}

std::string joined(const std::vector<std::string>& pieces, const std::string& separator = "")
{
    std::string text;
    for (const std::string& piece : pieces) {
        text += (text.empty() ? "" : separator) + piece;
    }
    return text;
}

rc::Gen<std::string> anyText()
{
    const auto piece = rc::gen::oneOf(awkwardPiece(), anyCharacter());
    return rc::gen::map(rc::gen::container<std::vector<std::string>>(piece),
                        [](const std::vector<std::string>& pieces) { return joined(pieces); });
}

rc::Gen<std::set<std::string>> anyNames()
{
    return rc::gen::container<std::set<std::string>>(rc::gen::nonEmpty(anyText()));
}

/** Distribution texts without a fault. */
rc::Gen<std::string> validDistribution()
{
    const auto item = rc::gen::element<std::string>("0", "-1.5", " 2e3 ", "0 - 1 : 3", "0-10:11",
                                                    "-2 - -1 : 2", "5 - 5 : 1");
    return rc::gen::map(rc::gen::nonEmpty(rc::gen::container<std::vector<std::string>>(item)),
                        [](const std::vector<std::string>& items) { return joined(items, ", "); });
}

rc::Gen<Collection::VariableMode> anyMode()
{
    return rc::gen::element(Collection::Auto, Collection::UserDefined);
}

/** A project with these inputs, open while one lives. */
class OpenProject
{
public:
    explicit OpenProject(const std::set<std::string>& names)
    {
        for (const std::string& name : names) {
            inputs.push_back(project->addNumericVariable(name, Variable::Independent));
        }
        Project::setProject(project);
    }
    ~OpenProject() { Project::setProject(nullptr); }

    OpenProject(const OpenProject&) = delete;
    OpenProject& operator=(const OpenProject&) = delete;

    boost::shared_ptr<Project> project = boost::make_shared<Project>();
    Variables inputs;
};

/** Some of `variables`, in any order, some of them repeatedly. */
Variables anyListOf(const Variables& variables)
{
    Variables list;
    if (!variables.empty()) {
        for (const std::size_t index : *rc::gen::container<std::vector<std::size_t>>(
                 rc::gen::inRange<std::size_t>(0, variables.size()))) {
            list.push_back(variables[index]);
        }
    }
    return list;
}

} // namespace

RC_GTEST_PROP(SettingsRoundTrip, BringsEveryStorableTextBackByteForByte, ())
{
    const std::string text = *anyText();
    std::string value = text;
    const GenericSerializer<std::string> serializer(
        "Text", [&value] { return value; }, [&value](const std::string& next) { value = next; },
        {"Value"});
    const std::string saved = written(serializer);
    value = "other";

    read(serializer, saved);

    RC_ASSERT(value == text);
}

RC_GTEST_PROP(SettingsRoundTrip, BringsEverySettingOfAManagerBack, ())
{
    const std::set<std::string> names = *anyNames();
    const OpenProject open(names);
    const Variables list = anyListOf(open.inputs);
    const auto type = *rc::gen::element(SurrogateModelManagerInterface::Kriging,
                                        SurrogateModelManagerInterface::ResponseSurface);
    Collection point;
    for (const std::string& name : names) {
        point = with(point, name, *anyMode(), *validDistribution());
    }
    const auto saved = boost::make_shared<FakeManager>();
    saved->independents->set(list);
    saved->modelType->set(type);
    saved->point->set(point);

    const auto loaded = boost::make_shared<FakeManager>();
    const CapturedErrors errors;
    read(SurrogateModelManagerSerializer(loaded), written(SurrogateModelManagerSerializer(saved)));

    RC_ASSERT(loaded->independents->get() == list);
    RC_ASSERT(loaded->modelType->get() == type);
    RC_ASSERT(loaded->point->get() == point);
    RC_ASSERT(errors.text().empty());
}

RC_GTEST_PROP(SettingsRoundTrip, BringsValidTextsBackAndWarnsOfEachFaultyOne, ())
{
    const std::set<std::string> names = *anyNames();
    const OpenProject open(names);
    Collection held;
    Collection expected;
    std::string warnings;
    for (const std::string& name : names) {
        const auto mode = *anyMode();
        const std::string text = *rc::gen::oneOf(validDistribution(), anyText());
        held = with(held, name, mode, text);
        if (SurrogateModelUserDist(text).isValid()) {
            expected = with(expected, name, mode, text);
        } else {
            warnings += userDistWarning(name);
        }
    }
    const auto saved = boost::make_shared<veska::Property<Collection>>();
    saved->set(held);

    const auto loaded = boost::make_shared<veska::Property<Collection>>();
    const CapturedErrors errors;
    read(SurrogateModelUserDistCollectionSerializer(loaded),
         written(SurrogateModelUserDistCollectionSerializer(saved)));

    RC_ASSERT(loaded->get() == expected);
    RC_ASSERT(errors.text() == warnings);
}

RC_GTEST_PROP(SettingsRoundTrip, WritesReadableDocumentsWhateverTheBytesOfATextAre, ())
{
    const OpenProject open({"x"});
    const auto property = boost::make_shared<veska::Property<Collection>>();
    property->set(with({}, "x", *anyMode(), *rc::gen::arbitrary<std::string>()));

    const std::string saved = written(SurrogateModelUserDistCollectionSerializer(property));

    RC_ASSERT(QDomDocument().setContent(QByteArray::fromStdString(saved)));
}
