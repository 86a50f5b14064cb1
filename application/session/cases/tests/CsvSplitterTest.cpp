#include <session/cases/CsvSplitter.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {
constexpr std::size_t usualBuffer = 1 << 18;

/** Delivers a text in pieces of at most `most` bytes. */
CsvSplitter::Read piecesOf(std::string_view text, std::size_t most = usualBuffer)
{
    return [text, most](char* buffer, std::size_t capacity) mutable {
        const std::size_t count = text.copy(buffer, std::min(most, capacity));
        text.remove_prefix(count);
        return count;
    };
}

CaseFileLayout layoutWith(char separator)
{
    CaseFileLayout layout;
    layout.separator = separator;
    return layout;
}

/** All records, each with its line and its cells in brackets, and how the text ends. */
std::string split(const std::string& text, char separator = ',',
                  std::size_t bufferSize = usualBuffer, std::size_t pieceSize = usualBuffer)
{
    CsvSplitter splitter(piecesOf(text, pieceSize), layoutWith(separator), bufferSize);
    std::string records;
    while (splitter.next()) {
        records += std::to_string(splitter.line());
        for (const std::string_view cell : splitter.cells()) {
            records += '[' + std::string(cell) + ']';
        }
        records += ' ';
    }
    return records +
           (splitter.hasUnclosedQuote() ? "unclosed " + std::to_string(splitter.line()) : "end");
}

struct Split
{
    const char* name;
    const char* text;
    const char* records;
};

class CsvSplitterRecords : public ::testing::TestWithParam<Split>
{};

const Split splits[] = {
    {"Nothing", "", "end"},
    {"Cells", "a,b\n1,2\n", "1[a][b] 2[1][2] end"},
    {"LastLineWithoutAnEnd", "a,b\n1,", "1[a][b] 2[1][] end"},
    {"BlanksAroundCells", " a b ,\tc \n", "1[a b][c] end"},
    {"QuotedCells", "\"a, b\", \"c\" ,\" d \"\n", "1[a, b][c][ d ] end"},
    {"DoubledQuotes", "\"\"\"\",\"a\"\"b\"\"\"\"c\"\n", "1[\"][a\"b\"\"c] end"},
    {"EmptyCells", ",\n\"\"\n", "1[][] 2[] end"},
    {"QuoteInsideACell", "5\" pipe,a\"b\"\n", "1[5\" pipe][a\"b\"] end"},
    {"QuoteInsideAQuotedCell", "\"5\" pipe\",\"a\" \"b\"\n", "1[5\" pipe][a\" \"b] end"},
    {"SeparatorBehindAQuoteThatEndsNoCell", "\"a\" b,c\",d\n", "1[a\" b,c][d] end"},
    {"BlankLines", "\n  \t\r\na\n\n,\n", "3[a] 5[][] end"},
    {"LinesEndWithCrLf", "a\r\n\r\nb\r\n", "1[a] 3[b] end"},
    {"LinesEndWithCr", "a,b\r\rc,d\r", "1[a][b] 3[c][d] end"},
    {"LineEndsInCells", "a,\"1\n2\r\n3\r4\"\nb\n", "1[a][1\n2\r\n3\r4] 5[b] end"},
    {"UnclosedQuote", "a\n\"b\nc,", "1[a] unclosed 2"},
    {"QuoteAtTheEnd", "a,\"b\"", "1[a][b] end"},
    {"ByteOrderMark", "\xEF\xBB\xBF\"a\",b\n", "1[a][b] end"},
    {"ByteOrderMarkOfAnAppendedFile",
     "a\n\xEF\xBB\xBF"
     "b\n",
     "1[a] 2[b] end"},
    {"CommentLines", "# a,b\n//\na\n  % 1\nb#\n/c\n", "3[a] 5[b#] 6[/c] end"},
    {"ErrorOfASpreadsheetFirst", "#N/A,1\n#div/0!,2\n", "1[#N/A][1] 2[#div/0!][2] end"},
    {"ByteOrderMarkAlone", "\xEF\xBB\xBF", "end"},
};
} // namespace

