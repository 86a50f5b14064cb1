#pragma once

#include <session/model/CaseSession.h>
#include <session/model/Stopwatch.h>

#include <mirel_analyzercommon/UndoStack.h>

#include <memory>

struct CommandLine;

/** The cases with what the command line chooses, and how long it took to get there. */
struct OpenSession
{
    /**
     * Reads the case file or the project.
     * @throw UsageError if the command needs inputs or outputs that there are not; CaseDataError,
     *        ProjectDocumentError, DistributionTextError, FileError.
     */
    explicit OpenSession(const CommandLine& line);

    /**
     * Gives the inputs the values of --sweep, --count and --at.
     * @param usualCount values of --sweep NAME without a text; 0: the text is required.
     * @throw UsageError, DistributionTextError
     */
    void chooseValues(const CommandLine& line, std::size_t usualCount = 0);

    /** Keeps what was chosen, if --save asks for it: once the work with it has gone well. */
    void save(const CommandLine& line) const;

    UndoStack::SuspendUndoRecording unrecorded; ///< a command ends before anything could be undone
    Stopwatch watch;                            ///< from before reading on
    std::unique_ptr<CaseSession> opened;
    CaseSession& session = *opened;
    double readSeconds;
    std::vector<std::size_t> held; ///< the inputs that --at names, by their positions
};
