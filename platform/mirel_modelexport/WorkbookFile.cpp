#include <mirel_modelexport/WorkbookFile.h>

#include <mirel_modelexport/ExportText.h>

#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_property/Utf8.h>

#include <xlsxwriter.h>

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <locale.h>
#include <system_error>

namespace {

using Error = SurrogateModelInterface::Error;

/** Midnight of 1 January 1980, with which zip archives begin: a file says nothing about when it was
 *  written. */
constexpr std::time_t creation = 315532800;

std::string temporaryFolder()
{
    std::error_code error;
    const std::filesystem::path parent = std::filesystem::temp_directory_path(error);
    std::string path = (parent / "surrogate-XXXXXX").string();
    if (error || mkdtemp(path.data()) == nullptr) {
        throw Error("The workbook cannot be written: it takes temporary files, and there is no "
                    "folder for them that can be written to; name one in the variable TMPDIR.");
    }
    return path;
}

/** The workbook's library prints numbers as the locale of the thread has them. */
class ClassicLocale
{
public:
    ClassicLocale() : classic(newlocale(LC_ALL_MASK, "C", nullptr)), before(uselocale(classic)) {}

    ~ClassicLocale()
    {
        uselocale(before);
        freelocale(classic);
    }

    ClassicLocale(const ClassicLocale&) = delete;
    ClassicLocale& operator=(const ClassicLocale&) = delete;

private:
    locale_t classic;
    locale_t before;
};

class Folder
{
public:
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    std::string path = temporaryFolder();
};

} // namespace

class WorkbookFile::Impl
{
public:
    explicit Impl(const std::vector<std::string>& sheets) : path(folder.path + "/workbook.xlsx")
    {
        lxw_workbook_options options = {};
        options.tmpdir = folder.path.data();
        workbook = requireMade(workbook_new_opt(path.c_str(), &options));
        lxw_doc_properties properties = {};
        properties.created = creation;
        require(workbook_set_properties(workbook, &properties));
        for (const std::string& sheet : sheets) {
            worksheets.push_back(requireMade(workbook_add_worksheet(workbook, sheet.c_str())));
        }
        for (lxw_format*& format : formats) {
            format = requireMade(workbook_add_format(workbook));
        }
        format_set_bold(formats[Heading]);
        format_set_bg_color(formats[Typed], 0xFFF2CC);
        format_set_border(formats[Typed], LXW_BORDER_THIN);
        format_set_font_color(formats[Quiet], LXW_COLOR_GRAY);
        alarm = requireMade(workbook_add_format(workbook));
        format_set_bold(alarm);
        format_set_bg_color(alarm, LXW_COLOR_RED);
        format_set_font_color(alarm, LXW_COLOR_WHITE);
    }

    ~Impl()
    {
        // Closing is the only way to free what the library has allocated.
        if (workbook != nullptr) {
            workbook_close(workbook);
        }
    }

    template <class Part>
    static Part* requireMade(Part* part)
    {
        if (part == nullptr) {
            throw Error("There is not enough memory for the workbook.");
        }
        return part;
    }

    void require(lxw_error error) const
    {
        if (error != LXW_NO_ERROR) {
            throw Error(std::string("The workbook cannot be written: ") + lxw_strerror(error));
        }
    }

    ClassicLocale locale; // while the file is written
    Folder folder;
    std::string path;
    lxw_workbook* workbook = nullptr;
    std::vector<lxw_worksheet*> worksheets;
    std::array<lxw_format*, StyleCount> formats = {};
    lxw_format* alarm = nullptr;
};

namespace {

lxw_row_t rowOf(const WorkbookFile::Cell& cell)
{
    return static_cast<lxw_row_t>(cell.row);
}

lxw_col_t columnOf(const WorkbookFile::Cell& cell)
{
    if (cell.row >= WorkbookFile::maxRows || cell.column >= WorkbookFile::maxColumns) {
        throw Error("A spreadsheet has " + std::to_string(WorkbookFile::maxColumns) +
                    " columns and " + std::to_string(WorkbookFile::maxRows) +
                    " rows: too few for this model. Export it in another format.");
    }
    return static_cast<lxw_col_t>(cell.column);
}

} // namespace

