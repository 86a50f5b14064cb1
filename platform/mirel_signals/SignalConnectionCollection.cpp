#include <mirel_signals/SignalConnectionCollection.h>

#include <boost/signals2/shared_connection_block.hpp>

#include <utility>
#include <vector>

class SignalConnectionCollection::Impl
{
public:
    std::vector<boost::signals2::connection> connections;

    // One block per connection while blocked, none otherwise.
    std::vector<boost::signals2::shared_connection_block> blocks;
    bool isBlocked = false;
};

SignalConnectionCollection::SignalConnectionCollection() : impl(std::make_unique<Impl>()) {}

SignalConnectionCollection::~SignalConnectionCollection()
{
    for (const boost::signals2::connection& connection : impl->connections) {
        connection.disconnect();
    }
}

void SignalConnectionCollection::add(boost::signals2::connection connection)
{
    if (impl->isBlocked) {
        impl->blocks.emplace_back(connection);
    }
    impl->connections.push_back(std::move(connection));
}

void SignalConnectionCollection::block()
{
    if (impl->isBlocked) {
        return;
    }
    impl->isBlocked = true;
    for (const boost::signals2::connection& connection : impl->connections) {
        impl->blocks.emplace_back(connection);
    }
}

void SignalConnectionCollection::unblock()
{
    impl->isBlocked = false;
    impl->blocks.clear();
}
