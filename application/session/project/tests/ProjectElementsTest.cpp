#include <session/project/ProjectElements.h>

#include "ProjectSample.h"

#include <session/xml/XmlText.h>

#include <gtest/gtest.h>

#include <string>

namespace {
/** Position and sentence of what is wrong with a document. */
std::string refusalOf(const std::string& text)
{
    ProjectContents contents;
    ProjectSettings settings;
    try {
        readProjectElements(readXml(text), contents, settings);
    } catch (const XmlFault& fault) {
        return "line " + std::to_string(fault.position().line) + ", column " +
               std::to_string(fault.position().column) + ": " + fault.what();
    }
    return "read";
}

struct RefusedDocument
{
    const char* name;
    const char* part;
    const char* replacement;
    const char* sentence;
};

class ProjectElementsRefusal : public ::testing::TestWithParam<RefusedDocument>
{};

const RefusedDocument refusedDocuments[] = {
    {"OtherRoot", "<SurrogateProject Version=\"1\">", "<SurrogateProject2 Version=\"1\">",
     "line 18, column 19: the document is damaged or no XML: Opening and ending tag mismatch."},
    {"NoVersion", " Version=\"1\"", "",
     "line 2, column 1: the element \"SurrogateProject\" lacks the attribute \"Version\"."},
    {"NewerVersion", "Version=\"1\"", "Version=\"2\"",
     "line 2, column 1: the document was written by a newer version of the program (format 2; this "
     "one reads format 1); open it with that one."},
    {"NoNumberAsVersion", "Version=\"1\"", "Version=\"1.0\"",
     "line 2, column 1: the attribute \"Version\" of the element \"SurrogateProject\" needs a "
     "whole number from 1 to 18446744073709551615, not \"1.0\"."},
    {"UnknownAttributeOfTheRoot", "Version=\"1\"", "Version=\"1\" A=\"\"",
     "line 2, column 1: the attribute \"A\" of the element \"SurrogateProject\" is not known to "
     "this version; remove it, or open the document with the program that wrote it."},
    {"TextInTheRoot", "<Outputs>", "x<Outputs>",
     "line 2, column 1: the element \"SurrogateProject\" holds the text \"\\x0A  \\x0A  "
     "\\x0A  x\\x0A  \\x0A  \\x0A\", where there is none to be."},
    {"ElementTwice", "<Outputs>", "<Sweeps/><Outputs>",
     "line 15, column 3: the element \"Sweeps\" comes twice."},
    {"NoCaseFile", "<CaseFile ", "<Other ",
     "line 2, column 1: the document lacks the element \"CaseFile\"."},
    {"NoPath", " Path=\"cases.csv\"", "",
     "line 3, column 3: the element \"CaseFile\" lacks the attribute \"Path\"."},
    {"EmptyPath", "\"cases.csv\"", "\"\"",
     "line 3, column 3: the attribute \"Path\" of the element \"CaseFile\" must not be empty."},
    {"NegativeSize", "\"120\"", "\"-120\"",
     "line 3, column 3: the attribute \"Bytes\" of the element \"CaseFile\" needs a whole number "
     "from 0 to 18446744073709551615, not \"-120\"."},
    {"HashWithAnotherLetter", "\"aaaaaaaaaa", "\"Aaaaaaaaaa",
     "line 3, column 3: the attribute \"Sha256\" of the element \"CaseFile\" needs 64 "
     "hexadecimal digits in lower case, not "
     "\"Aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\"."},
    {"UnknownSeparator", "\"semicolon\"", "\";\"",
     "line 3, column 3: the attribute \"Separator\" of the element \"CaseFile\" must be "
     "\"comma\", \"semicolon\", \"tab\", \"bar\" or \"blanks\", not \";\"."},
    {"UnknownDecimalMark", "DecimalMark=\"comma\"", "DecimalMark=\"Comma\"",
     "line 3, column 3: the attribute \"DecimalMark\" of the element \"CaseFile\" must be "
     "\"point\" or \"comma\", not \"Comma\"."},
    {"ElementInTheCaseFile", "a\"/>", "a\"><Zip/></CaseFile>",
     "line 3, column 158: the element \"Zip\" inside \"CaseFile\" is not known to this version; "
     "remove it, or open the document with the program that wrote it."},
    {"NoVariables", "Variables>", "Others>",
     "line 9, column 14: the document is damaged or no XML: Opening and ending tag mismatch."},
    {"UnknownElementAmongVariables", "<Variable Name=\"y\"", "<Varible Name=\"y\"",
     "line 6, column 5: the element \"Varible\" inside \"Variables\" is not known to this "
     "version; remove it, or open the document with the program that wrote it."},
    {"UnknownAttributeOfAVariable", "<Variable Name=\"y\"", "<Variable Unit=\"m\" Name=\"y\"",
     "line 6, column 5: the attribute \"Unit\" of the element \"Variable\" is not known to this "
     "version; remove it, or open the document with the program that wrote it."},
    {"VariableTwice", "Name=\"y\"", "Name=\"x\"",
     "line 6, column 5: the variable \"x\" comes twice."},
    {"VariableWithoutName", "Name=\"y\" ", "",
     "line 6, column 5: the element \"Variable\" lacks the attribute \"Name\"."},
    {"EmptyVariableName", "Name=\"y\"", "Name=\"\"",
     "line 6, column 5: the attribute \"Name\" of the element \"Variable\" must not be empty."},
    {"UnknownRole", "\"unassigned\"", "\"ignored\"",
     "line 8, column 5: the attribute \"Role\" of the element \"Variable\" must be "
     "\"independent\", \"dependent\" or \"unassigned\", not \"ignored\"."},
    {"ReversedRange", "Lower=\"2\"", "Lower=\"2.5\"",
     "line 7, column 5: the range of the variable \"z\" is reversed: its lower end 2.5 is above "
     "its upper end 2."},
    {"RangeWithoutUpperEnd", " Upper=\"2\"", "",
     "line 7, column 5: the element \"Variable\" lacks the attribute \"Upper\"."},
    {"RangeThatIsNotFinite", "Lower=\"2\"", "Lower=\"nan\"",
     "line 7, column 5: the attribute \"Lower\" of the element \"Variable\" needs a finite "
     "number with a decimal point, not \"nan\"."},
    {"RangeThatOverflows", "\"1e+300\"", "\"1e+400\"",
     "line 5, column 5: the attribute \"Upper\" of the element \"Variable\" needs a finite "
     "number with a decimal point, not \"1e+400\"."},
    {"RangeWithAComma", "\"-0.5\"", "\"-0,5\"",
     "line 5, column 5: the attribute \"Lower\" of the element \"Variable\" needs a finite "
     "number with a decimal point, not \"-0,5\"."},
    {"UnknownOutput", "Output Name=\"y\"", "Output Name=\"u\"",
     "line 12, column 5: the output \"u\" must be a dependent variable, and there is no variable "
     "of that name."},
    {"OutputThatIsNoDependent", "Output Name=\"y\"", "Output Name=\"x\"",
     "line 12, column 5: the output \"x\" must be a dependent variable, and that variable is "
     "independent."},
    {"OutputTwice", "Output Name=\"y\"", "Output Name=\"z\"",
     "line 12, column 5: the output \"z\" comes twice."},
    {"ExcludedCasesThatAreNone", "1,3-5,12", "1;3",
     "line 14, column 3: the excluded cases \"1;3\" are no case numbers or ranges of them, from 1 "
     "to 20000000; write them like 3,7-9."},
    {"CaseZero", "1,3-5,12", "0",
     "line 14, column 3: the excluded cases \"0\" are no case numbers or ranges of them, from 1 "
     "to 20000000; write them like 3,7-9."},
    {"MoreCasesThanFitIntoMemory", "1,3-5,12", "1-18446744073709551615",
     "line 14, column 3: the excluded cases \"1-18446744073709551615\" are no case numbers or "
     "ranges of them, from 1 to 20000000; write them like 3,7-9."},
    {"ElementAmongExcludedCases", "1,3-5,12", "<Case/>",
     "line 14, column 18: the element \"Case\" inside \"ExcludedCases\" is not known to this "
     "version; remove it, or open the document with the program that wrote it."},
    {"NegativeCount", "\"11\"", "\"-11\"",
     "line 16, column 5: the attribute \"Count\" of the element \"Sweep\" needs a whole number "
     "from 2 to 100000000, not \"-11\"."},
    {"CountOfOne", "\"11\"", "\"1\"",
     "line 16, column 5: the attribute \"Count\" of the element \"Sweep\" needs a whole number "
     "from 2 to 100000000, not \"1\"."},
    {"SweepOfAnOutput", "Name=\"x\" To", "Name=\"y\" To",
     "line 16, column 5: the swept input \"y\" must be an independent variable, and that variable "
     "is dependent."},
    {"SweepWithoutEnd", " To=\"0.1\"", "",
     "line 16, column 5: the element \"Sweep\" lacks the attribute \"To\"."},
    {"SweepTwice", "</Sweeps>", "<Sweep Name=\"x\" Count=\"2\"/></Sweeps>",
     "line 17, column 3: the swept input \"x\" comes twice."},
    {"OtherParentOfUserDistributions", "<Sweeps>",
     "<UserDistributions><Variable/>"
     "</UserDistributions><Sweeps>",
     "line 15, column 22: the element \"Variable\" inside \"UserDistributions\" is not known to "
     "this version; remove it, or open the document with the program that wrote it."},
    {"AttributeOfAnInput", "<Sweeps>",
     "<SurrogateModel><Variable Name=\"x\" Weight=\"2\"/></SurrogateModel><Sweeps>",
     "line 15, column 19: the attribute \"Weight\" of the element \"Variable\" is not known to "
     "this version; remove it, or open the document with the program that wrote it."},
    {"ElementInTheType", "<Sweeps>", "<SurrogateModel><Type><New/></Type></SurrogateModel><Sweeps>",
     "line 15, column 25: the element \"New\" inside \"Type\" is not known to this version; remove "
     "it, or open the document with the program that wrote it."},
    {"TypeTwice", "<Sweeps>", "<SurrogateModel><Type/><Type/></SurrogateModel><Sweeps>",
     "line 15, column 26: the element \"Type\" comes twice."},
    {"TextInTheModel", "<Sweeps>", "<SurrogateModel>x</SurrogateModel><Sweeps>",
     "line 15, column 3: the element \"SurrogateModel\" holds the text \"x\", where there is none "
     "to be."},
    {"AttributeOfADistribution", "<Sweeps>",
     "<UserDistributions><SurrogateModelUserDefinedVariableDistribution><Any Unit=\"m\"/>"
     "</SurrogateModelUserDefinedVariableDistribution></UserDistributions><Sweeps>",
     "line 15, column 69: the attribute \"Unit\" of the element \"Any\" is not known to this "
     "version; remove it, or open the document with the program that wrote it."},
    {"TermSelection", "  <Sweeps>", "  <TermSelection Method=\"Forward\"/>\n  <Sweeps>",
     "line 15, column 3: the attribute \"Method\" of the element \"TermSelection\" must be "
     "\"BackwardAicc\", not \"Forward\"."},
    {"UnknownPolynomial", "  <Sweeps>", "  <Polynomial Terms=\"Cubic\"/>\n  <Sweeps>",
     "line 15, column 3: the attribute \"Terms\" of the element \"Polynomial\" must be "
     "\"Linear\", \"Interactions\", \"Quadratic\" or \"Chosen\", not \"Cubic\"."},
    {"UnknownCoding", "  <Sweeps>", "  <InputCoding Method=\"Radial\"/>\n  <Sweeps>",
     "line 15, column 3: the attribute \"Method\" of the element \"InputCoding\" must be "
     "\"Axial\" or \"Factorial\", not \"Radial\"."},
    {"TwoTermSelections", "  <Sweeps>",
     "  <TermSelection Method=\"BackwardAicc\"/>\n  <TermSelection/>\n  <Sweeps>",
     "line 16, column 3: the element \"TermSelection\" comes twice."},
    {"Declaration", "<SurrogateProject", "<!DOCTYPE SurrogateProject>\n<SurrogateProject",
     "line 2, column 1: a document type declaration is not accepted; remove it."},
};

std::string caseName(const ::testing::TestParamInfo<RefusedDocument>& info)
{
    return info.param.name;
}
} // namespace

