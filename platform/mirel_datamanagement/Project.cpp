#include <mirel_datamanagement/Project.h>

#include <mirel_datamanagement/ProjectError.h>
#include <mirel_datamanagement/RecordTable.h>
#include <mirel_datamanagement/VariableImpl.h>
#include <mirel_datamanagement/VariableName.h>

#include <boost/smart_ptr/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <exception>
#include <iomanip>
#include <limits>
#include <locale>
#include <sstream>
#include <unordered_map>

namespace {

/** Whether a listener could tell the two numbers apart; all NaN are the one missing value. */
bool isSameValue(double left, double right)
{
    if (std::isnan(left) || std::isnan(right)) {
        return std::isnan(left) && std::isnan(right);
    }
    return left == right && std::signbit(left) == std::signbit(right);
}

void checkNature(const std::string& name, Variable::Nature nature)
{
    switch (nature) {
    case Variable::Unassigned:
    case Variable::Dependent:
    case Variable::Independent:
        return;
    }
    throw ProjectError("The nature of variable " + quotedName(name) +
                       " must be 0 (unassigned), 1 (dependent) or 2 (independent), not " +
                       std::to_string(static_cast<int>(nature)) + ".");
}

void checkRange(const std::string& name, std::pair<double, double> range)
{
    if (std::isfinite(range.first) && std::isfinite(range.second) && range.first <= range.second) {
        return;
    }
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::setprecision(15) << range.first << " to " << range.second;
    throw ProjectError("The range of variable " + quotedName(name) +
                       " must be two finite numbers, the smaller one first, not " + text.str() +
                       ".");
}

boost::shared_ptr<Project>& openProject()
{
    // Never destroyed: objects that outlive main() may still ask for the open project.
    static auto* const open = new boost::shared_ptr<Project>(new Project);
    return *open;
}

} // namespace

/**
 * The change signal and the groups that delay it. Shared with every emission and group, so that a
 * listener may close the project.
 */
struct MIREL_DATAMANAGEMENT_NO_EXPORT Project::Changes
{
    ChangedSignal signal;
    int openGroups = 0;
    bool isPending = false;

    static void report(std::shared_ptr<Changes> changes)
    {
        if (changes->openGroups > 0) {
            changes->isPending = true;
        } else {
            changes->signal();
        }
    }
};

class MIREL_DATAMANAGEMENT_NO_EXPORT Project::Impl
{
public:
    ~Impl();

    /** The variable of a handle, in the project or removed from it. */
    Variable::Impl& owned(const VarPtr& handle) const;
    Variable::Impl& ownedOfKind(const VarPtr& handle, bool numeric) const;
    Variable::Impl& present(const VarPtr& handle) const;

    Record& owned(const RecordPtr& handle) const;
    std::size_t presentRow(const RecordPtr& handle) const;

    void checkNameIsFree(const std::string& name) const;

    /** @return the handle as it stands in the order, valid until the next change. */
    template <class Value>
    const VarPtr& addVariable(const std::string& name, Variable::Nature nature,
                              std::vector<Value> values, const Value& missing);

    /** Room in every column, so that appendRecords() cannot fail half-way. */
    void prepareRecords(std::size_t count);
    void appendRecords(std::size_t count) noexcept;

    std::shared_ptr<Changes> changes = std::make_shared<Changes>();
    RecordTable records;

    /** Every variable that was ever added: a removed one must be there to be restored. */
    std::vector<boost::shared_ptr<Variable>> allVariables;

    /** The variables in the project, in project order and by name. */
    std::vector<VarPtr> order;
    std::unordered_map<std::string, VarPtr> byName;
};

Project::Impl::~Impl()
{
    // A running emission keeps its slots: none may be called after the project is destroyed.
    changes->signal.disconnect_all_slots();
    for (const boost::shared_ptr<Variable>& variable : allVariables) {
        variable->impl->inProject = false;
        variable->impl->owner = nullptr;
    }
}

