#pragma once

#include <surrogate_session/Export.h>

#include <memory>
#include <string>
#include <string_view>

class QSaveFile;

/**
 * Writes a file whole or not at all: the text goes to a temporary file in the target's folder,
 * which takes the target's place at commit(). A link is followed, and the permissions of the file
 * that is replaced are kept. What is no regular file (a device, a pipe) and the standard output,
 * "-", are written to directly; a terminal gets no control characters but line ends and tabs.
 *
 * A backup, if wanted, is a copy of the file that is replaced, next to it as NAME.bak; it replaces
 * an older backup. At every moment NAME is either the old file or the new one.
 */
class SURROGATE_SESSION_EXPORT OutputFile
{
public:
    /** Whoever read the pipe that is written to has closed it. */
    class BrokenPipe
    {};

    enum Backup
    {
        KeepsNoBackup,
        KeepsBackup
    };

    /** @throw FileError if the file cannot be created. */
    explicit OutputFile(const std::string& path, Backup backup = KeepsNoBackup);

    /** Without commit() before, the target stays as it was. */
    ~OutputFile();

    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /** @throw FileError, for instance when the disk is full; @throw BrokenPipe */
    void write(std::string_view text);

    /** Writes what is left and puts the file in its place. @throw as write() */
    void commit();

    /**
     * Checks whether a file could be written there now, before long work.
     * @throw FileError as the constructor would.
     */
    static void check(const std::string& path, Backup backup = KeepsNoBackup);

private:
    void openTemporary(Backup wanted);
    void flush();
    void keepBackup() const;
    [[noreturn]] void fail(const std::string& reason) const;

    std::string path;
    std::unique_ptr<QSaveFile> temporary; ///< null where the path is written to directly
    std::string backup;                   ///< empty if none is wanted
    std::string buffer;
    int descriptor = -1;
};
