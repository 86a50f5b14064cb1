#include <session/cases/TableParts.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>

namespace {
struct Sample
{
    const char* text;
    const char* parts;
    char separator = ',';
};

/** The position of the heading, how many columns there are, and what the record below it is. */
std::string partsOf(const Sample& sample)
{
    CaseFileLayout layout;
    layout.separator = sample.separator;
    const SampleRecords records(sample.text, true, layout);
    const TableParts parts(records);
    const std::optional<std::size_t> heading = parts.heading();
    const std::optional<std::size_t> faulty = heading ? std::nullopt : parts.faultyHeading();
    const std::size_t first = heading.value_or(faulty.value_or(0));
    const bool isLast = first + 1 == records.records.size();
    std::string text = heading  ? "heading " + std::to_string(*heading)
                       : faulty ? "faulty heading " + std::to_string(*faulty)
                                : "no heading";
    text += ", " + std::to_string(parts.columns()) + " columns";
    text += parts.isOfNumbersAlone(first) ? ", numbers alone" : "";
    text += parts.hasLabel(first) ? ", label" : "";
    text += parts.hasRowNames(first) ? ", row names" : "";
    text += !isLast && parts.readsAsUnits(first + 1) ? ", units" : "";
    text += !isLast && parts.readsAsSecondHeading(first + 1) ? ", second heading" : "";
    return text;
}

template <std::size_t Count>
void expectParts(const Sample (&samples)[Count])
{
    for (const Sample& sample : samples) {
        EXPECT_EQ(partsOf(sample), sample.parts) << sample.text;
    }
}
} // namespace

TEST(TableParts, TheHeadingStandsBelowTitles)
{
    expectParts({{"x,y\n1,2\n3,4\n", "heading 0, 2 columns"},
                 {"Rig 7,,\n,,\nx,y,z\n1,2,3\n3,4,5\n", "heading 2, 3 columns"},
                 {"Inputs,,Output\nx,y,z\n1,2,3\n", "heading 1, 3 columns"},
                 {"506,13,,,\na,b,c,d,e\n1,2,3,4,5\n3,4,5,6,7\n", "heading 1, 5 columns"},
                 {"Stress, strain, and load\nx,y\n1,2\n3,4\n", "heading 1, 2 columns"},
                 {",,,note\nA,B,y\n1,2,3\n4,5,6\n7,8,9\n", "heading 1, 3 columns"},
                 {"Data: y  x\n 1 2\n 3 4\n 5 6\n", "heading 0, 2 columns, label", ' '}});
}

TEST(TableParts, ARecordOfNumbersIsNoHeading)
{
    expectParts({{"1,2,NaN\n3,4,5\n", "no heading, 3 columns, numbers alone"},
                 {"x,2010\n3,4\n", "no heading, 2 columns"},
                 {"a,,c\n1,2,3\n4,5,6\n", "faulty heading 0, 3 columns"},
                 {"x,y\nfailed,late\n1,2\n3,4\n", "heading 0, 2 columns"},
                 {"x,y\n1,2\nfailed,late\n3,4\n", "heading 0, 2 columns"}});
}

TEST(TableParts, UnitsAndSecondHeadingsStandBelowTheHeading)
{
    expectParts({{"p,y\nMPa,mm\n1,2\n3,4\n", "heading 0, 2 columns, units"},
                 {"p,y\n1/min,10^3 kg\n1,2\n3,4\n", "heading 0, 2 columns, units"},
                 {"a,b\n5%,1\n0.07,2\n9%,3\n", "heading 0, 2 columns"},
                 {"p,y\nfailed,failed\n1,2\n3,4\n", "heading 0, 2 columns"},
                 {"p,sex\n1,m\n2,m\n", "heading 0, 2 columns"},
                 {"a,b,c\nx,y,z\n1,2,3\n4,5,6\n", "heading 0, 3 columns, second heading"},
                 {"a,b,c\nx,y,3\n1,2,3\n4,5,6\n", "heading 0, 3 columns"}});
}

TEST(TableParts, RowNamesHaveNoNameInTheHeading)
{
    expectParts({{"x y\na 1 2\nb 3 4\n", "heading 0, 3 columns, row names", ' '},
                 {"\"x\" \"y\"\n\"1\" 1 2\n\"2\" 3 4\n", "heading 0, 3 columns, row names", ' '},
                 {"x y\n1962.25 1 2\n1962.5 3 4\n", "heading 0, 3 columns, row names", ' '},
                 {"x,y\n1,5,2\n3,5,4\n", "no heading, 3 columns"}});
}
