#pragma once

#include <property/PropertyAbstract.h>

#include <mirel_analyzercommon/DeleteSignaler.h>
#include <mirel_analyzercommon/GenericUndoCommand.h>
#include <mirel_analyzercommon/UndoStack.h>

#include <QString>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace veska {

/**
 * Sets another property, its target, and records the change as a step on the application's undo
 * stack, titled "Change " and the display name. Commands that listeners push while they react join
 * that step. Changes that reach the target by other means are passed on to the proxy's listeners
 * and are not recorded.
 *
 * Listeners are called once for a set(), but twice for an undo or redo, both times with the same
 * value: once through the target and once by the proxy itself.
 *
 * Shares ownership of the target and of its validator. Commands that outlive the proxy do nothing.
 */
template <class T>
class UndoablePropertyProxy : public PropertyAbstract<T>, public DeleteSignaler
{
public:
    /**
     * @param displayName what users call the property, in UTF-8.
     * @param target      shared from now on.
     * @throw std::invalid_argument if `target` is null.
     */
    UndoablePropertyProxy(const std::string& displayName,
                          boost::shared_ptr<PropertyAbstract<T>> target)
        : PropertyAbstract<T>(checked(target).validator()),
          undoText(QStringLiteral("Change ") + QString::fromStdString(displayName)), target(target)
    {
        // The signal itself, not emitChanged(): that one is empty here.
        targetConnection = target->connectSignalChanged(
            [this](const T& value) { emitSignal(this->signalChanged, value); });
    }

    T get() const override { return target->get(); }

protected:
    /**
     * Sets the target, then records the command that does it: listeners push their commands first,
     * so that undo takes this change back before theirs. An exception passes; the change is not
     * recorded then.
     */
    void setValue(const T& newValue) override
    {
        const ApplyingBlock block(applyDepth);
        std::unique_ptr<GenericUndoCommand> command = commandTo(newValue);
        if (mergeId == -1) {
            const UndoStack::Macro macro(undoText);
            setTargetAndPush(newValue, std::move(command));
        } else {
            setTargetAndPush(newValue, std::move(command));
        }
    }

    /** Empty: the target's signal and applyValue() call the listeners. */
    void emitChanged(const T&) override {}

    /** The body of undo and redo: puts `value` into the target without recording anything. */
    virtual void applyValue(const T& value)
    {
        // Recording the command makes the stack redo it at once, when the target has it already.
        if (applyDepth != 0) {
            return;
        }
        if (target->get() == value) {
            return;
        }
        const boost::shared_ptr<PropertyAbstract<T>> self = this->weak_from_this().lock();
        const UndoStack::SuspendUndoRecording suspension;
        target->set(value);
        emitSignal(this->signalChanged, value);
    }

private:
    static const PropertyAbstract<T>& checked(const boost::shared_ptr<PropertyAbstract<T>>& target)
    {
        if (!target) {
            throw std::invalid_argument("An undoable property needs a target, but got a null "
                                        "pointer.");
        }
        return *target;
    }

    // Counts, since a listener may set the proxy again while it is being set.
    class ApplyingBlock
    {
    public:
        explicit ApplyingBlock(std::uint64_t& depth) : depth(depth) { ++depth; }
        ~ApplyingBlock() { --depth; }
        ApplyingBlock(const ApplyingBlock&) = delete;
        ApplyingBlock& operator=(const ApplyingBlock&) = delete;

    private:
        std::uint64_t& depth;
    };

    std::unique_ptr<GenericUndoCommand> commandTo(const T& newValue)
    {
        const T oldValue = target->get();
        return std::make_unique<GenericUndoCommand>([this, newValue] { applyValue(newValue); },
                                                    [this, oldValue] { applyValue(oldValue); },
                                                    this, undoText, mergeId);
    }

    void setTargetAndPush(const T& newValue, std::unique_ptr<GenericUndoCommand> command)
    {
        target->set(newValue);
        UndoStack().push(command.release());
    }

    std::uint64_t applyDepth = 0;
    QString undoText;
    boost::shared_ptr<PropertyAbstract<T>> target;

protected:
    /**
     * -1: every change is a step of its own. A subclass may choose a non-negative number, the same
     * for the properties whose successive changes are to be one step.
     */
    std::int32_t mergeId = -1;

private:
    boost::signals2::scoped_connection targetConnection;
};

} // namespace veska