Variable::Impl& Project::Impl::owned(const VarPtr& handle) const
{
    const boost::shared_ptr<Variable> variable = handle.lock();
    if (variable->impl->owner != this) {
        throw ProjectError("The variable " + quotedName(variable->name()) +
                           " belongs to another project.");
    }
    return *variable->impl;
}

Variable::Impl& Project::Impl::ownedOfKind(const VarPtr& handle, bool numeric) const
{
    Variable::Impl& variable = owned(handle);
    if (variable.holdsNumbers != numeric) {
        throw ProjectError("The variable " + quotedName(variable.nameText) + " holds " +
                           (numeric ? "text, not numbers." : "numbers, not text."));
    }
    return variable;
}

Variable::Impl& Project::Impl::present(const VarPtr& handle) const
{
    Variable::Impl& variable = owned(handle);
    if (!variable.inProject) {
        throw ProjectError("The variable " + quotedName(variable.nameText) +
                           " has been removed from the project; restore it before it is changed.");
    }
    return variable;
}

Record& Project::Impl::owned(const RecordPtr& handle) const
{
    const boost::shared_ptr<Record> record = handle.lock();
    if (!records.owns(*record, handle)) {
        throw ProjectError("The record " + std::to_string(record->id()) +
                           " belongs to another project.");
    }
    return *record;
}

std::size_t Project::Impl::presentRow(const RecordPtr& handle) const
{
    const Record& record = owned(handle);
    if (!record.isInProject()) {
        throw ProjectError("The record " + std::to_string(record.id()) +
                           " has been removed from the project; it cannot be changed.");
    }
    return records.rowOf(record.id());
}

void Project::Impl::checkNameIsFree(const std::string& name) const
{
    if (byName.count(name) > 0) {
        throw ProjectError("The project has a variable " + quotedName(name) +
                           " already; every variable needs a name of its own.");
    }
}

template <class Value>
const VarPtr& Project::Impl::addVariable(const std::string& name, Variable::Nature nature,
                                         std::vector<Value> values, const Value& missing)
{
    checkVariableName(name);
    checkNameIsFree(name);
    checkNature(name, nature);

    // All that can fail comes first, so that a refused variable leaves no trace.
    const std::size_t newRecords = values.size() - std::min(values.size(), records.count());
    values.resize(std::max(values.size(), records.count()), missing);
    boost::shared_ptr<Variable> variable(
        new Variable(std::make_unique<Variable::Impl>(name, nature, std::move(values))));
    const VarPtr handle(variable, variable->impl->identity);
    prepareRecords(newRecords);
    if (allVariables.size() == allVariables.capacity()) {
        allVariables.reserve(2 * allVariables.size() + 1);
    }
    order.reserve(allVariables.capacity());
    byName.emplace(name, handle);

    appendRecords(newRecords);
    variable->impl->owner = this;
    variable->impl->inProject = true;
    order.push_back(handle);
    allVariables.push_back(std::move(variable));
    return order.back();
}

void Project::Impl::prepareRecords(std::size_t count)
{
    if (count == 0) {
        return;
    }
    records.prepareToAppend(count);
    for (const boost::shared_ptr<Variable>& variable : allVariables) {
        variable->impl->prepareToAppend(count);
    }
}

void Project::Impl::appendRecords(std::size_t count) noexcept
{
    if (count == 0) {
        return;
    }
    records.append(count);
    for (const boost::shared_ptr<Variable>& variable : allVariables) {
        variable->impl->appendMissing(count);
    }
}

Project::Project() : impl(std::make_unique<Impl>()) {}

Project::~Project() = default;

boost::shared_ptr<Project> Project::project()
{
    return openProject();
}

void Project::setProject(boost::shared_ptr<Project> next)
{
    if (!next) {
        next = boost::make_shared<Project>();
    }
    // The former project is destroyed with the argument, when the new one is in place already.
    openProject().swap(next);
}

std::vector<VarPtr> Project::variables() const
{
    return impl->order;
}

VarPtr Project::variable(const std::string& name) const
{
    const auto found = impl->byName.find(name);
    return found == impl->byName.end() ? VarPtr() : found->second;
}

