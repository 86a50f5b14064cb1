#pragma once

#include <surrogate_session/Export.h>

#include <memory>
#include <string>
#include <string_view>

class UnfinishedFile;

/**
 * Writes a file whole or not at all: what is written goes to a temporary file in the target's
 * folder, which takes the target's place at commit() and has no name before, where the file system
 * can do that: a program that is killed leaves nothing behind. Where it cannot, and for the
 * moment in which it takes the place of another file, the temporary file is an UnfinishedFile. A
 * link is followed, the permissions of a file that is replaced are kept. What is no regular file (a
 * device, a pipe) and the standard output, "-", are written to directly.
 *
 * A backup, if wanted, is the file that is replaced, beside it as NAME.bak; an older backup goes.
 * At every moment NAME is either the old file or the new one.
 */
class SURROGATE_SESSION_EXPORT OutputFile
{
public:
    /** The reader of a pipe has gone: what is written is of no use to anybody. */
    class ReaderGone
    {};

    enum Backup
    {
        KeepsNoBackup,
        KeepsBackup
    };

    /** @throw FileError if the file cannot be made. */
    explicit OutputFile(const std::string& path, Backup backup = KeepsNoBackup);

    /** Without commit() before, the target stays as it was. */
    ~OutputFile();

    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /** @throw FileError, for instance when the disk is full; @throw ReaderGone */
    void write(std::string_view text);

    /** Writes what is left and puts the file in its place; like write() in what it throws. */
    void commit();

    /**
     * Whether a file could be written there now: to be asked before long work.
     * @throw FileError as the constructor would.
     */
    static void check(const std::string& path, Backup backup = KeepsNoBackup);

private:
    bool openNameless();
    void openNamed();
    void flush();
    void flushToDisk() const;
    void nameTemporary();
    void keepBackup() const;
    void flushFolder() const;
    [[noreturn]] void fail(int error) const;

    std::string path;
    std::string target;                        ///< empty where it is written to directly
    std::unique_ptr<UnfinishedFile> temporary; ///< null as long as it has no name
    std::string backup;                        ///< empty if none is wanted
    std::string buffer;
    int descriptor = -1;
};
