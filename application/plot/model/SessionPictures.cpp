#include "plot/model/SessionPictures.h"

#include "plot/model/CasePictures.h"
#include "plot/model/CoefficientPictures.h"
#include "plot/model/ConfidenceBand.h"
#include "plot/model/ContourPictures.h"
#include "plot/model/DiagnosticPictures.h"
#include "plot/model/EffectsPictures.h"
#include "plot/model/MainEffects.h"
#include "plot/model/ModelSlice.h"
#include "plot/model/SweepPictures.h"

#include <session/cases/VariableNames.h>
#include <session/model/CaseSession.h>
#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

namespace {
using SessionPictures::Kind;

bool isOfResponseSurfaces(Kind kind)
{
    return kind == Kind::Normal || kind == Kind::Coefficients || kind == Kind::Ridge;
}

/** Of each input of a contour: its lines are smooth then. */
constexpr std::size_t smoothValues = 101;

bool contains(const std::vector<std::size_t>& positions, std::size_t position)
{
    return std::find(positions.begin(), positions.end(), position) != positions.end();
}

/** The inputs that vary and are neither swept nor held. */
std::vector<std::size_t> remainingInputs(const Workspace& workspace,
                                         const std::vector<std::size_t>& held)
{
    const std::vector<std::size_t> swept = workspace.sweptInputs();
    const auto ranges = workspace.sweepRanges();
    std::vector<std::size_t> remaining;
    for (std::size_t input = 0; input < workspace.inputs().size(); ++input) {
        const auto [least, most] = ranges[input];
        if (least < most && !contains(swept, input) && !contains(held, input)) {
            remaining.push_back(input);
        }
    }
    return remaining;
}

std::vector<PictureData> effects(CaseSession& session, const std::vector<std::size_t>& held)
{
    const MainEffects all(session, held);
    std::vector<PictureData> pictures;
    for (std::size_t output = 0; output < session.outputs().size(); ++output) {
        pictures.emplace_back(effectsPicture(session, all, output));
    }
    return pictures;
}

ConfidenceBand bandOf(CaseSession& session, const std::vector<RidgePoint>& ridge,
                      std::size_t output)
{
    const std::vector<double> held = session.heldValues();
    std::vector<std::vector<double>> columns(held.size());
    for (std::size_t i = 0; i < held.size(); ++i) {
        for (const RidgePoint& point : ridge) {
            // An input that the polynomial does not have may be anywhere.
            columns[i].push_back(std::isnan(point.coordinates[i]) ? held[i] : point.coordinates[i]);
        }
    }
    return ConfidenceBand::of(session, pointersTo(std::as_const(columns)), ridge.size(), output);
}

SweepPicture ridgeOf(CaseSession& session, std::size_t output, bool isAscent)
{
    const ResponseSurfaceStatistics& statistics = session.statistics()[output];
    const std::string name = session.outputs()[output].lock()->name();
    return ridgePicture(statistics, isAscent, shownNamesOf(session.inputs()), shortText(name),
                        session.unitOf(name),
                        bandOf(session, isAscent ? statistics.ascent : statistics.descent, output));
}

/** Sweeps what a contour lacks. */
void sweepStrongest(CaseSession& session, std::vector<std::size_t> held)
{
    const std::vector<std::size_t> swept = session.sweptInputs();
    const std::size_t needed = SessionPictures::sweptInputs(Kind::Contour);
    if (swept.size() < needed) {
        held.insert(held.end(), swept.begin(), swept.end());
        for (const std::size_t input :
             MainEffects(session, held).strongestInputs(needed - swept.size())) {
            session.sweepEvenly(input, SessionPictures::defaultValues(Kind::Contour));
        }
    }
}
} // namespace

std::size_t SessionPictures::sweptInputs(Kind kind)
{
    return kind == Kind::Sweep ? 1 : kind == Kind::Contour ? 2 : 0;
}

std::size_t SessionPictures::defaultValues(Kind kind)
{
    return kind == Kind::Contour ? smoothValues : ModelSlice::sweepValues;
}