TEST(ProjectElements, AreWrittenAsTheyWereRead)
{
    ProjectContents contents;
    ProjectSettings settings;

    readProjectElements(readXml(sampleProjectText), contents, settings);

    EXPECT_EQ(writeXml(projectElement(contents, settings)), sampleProjectText);
}

TEST_P(ProjectElementsRefusal, NamesLineAndColumn)
{
    EXPECT_EQ(refusalOf(with(GetParam().part, GetParam().replacement)), GetParam().sentence);
}

INSTANTIATE_TEST_SUITE_P(Documents, ProjectElementsRefusal, ::testing::ValuesIn(refusedDocuments),
                         caseName);

TEST(ProjectElements, NameTheTermsOnlyWhereTheyAreNotTheUsualOnes)
{
    using Selection = ResponseSurfaceOptions::Selection;
    ProjectContents contents;
    const std::pair<ResponseSurfaceOptions, const char*> rows[] = {
        {{}, "  <Sweeps/>\n</SurrogateProject>\n"},
        {{PolynomialTerms::Linear, Selection::BackwardAicc},
         "  <Polynomial Terms=\"Linear\"/>\n  <TermSelection Method=\"BackwardAicc\"/>\n"
         "</SurrogateProject>\n"},
        {{PolynomialTerms::Chosen, Selection::All, "A + \"B+1\"^2"},
         "  <Polynomial Formula=\"A + &quot;B+1&quot;^2\" Terms=\"Chosen\"/>\n"},
    };
    for (const auto& [options, part] : rows) {
        contents.responseSurface = options;
        const std::string written = writeXml(projectElement(contents, {}));
        EXPECT_NE(written.find(part), std::string::npos) << written;
    }
}

TEST(ProjectElements, RefuseAnotherKindOfFile)
{
    EXPECT_EQ(refusalOf("<svg/>"),
              "line 1, column 1: a project document begins with the element \"SurrogateProject\", "
              "not with \"svg\"; this is another kind of file.");
    EXPECT_EQ(refusalOf("x,y\n1,2\n"), "line 1, column 1: the document is damaged or no XML: "
                                       "Start tag expected.");
}
