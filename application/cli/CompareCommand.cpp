#include "CompareCommand.h"

#include "CommandLine.h"
#include "CommandOutput.h"
#include "OpenSession.h"
#include "TerminalProgress.h"

#include <session/comparison/ModelComparison.h>
#include <session/report/ComparisonReport.h>
#include <session/report/FindingsReport.h>
#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <cstddef>
#include <string>

namespace {
/** As many as asked for, or as usual, as far as there are cases for them. */
std::size_t foldsFor(const CommandLine& line, const Workspace& workspace)
{
    const std::size_t most = ModelComparison::maxFolds(workspace);
    if (!line.folds) {
        return std::min(ModelComparison::defaultFolds, most);
    }
    // With less than two cases no number of folds would be right: the comparison reports that.
    if (most >= 2 && *line.folds > most) {
        throw UsageError("--folds " + std::to_string(*line.folds) +
                         " is more than there are valid cases, copies counted once: " +
                         std::to_string(most) + ".");
    }
    return *line.folds;
}
} // namespace

void CompareCommand::run(const CommandLine& line)
{
    const OpenSession open(line);
    const std::size_t folds = foldsFor(line, open.session);
    ModelComparison comparison;
    {
        const TerminalProgress progress(line.isQuiet,
                                        "Comparing both models on " +
                                            countedText(open.session.counts().valid, "case"));
        comparison = ModelComparison::of(open.session, folds);
    }
    open.save(line);
    if (!line.isQuiet) {
        note(line, FindingsReport::severeNotes(open.session));
    }
    writeText(line.output, line.asJson
                               ? ReportJson::text(ComparisonReport::json(open.session, comparison,
                                                                         open.readSeconds))
                               : terminalText(ComparisonReport::text(open.session, comparison)));
}
