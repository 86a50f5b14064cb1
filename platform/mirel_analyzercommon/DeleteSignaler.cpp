#include <mirel_analyzercommon/DeleteSignaler.h>

namespace {

// Calls slot after slot whatever they throw.
class EverySlot
{
public:
    using result_type = void;

    template <class Iterator>
    void operator()(Iterator slot, Iterator end) const
    {
        for (; slot != end; ++slot) {
            try {
                *slot;
            } catch (...) {
                // A destructor must not throw.
            }
        }
    }
};

} // namespace

class DeleteSignaler::Impl
{
public:
    boost::signals2::signal<void(), EverySlot> deleted;
};

DeleteSignaler::DeleteSignaler() : impl(std::make_unique<Impl>()) {}

DeleteSignaler::~DeleteSignaler()
{
    impl->deleted();
}

boost::signals2::connection
DeleteSignaler::connectSignalDeleted(const boost::signals2::signal<void()>::slot_type& slot) const
{
    return impl->deleted.connect(slot);
}
