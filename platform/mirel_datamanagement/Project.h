#pragma once

#include <mirel_datamanagement/Export.h>
#include <mirel_datamanagement/Record.h>
#include <mirel_datamanagement/Variable.h>

#include <boost/signals2/signal.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/**
 * The data of one study: variables (columns), records (rows) and one cell for each pair, kept
 * column by column. It owns all of them; other objects hold handles.
 *
 * Every change that really changes something is followed by one emission of the change signal; a
 * call that sets what is there already emits nothing. When a listener throws, its exception
 * reaches the caller of the operation and the change stands.
 *
 * Failures: HandleError for a null handle or one whose object has been destroyed; ProjectError,
 * with a sentence for the user, for everything else that is refused: handles of another project,
 * changes of a variable or record that has been removed, names, ranges and natures that cannot be.
 * After either the project is as it was before the call. Not copyable; one thread.
 */
class MIREL_DATAMANAGEMENT_EXPORT Project
{
public:
    /** The signal does not say what has changed: slots read the project again. */
    using ChangedSignal = boost::signals2::signal<void()>;

    /** No variables, no records. */
    Project();

    /**
     * Disconnects every listener, also those that a running emission has yet to reach. Handles of
     * the project are no longer valid; objects that are locked live on.
     */
    ~Project();

    Project(const Project&) = delete;
    Project& operator=(const Project&) = delete;

    /** The open project, never null: an empty one is open from the start. */
    static boost::shared_ptr<Project> project();

    /**
     * Opens another project; null closes the present one and opens an empty one. No signal is
     * emitted: the caller sets up the objects that use the new project.
     */
    static void setProject(boost::shared_ptr<Project>);

    /** The variables in project order, without the removed ones. */
    std::vector<VarPtr> variables() const;

    /** The variable with exactly these bytes as its name; null when there is none. */
    VarPtr variable(const std::string& name) const;

    /** The record with this id; null when there is none, as for 0. */
    RecordPtr record(unsigned long id) const;

    /** The records in project order, which is creation order, without the removed ones. */
    std::vector<RecordPtr> records() const;

    /** How many records there are, without the removed ones: the length of each column. */
    std::size_t recordCount() const;

    /**
     * Adds a variable at the end of the project order.
     * @param name   not empty, not taken, UTF-8, no character that XML cannot carry.
     * @param values one number per record, in record order; NaN is a missing cell. Cells that are
     *               not given are missing; numbers beyond the last record add records, whose cells
     *               in the other variables are missing. Move a long column in: it is not copied.
     */
    VarPtr addNumericVariable(const std::string& name, Variable::Nature nature,
                              std::vector<double> values = {});

    /** Like addNumericVariable(), with "" for missing cells. */
    VarPtr addTextVariable(const std::string& name, Variable::Nature nature,
                           std::vector<std::string> values = {});

    /**
     * Takes a variable out. The project keeps it with its values for restoreVariable(): its handle
     * is not valid meanwhile but can be locked, and its name is free for others. Removing it again
     * changes nothing.
     */
    void removeVariable(const VarPtr& variable);

    /**
     * Puts a removed variable back to `position` in project order (past the end: last), with the
     * cells it had; records added meanwhile have missing cells, records removed are gone. Refused
     * while another variable has its name; changes nothing for a variable that is there.
     */
    void restoreVariable(const VarPtr& variable, std::size_t position);

    /** Moves a variable so that it is number `position` in project order (past the end: last). */
    void moveVariable(const VarPtr& variable, std::size_t position);

    /** @param name as in addNumericVariable(); handles stay valid. */
    void renameVariable(const VarPtr& variable, const std::string& name);
    /** Makes it an output, an input or neither. @throw ProjectError also for another number. */
    void setNature(const VarPtr& variable, Variable::Nature nature);

    /** Sets the range in the variable's units: both finite, first <= second. */
    void setRange(const VarPtr& variable, std::pair<double, double> range);

    /** Lets the range follow the values again. */
    void resetRange(const VarPtr& variable);

    /** Adds a record at the end, included, all its cells missing. */
    RecordPtr addRecord();

    /**
     * Takes a record and its cells out. Its handle is not valid then but can be locked; its id is
     * not used again. Removing it again changes nothing.
     */
    void removeRecord(const RecordPtr& record);

    /** Whether models use the case, see Record::isIncluded(). */
    void setIncluded(const RecordPtr& record, bool isIncluded);

    /**
     * The same for many records at once, by their positions in record order, as one change.
     * @throw ProjectError for a position at which there is no record; nothing is changed then.
     */
    void setRowsIncluded(const std::vector<std::size_t>& rows, bool isIncluded);

    /** The positions of the records that are not included, ascending. */
    std::vector<std::size_t> excludedRows() const;

    /**
     * The cells of a variable, one per record in record order; also of a removed variable. The
     * reference is valid until the next change of the project; the shared form keeps these values
     * for as long as it is held, since the project changes a copy then. @{
     */
    const std::vector<double>& numericValues(const VarPtr& variable) const;
    const std::vector<std::string>& textValues(const VarPtr& variable) const;
    boost::shared_ptr<const std::vector<double>> sharedNumericValues(const VarPtr&) const;
    boost::shared_ptr<const std::vector<std::string>> sharedTextValues(const VarPtr&) const;
    /** @} */

    /** The ids of the records in record order, kept like the shared values. */
    boost::shared_ptr<const std::vector<unsigned long>> sharedRecordIds() const;

    /** Sets one cell; a number for numeric variables only (NaN: missing), text for others. @{ */
    void setValue(const RecordPtr& record, const VarPtr& variable, double value);
    void setValue(const RecordPtr& record, const VarPtr& variable, const std::string& value);
    /** @} */

private:
    struct Changes;

public:
    /**
     * Makes several changes one for the listeners: while one lives nothing is emitted, and the end
     * of the outermost emits once, if anything changed. What a listener throws leaves the
     * destructor, unless another exception is propagating.
     */
    class MIREL_DATAMANAGEMENT_EXPORT ChangeGroup
    {
    public:
        /** @param project borrowed; it may be destroyed before the group is. */
        explicit ChangeGroup(Project& project);
        ~ChangeGroup() noexcept(false);

        ChangeGroup(const ChangeGroup&) = delete;
        ChangeGroup& operator=(const ChangeGroup&) = delete;

    private:
        std::shared_ptr<Changes> changes;
        int exceptionsBefore;
    };

    /** Connects a listener, called after every change on the thread that makes it. */
    boost::signals2::connection connectSignalChanged(const ChangedSignal::slot_type& slot) const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
