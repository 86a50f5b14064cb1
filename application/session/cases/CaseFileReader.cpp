#include "session/cases/CaseFileReader.h"

#include "session/cases/ColumnBuilder.h"
#include "session/cases/CsvSplitter.h"
#include "session/cases/LayoutRecognition.h"
#include "session/files/ByteSource.h"
#include "session/files/TextEncoding.h"
#include "session/text/AsciiText.h"
#include "session/text/CellValue.h"
#include "session/text/SessionErrors.h"
#include "session/text/SettingHint.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace {
/** How much of a file the layout is recognised from, and the number of its cases estimated. */
constexpr std::size_t sampleSize = 1 << 18;

/** A workbook and the like: what its first bytes say it is, and how a table is made of it. */
struct OtherFile
{
    std::string_view beginning;
    const char* sentence;
};

constexpr const char* workbook =
    "is a workbook of a spreadsheet program or another packed file, no table of text; open it and "
    "save the table as CSV.";
constexpr const char* webPage =
    "is a web page, no table of text; open it in a spreadsheet program and save the table as CSV.";
const OtherFile otherFiles[] = {
    {"PK\x03\x04", workbook},
    {"\xD0\xCF\x11\xE0", workbook},
    {"PAR1", "is a Parquet file, no table of text; save it as CSV, in Python with "
             "pandas.read_parquet(FILE).to_csv(\"cases.csv\", index=False)."},
    {"\x1F\x8B", "is compressed; unpack it with gunzip."},
    {"BZh", "is compressed; unpack it with bunzip2."},
    {"\xFD"
     "7zXZ",
     "is compressed; unpack it with unxz."},
    {"\x28\xB5\x2F\xFD", "is compressed; unpack it with unzstd."},
    {"\x93NUMPY", "is a NumPy array, no table of text; save it as CSV, with numpy.savetxt."},
    {"ARROW1", "is a Feather file, no table of text; save it as CSV, in Python with "
               "pandas.read_feather(FILE).to_csv(\"cases.csv\", index=False)."},
    {"$FL", "is an SPSS file, no table of text; save it as CSV."},
    {"{\\rtf", "is a text document with formats, no table of text; save the table as CSV."},
    {"MATLAB ", "is a MAT-file, no table of text; save the table as CSV, with writetable."},
    {"SQLite format", "is a database, no table of text; export the table as CSV."},
    {"%PDF-", "is a PDF document, no table of text; save the table as CSV."},
    {"\x89HDF", "is an HDF5 file, no table of text; save the table as CSV."},
    {"<!DOCTYPE", webPage},
    {"<html", webPage}};

/** Files of text whose table has other lines than a heading around it: how such a line begins. */
const OtherFile otherTables[] = {
    {"<table", webPage},
    {"\\begin{tabular", "is a LaTeX document, no plain table; save the table as CSV."},
    {"@relation",
     "is an ARFF file, no plain table; save it as CSV, or keep the rows below @DATA and "
     "write the names of the attributes in one line above them, separated by commas."},
    {"variables=",
     "is a Tecplot file, no plain table; save it as CSV, or keep the rows of one zone "
     "and write the names of its variables in one line above them."}};

/** Whether a line begins so, whatever its blanks.
 *  @param text in lower case, as the beginning. */
bool hasLine(std::string_view text, std::string_view beginning)
{
    std::size_t matched = 0; // npos: the line begins in another way
    for (const char character : text) {
        if (character == '\n' || character == '\r') {
            matched = 0;
        } else if (matched != std::string_view::npos && character != ' ' && character != '\t') {
            matched = character == beginning[matched] ? matched + 1 : std::string_view::npos;
        }
        if (matched == beginning.size()) {
            return true;
        }
    }
    return false;
}

bool isJson(std::string_view text)
{
    std::string beginning; // two characters besides blanks
    for (std::size_t i = 0; i < text.size() && beginning.size() < 2; ++i) {
        beginning += isOneOf(text.substr(i, 1), {" ", "\r", "\n", "\t"}) ? "" : text.substr(i, 1);
    }
    return isOneOf(beginning, {"{\"", "{}", "[{", "[["});
}

/** One attempt to read a file as text of an encoding. */
class Reading
{
public:
    Reading(ByteSource& bytes, const std::string& path, const CaseFileReader::Options& choices)
        : source(bytes), options(choices)
    {
        table.path = path;
        table.choices = choices;
        readSample();
    }

    /** @throw NotUtf8 */
    CaseTable read(std::optional<TextEncoding> encoding);

private:
    void readSample();
    void recognise(TextEncoding encoding);
    TextDecoder decoder();
    CsvSplitter splitter();
    void readColumns(ColumnBuilder& builder);
    void readAgain(ColumnBuilder& builder, const std::vector<std::size_t>& columns);
    void describeGuess();

    ByteSource& source;
    const CaseFileReader::Options& options;
    std::string sample;
    CaseTable table;
};

void Reading::readSample()
{
    source.rewind();
    sample.resize(sampleSize);
    sample.resize(source.read(sample.data(), sample.size()));
    const std::string lowerSample = lowerCaseText(sample);
    const auto refuseIf = [&](bool isOther, const char* sentence) {
        if (isOther) {
            throw CaseDataError('"' + table.path + "\" " + sentence);
        }
    };
    for (const OtherFile& other : otherFiles) {
        refuseIf(beginsWith(sample, other.beginning), other.sentence);
    }
    for (const OtherFile& other : otherTables) {
        refuseIf(hasLine(lowerSample, other.beginning), other.sentence);
    }
    refuseIf(isJson(sample), "is JSON, no table of text; save it as CSV, in Python with "
                             "pandas.read_json(FILE).to_csv(\"cases.csv\", index=False).");
}

