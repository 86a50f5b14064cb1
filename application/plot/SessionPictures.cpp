#include "plot/SessionPictures.h"

#include "plot/AxisScale.h"

#include <session/cases/VariableNames.h>
#include <session/model/CaseSession.h>
#include <session/text/NumberText.h>
#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <sstream>
#include <utility>

namespace {
using Kind = SessionPictures::Kind;

const std::vector<std::pair<std::string, Kind>> kinds = {{"sweep", Kind::Sweep},
                                                         {"contour", Kind::Contour},
                                                         {"actual", Kind::Actual},
                                                         {"residuals", Kind::Residuals},
                                                         {"coefficients", Kind::Coefficients}};

/** Of the range of an input: how far from the cut a case counts as near. */
constexpr double nearShare = 0.1;

/** Likewise: the ends of an even sweep are the range of the input but for rounding. */
constexpr double roundingShare = 1e-9;

/** The probability with which the model lies in the band of a sweep. */
constexpr double bandLevel = 0.95;

/** Of an even sweep that nobody has said a number for: enough for a smooth line. */
constexpr std::size_t sweepValues = 101;

/** Likewise of each input of a contour. */
constexpr std::size_t contourValues = 61;

/** So many inputs are swept for a report: those that matter most. */
constexpr std::size_t mostReportSweeps = 6;

/** More would fill the picture with numbers. */
constexpr std::size_t mostHeldInputs = 6;
constexpr std::size_t longestCaptionName = 32;

std::string modelName(const CaseSession& session)
{
    return session.modelType() == CaseSession::Kriging ? "Kriging" : "response surface";
}

std::string nameOf(const VarPtr& variable)
{
    return variable.lock()->name();
}

int offsetOf(const CaseSession& session, std::size_t output)
{
    return static_cast<int>(
        session.manager().offsetForVariableName(nameOf(session.outputs()[output])));
}

/** The cases that the model was fitted to, as positions in the project. */
std::vector<std::size_t> fittedCases(const CaseSession& session)
{
    std::vector<std::size_t> excluded;
    if (session.counts().excluded > 0) {
        const std::vector<RecordPtr> records = session.project().records();
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (!records[i].lock()->isIncluded()) {
                excluded.push_back(i);
            }
        }
    }
    return validCases(session.project(), session.inputs(), session.outputs(), excluded);
}

std::vector<double> chosen(const std::vector<double>& column, const std::vector<std::size_t>& rows)
{
    std::vector<double> values;
    values.reserve(rows.size());
    for (const std::size_t row : rows) {
        values.push_back(column[row]);
    }
    return values;
}

/** A drawing of infinities would be an empty frame that says nothing. */
void requireDrawable(const std::vector<double>& values, const std::string& what)
{
    // Of each value by itself: the extremes do not tell of what is not a number.
    const bool isDrawable = std::all_of(values.begin(), values.end(), [](double value) {
        return AxisScale::isDrawable({value, value});
    });
    if (!isDrawable) {
        throw SurrogateModelInterface::Error(
            what + " holds values that are not finite, or too large to be drawn.");
    }
}

/** The grid of a session's values as columns: what a cut through the model shows. */
class Cut
{
public:
    /** Over the values that the session chooses. */
    explicit Cut(CaseSession& session)
        : session(session), swept(session.sweptInputs()), table(session.evaluate()),
          cases(fittedCases(session))
    {}

    /** Over the range of one input, the others in the middle of theirs. */
    Cut(CaseSession& session, std::size_t input)
        : session(session), swept({input}), table(sweepThroughTheMiddle(session, input)),
          cases(fittedCases(session))
    {}

    const std::vector<std::size_t>& sweptInputs() const { return swept; }

    std::size_t count() const { return static_cast<std::size_t>(table->GetNumberOfRows()); }

    double* input(std::size_t position) const { return column(position); }
    double* output(std::size_t position) const
    {
        return column(session.inputs().size() + position);
    }

    std::vector<double> values(const double* column) const { return {column, column + count()}; }

