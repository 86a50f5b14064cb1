#pragma once

#include <surrogate_session/Export.h>

#include <string>

/**
 * How a document refers to another file: relative to the document's folder, so that both can be
 * moved together; absolute where no relative path leads to the same place. A document that is a
 * link refers from where it leads to.
 * @param documentPath as the user gives it, like the other path: absolute or from the current
 *                     folder. Neither file has to be there yet.
 */
SURROGATE_SESSION_EXPORT std::string pathInDocument(const std::string& documentPath,
                                                    const std::string& path);

/** The inverse: the shortest path that is usable from the current folder. */
SURROGATE_SESSION_EXPORT std::string pathFromDocument(const std::string& documentPath,
                                                      const std::string& path);
