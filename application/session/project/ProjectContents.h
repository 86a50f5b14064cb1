#pragma once

#include <session/cases/ReadingChoices.h>
#include <session/files/FileFingerprint.h>
#include <session/project/ModelChoices.h>

#include <mirel_datamanagement/Variable.h>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/** The settings of a project document that are not the library's own: a plain value. */
struct ProjectContents : ModelChoices
{
    /** More values of one input than these would not fit a table that anybody can use. */
    static constexpr std::size_t maxSweptValues = 100000000;

    /** Of a distribution text, whose values are sorted: a short text can ask for any number. */
    static constexpr std::size_t maxTypedValues = 10000000;

    /** Lower and upper bound, or first and last value, in the variable's units. */
    using Range = std::pair<double, double>;

    struct CaseFile
    {
        /** Usable from the current folder. In the document it is relative to the document's folder,
         *  so that both can be moved together. UTF-8. */
        std::string path;
        FileFingerprint fingerprint;
        char separator = ','; ///< as CaseFileLayout has it
        bool hasDecimalComma = false;
        /** What else the user said about the reading, and what separates thousands, where something
         *  does; separator and decimal mark in it do not count. */
        ReadingChoices reading;
    };

    struct VariableEntry
    {
        std::string name; ///< each once, not empty
        Variable::Nature role = Variable::Unassigned;
        std::optional<Range> range; ///< where one was set: finite, not reversed
    };

    struct Sweep
    {
        std::string name;           ///< of an independent variable, each once
        std::size_t count = 2;      ///< from 2 to maxSweptValues
        std::optional<Range> range; ///< where it is not the variable's own: finite, may fall
    };

    CaseFile caseFile;
    std::vector<VariableEntry> variables; ///< in the order of the case file
    std::vector<std::string> outputs;     ///< dependent variables in the order wanted, each once
    std::vector<std::size_t> excluded;    ///< positions of cases, from 0, ascending, each once
    std::vector<Sweep> sweeps;
};
