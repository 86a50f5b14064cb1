#include <mirel_modelexport/ExcelWorkbook.h>

#include <mirel_modelexport/CheckPoints.h>
#include <mirel_modelexport/ExportText.h>
#include <mirel_modelexport/PointFormulas.h>
#include <mirel_modelexport/WorkbookFile.h>

#include <cmath>

namespace {

using Description = PredictorDescription;

enum Sheet : std::size_t
{
    ModelSheet,
    CheckSheet,
    FirstCaseSheet
};

constexpr std::size_t firstInput = 1; // the first column has labels
constexpr std::size_t firstCaseRow = 1;

std::string caseSheetName(std::size_t output)
{
    return "Cases_" + std::to_string(output);
}

std::vector<std::string> sheetNames(const ExportedModel& model)
{
    std::vector<std::string> names = {"Model", "Check"};
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        if (!model.outputs[k].model.predictor.weights.empty()) {
            names.push_back(caseSheetName(k));
        }
    }
    return names;
}

/** "$B$2:$B$12" and so on. */
std::string area(std::size_t firstRow, std::size_t lastRow, std::size_t firstColumn,
                 std::size_t lastColumn)
{
    const auto cell = [](std::size_t row, std::size_t column) {
        return "$" + WorkbookFile::columnName(column) + "$" + std::to_string(row + 1);
    };
    return cell(firstRow, firstColumn) + ":" + cell(lastRow, lastColumn);
}

std::string cellName(std::size_t row, std::size_t column)
{
    return WorkbookFile::columnName(column) + std::to_string(row + 1);
}

/** Writes the sheets of one model. */
class ModelSheets
{
public:
    explicit ModelSheets(const ExportedModel& model)
        : model(model), inputs(model.inputs.size()), outputs(model.outputs.size()), check(model),
          file(sheetNames(model))
    {}

    std::string bytes()
    {
        writeModel();
        writeCheck();
        writeCases();
        return file.bytes();
    }

private:
    void writeModel();
    void writeCheck();
    void writeCases();
    void writeHeadings(std::size_t sheet, std::size_t row, const PointFormulas& formulas,
                       std::size_t firstStep);
    void writePoint(std::size_t sheet, std::size_t row, const PointFormulas& formulas,
                    std::size_t firstStep, const std::vector<double>& point,
                    const std::vector<double>& results);
    void writeSums(std::size_t firstRow, std::size_t verdictColumn);

    const ExportedModel& model;
    const std::size_t inputs;
    const std::size_t outputs;
    const CheckPoints check;
    WorkbookFile file;
};

void ModelSheets::writeHeadings(std::size_t sheet, std::size_t row, const PointFormulas& formulas,
                                std::size_t firstStep)
{
    for (std::size_t k = 0; k < inputs; ++k) {
        file.text({sheet, row, firstInput + k}, lineName(model.inputs[k].name),
                  WorkbookFile::Heading);
    }
    for (std::size_t k = 0; k < outputs; ++k) {
        file.text({sheet, row, firstInput + inputs + k}, lineName(model.outputs[k].name),
                  WorkbookFile::Heading);
    }
    for (std::size_t s = 0; s < formulas.stepCount(); ++s) {
        file.text({sheet, row, firstStep + s}, formulas.stepHeading(s), WorkbookFile::Quiet);
    }
}

void ModelSheets::writePoint(std::size_t sheet, std::size_t row, const PointFormulas& formulas,
                             std::size_t firstStep, const std::vector<double>& point,
                             const std::vector<double>& results)
{
    for (std::size_t k = 0; k < inputs; ++k) {
        file.number({sheet, row, firstInput + k}, point[k],
                    sheet == ModelSheet ? WorkbookFile::Typed : WorkbookFile::Plain);
    }
    for (std::size_t k = 0; k < outputs; ++k) {
        const bool isArray = !model.outputs[k].model.predictor.weights.empty();
        file.formula({sheet, row, firstInput + inputs + k}, formulas.outputFormula(k, row),
                     results[k], WorkbookFile::Plain, isArray);
    }
    const std::vector<double> steps = formulas.stepValues(point);
    for (std::size_t s = 0; s < steps.size(); ++s) {
        file.formula({sheet, row, firstStep + s}, formulas.stepFormula(s, row), steps[s],
                     WorkbookFile::Quiet);
    }
}