    /** One column per input: what the standard errors are asked at. */
    std::vector<double*> points() const
    {
        std::vector<double*> columns;
        for (std::size_t i = 0; i < session.inputs().size(); ++i) {
            columns.push_back(input(i));
        }
        return columns;
    }

    bool isSwept(std::size_t position) const
    {
        return std::find(swept.begin(), swept.end(), position) != swept.end();
    }

    /** The positions of the cases that lie near the cut, within the swept values. */
    std::vector<std::size_t> nearCases() const
    {
        std::vector<std::size_t> near = cases;
        for (std::size_t i = 0; i < session.inputs().size(); ++i) {
            const auto& column = session.project().numericValues(session.inputs()[i]);
            const auto [least, most] = std::minmax_element(input(i), input(i) + count());
            const QwtInterval all = AxisScale::range(chosen(column, cases));
            const double slack = (isSwept(i) ? roundingShare : nearShare) * all.width();
            const auto isFar = [&, least = *least, most = *most](std::size_t row) {
                return column[row] < least - slack || column[row] > most + slack;
            };
            near.erase(std::remove_if(near.begin(), near.end(), isFar), near.end());
        }
        return near;
    }

    std::string caseLabel(std::size_t near) const
    {
        if (session.inputs().size() == swept.size()) {
            return "cases";
        }
        return "cases near (" + std::to_string(near) + " of " + std::to_string(cases.size()) + ')';
    }

    /** "At Flow = 3, Power = 10. ...", and what is near; empty if every input is swept. */
    std::string caption(std::size_t near) const
    {
        std::string held;
        std::size_t shown = 0;
        std::size_t others = 0;
        for (std::size_t i = 0; i < session.inputs().size(); ++i) {
            if (isSwept(i)) {
                continue;
            }
            if (shown == mostHeldInputs) {
                ++others;
                continue;
            }
            held += (held.empty() ? "" : ", ") + shortName(nameOf(session.inputs()[i])) + " = " +
                    shortNumber(count() > 0 ? *input(i) : 0.0);
            ++shown;
        }
        if (held.empty()) {
            return held;
        }
        if (others > 0) {
            held += " and " + std::to_string(others) + " more held";
        }
        return "At " + held +
               (near > 0 ? ". Near: all held inputs within 10\302\240% of their range."
                         : ". No case has all held inputs within 10\302\240% of their range.");
    }

private:
    /** Characters are cut whole. */
    static std::string shortName(const std::string& name)
    {
        const QString text = QString::fromStdString(oneLineText(name));
        const int most = static_cast<int>(longestCaptionName);
        return text.size() <= most ? text.toStdString()
                                   : (text.left(most - 1) + QChar(0x2026)).toStdString();
    }

    /** As it was typed, unless nobody would type so many digits. */
    static std::string shortNumber(double number)
    {
        constexpr std::size_t longest = 10;
        const std::string text = numberText(number);
        return text.size() <= longest ? text : shownNumber(number);
    }

    /** As evaluate() makes it. What the session evaluated last stays what it is. */
    static vtkSmartPointer<vtkTable> sweepThroughTheMiddle(CaseSession& session, std::size_t input)
    {
        const auto table = vtkSmartPointer<vtkTable>::New();
        const auto add = [&] {
            const auto column = vtkSmartPointer<vtkDoubleArray>::New();
            column->SetNumberOfValues(sweepValues);
            table->AddColumn(column);
            return column->GetPointer(0);
        };
        std::vector<double*> points;
        for (std::size_t i = 0; i < session.inputs().size(); ++i) {
            const auto [least, most] = session.inputs()[i].lock()->range();
            points.push_back(add());
            for (std::size_t row = 0; row < sweepValues; ++row) {
                const double share =
                    i == input ? static_cast<double>(row) / (sweepValues - 1.0) : 0.5;
                points.back()[row] = (1.0 - share) * least + share * most;
            }
        }
        const SurrogateModelInterface& model = session.fit();
        for (std::size_t output = 0; output < session.outputs().size(); ++output) {
            std::vector<double*> values = {add()};
            model.interpolateDependentValues(points, {offsetOf(session, output)}, values,
                                             sweepValues);
        }
        return table;
    }

