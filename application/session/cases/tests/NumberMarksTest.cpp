#include <session/cases/LayoutRecognition.h>

#include <gtest/gtest.h>

#include <string_view>

namespace {
CaseFileLayout layoutOf(std::string_view sample, const ReadingChoices& choices = {})
{
    return recogniseLayout(sample, true, choices);
}
} // namespace

TEST(NumberMarks, ANumberThatMayHaveThousandsIsInDoubt)
{
    const struct
    {
        const char* text;
        const char* number;
    } examples[] = {{"a;b\n1.234;2\n987;3\n", "1.234"},    {"a\tb\n1,234\t2\n12,987\t3\n", "1,234"},
                    {"a;b\n1,234;2\n12,987;3\n", ""},      {"a;b\n1.234;2\n987;0.5\n", ""},
                    {"a;b\n1.234;2\n9;3\n", "1.234"},      {"a\tb\n1.234\t2\n9\t3\n", ""},
                    {"a\tb\n1.234\t2\n987\t3\n", "1.234"}, {"a;b\n0.234;2\n987;3\n", ""},
                    {"a,b\n1.234,2\n987,3\n", ""}};
    for (const auto& example : examples) {
        EXPECT_EQ(layoutOf(example.text).doubtfulNumber, example.number) << example.text;
    }
    ReadingChoices choices;
    choices.decimalMark = CellValue::Comma;
    EXPECT_EQ(layoutOf("a;b\n1.234;2\n987;3\n", choices).doubtfulNumber, "");
}
