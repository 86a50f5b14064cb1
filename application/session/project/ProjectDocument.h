#pragma once

#include <session/project/ProjectContents.h>

#include <surrogate_session/Export.h>

#include <memory>
#include <string>
#include <vector>

class SerializerInterface;

/**
 * The contents of a project file (NAME.surrogate.xml), a plain value: where the cases are and how
 * they are read, the roles of the variables and other settings, and the settings of the library as
 * the XML elements that its serializers write. The open project is not changed.
 *
 * Unknown children of the root and of "SurrogateModel", which a newer version may have written, are
 * kept and written back after the known ones. Everything else that is unknown is refused, so that
 * saving never drops anything silently; only comments outside of unknown elements are not kept.
 */
class SURROGATE_SESSION_EXPORT ProjectDocument : public ProjectContents
{
public:
    /** What the names of project files end with, so that they can be distinguished from case files.
     */
    static constexpr const char* fileEnding = ".surrogate.xml";

    /** A distribution element: the distribution of one variable. */
    struct Distribution
    {
        std::string name;
        std::string mode; ///< "Auto" or "UserDefined", as the element says, or something else
        std::string text;
    };

    enum CaseFileState
    {
        Unchanged,
        Changed,
        Missing
    };

    struct CaseFileCheck
    {
        CaseFileState state = Unchanged;
        std::string sentence; ///< what happened; empty for Unchanged
    };

    /** Whether a path names a project file. */
    static bool isProjectFile(const std::string& path);

    /** An empty project. */
    ProjectDocument();

    /**
     * Reads a project file.
     * @throw ProjectDocumentError for a document that is not accepted as a whole, with file, line
     *        and column; @throw FileError if it cannot be read.
     */
    static ProjectDocument load(const std::string& path);

    /**
     * Writes it whole or not at all, as OutputFile does; the file that it replaces stays as
     * NAME.bak. The same project gives the same bytes.
     * @throw ProjectDocumentError for what load() would not accept, before anything is written;
     * @throw FileError if it cannot be written.
     */
    void save(const std::string& path) const;

    /** Compares the case file with what is known of it; its bytes are read only if their number is
     *  the same. @throw FileError if it is there and cannot be read. */
    CaseFileCheck checkCaseFile() const;

    /**
     * Takes over the settings that two serializers write.
     * @param model             writes an element "SurrogateModel".
     * @param userDistributions writes the block of the user distributions.
     */
    void takeSettings(const SerializerInterface& model,
                      const SerializerInterface& userDistributions);

    /**
     * Has the serializers read the settings; what the document does not hold stays as it is.
     * @throw ProjectDocumentError for a mode that does not exist, before anything is read; and what
     *        the serializers throw.
     */
    void giveSettings(const SerializerInterface& model,
                      const SerializerInterface& userDistributions) const;

    /** The text of the model's type, as it stands in the document; empty if there is none. */
    std::string modelType() const;

    /** The model's inputs, as they stand in the document. */
    std::vector<std::string> modelInputs() const;

    std::vector<Distribution> evaluationPoint() const;
    std::vector<Distribution> userDistributions() const;

private:
    friend SURROGATE_SESSION_EXPORT bool operator==(const ProjectDocument& left,
                                                    const ProjectDocument& right);
    class Impl;

    // Immutable, so that copies can share it.
    std::shared_ptr<const Impl> impl;
};

/** Whether they would be saved as the same bytes. */
SURROGATE_SESSION_EXPORT bool operator==(const ProjectDocument& left, const ProjectDocument& right);