WorkbookFile::WorkbookFile(const std::vector<std::string>& sheets)
    : impl(std::make_unique<Impl>(sheets))
{}

WorkbookFile::~WorkbookFile() = default;

void WorkbookFile::text(const Cell& cell, const std::string& text, Style style)
{
    constexpr std::size_t longestText = 32767;
    const lxw_col_t column = columnOf(cell);
    impl->require(worksheet_write_string(impl->worksheets[cell.sheet], rowOf(cell), column,
                                         std::string(cutUtf8(text, longestText)).c_str(),
                                         impl->formats[style]));
}

void WorkbookFile::number(const Cell& cell, double value, Style style)
{
    // The file has sixteen digits of a number.
    std::array<char, 32> kept;
    std::snprintf(kept.data(), kept.size(), "%.16G", value);
    if (std::strtod(kept.data(), nullptr) != value) {
        formula(cell, formulaNumber(value), value, style);
        return;
    }
    const lxw_col_t column = columnOf(cell);
    impl->require(worksheet_write_number(impl->worksheets[cell.sheet], rowOf(cell), column, value,
                                         impl->formats[style]));
}

void WorkbookFile::formula(const Cell& cell, const std::string& formula, double value, Style style,
                           bool isArray)
{
    if (formula.size() > maxFormulaLength) {
        throw Error("The formula of an output would have " + std::to_string(formula.size()) +
                    " characters, and a spreadsheet takes " + std::to_string(maxFormulaLength) +
                    ". Export the model in another format.");
    }
    const lxw_row_t row = rowOf(cell);
    const lxw_col_t column = columnOf(cell);
    lxw_worksheet* const sheet = impl->worksheets[cell.sheet];
    lxw_format* const format = impl->formats[style];
    const std::string text = "=" + formula;
    impl->require(
        isArray ? worksheet_write_array_formula_num(sheet, row, column, row, column, text.c_str(),
                                                    format, value)
                : worksheet_write_formula_num(sheet, row, column, text.c_str(), format, value));
}

void WorkbookFile::verdict(const Cell& cell, const std::string& formula)
{
    const lxw_col_t column = columnOf(cell);
    lxw_worksheet* const sheet = impl->worksheets[cell.sheet];
    impl->require(worksheet_write_formula_str(sheet, rowOf(cell), column, ("=" + formula).c_str(),
                                              impl->formats[Heading], "holds"));
    lxw_conditional_format condition = {};
    condition.type = LXW_CONDITIONAL_TYPE_CELL;
    condition.criteria = LXW_CONDITIONAL_CRITERIA_NOT_EQUAL_TO;
    std::string expected = "\"holds\"";
    condition.value_string = expected.data();
    condition.format = impl->alarm;
    impl->require(worksheet_conditional_format_cell(sheet, rowOf(cell), column, &condition));
}

void WorkbookFile::name(const std::string& name, const std::string& area)
{
    impl->require(workbook_define_name(impl->workbook, name.c_str(), ("=" + area).c_str()));
}

void WorkbookFile::columnWidths(std::size_t sheet, std::size_t firstColumn, std::size_t lastColumn,
                                double width)
{
    impl->require(worksheet_set_column(impl->worksheets[sheet], static_cast<lxw_col_t>(firstColumn),
                                       static_cast<lxw_col_t>(std::min(lastColumn, maxColumns - 1)),
                                       width, nullptr));
}

std::string WorkbookFile::bytes()
{
    lxw_workbook* const workbook = impl->workbook;
    impl->workbook = nullptr;
    impl->require(workbook_close(workbook));
    std::ifstream file(impl->path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (content.empty() || file.bad()) {
        throw Error("The workbook cannot be written: its temporary file cannot be read.");
    }
    return content;
}

std::string WorkbookFile::columnName(std::size_t column)
{
    constexpr std::size_t letters = 26;
    std::string name;
    for (std::size_t rest = column + 1; rest > 0; rest = (rest - 1) / letters) {
        name.insert(name.begin(), static_cast<char>('A' + (rest - 1) % letters));
    }
    return name;
}
