#include "PlotCommand.h"

#include "CommandLine.h"
#include "CommandOutput.h"
#include "OpenSession.h"
#include "TerminalProgress.h"

#include <plot/drawing/DrawingApplication.h>
#include <plot/drawing/Picture.h>
#include <plot/model/SessionPictures.h>
#include <session/model/CaseSession.h>
#include <session/text/SessionErrors.h>

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace {
using SessionPictures::Kind;

Kind kindOf(const CommandLine& line)
{
    const bool sweepsTwo = line.sweeps.size() + line.counts.size() == 2;
    return line.kind.value_or(sweepsTwo ? Kind::Contour : Kind::Sweep);
}

/** All outputs are evaluated at the same points, which have no rows, so that the first picture
 *  speaks for all. */
Extrapolation extrapolationOf(const PictureData& picture)
{
    Extrapolation extrapolation;
    if (const auto* const sweep = std::get_if<SweepPicture>(&picture)) {
        extrapolation = sweep->extrapolation;
    } else if (const auto* const contour = std::get_if<ContourPicture>(&picture)) {
        extrapolation = contour->extrapolation;
    }
    extrapolation.rows.clear();
    return extrapolation;
}

/** The options that avoid what SessionPictures::check() refuses. */
std::string hint(Kind kind)
{
    return SessionPictures::sweptInputs(kind) == 0
               ? " Choose -m response-surface."
               : std::string(kind == Kind::Sweep ? " Name it" : " Name each") +
                     " with --sweep NAME, --sweep NAME=TEXT or --count NAME=N, and hold others "
                     "with --at NAME=VALUE.";
}

/** Finds faults of the command line before anything is read. */
void check(const CommandLine& line, Kind kind)
{
    if (line.output == "-") {
        throw UsageError("The command plot needs a file for the picture: -o FILE.svg, FILE.png or "
                         "FILE.pdf.");
    }
    Picture::formatOf(line.output);
    const bool hasValues = !line.sweeps.empty() || !line.counts.empty() || !line.values.empty();
    if (hasValues && SessionPictures::sweptInputs(kind) == 0) {
        throw UsageError("--sweep, --count and --at belong to pictures of kind sweep and contour.");
    }
}

/** Gives the inputs the values asked for and, where they are all that is left, the usual ones.
 *  Finds faults that only the cases show, before the fit. */
void chooseValues(const CommandLine& line, Kind kind, OpenSession& open)
{
    open.chooseValues(line, SessionPictures::defaultValues(kind));
    SessionPictures::sweepRemaining(kind, open.session, open.held);
    try {
        SessionPictures::check(kind, open.session, open.held);
    } catch (const UsageError& error) {
        throw UsageError(error.what() + hint(kind));
    }
}
} // namespace

void PlotCommand::run(const CommandLine& line)
{
    const Kind kind = kindOf(line);
    check(line, kind);
    OpenSession open(line);
    chooseValues(line, kind, open);
    fitWithProgress(line, open.session);
    std::vector<PictureData> panels = SessionPictures::make(kind, open.session, open.held);
    Evaluation evaluation;
    evaluation.extrapolation = extrapolationOf(panels.front());
    const DrawingApplication application;
    Picture(std::move(panels), line.size).write(line.output);
    open.save(line);
    noteFit(line, open.session, &evaluation);
}
