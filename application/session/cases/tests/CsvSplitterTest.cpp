#include <session/cases/CsvSplitter.h>

#include <gtest/gtest.h>

#include <csv.h>

#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {
/** Everything that a splitter tells, as text. */
class Journal : public CsvSplitter::Sink
{
public:
    void cell(std::string_view text, std::size_t line) override
    {
        entries += std::to_string(line) + '[' + std::string(text) + ']';
    }

    void endRecord(std::size_t line) override { entries += std::to_string(line) + ";\n"; }

    std::string entries;
};

std::string split(const std::string& text, char separator, std::size_t blockSize)
{
    Journal journal;
    CsvSplitter splitter(separator, journal);
    for (std::size_t i = 0; i < text.size(); i += blockSize) {
        splitter.parse(text.data() + i, std::min(blockSize, text.size() - i));
    }
    const bool isClosed = splitter.finish();
    return journal.entries + (isClosed ? "closed" : "open") + std::to_string(splitter.recordLine());
}

/** The same by libcsv alone, which knows no short ways. */
class Reference
{
public:
    static std::string split(const std::string& text, char separator)
    {
        Reference reference;
        csv_parser parser = {};
        csv_init(&parser, CSV_REPALL_NL);
        csv_set_delim(&parser, static_cast<unsigned char>(separator));
        csv_parse(&parser, text.data(), text.size(), onCell, onLineEnd, &reference);
        csv_set_opts(&parser, CSV_REPALL_NL | CSV_STRICT | CSV_STRICT_FINI);
        const bool isClosed = csv_fini(&parser, onCell, onLineEnd, &reference) == 0;
        csv_free(&parser);
        return reference.journal.entries + (isClosed ? "closed" : "open") +
               std::to_string(reference.recordLine);
    }

private:
    static void onCell(void* text, std::size_t size, void* self)
    {
        auto& reference = *static_cast<Reference*>(self);
        const std::string cell =
            size == 0 ? std::string() : std::string(static_cast<const char*>(text), size);
        if (!reference.inRecord) {
            reference.recordLine = reference.line;
        }
        reference.inRecord = true;
        reference.afterReturn = false;
        reference.journal.cell(cell, reference.recordLine);
        for (const char character : cell) {
            reference.line += character == '\n' ? 1 : 0;
        }
    }

    static void onLineEnd(int character, void* self)
    {
        auto& reference = *static_cast<Reference*>(self);
        if (reference.inRecord) {
            reference.journal.endRecord(reference.recordLine);
        }
        reference.inRecord = false;
        reference.line += character == '\n' && reference.afterReturn ? 0 : 1;
        reference.afterReturn = character == '\r';
        reference.recordLine = reference.line;
    }

    Journal journal;
    std::size_t line = 1;
    std::size_t recordLine = 1;
    bool inRecord = false;
    bool afterReturn = false;
};

/** Texts of pieces that matter to a splitter, some rarer than others. */
class CsvTexts
{
public:
    explicit CsvTexts(std::string_view all) : pieces(all) {}

    std::string next()
    {
        std::string text;
        for (std::size_t rest = generator() % 60; rest > 0; --rest) {
            text += pieces[generator() % pieces.size()];
        }
        return text;
    }

private:
    std::string_view pieces;
    std::mt19937_64 generator{20261121};
};

std::string shown(const std::string& text)
{
    std::string result;
    for (const char character : text) {
        result += character == '\n' ? "\\n" : character == '\r' ? "\\r" : std::string(1, character);
    }
    return result;
}
} // namespace

TEST(CsvSplitter, TakesBlanksAndQuotesOffCells)
{
    EXPECT_EQ(split(" a b ,\t\"c \"\"d\" ,5\" pipe\n", ',', 99),
              "1[a b]1[c \"d]1[5\" pipe]1;\nclosed2");
}

TEST(CsvSplitter, SkipsLinesWithoutACellAndCountsThem)
{
    EXPECT_EQ(split("\n  \t\r\na\n\n,\n", ',', 99), "3[a]3;\n5[]5[]5;\nclosed6");
}

TEST(CsvSplitter, EndsTheLastRecordWithoutALineEnd)
{
    EXPECT_EQ(split("a,b\n1,", ',', 99), "1[a]1[b]1;\n2[1]2[]2;\nclosed3");
}

TEST(CsvSplitter, TellsOfAQuoteThatIsNeverClosed)
{
    EXPECT_EQ(split("a\n\"b\nc,", ',', 99), "1[a]1;\nopen2");
}

TEST(CsvSplitter, NamesTheLineInWhichARecordBegins)
{
    EXPECT_EQ(split("a,\"1\n2\"\nb,c\n", ',', 99), "1[a]1[1\n2]1;\n3[b]3[c]3;\nclosed4");
}

TEST(CsvSplitter, LetsOutWhatTheSinkThrows)
{
    class Refusing : public CsvSplitter::Sink
    {
        void cell(std::string_view text, std::size_t) override
        {
            if (text == "bad") {
                throw std::runtime_error("refused");
            }
        }
        void endRecord(std::size_t) override {}
    };
    for (const std::string text : {"a,bad\n", "a,\"bad\"\n", "a,bad"}) {
        Refusing sink;
        CsvSplitter splitter(',', sink);
        const auto feed = [&] {
            splitter.parse(text.data(), text.size());
            splitter.finish();
        };
        EXPECT_THROW(feed(), std::runtime_error) << text;
    }
}

TEST(CsvSplitter, SplitsAnyTextLikeLibcsvWhereverItsBlocksEnd)
{
    constexpr std::size_t whole = 1000;
    // Twice the line end: so many records are plain ones beside those with quotes and returns.
    for (const std::string_view pieces :
         {std::string_view(",;\t \"\r\n\n12.x\0", 14), std::string_view(",, 12\n\n\r"),
          std::string_view("\"\",\n\r 1")}) {
        CsvTexts texts(pieces);
        for (int i = 0; i < 500; ++i) {
            const std::string text = texts.next();
            for (const char separator : {',', ';', '\t', ' ', '"', '\n'}) {
                const std::string expected = Reference::split(text, separator);
                ASSERT_EQ(split(text, separator, whole), expected) << shown(text) << separator;
                for (const std::size_t blockSize : {1, 2, 3, 7}) {
                    ASSERT_EQ(split(text, separator, blockSize), expected)
                        << shown(text) << separator << blockSize;
                }
            }
        }
    }
}

TEST(CsvSplitter, SplitsATextThatIsCutAnywhere)
{
    const std::string text = "a;b\r\n\"1\n\"\"2\";3\r\n\r\n 4 ;\"5\"\r6;7\n\n8;\"9";
    const std::string expected = Reference::split(text, ';');
    for (std::size_t cut = 0; cut <= text.size(); ++cut) {
        for (std::size_t second = cut; second <= text.size(); ++second) {
            Journal journal;
            CsvSplitter splitter(';', journal);
            splitter.parse(text.data(), cut);
            splitter.parse(text.data() + cut, second - cut);
            splitter.parse(text.data() + second, text.size() - second);
            const bool isClosed = splitter.finish();
            ASSERT_EQ(journal.entries + (isClosed ? "closed" : "open") +
                          std::to_string(splitter.recordLine()),
                      expected)
                << cut << ' ' << second;
        }
    }
}
