#pragma once

#include <session/ProjectDocument.h>

#include <string>

/** A document with something in every field, for a case file of that path. */
inline ProjectDocument sampleProject(const std::string& caseFile)
{
    ProjectDocument project;
    project.caseFile.path = caseFile;
    project.caseFile.fingerprint.bytes = 120;
    project.caseFile.fingerprint.sha256 = std::string(64, 'a');
    project.caseFile.separator = ';';
    project.caseFile.hasDecimalComma = true;
    project.variables = {{"x", Variable::Independent, ProjectDocument::Range(-0.5, 1e300)},
                         {"y", Variable::Dependent, {}},
                         {"z", Variable::Dependent, ProjectDocument::Range(2, 2)},
                         {"note", Variable::Unassigned, {}}};
    project.outputs = {"z", "y"};
    project.excluded = {0, 2, 3, 4, 11};
    project.sweeps = {{"x", 11, ProjectDocument::Range(1, 0.1)}};
    return project;
}