    double* column(std::size_t position) const
    {
        auto* const values =
            vtkDoubleArray::SafeDownCast(table->GetColumn(static_cast<vtkIdType>(position)));
        return values->GetPointer(0);
    }

    CaseSession& session;
    std::vector<std::size_t> swept;
    vtkSmartPointer<vtkTable> table;
    std::vector<std::size_t> cases;
};

/** The rows in ascending order of a column, each of its values once. */
std::vector<std::size_t> ascending(const std::vector<double>& values)
{
    std::vector<std::size_t> order(values.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return values[left] < values[right];
    });
    const auto isEqual = [&](std::size_t left, std::size_t right) {
        return values[left] == values[right];
    };
    order.erase(std::unique(order.begin(), order.end(), isEqual), order.end());
    return order;
}

void requireTwoValues(std::size_t values, const VarPtr& input)
{
    if (values < 2) {
        throw UsageError("The picture needs two different values of " + quotedText(nameOf(input)) +
                         " at least.");
    }
}

/**
 * Between which values the model lies, by its standard errors: by Student's t for a response
 * surface, as its confidence limits are. Empty without them.
 */
void addBand(CaseSession& session, const Cut& cut, std::size_t output,
             const std::vector<std::size_t>& order, SweepPicture& picture)
{
    const auto* const model = dynamic_cast<const FittedModel*>(&session.fit());
    if (model == nullptr) {
        return;
    }
    const int offset = offsetOf(session, output);
    const std::vector<double> errors = chosen(
        model->standardErrors(cut.points(), offset, FittedModel::ErrorKind::Mean, cut.count()),
        order);
    if (!std::all_of(errors.begin(), errors.end(),
                     [](double error) { return std::isfinite(error); })) {
        // As many cases as coefficients leave nothing to estimate an error from.
        return;
    }
    const double quantile = model->intervalQuantile(offset, bandLevel);
    for (std::size_t i = 0; i < errors.size(); ++i) {
        picture.lower.push_back(picture.model[i] - quantile * errors[i]);
        picture.upper.push_back(picture.model[i] + quantile * errors[i]);
    }
    constexpr int digits = 3;
    picture.bandLabel =
        "\302\261 " + shownNumber(quantile, digits) + " standard errors (95\302\240%)";
}

SweepPicture sweepOf(CaseSession& session, const Cut& cut, std::size_t output)
{
    const std::size_t input = cut.sweptInputs().front();
    const std::vector<double> inputs = cut.values(cut.input(input));
    const std::vector<std::size_t> order = ascending(inputs);
    requireTwoValues(order.size(), session.inputs()[input]);
    const std::vector<std::size_t> near = cut.nearCases();

    SweepPicture picture;
    picture.inputName = nameOf(session.inputs()[input]);
    picture.outputName = nameOf(session.outputs()[output]);
    picture.title = picture.outputName + ", " + modelName(session);
    picture.modelLabel = modelName(session);
    picture.inputs = chosen(inputs, order);
    picture.model = chosen(cut.values(cut.output(output)), order);
    addBand(session, cut, output, order, picture);
    picture.caseInputs = chosen(session.project().numericValues(session.inputs()[input]), near);
    picture.caseOutputs = chosen(session.project().numericValues(session.outputs()[output]), near);
    picture.caseLabel = cut.caseLabel(near.size());
    picture.caption = cut.caption(near.size());
    requireDrawable(picture.inputs, quotedText(picture.inputName));
    requireDrawable(picture.caseOutputs, quotedText(picture.outputName));
    for (const auto* const column : {&picture.model, &picture.lower, &picture.upper}) {
        requireDrawable(*column, "The model of " + quotedText(picture.outputName));
    }
    return picture;
}

std::vector<PictureData> sweeps(CaseSession& session)
{
    const Cut cut(session);
    std::vector<PictureData> pictures;
    for (std::size_t output = 0; output < session.outputs().size(); ++output) {
        pictures.push_back(sweepOf(session, cut, output));
    }
    return pictures;
}

