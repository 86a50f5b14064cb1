#pragma once

#include <string>

class CaseSession;

/** Writes what a fit has to say with its pictures as a page of HTML, whole or not at all.
 *  @throw FileError, SurrogateModelInterface::Error */
void writeFitReport(CaseSession& session, const std::string& path);
