#pragma once

#include <session/CaseSession.h>

#include <chrono>

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

    /** Gives the inputs the values of --sweep, --count and --at.
     *  @throw UsageError, DistributionTextError */
    void chooseValues(const CommandLine& line);

    /** Keeps what was chosen, if --save asks for it: once the work with it has gone well. */
    void save(const CommandLine& line) const;

    std::chrono::steady_clock::time_point start; ///< of reading
    CaseSession session;
    double readSeconds;
};
