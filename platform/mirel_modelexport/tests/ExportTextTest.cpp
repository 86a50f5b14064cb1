#include <mirel_modelexport/ExportText.h>

#include "ExportTestSupport.h"

using namespace exporttest;

TEST(ExportText, NumbersReadBackAsTheSameDoubleAndRealOnesAreNoIntegers)
{
    UniformNumbers random(2);
    for (int i = 0; i < 1000; ++i) {
        const double value = std::ldexp(random.next() - 0.5, i % 200 - 100);
        EXPECT_EQ(std::strtod(NumberText::shortest(value).c_str(), nullptr), value);
        EXPECT_EQ(std::strtod(realNumber(value).c_str(), nullptr), value);
    }

    EXPECT_EQ(realNumber(42.0), "42.0");
    EXPECT_EQ(realNumber(-0.0), "-0.0");
    EXPECT_EQ(realNumber(1e22), "1e+22");
    EXPECT_EQ(realNumber(0.5), "0.5");
}

TEST(ExportText, FormulaNumbersNeedFifteenDigitsAtMost)
{
    EXPECT_EQ(formulaNumber(0.5), "0.5");
    EXPECT_EQ(formulaNumber(1e-7), "1E-07");
    EXPECT_EQ(formulaNumber(1.0 / 3.0), "(0.333333333333333+3.33066907387547E-16)");
    UniformNumbers random(3);
    for (int i = 0; i < 1000; ++i) {
        const double value = std::ldexp(random.next() - 0.5, i % 200 - 100);
        const std::string text = formulaNumber(value);
        double sum = std::strtod(text.c_str() + (text[0] == '(' ? 1 : 0), nullptr);
        if (text[0] == '(') {
            const std::size_t second = text.find_first_of("+-", text.find_first_of("123456789"));
            const std::size_t operation =
                text[second - 1] == 'E' ? text.find_first_of("+-", second + 1) : second;
            sum += std::strtod(text.c_str() + operation, nullptr);
        }
        EXPECT_EQ(sum, value) << text;
    }
}

TEST(ExportText, NamesInCommentsEndNoCommentAndBeginNone)
{
    EXPECT_EQ(commentName("a*/b/*c"), "\"a* /b/ *c\"");
    EXPECT_EQ(commentName("*/*/"), "\"* / * /\"");
    EXPECT_EQ(commentName("what?\?/ ?\?="), "\"what? ?/ ? ?=\"");
    EXPECT_EQ(commentName("line\nline\r\t\\"), "\"line<U+000A>line<U+000D><U+0009>\\\"");
    EXPECT_EQ(commentName("\xE2\x80\xAE\xC3\xA4"), "\"<U+202E>\xC3\xA4\"");
    EXPECT_EQ(commentName("\xFF\xC3"), "\"\xEF\xBF\xBD\xEF\xBF\xBD\"");
}

TEST(ExportText, PythonNamesAreAscii)
{
    EXPECT_EQ(pythonName("a\"b\\c\n\xC3\xA4\xF0\x9F\x98\x80"),
              "\"a\\\"b\\\\c\\u000a\\u00e4\\U0001f600\"");
}
