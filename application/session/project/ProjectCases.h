#pragma once

#include <session/cases/CaseFileReader.h>
#include <session/cases/CaseRoles.h>
#include <session/cases/CaseTable.h>

#include <session/project/ProjectDocument.h>

#include <surrogate_session/Export.h>

#include <string>

/**
 * Reads a table of cases that a user names.
 * @throw CaseDataError also for an XML document: a project under another name, such as a backup,
 *        would be read as a faulty table; @throw as CaseFileReader::read()
 */
SURROGATE_SESSION_EXPORT CaseTable readCaseTable(const std::string& path,
                                                 const CaseFileReader::Options& options);

/** How a project's case file is read: as the document says where `options` do not. */
SURROGATE_SESSION_EXPORT CaseFileReader::Options readingOptions(const ProjectDocument& document,
                                                                CaseFileReader::Options options);

/** Says in a sentence that a file does not hold the cases that a project was saved with; empty if
 * it does. @throw FileError if it cannot be read. */
SURROGATE_SESSION_EXPORT std::string otherCasesNote(const ProjectDocument& document,
                                                    const std::string& path);

/** The columns of a table that are inputs and outputs of a project; names that the table does not
 *  hold are left out. */
SURROGATE_SESSION_EXPORT CaseRoles rolesIn(const ProjectDocument& document, const CaseTable& table);