RecordPtr Project::record(unsigned long id) const
{
    return impl->records.handle(id);
}

std::vector<RecordPtr> Project::records() const
{
    std::vector<RecordPtr> handles;
    handles.reserve(recordCount());
    for (const unsigned long id : impl->records.ids().get()) {
        handles.push_back(record(id));
    }
    return handles;
}

std::size_t Project::recordCount() const
{
    return impl->records.count();
}

VarPtr Project::addNumericVariable(const std::string& name, Variable::Nature nature,
                                   std::vector<double> values)
{
    const VarPtr added = impl->addVariable(name, nature, std::move(values),
                                           std::numeric_limits<double>::quiet_NaN());
    Changes::report(impl->changes);
    return added;
}

VarPtr Project::addTextVariable(const std::string& name, Variable::Nature nature,
                                std::vector<std::string> values)
{
    const VarPtr added = impl->addVariable(name, nature, std::move(values), std::string());
    Changes::report(impl->changes);
    return added;
}

void Project::removeVariable(const VarPtr& handle)
{
    Variable::Impl& variable = impl->owned(handle);
    if (!variable.inProject) {
        return;
    }
    impl->order.erase(std::find(impl->order.begin(), impl->order.end(), handle));
    impl->byName.erase(variable.nameText);
    variable.inProject = false;
    Changes::report(impl->changes);
}

void Project::restoreVariable(const VarPtr& handle, std::size_t position)
{
    Variable::Impl& variable = impl->owned(handle);
    if (variable.inProject) {
        return;
    }
    impl->checkNameIsFree(variable.nameText);

    // The order has room for every variable that was ever added: only the name can fail.
    impl->byName.emplace(variable.nameText, handle);
    const std::size_t place = std::min(position, impl->order.size());
    impl->order.insert(impl->order.begin() + static_cast<std::ptrdiff_t>(place), handle);
    variable.inProject = true;
    Changes::report(impl->changes);
}

void Project::moveVariable(const VarPtr& handle, std::size_t position)
{
    impl->present(handle);
    const auto from = std::find(impl->order.begin(), impl->order.end(), handle);
    const std::size_t place = std::min(position, impl->order.size() - 1);
    const auto to = impl->order.begin() + static_cast<std::ptrdiff_t>(place);
    if (from == to) {
        return;
    }
    if (from < to) {
        std::rotate(from, from + 1, to + 1);
    } else {
        std::rotate(to, from, from + 1);
    }
    Changes::report(impl->changes);
}

void Project::renameVariable(const VarPtr& handle, const std::string& name)
{
    Variable::Impl& variable = impl->present(handle);
    if (variable.nameText == name) {
        return;
    }
    checkVariableName(name);
    impl->checkNameIsFree(name);

    std::string newName = name;
    impl->byName.emplace(name, handle);
    impl->byName.erase(variable.nameText);
    variable.nameText.swap(newName);
    Changes::report(impl->changes);
}

void Project::setNature(const VarPtr& handle, Variable::Nature nature)
{
    Variable::Impl& variable = impl->present(handle);
    checkNature(variable.nameText, nature);
    if (variable.natureValue == nature) {
        return;
    }
    variable.natureValue = nature;
    Changes::report(impl->changes);
}

void Project::setRange(const VarPtr& handle, std::pair<double, double> range)
{
    Variable::Impl& variable = impl->present(handle);
    checkRange(variable.nameText, range);
    if (variable.chosenRange && isSameValue(variable.chosenRange->first, range.first) &&
        isSameValue(variable.chosenRange->second, range.second)) {
        return;
    }
    variable.chosenRange = range;
    Changes::report(impl->changes);
}

void Project::resetRange(const VarPtr& handle)
{
    Variable::Impl& variable = impl->present(handle);
    if (variable.chosenRange) {
        variable.chosenRange.reset();
        Changes::report(impl->changes);
    }
}

RecordPtr Project::addRecord()
{
    impl->prepareRecords(1);
    impl->appendRecords(1);
    const RecordPtr added = record(impl->records.ids().get().back());
    Changes::report(impl->changes);
    return added;
}