/** The ranges of the inputs, and a row to type them into, at the smallest values at first. */
void ModelSheets::writeModel()
{
    constexpr std::size_t verdictRow = 2;
    constexpr std::size_t smallestRow = 4;
    constexpr std::size_t largestRow = 5;
    constexpr std::size_t headingRow = 6;
    constexpr std::size_t pointRow = 7;
    const std::size_t firstStep = firstInput + inputs + outputs;

    file.text({ModelSheet, 0, 0}, model.isKriging() ? "Kriging model" : "Response surface",
              WorkbookFile::Heading);
    file.text({ModelSheet, 1, 0}, "Type the inputs into the cells with a border. Copy their row "
                                  "downwards for further points.");
    file.text({ModelSheet, verdictRow, 0}, "self-check");
    file.verdict({ModelSheet, verdictRow, 1}, "Check!$B$1");
    file.text({ModelSheet, smallestRow, 0}, "smallest in the cases");
    file.text({ModelSheet, largestRow, 0}, "largest in the cases");
    file.text({ModelSheet, pointRow, 0}, "point");
    std::vector<double> point;
    for (std::size_t k = 0; k < inputs; ++k) {
        const Description::InputRange& range = model.outputs.front().model.predictor.inputs[k];
        file.number({ModelSheet, smallestRow, firstInput + k}, range.minimum);
        file.number({ModelSheet, largestRow, firstInput + k}, range.maximum);
        point.push_back(range.minimum);
    }

    const PointFormulas formulas(model, {firstInput, firstStep});
    writeHeadings(ModelSheet, headingRow, formulas, firstStep);
    std::vector<double> results;
    for (std::size_t k = 0; k < outputs; ++k) {
        results.push_back(predictionsAt(model, k, {point})[0]);
    }
    writePoint(ModelSheet, pointRow, formulas, firstStep, point, results);
    file.columnWidths(ModelSheet, 0, 0, 22.0);
    file.columnWidths(ModelSheet, firstInput, firstStep + formulas.stepCount(), 14.0);
}

/** For each output: what should come out, how far off it may be, and whether it is (1 or 0). */
void ModelSheets::writeCheck()
{
    constexpr std::size_t headingRow = 2;
    constexpr std::size_t firstRow = 3;
    constexpr std::size_t lastRow = firstRow + CheckPoints::count - 1;
    constexpr std::size_t sumsRow = lastRow + 2;
    const std::size_t computed = firstInput + inputs;
    const std::size_t expected = computed + outputs;
    const std::size_t tolerance = expected + outputs;
    const std::size_t verdict = tolerance + outputs;
    const std::size_t firstStep = verdict + outputs;

    const PointFormulas formulas(model, {firstInput, firstStep});
    writeHeadings(CheckSheet, headingRow, formulas, firstStep);
    for (std::size_t k = 0; k < outputs; ++k) {
        file.text({CheckSheet, headingRow, expected + k}, "expected", WorkbookFile::Heading);
        file.text({CheckSheet, headingRow, tolerance + k}, "may be off by", WorkbookFile::Heading);
        file.text({CheckSheet, headingRow, verdict + k}, "holds", WorkbookFile::Heading);
    }
    for (std::size_t i = 0; i < CheckPoints::count; ++i) {
        const std::size_t row = firstRow + i;
        std::vector<double> results;
        for (std::size_t k = 0; k < outputs; ++k) {
            results.push_back(check.values[k][i]);
        }
        file.text({CheckSheet, row, 0}, "check point " + std::to_string(i + 1));
        writePoint(CheckSheet, row, formulas, firstStep, check.points[i], results);
        for (std::size_t k = 0; k < outputs; ++k) {
            file.number({CheckSheet, row, expected + k}, check.values[k][i]);
            // Some spreadsheets compute with more digits than a double has.
            file.number({CheckSheet, row, tolerance + k},
                        check.tolerances[k][i] + inputRounding(model, k, check.points[i]));
            file.formula({CheckSheet, row, verdict + k},
                         "IFERROR(IF(ABS(" + cellName(row, computed + k) + "-" +
                             cellName(row, expected + k) + ")<=" + cellName(row, tolerance + k) +
                             ",1,0),0)",
                         1.0);
        }
    }
    writeSums(sumsRow, verdict);
    const std::size_t lastVerdict = sumsRow + 2 * outputs;
    file.text({CheckSheet, 0, 0}, "self-check", WorkbookFile::Heading);
    file.verdict({CheckSheet, 0, 1},
                 "IF(MIN(" + area(firstRow, lastVerdict, verdict, verdict + outputs - 1) +
                     ")=1,\"holds\",\"FAILED\")");
    file.columnWidths(CheckSheet, 0, firstStep + formulas.stepCount(), 14.0);
}

