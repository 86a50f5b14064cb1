#pragma once

#include <string>
#include <utility>
#include <vector>

/** What may be wrong with cases, or with a model of them. */
struct Finding
{
    enum Severity
    {
        Severe,  ///< the model is likely wrong
        Warning, ///< the model is worse than it could be, or means less than it seems to
        Note     ///< worth knowing
    };

    Finding(std::string kind, Severity severity, std::vector<std::string> columns, std::string text)
        : kind(std::move(kind)), severity(severity), columns(std::move(columns)),
          text(std::move(text))
    {}

    /** One word for each sort of finding, "collinearInputs": docs/user-guide.md lists them. */
    std::string kind;
    Severity severity;
    /** The variables that it is about, by name. */
    std::vector<std::string> columns;
    /** What it is, what it does to the model and what to do: one sentence. */
    std::string text;
};
