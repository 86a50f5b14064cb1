#include "plot/model/ModelSlice.h"

#include "plot/drawing/AxisScale.h"

#include <session/cases/VariableNames.h>
#include <session/model/CaseSession.h>
#include <session/model/ModelName.h>
#include <session/text/DecimalText.h>
#include <session/text/QuotedText.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <QString>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
/** How far from a held value a case counts as near, as a share of the range of the input. */
constexpr double nearShare = 0.1;

/** Likewise for a swept input: the ends of an even sweep are its range but for rounding. */
constexpr double roundingShare = 1e-9;

/** More held inputs, or longer names, would fill the picture with text: of 40, a quarter. */
constexpr std::size_t maxHeldInputs = 40;
constexpr int maxNameCharacters = 32;

bool isSwept(const ModelSlice& slice, std::size_t input)
{
    return std::find(slice.swept.begin(), slice.swept.end(), input) != slice.swept.end();
}

/** The names and the model, no points yet. */
ModelSlice emptySlice(CaseSession& session, std::vector<std::size_t> swept)
{
    ModelSlice slice;
    slice.modelName = modelName(session.modelType());
    slice.swept = std::move(swept);
    for (const std::string& name : namesOf(session.inputs())) {
        slice.inputs.push_back({shortText(name), {}, {}, session.unitOf(name)});
    }
    for (const std::string& name : namesOf(session.outputs())) {
        slice.outputs.push_back({shortText(name),
                                 {},
                                 {},
                                 session.unitOf(name),
                                 hasLogarithmicAxis(session, slice.outputs.size())});
    }
    return slice;
}

/** Gives the outputs their values at the points. */
Extrapolation predictOutputs(CaseSession& session, ModelSlice& slice)
{
    PointEvaluation evaluation = session.predict(slice.inputColumns(), slice.points());
    for (std::size_t i = 0; i < slice.outputs.size(); ++i) {
        slice.outputs[i].values = std::move(evaluation.outputs[i]);
    }
    return evaluation.extrapolation;
}

void addNearCases(const Workspace& workspace, const ModelSlice::FittedCases& cases,
                  ModelSlice& slice)
{
    std::vector<std::size_t> near = cases.rows;
    for (std::size_t i = 0; i < slice.inputs.size(); ++i) {
        const std::vector<double>& points = slice.inputs[i].values;
        const auto& column = workspace.project().numericValues(workspace.inputs()[i]);
        const auto [least, most] = std::minmax_element(points.begin(), points.end());
        const double slack = (isSwept(slice, i) ? roundingShare : nearShare) * cases.widths[i];
        const auto isFar = [&, least = *least, most = *most](std::size_t row) {
            return column[row] < least - slack || column[row] > most + slack;
        };
        near.erase(std::remove_if(near.begin(), near.end(), isFar), near.end());
    }
    slice.fittedCases = cases.rows.size();
    for (std::size_t i = 0; i < slice.inputs.size(); ++i) {
        slice.inputs[i].caseValues =
            valuesAt(workspace.project().numericValues(workspace.inputs()[i]), near);
    }
    for (std::size_t i = 0; i < slice.outputs.size(); ++i) {
        slice.outputs[i].caseValues =
            valuesAt(workspace.project().numericValues(workspace.outputs()[i]), near);
    }
}

/** Shortened between characters. */
std::string shortName(const std::string& name)
{
    const QString text = QString::fromStdString(oneLineText(name));
    const QChar ellipsis(0x2026);
    return text.size() <= maxNameCharacters
               ? text.toStdString()
               : (text.left(maxNameCharacters - 1) + ellipsis).toStdString();
}

/** The shortest text of the number; with fewer digits where that has too many to be read. */
std::string shortNumber(double number)
{
    constexpr std::size_t longest = 7;
    constexpr int digits = 4;
    const std::string text = numberText(number);
    return text.size() <= longest ? text : shownNumber(number, digits);
}

/** The different ones of these values, ascending, with others evenly between them. */
std::vector<double> withValuesBetween(std::vector<double> values, std::size_t wanted)
{
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    if (values.size() < 2 || values.size() >= wanted) {
        return values;
    }
    const std::size_t gaps = values.size() - 1;
    const std::size_t parts = (wanted - 1 + gaps - 1) / gaps;
    std::vector<double> fine;
    for (std::size_t i = 0; i < gaps; ++i) {
        for (std::size_t part = 0; part < parts; ++part) {
            const double share = static_cast<double>(part) / static_cast<double>(parts);
            fine.push_back((1.0 - share) * values[i] + share * values[i + 1]);
        }
    }
    fine.push_back(values.back());
    return fine;
}

/** "Flow = 3 l/s". */
std::string placeText(const std::string& name, double value, const std::string& unit)
{
    return shortName(name) + " = " + shortNumber(value) + (unit.empty() ? "" : ' ' + unit);
}

/** "Flow = 3 l/s, Power = 10 and 2 more held". */
std::string listed(std::vector<std::string> places)
{
    const std::size_t shown = std::min(places.size(), maxHeldInputs);
    const std::size_t more = places.size() - shown;
    places.resize(shown);
    return joinedText(places) + (more == 0 ? "" : andMore(more) + " held");
}
} // namespace