void SessionPictures::sweepRemaining(Kind kind, CaseSession& session,
                                     const std::vector<std::size_t>& held)
{
    const std::size_t swept = session.sweptInputs().size();
    const std::vector<std::size_t> remaining = remainingInputs(session, held);
    if (swept < sweptInputs(kind) && swept + remaining.size() == sweptInputs(kind)) {
        for (const std::size_t input : remaining) {
            session.sweepEvenly(input, defaultValues(kind));
        }
    }
}

void SessionPictures::check(Kind kind, const Workspace& workspace,
                            const std::vector<std::size_t>& held)
{
    const std::size_t needed = sweptInputs(kind);
    const std::size_t swept = workspace.sweptInputs().size();
    if (needed > 0 &&
        (swept > needed || swept + remainingInputs(workspace, held).size() < needed)) {
        const std::string present = swept == 0   ? "none is"
                                    : swept == 1 ? "one is"
                                                 : std::to_string(swept) + " are";
        throw UsageError((needed == 1 ? "A picture of kind sweep needs one swept input and "
                                      : "A picture of kind contour needs two swept inputs and ") +
                         present + '.');
    }
    if (isOfResponseSurfaces(kind) && workspace.modelType() == Workspace::Kriging) {
        throw UsageError(kind == Kind::Coefficients
                             ? "Only response surfaces have coefficients to draw."
                         : kind == Kind::Ridge
                             ? "Only response surfaces have a ridge to draw."
                             : "Only response surfaces have studentised residuals to draw; choose "
                               "the kind residuals.");
    }
}

std::vector<PictureData> SessionPictures::make(Kind kind, CaseSession& session,
                                               const std::vector<std::size_t>& held)
{
    check(kind, session, held);
    if (kind == Kind::Sweep && session.sweptInputs().empty()) {
        return effects(session, held);
    }
    if (kind == Kind::Contour) {
        sweepStrongest(session, held);
    }
    std::optional<ModelSlice> slice;
    if (sweptInputs(kind) > 0) {
        slice = ModelSlice::throughChosenValues(session);
    }
    if (kind == Kind::Contour && slice->points() < smoothValues * smoothValues) {
        slice = slice->finer(session, smoothValues);
    }
    if (kind == Kind::Contour) {
        slice->findOutside(session);
    }
    const std::vector<ResponseSurfaceStatistics> statistics =
        isOfResponseSurfaces(kind) ? session.statistics()
                                   : std::vector<ResponseSurfaceStatistics>();
    if (isOfResponseSurfaces(kind) && statistics.empty()) {
        throw SurrogateModelInterface::Error(
            "The model is an exported one, without cases to draw.");
    }
    const std::vector<std::string> inputs = shownNamesOf(session.inputs());
    const std::vector<std::string> outputs = shownNamesOf(session.outputs());
    std::vector<PictureData> pictures;
    for (std::size_t output = 0; output < outputs.size(); ++output) {
        switch (kind) {
        case Kind::Sweep:
            pictures.emplace_back(
                sweepPicture(*slice, output, ConfidenceBand::of(session, *slice, output)));
            break;
        case Kind::Contour:
            pictures.emplace_back(contourPicture(*slice, output));
            break;
        case Kind::Actual:
            pictures.emplace_back(actualPicture(LeaveOneOutCases::of(session, output)));
            break;
        case Kind::Residuals:
            pictures.emplace_back(residualPicture(LeaveOneOutCases::of(session, output)));
            break;
        case Kind::Normal:
            pictures.emplace_back(normalPicture(statistics[output], outputs[output]));
            break;
        case Kind::Ridge:
            for (const bool isAscent : {true, false}) {
                pictures.emplace_back(ridgeOf(session, output, isAscent));
            }
            break;
        case Kind::Coefficients:
            pictures.emplace_back(
                coefficientPicture(statistics[output], inputs, outputs[output],
                                   session.fit().outputs[output].modelled.transform,
                                   session.unitOf(session.outputs()[output].lock()->name())));
            break;
        }
    }
    return pictures;
}