void Project::removeRecord(const RecordPtr& handle)
{
    Record& record = impl->owned(handle);
    if (!record.isInProject()) {
        return;
    }
    const std::size_t row = impl->records.rowOf(record.id());

    // Copies of shared columns come first: past them nothing can fail half-way.
    for (const boost::shared_ptr<Variable>& variable : impl->allVariables) {
        variable->impl->prepareToErase();
    }
    impl->records.remove(record);
    for (const boost::shared_ptr<Variable>& variable : impl->allVariables) {
        variable->impl->eraseRow(row);
    }
    Changes::report(impl->changes);
}

void Project::setIncluded(const RecordPtr& handle, bool isIncluded)
{
    impl->presentRow(handle);
    if (impl->records.setIncluded(*handle.lock(), isIncluded)) {
        Changes::report(impl->changes);
    }
}

void Project::setRowsIncluded(const std::vector<std::size_t>& rows, bool isIncluded)
{
    const auto last = std::max_element(rows.begin(), rows.end());
    if (last != rows.end() && *last >= recordCount()) {
        throw ProjectError("There is no record at position " + std::to_string(*last) +
                           "; the project has " + std::to_string(recordCount()) +
                           " records, counted from 0.");
    }
    if (impl->records.setIncluded(rows, isIncluded)) {
        Changes::report(impl->changes);
    }
}

std::vector<std::size_t> Project::excludedRows() const
{
    return impl->records.excludedRows();
}

const std::vector<double>& Project::numericValues(const VarPtr& handle) const
{
    return impl->ownedOfKind(handle, true).numbers.get();
}

const std::vector<std::string>& Project::textValues(const VarPtr& handle) const
{
    return impl->ownedOfKind(handle, false).texts.get();
}

boost::shared_ptr<const std::vector<double>>
Project::sharedNumericValues(const VarPtr& handle) const
{
    return impl->ownedOfKind(handle, true).numbers.share();
}

boost::shared_ptr<const std::vector<std::string>>
Project::sharedTextValues(const VarPtr& handle) const
{
    return impl->ownedOfKind(handle, false).texts.share();
}

boost::shared_ptr<const std::vector<unsigned long>> Project::sharedRecordIds() const
{
    return impl->records.ids().share();
}

void Project::setValue(const RecordPtr& record, const VarPtr& handle, double value)
{
    Variable::Impl& variable = impl->present(handle);
    impl->ownedOfKind(handle, true);
    const std::size_t row = impl->presentRow(record);
    if (isSameValue(variable.numbers.get()[row], value)) {
        return;
    }
    variable.numbers.writable()[row] = value;
    variable.knownRangeOfValues.reset();
    Changes::report(impl->changes);
}

void Project::setValue(const RecordPtr& record, const VarPtr& handle, const std::string& value)
{
    Variable::Impl& variable = impl->present(handle);
    impl->ownedOfKind(handle, false);
    const std::size_t row = impl->presentRow(record);
    if (variable.texts.get()[row] == value) {
        return;
    }
    variable.texts.writable()[row] = value;
    Changes::report(impl->changes);
}

boost::signals2::connection
Project::connectSignalChanged(const ChangedSignal::slot_type& slot) const
{
    return impl->changes->signal.connect(slot);
}

Project::ChangeGroup::ChangeGroup(Project& project)
    : changes(project.impl->changes), exceptionsBefore(std::uncaught_exceptions())
{
    ++changes->openGroups;
}

Project::ChangeGroup::~ChangeGroup() noexcept(false)
{
    --changes->openGroups;
    if (changes->openGroups > 0 || !changes->isPending) {
        return;
    }
    changes->isPending = false;
    if (std::uncaught_exceptions() == exceptionsBefore) {
        changes->signal();
        return;
    }
    // Changes made before the exception stand, so that listeners are called; what they throw is
    // dropped in favour of the exception that is propagating.
    try {
        changes->signal();
    } catch (...) {
    }
}
