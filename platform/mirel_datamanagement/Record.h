#pragma once

#include <mirel_datamanagement/Export.h>
#include <mirel_datamanagement/WeakPtr.h>

#include <cstddef>

/**
 * One case of a project: a row, known by a number that stays with it. Made and changed by its
 * Project only. An object that is kept by lock() answers also after its removal and after the end
 * of its project, with what it was then.
 */
class MIREL_DATAMANAGEMENT_EXPORT Record
{
public:
    virtual ~Record();

    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    /** Whether the user lets the case take part in models; true for a new record. */
    virtual bool isIncluded() const;

    /** From 1, in order of creation within the project; the id of a removed record is not reused.
     */
    unsigned long id() const;

    /** Whether it is in its project now: not removed, and the project still open. */
    bool isInProject() const;

protected:
    /** Included, and in no project yet. */
    explicit Record(unsigned long id);

private:
    friend class RecordTable;

    unsigned long identifier;
    bool included = true;
    bool inProject = false;
};

/** The handle of a record; identities are the order of creation in the process, from 1. */
using RecordPtr = WeakPtr<Record, std::size_t>;