std::vector<PictureData> contours(CaseSession& session)
{
    const Cut cut(session);
    const std::vector<std::size_t> swept = session.sweptInputs();
    const std::vector<double> allX = cut.values(cut.input(swept[0]));
    const std::vector<double> allY = cut.values(cut.input(swept[1]));
    const std::vector<double> x = chosen(allX, ascending(allX));
    const std::vector<double> y = chosen(allY, ascending(allY));
    requireTwoValues(x.size(), session.inputs()[swept[0]]);
    requireTwoValues(y.size(), session.inputs()[swept[1]]);
    const std::vector<std::size_t> near = cut.nearCases();
    const auto placeOf = [](const std::vector<double>& values, double value) {
        return static_cast<std::size_t>(std::lower_bound(values.begin(), values.end(), value) -
                                        values.begin());
    };

    std::vector<PictureData> pictures;
    for (std::size_t output = 0; output < session.outputs().size(); ++output) {
        ContourPicture picture;
        picture.xName = nameOf(session.inputs()[swept[0]]);
        picture.yName = nameOf(session.inputs()[swept[1]]);
        picture.outputName = nameOf(session.outputs()[output]);
        picture.title = picture.outputName + ", " + modelName(session);
        picture.x = x;
        picture.y = y;
        // The typed values may come in any order, and more than once.
        picture.values.resize(x.size() * y.size());
        const double* const values = cut.output(output);
        for (std::size_t row = 0; row < cut.count(); ++row) {
            picture.values[placeOf(x, allX[row]) * y.size() + placeOf(y, allY[row])] = values[row];
        }
        picture.caseX = chosen(session.project().numericValues(session.inputs()[swept[0]]), near);
        picture.caseY = chosen(session.project().numericValues(session.inputs()[swept[1]]), near);
        picture.caseLabel = cut.caseLabel(near.size());
        picture.caption = cut.caption(near.size());
        requireDrawable(picture.x, quotedText(picture.xName));
        requireDrawable(picture.y, quotedText(picture.yName));
        requireDrawable(picture.values, "The model of " + quotedText(picture.outputName));
        pictures.push_back(std::move(picture));
    }
    return pictures;
}
/** What the cases say of each other, where they determine it. */
struct LeftOut
{
    LeftOut(CaseSession& session, std::size_t output)
        : outputName(nameOf(session.outputs()[output])),
          title(outputName + ", " + modelName(session) + ", leave-one-out")
    {
        const auto& model = dynamic_cast<const FittedModel&>(session.fit());
        const std::vector<LeaveOneOutPrediction> all =
            model.leaveOneOutPredictions(offsetOf(session, output));
        for (const LeaveOneOutPrediction& each : all) {
            if (std::isfinite(each.predicted)) {
                actual.push_back(each.output);
                predicted.push_back(each.predicted);
            }
        }
        if (actual.empty()) {
            throw SurrogateModelInterface::Error(
                "The cases of " + quotedText(outputName) +
                " cannot be predicted from each other: without one of them the others do not "
                "determine the model. More cases would.");
        }
        caption = "Each case predicted by a fit to the other cases";
        const std::size_t cases = session.counts().valid;
        if (all.size() < cases) {
            caption += ", " + std::to_string(all.size()) + " of " + std::to_string(cases) +
                       " cases drawn at random";
        }
        if (actual.size() < all.size()) {
            caption += "; " + std::to_string(all.size() - actual.size()) +
                       " left out, which the others do not determine";
        }
        caption += '.';
        requireDrawable(actual, quotedText(outputName));
        requireDrawable(predicted, "The model of " + quotedText(outputName));
    }

    std::string outputName;
    std::string title;
    std::vector<double> actual;
    std::vector<double> predicted;
    std::string caption;
};

