#include "PlotCommand.h"

#include "CommandLine.h"
#include "OpenSession.h"
#include "TerminalProgress.h"

#include <plot/DrawingApplication.h>
#include <plot/Picture.h>
#include <plot/SessionPictures.h>
#include <session/model/CaseSession.h>
#include <session/text/SessionErrors.h>

#include <utility>
#include <vector>

namespace {
using SessionPictures::Kind;

PictureSize sizeOf(const CommandLine& line)
{
    return line.size ? PictureSize::parse(*line.size) : PictureSize();
}
} // namespace

void PlotCommand::check(const CommandLine& line)
{
    if (line.output == "-") {
        throw UsageError("The command plot needs a file for the picture: -o FILE.svg, FILE.png or "
                         "FILE.pdf.");
    }
    const Kind kind = SessionPictures::kindOf(line.kind);
    Picture::formatOf(line.output);
    sizeOf(line);
    const bool hasValues = !line.sweeps.empty() || !line.counts.empty() || !line.values.empty();
    if (hasValues && kind != Kind::Sweep && kind != Kind::Contour) {
        throw UsageError("--sweep, --count and --at belong to pictures of kind sweep and contour.");
    }
}

void PlotCommand::chooseValues(const CommandLine& line, OpenSession& open)
{
    const Kind kind = SessionPictures::kindOf(line.kind);
    open.chooseValues(line, SessionPictures::usualValues(kind));
    SessionPictures::sweepWhatIsLeft(kind, open.session, open.held);
    SessionPictures::check(kind, open.session);
}

void PlotCommand::run(const CommandLine& line, CaseSession& session)
{
    fitWithProgress(line, session);
    std::vector<PictureData> panels =
        SessionPictures::make(SessionPictures::kindOf(line.kind), session);
    const DrawingApplication application;
    Picture(std::move(panels), sizeOf(line)).write(line.output);
}
