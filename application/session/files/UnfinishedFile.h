#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>

/**
 * While one lives, its file is one that is not to stay if the program ends now: it has a name of
 * its own before it gets the one that it is written for. The file itself comes and goes
 * independently of it.
 */
class SURROGATE_SESSION_EXPORT UnfinishedFile
{
public:
    /** Before the file is made, so that there is no moment at which it would stay. */
    explicit UnfinishedFile(const std::string& path);
    ~UnfinishedFile();

    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

    const std::string& path() const { return pathText; }

    /** Removes the files of all that live; may be called by the handler of a signal. */
    static void removeAll() noexcept;

private:
    std::string pathText;
    std::size_t slot;
};