std::vector<PictureData> actuals(CaseSession& session)
{
    std::vector<PictureData> pictures;
    for (std::size_t output = 0; output < session.outputs().size(); ++output) {
        LeftOut leftOut(session, output);
        ActualPicture picture;
        picture.title = leftOut.title;
        picture.outputName = leftOut.outputName;
        picture.actual = std::move(leftOut.actual);
        picture.predicted = std::move(leftOut.predicted);
        picture.caption = leftOut.caption;
        pictures.push_back(std::move(picture));
    }
    return pictures;
}

std::vector<PictureData> residuals(CaseSession& session)
{
    std::vector<PictureData> pictures;
    for (std::size_t output = 0; output < session.outputs().size(); ++output) {
        LeftOut leftOut(session, output);
        ResidualPicture picture;
        picture.title = leftOut.title;
        picture.outputName = leftOut.outputName;
        for (std::size_t i = 0; i < leftOut.actual.size(); ++i) {
            picture.residuals.push_back(leftOut.actual[i] - leftOut.predicted[i]);
        }
        requireDrawable(picture.residuals, "The model of " + quotedText(leftOut.outputName));
        picture.predicted = std::move(leftOut.predicted);
        picture.caption = leftOut.caption;
        pictures.push_back(std::move(picture));
    }
    return pictures;
}
/** "V1" as "Pressure", "V1^2" as "Pressure\302\262", "V1 V2" as "Pressure \303\227 Flow". */
std::string termName(const std::string& term, const std::vector<std::string>& inputs)
{
    std::istringstream factors(term);
    std::string name;
    for (std::string factor; factors >> factor;) {
        const std::size_t power = factor.find('^');
        const std::size_t input = std::stoul(factor.substr(1, power - 1)) - 1;
        name += (name.empty() ? "" : " \303\227 ") + inputs.at(input) +
                (power == std::string::npos ? "" : "\302\262");
    }
    return name;
}

std::vector<PictureData> coefficients(CaseSession& session)
{
    const auto& model = dynamic_cast<const SurrogateResponseSurfaceModel&>(session.fit());
    const std::vector<std::string> inputs = namesOf(session.inputs());
    std::vector<PictureData> pictures;
    for (std::size_t output = 0; output < session.outputs().size(); ++output) {
        CoefficientPicture picture;
        const std::string outputName = nameOf(session.outputs()[output]);
        picture.title = outputName + ", " + modelName(session) + ", coefficients";
        picture.valueName = "coefficient, in the unit of " + outputName;
        bool hasLimits = true;
        for (const CoefficientStatistics& each :
             model.responseSurfaceStatistics(offsetOf(session, output)).codedCoefficients) {
            // The constant is on a scale of its own, beside which the others would look like 0.
            if (each.isKept && each.term != "1") {
                picture.terms.push_back(
                    {termName(each.term, inputs), each.estimate, each.lower, each.upper});
                requireDrawable({each.estimate}, "The model of " + quotedText(outputName));
                if (std::isfinite(each.lower) && std::isfinite(each.upper)) {
                    requireDrawable({each.lower, each.upper},
                                    "The model of " + quotedText(outputName));
                } else {
                    hasLimits = false;
                }
            }
        }
        if (picture.terms.empty()) {
            throw SurrogateModelInterface::Error("The model of " + quotedText(outputName) +
                                                 " is a constant: there are no coefficients to be "
                                                 "drawn. More cases would give some.");
        }
        std::stable_sort(picture.terms.begin(), picture.terms.end(),
                         [](const auto& left, const auto& right) {
                             return std::abs(left.estimate) > std::abs(right.estimate);
                         });
        picture.caption =
            std::string("Inputs coded to -1 and 1 at the ends of their ranges; without the "
                        "constant. ") +
            (hasLimits ? "The bars are 95\302\240% confidence limits."
                       : "As many terms as cases leave nothing for confidence limits.");
        pictures.push_back(std::move(picture));
    }
    return pictures;
}
} // namespace

SessionPictures::Kind SessionPictures::kindOf(const std::string& word)
{
    std::string known;
    for (const auto& [name, kind] : kinds) {
        if (name == word) {
            return kind;
        }
        known += (known.empty() ? "" : ", ") + name;
    }
    throw UsageError(word.empty()
                         ? "A picture needs a kind: --kind with one of " + known + '.'
                         : "--kind needs one of " + known + ", not " + quotedText(word) + '.');
}

