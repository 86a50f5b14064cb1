#pragma once

#include <session/report/ReportJson.h>

#include <surrogate_session/Export.h>

#include <string>

class ProjectDocument;

/**
 * What a project document holds, as text for people and as JSON for programs ("schema": 1; case
 * numbers count from 1). Only the state of the case file is looked up, its cases are not read.
 */
namespace ProjectReport {
/** @throw FileError if the case file is there but cannot be read. */
SURROGATE_SESSION_EXPORT std::string text(const ProjectDocument& document);
SURROGATE_SESSION_EXPORT ReportJson::Json json(const ProjectDocument& document);
} // namespace ProjectReport