TEST_P(CsvSplitterRecords, AreSplit)
{
    EXPECT_EQ(split(GetParam().text), GetParam().records);
}

INSTANTIATE_TEST_SUITE_P(Texts, CsvSplitterRecords, ::testing::ValuesIn(splits),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

TEST(CsvSplitter, TakesBlanksForCellsOrForOneSeparatorIfToldTo)
{
    EXPECT_EQ(split(" a \tb\t\t c\n", '\t'), "1[a][b][][c] end");
    EXPECT_EQ(split("  a \t b  \n\"c d\"\t\"e\"\"f\" \n\n5\"", ' '),
              "1[a][b] 2[c d][e\"f] 4[5\"] end");
}

TEST(CsvSplitter, BeginsWithTheTableOfTheLayout)
{
    CaseFileLayout layout;
    layout.tableBegin = 6;
    layout.tableLine = 3;
    CsvSplitter splitter(piecesOf("a\n\"b\n#c\n#d\ne\n"), layout, 4);

    ASSERT_TRUE(splitter.next());
    EXPECT_EQ(splitter.cells().front(), "c");
    EXPECT_EQ(splitter.line(), 3u);
    ASSERT_TRUE(splitter.next());
    EXPECT_EQ(splitter.cells().front(), "e");
    EXPECT_EQ(splitter.line(), 5u);
    EXPECT_EQ(splitter.commentLines(), 1u);
    EXPECT_EQ(splitter.bytesSplit(), 13u);
}

TEST(CsvSplitter, AHeadingIsNoCommentLine)
{
    CaseFileLayout layout;
    layout.isHeadingComment = true;
    CsvSplitter splitter(piecesOf("%RH,T\n%1\n2,3\n"), layout);

    ASSERT_TRUE(splitter.next());
    EXPECT_EQ(splitter.cells().front(), "%RH");
    ASSERT_TRUE(splitter.next());
    EXPECT_EQ(splitter.line(), 3u);
}

TEST(CsvSplitter, SplitsAnyTextAlikeWhereverItsBuffersEnd)
{
    // Characters that matter to a splitter, some rarer than others.
    for (const std::string_view characters :
         {std::string_view(",;\t \"\r\n\n12#/.x\0", 16), std::string_view(",, 12\n\n\r"),
          std::string_view("\"\",\n\r 1")}) {
        std::mt19937_64 generator(20261121);
        for (int i = 0; i < 200; ++i) {
            std::string text;
            for (std::size_t rest = generator() % 60; rest > 0; --rest) {
                text += characters[generator() % characters.size()];
            }
            for (const char separator : {',', ';', '\t', ' '}) {
                const std::string expected = split(text, separator);
                for (const std::size_t bufferSize : {3, 4, 7, 16}) {
                    ASSERT_EQ(split(text, separator, bufferSize), expected) << text << bufferSize;
                    ASSERT_EQ(split(text, separator, bufferSize, 2), expected) << text;
                }
            }
        }
    }
}

TEST(CsvSplitter, CountsTheBytesOfItsRecords)
{
    CsvSplitter splitter(piecesOf("a,b\r\n\n\"c\nd\"\n"), layoutWith(','), 4);

    EXPECT_TRUE(splitter.next());
    EXPECT_EQ(splitter.bytesSplit(), 5u);
    EXPECT_TRUE(splitter.next());
    EXPECT_EQ(splitter.bytesSplit(), 12u);
}

TEST(CsvSplitter, PassesOnWhatReadingThrows)
{
    const auto refuse = [](char*, std::size_t) -> std::size_t {
        throw std::runtime_error("refused");
    };
    CsvSplitter splitter(refuse, layoutWith(','));

    EXPECT_THROW(splitter.next(), std::runtime_error);
}
