#include <mirel_analyzercommon/GenericUndoCommand.h>

#include <mirel_analyzercommon/DeleteSignaler.h>
#include <mirel_analyzercommon/UndoStackState.h>

#include <boost/signals2/connection.hpp>

#include <utility>

namespace {

void callCopy(const boost::function<void()>& function)
{
    const boost::function<void()> copy = function;
    if (copy) {
        copy();
    }
}

} // namespace

class GenericUndoCommand::Impl
{
public:
    boost::function<void()> redo;
    boost::function<void()> undo;
    const DeleteSignaler* deleteSignaler = nullptr;
    int id = -1;
    bool isObjectDestroyed = false;
    bool isRecorded = false;
    boost::signals2::scoped_connection deletedConnection;
};

GenericUndoCommand::GenericUndoCommand(boost::function<void()> redo, boost::function<void()> undo,
                                       const DeleteSignaler* deleteSignaler, const QString& text,
                                       int id, QUndoCommand* parent)
    : QUndoCommand(text, parent), impl(std::make_unique<Impl>())
{
    impl->redo = std::move(redo);
    impl->undo = std::move(undo);
    impl->deleteSignaler = deleteSignaler;
    impl->id = id;
    if (deleteSignaler) {
        impl->deletedConnection = deleteSignaler->connectSignalDeleted([this] {
            impl->isObjectDestroyed = true;
            impl->redo.clear();
            impl->undo.clear();
        });
    }
}

GenericUndoCommand::~GenericUndoCommand() = default;

int GenericUndoCommand::id() const
{
    return impl->id;
}

bool GenericUndoCommand::mergeWith(const QUndoCommand* other)
{
    const auto* newer = dynamic_cast<const GenericUndoCommand*>(other);
    if (!newer || impl->id < 0 || newer->impl->id != impl->id) {
        return false;
    }
    // A new object may have the address of a destroyed one.
    if (impl->isObjectDestroyed || newer->impl->isObjectDestroyed ||
        newer->impl->deleteSignaler != impl->deleteSignaler) {
        return false;
    }
    if (childCount() > 0 || newer->childCount() > 0) {
        return false;
    }
    impl->redo = newer->impl->redo;
    return true;
}

// Qt looks at an obsolete command right after it has run: a command that became obsolete at another
// time could be deleted by an undo that is to have no effect.
void GenericUndoCommand::redo()
{
    UndoStackState& state = UndoStackState::instance();
    if (state.takeDoneBeforePush(this)) {
        impl->isRecorded = true;
        return;
    }
    if (impl->isRecorded && state.isBlocked()) {
        return;
    }
    if (!impl->isObjectDestroyed) {
        const UndoStackState::Run run;
        callCopy(impl->redo);
        QUndoCommand::redo();
    }
    if (impl->isObjectDestroyed) {
        setObsolete(true);
    }
}

void GenericUndoCommand::undo()
{
    if (impl->isRecorded && UndoStackState::instance().isBlocked()) {
        return;
    }
    if (!impl->isObjectDestroyed) {
        const UndoStackState::Run run;
        QUndoCommand::undo();
        callCopy(impl->undo);
    }
    if (impl->isObjectDestroyed) {
        setObsolete(true);
    }
}