TextDecoder Reading::decoder()
{
    source.rewind();
    const auto read = [this](char* buffer, std::size_t capacity) {
        return source.read(buffer, capacity);
    };
    return TextDecoder(read, table.layout.encoding);
}

CsvSplitter Reading::splitter()
{
    const auto text = std::make_shared<TextDecoder>(decoder());
    const auto read = [text](char* buffer, std::size_t capacity) {
        return text->read(buffer, capacity);
    };
    return CsvSplitter(read, table.layout);
}

void Reading::recognise(TextEncoding encoding)
{
    table.layout.encoding = encoding;
    TextDecoder text = decoder();
    const auto read = [&text](char* buffer, std::size_t capacity) {
        return text.read(buffer, capacity);
    };
    table.layout = recogniseLayout(read, sampleSize, options);
    table.layout.encoding = encoding;
}

void Reading::readColumns(ColumnBuilder& builder)
{
    CsvSplitter records = splitter();
    CaseFileLayout& layout = table.layout;
    const std::size_t commentsAbove = layout.commentLines;
    bool hasRoom = false;
    bool isFirst = true;
    while (records.next()) {
        if (isFirst && layout.hasHeading) {
            builder.takeHeading(records.cells(), records.line());
            isFirst = false;
            if (layout.hasUnitsRow && records.next()) {
                builder.takeUnits(records.cells());
            }
            continue;
        }
        if (isFirst) {
            builder.nameColumns(layout.columns == 0 ? records.cells().size() : layout.columns);
            isFirst = false;
        }
        builder.takeCase(records.cells(), records.line());
        if (!hasRoom && records.bytesSplit() > sampleSize / 2) {
            constexpr double surplus = 1.02; // lines differ in length a little
            const double share =
                static_cast<double>(records.bytesSplit()) / static_cast<double>(source.size());
            builder.reserve(
                static_cast<std::size_t>(surplus * static_cast<double>(table.cases) / share));
            hasRoom = true;
        }
    }
    builder.endCases();
    if (records.hasUnclosedQuote()) {
        refuseLine(table.path, records.line(),
                   "a quoted cell that begins in this row is never closed.");
    }
    if (table.columns.empty()) {
        refuseLine(
            table.path, 1,
            records.commentLines() > 0
                ? "the file has comment lines only; if they are none, read it without comments" +
                      settingHint(Setting::CommentMarks, "none") + "."
                : "the file is empty; its first line must name the variables.");
    }
    layout.commentLines = commentsAbove + records.commentLines();
}

/** Reads the values of these columns, which are known to be of the other kind only now. */
void Reading::readAgain(ColumnBuilder& builder, const std::vector<std::size_t>& columns)
{
    if (columns.empty()) {
        return;
    }
    CsvSplitter records = splitter();
    const int rowsAbove = (table.layout.hasHeading ? 1 : 0) + (table.layout.hasUnitsRow ? 1 : 0);
    for (int i = 0; i < rowsAbove; ++i) {
        records.next();
    }
    for (std::size_t row = 0; row < table.cases && records.next(); ++row) {
        if (builder.isRepeatedHeading(records.cells())) {
            --row;
            continue;
        }
        for (const std::size_t column : columns) {
            const bool isThere = column < records.cells().size(); // An empty row may be shorter.
            builder.takeCellAgain(column, isThere ? records.cells()[column] : std::string_view());
        }
    }
}

/** What the user has said is no guess. */
void Reading::describeGuess()
{
    const CaseFileLayout plain;
    CaseFileLayout guessed = table.layout;
    guessed.separator = options.separator ? plain.separator : guessed.separator;
    guessed.hasDecimalComma = guessed.hasDecimalComma && !options.decimalMark;
    guessed.thousandsSeparator =
        options.thousandsSeparator ? plain.thousandsSeparator : guessed.thousandsSeparator;
    guessed.encoding = options.encoding ? plain.encoding : guessed.encoding;
    guessed.hasHeading = guessed.hasHeading || options.heading;
    guessed.titleLines = options.skippedLines ? 0 : guessed.titleLines;
    guessed.commentLines = options.commentMark ? 0 : guessed.commentLines;
    guessed.hasUnitsRow = guessed.hasUnitsRow && !options.unitsRow;
    guessed.units = options.unitsRow ? plain.units : guessed.units;
    guessed.numericNames = options.heading ? plain.numericNames : guessed.numericNames;
    table.guess = guessed.text();
}

CaseTable Reading::read(std::optional<TextEncoding> encoding)
{
    const bool isWholeFile = sample.size() == source.size();
    const TextEncoding seen = recogniseEncoding(sample, isWholeFile);
    // Who says UTF-16 does not know the order of its bytes.
    const bool isOtherOrder =
        encoding == TextEncoding::Utf16Little && seen == TextEncoding::Utf16Big;
    recognise(encoding && !isOtherOrder ? *encoding : seen);
    if (table.layout.separator == ',' && options.decimalMark == CellValue::Comma &&
        !table.layout.hasDecimalComma) {
        refuseLine(table.path, 1,
                   "commas separate the cells, so that numbers cannot have decimal commas.");
    }
    ColumnBuilder builder(table, options);
    readColumns(builder);
    readAgain(builder, builder.decideKinds());
    builder.checkNumbers();
    builder.takeDecimalMark();
    describeGuess();
    return std::move(table);
}
} // namespace

CaseTable CaseFileReader::read(const std::string& path, const Options& options)
{
    ByteSource source(path);
    try {
        return Reading(source, path, options).read(options.encoding);
    } catch (const NotUtf8&) {
        // A byte after the first block shows it.
        return Reading(source, path, options).read(TextEncoding::Windows1252);
    }
}
