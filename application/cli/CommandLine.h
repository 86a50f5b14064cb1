#pragma once

#include <mirel_modelexport/ModelExport.h>
#include <plot/drawing/PictureSize.h>
#include <plot/model/SessionPictures.h>
#include <session/cases/CaseFileReader.h>
#include <session/model/SessionChoices.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/** What the user asks the program to do, as typed; names are looked up later, in the file. */
struct CommandLine
{
    enum Command
    {
        Summary,
        Fit,
        Evaluate,
        Predict,
        Equations,
        Export,
        Plot,
        Compare,
        Check,
        Project,
        Help,
        Version
    };

    Command command = Help;
    std::string typed;               ///< all of it, quoted as a shell needs it
    std::string text;                ///< of Help and Version: what is to be printed
    std::string subject;             ///< the case file, the project document, or the text to check
    std::string cases;               ///< the case file to take instead of the project's
    std::string save;                ///< the project document to be written
    CaseFileReader::Options reading; ///< of all tables
    SessionChoices choices;
    std::vector<std::string> sweeps;
    std::vector<std::string> counts;
    std::vector<std::string> values;
    std::string points;
    std::optional<ExportFormat> format; ///< of an exported model
    std::string output = "-";
    std::optional<SessionPictures::Kind> kind;
    std::optional<PictureSize> size;  ///< of a picture
    std::string report;               ///< of fit: the page to be written
    std::optional<double> interval;   ///< percent, above 0 and below 100
    std::optional<std::size_t> folds; ///< of compare
    bool asJson = false;
    bool isQuiet = false;
    bool isForSpreadsheet = false; ///< of the table that is written
    /** Of the table that is written; absent: as `reading` says. */
    std::optional<char> writtenSeparator;
    std::optional<CellValue::DecimalMark> writtenDecimal; ///< likewise
    int threads = 0;                                      ///< 0: all cores

    /** Checks which options go together, and with which kind of file. @throw UsageError */
    void check() const;

    /** Whether the subject is a project document: its name ends like one. */
    bool startsFromProject() const;

    /** Whether it says anything about the terms of a response surface. */
    bool choosesTerms() const { return choices.selection || choices.terms; }

    /** Whether it is an exported model, likewise. */
    bool startsFromModel() const;
};
