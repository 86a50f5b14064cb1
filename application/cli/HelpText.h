#pragma once

#include <string>

/** What `surrogate --help` prints. */
std::string helpText();

/** What `surrogate --version` prints. */
std::string versionText();
