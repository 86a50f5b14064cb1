// The exported workbook, computed anew by a spreadsheet program.

#include "ExportTestSupport.h"

#include <mirel_modelexport/CheckPoints.h>
#include <mirel_modelexport/WorkbookFile.h>

using namespace exporttest;

namespace {

constexpr int verdictRow = 2;
constexpr int pointRow = 7;

class ExcelWorkbook : public ExportFolder
{
protected:
    /** The cells of the first sheet, all formulas computed, with these inputs typed in. */
    std::vector<std::vector<std::string>> computed(const std::string& workbook, const Column& point)
    {
        write("model.xlsx", workbook);
        std::string command =
            "HOME=. '" MODELEXPORT_SSCONVERT "' --recalc -T Gnumeric_stf:stf_assistant "
            "-O 'format=raw separator=; quoting-mode=never'";
        for (std::size_t k = 0; k < point.size(); ++k) {
            command += " --set " + WorkbookFile::columnName(1 + k) + std::to_string(pointRow + 1) +
                       "=" + exactText(point[k]);
        }
        const Outcome outcome = run(command + " model.xlsx model.csv");
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        std::vector<std::vector<std::string>> rows;
        std::istringstream lines(read("model.csv"));
        for (std::string line; std::getline(lines, line);) {
            rows.emplace_back();
            std::istringstream cells(line);
            for (std::string cell; std::getline(cells, cell, ';');) {
                rows.back().push_back(cell);
            }
        }
        return rows;
    }

    Column outputsOf(const ExportedModel& model, const std::vector<std::vector<std::string>>& rows)
    {
        Column values;
        for (std::size_t k = 0; k < model.outputs.size(); ++k) {
            values.push_back(
                std::strtod(rows.at(pointRow).at(1 + model.inputs.size() + k).c_str(), nullptr));
        }
        return values;
    }
};

} // namespace

TEST_F(ExcelWorkbook, ComputesWhatTheModelPredictsAndItsSelfCheckHolds)
{
    for (NamedCases& variety : varieties()) {
        for (const Kind kind : {Polynomial, Kriging}) {
            const ExportedModel model = variety.cases.exported(kind);
            const std::string what =
                variety.name + (kind == Kriging ? ", Kriging" : ", polynomial");
            const std::string workbook = exportModel(model, ExportFormat::Excel);
            const std::vector<Column> points = pointsFor(model, 2);
            std::vector<Column> values;
            std::vector<Column> looser;
            for (const Column& point : points) {
                const auto rows = computed(workbook, point);
                ASSERT_GT(rows.size(), static_cast<std::size_t>(pointRow)) << what;
                EXPECT_EQ(rows[verdictRow].at(1), "holds") << what;
                values.push_back(outputsOf(model, rows));
                // The program computes with more digits than a double has, and reads inputs and
                // constants with them.
                looser.push_back({inputRounding(model, 0, point), inputRounding(model, 1, point)});
            }
            expectAgreement(model, points, values, what, looser);
        }
    }
}

TEST_F(ExcelWorkbook, TheSelfCheckFailsWhenANumberHasChanged)
{
    for (const Kind kind : {Polynomial, Kriging}) {
        Cases cases = cvd();
        ExportedModel model = cases.exported(kind);
        const std::string right = exportModel(model, ExportFormat::Excel);
        write("model.xlsx", right);
        // The sheets of a workbook are files of an archive.
        const std::string part =
            kind == Kriging ? "xl/worksheets/sheet4.xml" : "xl/worksheets/sheet2.xml";
        write("change.py", "import re, zipfile\n"
                           "source = zipfile.ZipFile('model.xlsx')\n"
                           "target = zipfile.ZipFile('changed.xlsx', 'w')\n"
                           "for name in source.namelist():\n"
                           "    data = source.read(name)\n"
                           "    if name == '" +
                               part +
                               "':\n"
                               "        changed = re.sub(rb'<f>([-(0.]*)([1-9])', "
                               "lambda m: b'<f>' + m[1] + (b'8' if m[2] == b'9' else b'%d' % "
                               "(int(m[2]) + 1)),"
                               " data, count=1)\n"
                               "        assert changed != data\n"
                               "        data = changed\n"
                               "    target.writestr(name, data)\n"
                               "target.close()\n");
        const Outcome changed = run("'" MODELEXPORT_PYTHON "' change.py");
        ASSERT_EQ(changed.exitCode, 0) << changed.err;

        EXPECT_EQ(computed(read("changed.xlsx"), {}).at(verdictRow).at(1), "FAILED");
    }
}

TEST_F(ExcelWorkbook, ShowsTheOutputsAtTheSmallestInputsBeforeItIsComputed)
{
    Cases cases = cvd();
    const ExportedModel model = cases.exported(Kriging);
    const auto rows = computed(exportModel(model, ExportFormat::Excel), {});

    expectAgreement(model, {{4.0, 2.0}}, {outputsOf(model, rows)}, "smallest inputs");
}

TEST_F(ExcelWorkbook, LongPolynomialsAreComputedInSteps)
{
    Cases cases = smoothCases(700, 30, -1.0, 1.0, 0.0, 1.0);
    const ExportedModel model = cases.exported(Polynomial);
    ASSERT_GT(model.outputs[0].model.predictor.terms.size(), 450u);
    const std::vector<Column> points = pointsFor(model, 1);
    const auto rows = computed(exportModel(model, ExportFormat::Excel), points[0]);

    EXPECT_EQ(rows.at(verdictRow).at(1), "holds");
    expectAgreement(model, points, {outputsOf(model, rows)}, "thirty inputs");
}

TEST_F(ExcelWorkbook, WhatNoSheetHoldsIsRefused)
{
    // A described model need not have been fitted: so many inputs would take long.
    ExportedModel model;
    model.outputs.resize(1);
    PredictorDescription& predictor = model.outputs[0].model.predictor;
    predictor.kind = PredictorDescription::Kind::Kriging;
    for (std::size_t k = 0; k < 300; ++k) {
        model.inputs.push_back({"x" + std::to_string(k), 0.0, 1.0});
        predictor.inputs.push_back({0.0, 1.0, false});
        predictor.coordinates.push_back({k, 0.0, 1.0});
        predictor.lengths.push_back(1.0);
        predictor.cases.push_back(0.5);
    }
    predictor.weights = {1.0};
    try {
        exportModel(model, ExportFormat::Excel);
        FAIL();
    } catch (const SurrogateModelInterface::Error& error) {
        EXPECT_NE(std::string(error.what())
                      .find("and a spreadsheet takes 8192. Export the model "
                            "in another format."),
                  std::string::npos)
            << error.what();
    }
}
