#include "PlotCommand.h"

#include "CommandLine.h"
#include "OpenSession.h"
#include "PictureLibrary.h"
#include "TerminalProgress.h"

#include <plot/PictureService.h>
#include <session/model/CaseSession.h>
#include <session/text/SessionErrors.h>

void PlotCommand::check(const CommandLine& line)
{
    if (line.output == "-") {
        throw UsageError("The command plot needs a file for the picture: -o FILE.svg, FILE.png or "
                         "FILE.pdf.");
    }
    pictureLibrary().check(line.kind, line.size, line.output);
    const bool hasValues = !line.sweeps.empty() || !line.counts.empty() || !line.values.empty();
    const bool isCut = line.kind == "sweep" || line.kind == "contour";
    if (hasValues && !isCut) {
        throw UsageError("--sweep, --count and --at belong to pictures of kind sweep and contour.");
    }
}

void PlotCommand::chooseValues(const CommandLine& line, OpenSession& open)
{
    const PictureService& pictures = pictureLibrary();
    open.chooseValues(line, pictures.usualValues(line.kind));
    pictures.sweepWhatIsLeft(line.kind, open.session, open.held);
    pictures.check(line.kind, open.session);
}

void PlotCommand::run(const CommandLine& line, CaseSession& session)
{
    fitWithProgress(line, session);
    pictureLibrary().write(pictureLibrary().make(line.kind, session), line.size, line.output);
}
