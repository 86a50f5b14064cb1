#include <mirel_signals/EmitSignal.h>

#include <boost/signals2/signal.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

TEST(EmitSignal, CallsEverySlotWithItsArguments)
{
    boost::signals2::signal<void(const std::string&, int)> signal;
    std::vector<std::string> calls;
    signal.connect(
        [&](const std::string& text, int n) { calls.push_back(text + std::to_string(n)); });
    signal.connect([&](const std::string& text, int) { calls.push_back(text); });

    emitSignal(signal, std::string("x"), 7);

    EXPECT_EQ(calls, (std::vector<std::string>{"x7", "x"}));
}

TEST(EmitSignal, SurvivesASlotThatDestroysTheSignal)
{
    auto signal = std::make_unique<boost::signals2::signal<void()>>();
    int calls = 0;
    signal->connect([&] {
        ++calls;
        // Without slots left, the emission tidies up at its end.
        signal->disconnect_all_slots();
        signal.reset();
    });
    for (int i = 0; i < 20; ++i) {
        signal->connect([&] { ++calls; });
    }

    emitSignal(*signal);

    EXPECT_EQ(signal, nullptr);
    EXPECT_EQ(calls, 1);
}

TEST(EmitSignal, LetsTheExceptionOfASlotPass)
{
    boost::signals2::signal<void()> signal;
    signal.connect([] { throw std::runtime_error("from a slot"); });

    EXPECT_THROW(emitSignal(signal), std::runtime_error);
}