/** The sums of the tables: a number that has changed is found where no check point is near, too. */
void ModelSheets::writeSums(std::size_t firstRow, std::size_t verdictColumn)
{
    // Far above the rounding of a sum of many, in whatever order, and far below what matters.
    constexpr double relative = 1e-13;
    std::size_t row = firstRow;
    for (std::size_t k = 0; k < outputs; ++k) {
        const Description& predictor = model.outputs[k].model.predictor;
        const std::size_t cases = predictor.weights.size();
        if (cases == 0) {
            continue;
        }
        const auto write = [&](const std::string& label, const std::vector<double>& numbers,
                               std::size_t firstColumn, std::size_t lastColumn) {
            double sum = 0.0;
            double size = 0.0;
            for (const double number : numbers) {
                sum += number;
                size += std::fabs(number);
            }
            file.text({CheckSheet, row, 0}, label);
            const std::string table =
                caseSheetName(k) + "!" +
                area(firstCaseRow, firstCaseRow + cases - 1, firstColumn, lastColumn);
            file.formula({CheckSheet, row, verdictColumn},
                         "IFERROR(IF(ABS(SUM(" + table + ")-" + formulaNumber(sum) +
                             ")<=" + formulaNumber(relative * size) + ",1,0),0)",
                         1.0);
            ++row;
        };
        write("weights", predictor.weights, 0, 0);
        write("cases", scaledCases(predictor), 1, predictor.coordinates.size());
    }
}

void ModelSheets::writeCases()
{
    std::size_t sheet = FirstCaseSheet;
    for (std::size_t k = 0; k < outputs; ++k) {
        const Description& predictor = model.outputs[k].model.predictor;
        const std::size_t cases = predictor.weights.size();
        if (cases == 0) {
            continue;
        }
        const std::size_t coordinates = predictor.coordinates.size();
        const std::vector<double> scaled = scaledCases(predictor);
        const auto nameColumn = [&](const std::string& name, std::size_t column) {
            file.name(name, caseSheetName(k) + "!" +
                                area(firstCaseRow, firstCaseRow + cases - 1, column, column));
        };
        file.text({sheet, 0, 0}, "weight", WorkbookFile::Heading);
        nameColumn(PointFormulas::weightsName(k), 0);
        for (std::size_t c = 0; c < coordinates; ++c) {
            file.text({sheet, 0, 1 + c},
                      lineName(model.inputs[predictor.coordinates[c].input].name) + ", scaled",
                      WorkbookFile::Heading);
            nameColumn(PointFormulas::casesName(k, c), 1 + c);
        }
        for (std::size_t j = 0; j < cases; ++j) {
            file.number({sheet, firstCaseRow + j, 0}, predictor.weights[j]);
            for (std::size_t c = 0; c < coordinates; ++c) {
                file.number({sheet, firstCaseRow + j, 1 + c}, scaled[j * coordinates + c]);
            }
        }
        file.columnWidths(sheet, 0, coordinates, 18.0);
        ++sheet;
    }
}

} // namespace

std::string excelWorkbook(const ExportedModel& model)
{
    return ModelSheets(model).bytes();
}
