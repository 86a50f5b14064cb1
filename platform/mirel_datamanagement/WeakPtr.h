#pragma once

#include <mirel_datamanagement/Export.h>
#include <mirel_property/ExceptionBase.h>

#include <boost/smart_ptr/shared_ptr.hpp>
#include <boost/smart_ptr/weak_ptr.hpp>

/**
 * A handle was locked that refers to nothing: it is null, or its object has been destroyed (its
 * project was closed). Objects that were only removed from their project can still be locked.
 */
class MIREL_DATAMANAGEMENT_EXPORT HandleError : public veska::ExceptionBase
{
public:
    using veska::ExceptionBase::ExceptionBase;
    ~HandleError() override;

    HandleError(const HandleError&) noexcept;            ///< shares the text
    HandleError& operator=(const HandleError&) noexcept; ///< shares the text

    /** What WeakPtr::lock() throws, with a sentence for each of the two causes. @{ */
    [[noreturn]] static void throwNullHandle();
    [[noreturn]] static void throwDestroyedObject();
    /** @} */
};

/**
 * A handle: identity plus weak reference. A small value that keeps nothing alive and that can be
 * compared, sorted and kept in sets and maps also after its object is destroyed.
 *
 * T offers `bool isInProject() const`; Id is a value type with == and <, default constructible.
 */
template <class T, class Id>
class WeakPtr
{
public:
    /** The null handle. */
    WeakPtr() : refersToObject(false), identity() {}

    /**
     * A handle of `object`, whose identity is `id`; a null object gives the null handle, whatever
     * the id. The owner of the objects promises that no two of them ever have the same id.
     */
    WeakPtr(const boost::shared_ptr<T>& object, Id id)
        : reference(object), refersToObject(object != nullptr),
          identity(object != nullptr ? id : Id())
    {}

    /** Whether it was made to refer to nothing; not so when its object is destroyed later. */
    bool isNull() const { return !refersToObject; }

    /** Whether the handle is not null and its object is in its project now. */
    bool valid() const
    {
        const boost::shared_ptr<T> object = tryLock();
        return object && object->isInProject();
    }

    /**
     * The object, never null, also when it has been removed from its project.
     * @throw HandleError for a null handle or a destroyed object.
     */
    boost::shared_ptr<T> lock() const
    {
        if (isNull()) {
            HandleError::throwNullHandle();
        }
        boost::shared_ptr<T> object = reference.lock();
        if (!object) {
            HandleError::throwDestroyedObject();
        }
        return object;
    }

    /** The object, or null for a null handle or a destroyed object; does not throw. */
    boost::shared_ptr<T> tryLock() const { return reference.lock(); }

    /** The identity; Id() for the null handle. */
    Id id() const { return identity; }

    /**
     * By identity alone, so that the order in a container stays the same when objects are
     * destroyed. The null handle sorts first and equals only null handles, also where Id() is an
     * identity. @{
     */
    friend bool operator==(const WeakPtr& left, const WeakPtr& right)
    {
        return left.refersToObject == right.refersToObject && left.identity == right.identity;
    }
    friend bool operator!=(const WeakPtr& left, const WeakPtr& right) { return !(left == right); }
    friend bool operator<(const WeakPtr& left, const WeakPtr& right)
    {
        if (left.refersToObject != right.refersToObject) {
            return right.refersToObject;
        }
        return left.identity < right.identity;
    }
    /** @} */

private:
    boost::weak_ptr<T> reference;
    bool refersToObject;
    Id identity;
};
