#pragma once

#include <surrogate_session/Export.h>

#include <map>
#include <string>

/** What sentences advise a user to choose otherwise. */
enum class Setting
{
    Inputs,
    Outputs,
    Model,
    Terms,
    TermSelection,
    Transform,
    ExcludedCases,
    Blocks,
    SweptInput,
    Separator,
    DecimalMark,
    SkippedLines,
    Heading,
    NoHeading,
    CommentMarks,
    MissingCodes,
    NotStrict
};

/** How the program's user chooses each setting, "-x": for the process, before the first sentence.
 *  Without it sentences only name the setting. */
SURROGATE_SESSION_EXPORT void setSettingOptions(std::map<Setting, std::string> options);

/** " (-x)" or " (--skip 7)", to follow the name of a setting; empty without options. */
SURROGATE_SESSION_EXPORT std::string settingHint(Setting setting, const std::string& value = "");