void SessionPictures::check(Kind kind, const CaseSession& session)
{
    const std::size_t swept = session.sweptInputs().size();
    const std::string present = swept == 0   ? "none is"
                                : swept == 1 ? "one is"
                                             : std::to_string(swept) + " are";
    if (kind == Kind::Sweep && swept != 1) {
        throw UsageError("A picture of kind sweep needs one swept input and " + present +
                         ": name it with --sweep NAME, --sweep NAME=TEXT or --count NAME=N, and "
                         "hold others with --at NAME=VALUE.");
    }
    if (kind == Kind::Contour && swept != 2) {
        throw UsageError("A picture of kind contour needs two swept inputs and " + present +
                         ": name each with --sweep NAME, --sweep NAME=TEXT or --count NAME=N, and "
                         "hold others with --at NAME=VALUE.");
    }
    if (kind == Kind::Coefficients && session.modelType() == CaseSession::Kriging) {
        throw UsageError("Only the response surface has coefficients to draw: take "
                         "-m response-surface.");
    }
}

std::vector<PictureData> SessionPictures::make(Kind kind, CaseSession& session)
{
    check(kind, session);
    switch (kind) {
    case Kind::Sweep:
        return sweeps(session);
    case Kind::Contour:
        return contours(session);
    case Kind::Actual:
        return actuals(session);
    case Kind::Residuals:
        return residuals(session);
    default:
        return coefficients(session);
    }
}

void SessionPictures::sweepWhatIsLeft(Kind kind, CaseSession& session,
                                      const std::vector<std::size_t>& held)
{
    if (kind != Kind::Sweep && kind != Kind::Contour) {
        return;
    }
    std::vector<std::size_t> left;
    const std::vector<std::size_t> swept = session.sweptInputs();
    for (std::size_t input = 0; input < session.inputs().size(); ++input) {
        const auto isAmong = [input](const std::vector<std::size_t>& positions) {
            return std::find(positions.begin(), positions.end(), input) != positions.end();
        };
        const auto [least, most] = session.inputs()[input].lock()->range();
        if (least < most && !isAmong(swept) && !isAmong(held)) {
            left.push_back(input);
        }
    }
    const std::size_t needed = kind == Kind::Sweep ? 1 : 2;
    if (swept.size() < needed && swept.size() + left.size() == needed) {
        for (const std::size_t input : left) {
            session.sweepEvenly(input, usualValues(kind));
        }
    }
}

std::size_t SessionPictures::usualValues(Kind kind)
{
    return kind == Kind::Contour ? contourValues : sweepValues;
}

std::vector<std::vector<ReportSweep>> SessionPictures::reportSweeps(CaseSession& session)
{
    std::vector<Cut> cuts;
    for (std::size_t input = 0; input < session.inputs().size(); ++input) {
        const auto [least, most] = session.inputs()[input].lock()->range();
        if (least < most) {
            cuts.emplace_back(session, input);
        }
    }
    std::vector<std::vector<ReportSweep>> all;
    for (std::size_t output = 0; output < session.outputs().size(); ++output) {
        const auto influence = [output](const Cut& cut) {
            const double width = AxisScale::range(cut.values(cut.output(output))).width();
            return std::isnan(width) ? 0.0 : width; // has to have a place in the order
        };
        std::vector<const Cut*> order;
        for (const Cut& cut : cuts) {
            order.push_back(&cut);
        }
        std::stable_sort(order.begin(), order.end(), [&](const Cut* left, const Cut* right) {
            return influence(*left) > influence(*right);
        });
        order.resize(std::min(order.size(), mostReportSweeps));
        std::vector<ReportSweep>& made = all.emplace_back();
        for (const Cut* const cut : order) {
            try {
                made.push_back({sweepOf(session, *cut, output), {}});
            } catch (const SurrogateModelInterface::Error& error) {
                made.push_back({{}, error.what()});
            }
        }
    }
    return all;
}
