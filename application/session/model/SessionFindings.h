#pragma once

#include <session/diagnosis/Finding.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <vector>

class Workspace;
struct ResponseSurfaceStatistics;

/** What may be wrong with the cases of a workspace, and with a model of them. */
struct SURROGATE_SESSION_EXPORT SessionFindings
{
    /** Worst first. */
    std::vector<Finding> findings;
    std::size_t validCases = 0;
    std::size_t comparedCases = 0; ///< with each other: of many valid ones a sample

    /** Of the cases with inputs and outputs, without a fit. */
    static SessionFindings ofCases(const Workspace& workspace);

    /**
     * The same without what warnings of the model and notes about the file say already, but with
     * the outliers and influential cases of a response surface, and where its Q2 is far below R2.
     * None for an exported model, which has no cases.
     * @param statistics one per output; none at all of another model.
     */
    static SessionFindings ofFit(const Workspace& workspace,
                                 const std::vector<ResponseSurfaceStatistics>& statistics);

    /** Of ofCases() those about included cases that lack a number of an input or output. */
    static std::vector<Finding> missingCells(const Workspace& workspace);

    /** The severe ones of ofCases() about single columns, and no others: quick to find. */
    static std::vector<Finding> severe(const Workspace& workspace);
};