bool hasLogarithmicAxis(CaseSession& session, std::size_t output)
{
    constexpr double threeDecades = 1000.0;
    if (session.fit().outputs[output].modelled.transform == OutputTransform::Logarithm) {
        return true;
    }
    double least = std::numeric_limits<double>::infinity();
    double most = 0.0;
    for (const double value : session.project().numericValues(session.outputs()[output])) {
        least = std::fmin(least, value);
        most = std::fmax(most, value);
    }
    return least > 0.0 && std::isfinite(most) && most >= threeDecades * least;
}

ModelSlice::FittedCases::FittedCases(const Workspace& workspace)
    : rows(workspace.validCases()), ranges(workspace.sweepRanges())
{
    for (const VarPtr& input : workspace.inputs()) {
        const std::vector<double>& column = workspace.project().numericValues(input);
        widths.push_back(AxisScale::range(valuesAt(column, rows)).width());
    }
}

ModelSlice ModelSlice::throughChosenValues(CaseSession& session)
{
    ModelSlice slice = emptySlice(session, session.sweptInputs());
    const GridEvaluation evaluation = session.evaluate();
    vtkIdType position = 0;
    for (auto* const columns : {&slice.inputs, &slice.outputs}) {
        for (Column& column : *columns) {
            auto* const values =
                vtkDoubleArray::SafeDownCast(evaluation.table->GetColumn(position++));
            column.values.assign(values->GetPointer(0),
                                 values->GetPointer(0) + values->GetNumberOfTuples());
        }
    }
    slice.extrapolation = evaluation.extrapolation;
    addNearCases(session, FittedCases(session), slice);
    return slice;
}

ModelSlice ModelSlice::overRanges(CaseSession& session, const std::vector<std::size_t>& swept,
                                  std::size_t values, const FittedCases& cases)
{
    ModelSlice slice = emptySlice(session, swept);
    std::size_t count = 1;
    for (std::size_t k = 0; k < swept.size(); ++k) {
        count *= values;
    }
    const std::vector<double> held = session.heldValues();
    for (std::size_t i = 0; i < slice.inputs.size(); ++i) {
        slice.inputs[i].values.assign(count, held[i]);
    }
    std::size_t repeats = count;
    for (const std::size_t input : swept) {
        repeats /= values;
        const auto [least, most] = cases.ranges[input];
        for (std::size_t point = 0; point < count; ++point) {
            const double share =
                static_cast<double>(point / repeats % values) / static_cast<double>(values - 1);
            slice.inputs[input].values[point] = (1.0 - share) * least + share * most;
        }
    }
    slice.extrapolation = predictOutputs(session, slice);
    addNearCases(session, cases, slice);
    return slice;
}

ModelSlice ModelSlice::finer(CaseSession& session, std::size_t values) const
{
    const std::vector<double> x = withValuesBetween(inputs[swept[0]].values, values);
    const std::vector<double> y = withValuesBetween(inputs[swept[1]].values, values);
    ModelSlice fine = *this;
    for (Column& input : fine.inputs) {
        input.values.assign(x.size() * y.size(), points() > 0 ? input.values.front() : 0.0);
    }
    for (std::size_t point = 0; point < x.size() * y.size(); ++point) {
        fine.inputs[swept[0]].values[point] = x[point / y.size()];
        fine.inputs[swept[1]].values[point] = y[point % y.size()];
    }
    predictOutputs(session, fine);
    return fine;
}

void ModelSlice::findOutside(CaseSession& session)
{
    isOutside = session.outsideCases(inputColumns(), points());
}

std::vector<const double*> ModelSlice::inputColumns() const
{
    std::vector<const double*> columns;
    for (const Column& input : inputs) {
        columns.push_back(input.values.data());
    }
    return columns;
}

std::string ModelSlice::caseLabel() const
{
    if (inputs.size() == swept.size()) {
        return "cases";
    }
    return "cases near (" + std::to_string(nearCases()) + " of " + std::to_string(fittedCases) +
           ')';
}

std::string ModelSlice::heldText(const CaseSession& session)
{
    std::vector<std::string> places;
    const std::vector<double> held = session.heldValues();
    const std::vector<std::string> names = namesOf(session.inputs());
    for (std::size_t i = 0; i < names.size(); ++i) {
        places.push_back(placeText(shortText(names[i]), held[i], session.unitOf(names[i])));
    }
    return listed(std::move(places));
}

std::string ModelSlice::caption() const
{
    std::vector<std::string> held;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        if (!isSwept(*this, i)) {
            const double value = points() > 0 ? inputs[i].values.front() : 0.0;
            held.push_back(placeText(inputs[i].name, value, inputs[i].unit));
        }
    }
    if (held.empty()) {
        return "";
    }
    return "At " + listed(std::move(held)) +
           (nearCases() > 0 ? ". Near: all held inputs within 10\302\240% of their range."
                            : ". No case has all held inputs within 10\302\240% of their range.");
}
