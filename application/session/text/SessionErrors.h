#pragma once

#include <mirel_property/ExceptionBase.h>

#include <surrogate_session/Export.h>

#include <string>

/*
 * Faults in what a user asks for or provides: one class for each exit code of the program. Messages
 * are whole sentences that name the thing.
 */

/** A name that does not exist, a role or a value that does not fit. */
class SURROGATE_SESSION_EXPORT UsageError : public veska::ExceptionBase
{
public:
    using ExceptionBase::ExceptionBase;
    ~UsageError() override;
};

/** A case file that cannot be understood; the message names file and line. */
class SURROGATE_SESSION_EXPORT CaseDataError : public veska::ExceptionBase
{
public:
    using ExceptionBase::ExceptionBase;
    ~CaseDataError() override;
};

/** A faulty distribution text; the message names the variable and the faulty item. */
class SURROGATE_SESSION_EXPORT DistributionTextError : public veska::ExceptionBase
{
public:
    using ExceptionBase::ExceptionBase;
    ~DistributionTextError() override;
};

/** A file that cannot be opened, read or written; the message names it and the system's reason. */
class SURROGATE_SESSION_EXPORT FileError : public veska::ExceptionBase
{
public:
    using ExceptionBase::ExceptionBase;
    ~FileError() override;
};

/** An exported model that cannot be used; the message names the file and the faulty member. */
class SURROGATE_SESSION_EXPORT ModelFileError : public veska::ExceptionBase
{
public:
    using ExceptionBase::ExceptionBase;
    ~ModelFileError() override;
};

/** A project document that cannot be understood, or a project that none can hold; the message names
 *  the document, and line and column where there is one. */
class SURROGATE_SESSION_EXPORT ProjectDocumentError : public veska::ExceptionBase
{
public:
    using ExceptionBase::ExceptionBase;
    ~ProjectDocumentError() override;
};
