#include "clientservices/modulebase.h"

#include "support/gate.h"
#include "support/logcapture.h"
#include "support/runonthreads.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using namespace std::chrono_literals;
using TessixDeskClient::ModuleBase;
using testsupport::runOnThreads;

constexpr int posters = 8;

struct MessageThread : testing::Test {
    bool create(ModuleBase& module) { return module.CreateThread("MessageThreadOfATest", 0, 0, nullptr); }

    testsupport::LogCapture m_log;
};

} // namespace

TEST_F(MessageThread, KeepsEachPostersOrderAndLosesNothing)
{
    constexpr int each = 12'500;
    std::array<std::int64_t, posters> next{}; // of the message thread alone until it has stopped
    int outOfOrder = 0;
    ModuleBase module;
    EXPECT_EQ(module.BindMessage({}), ModuleBase::firstBoundMessage);
    const unsigned message = module.BindMessage(
        [&](std::uint64_t poster, std::int64_t number) { outOfOrder += next[poster]++ == number ? 0 : 1; });
    ASSERT_TRUE(create(module));
    runOnThreads(posters, [&](int poster) {
        for (int number = 0; number < each; ++number) {
            ASSERT_TRUE(module.TryPostThreadMessage(message, static_cast<std::uint64_t>(poster), number));
        }
    });
    module.StopWork();
    EXPECT_EQ(outOfOrder, 0);
    EXPECT_EQ(std::ranges::count(next, each), posters);
}

TEST_F(MessageThread, TakesMessagesFromCreateThreadToTheQuitMessage)
{
    testsupport::Gate goOn;
    int handled = 0;
    ModuleBase module;
    const unsigned blocking = module.BindMessage([&](auto, auto) { goOn.pass(); });
    const unsigned counting = module.BindMessage([&](auto, auto) { ++handled; });
    const auto expectNothingTaken = [&] {
        EXPECT_FALSE(module.TryPostThreadMessage(counting, 0, 0));
        EXPECT_FALSE(module.PostThreadMessageW(ModuleBase::quitMessage, 0, 0));
    };
    expectNothingTaken();
    EXPECT_FALSE(module.IsInMessageLoop());
    module.StopWork(); // nothing to wait for, and nothing that keeps the thread from coming

    ASSERT_TRUE(create(module));
    EXPECT_TRUE(module.IsInMessageLoop());
    EXPECT_FALSE(create(module));
    module.TryPostThreadMessage(blocking, 0, 0);
    EXPECT_TRUE(module.TryPostThreadMessage(counting, 0, 0));
    EXPECT_TRUE(module.PostThreadMessageW(ModuleBase::quitMessage, 0, 0));
    expectNothingTaken();
    EXPECT_TRUE(module.IsInMessageLoop());
    goOn.open();
    runOnThreads(2, [&](int) {
        module.StopWork();
        EXPECT_EQ(handled, 1);
        EXPECT_FALSE(module.IsInMessageLoop());
    });
    EXPECT_FALSE(create(module)) << "one thread per object";
}

TEST_F(MessageThread, StopsFromItsOwnThreadWithoutWaiting)
{
    int handled = 0;
    ModuleBase module;
    const unsigned counting = module.BindMessage([&](auto, auto) { ++handled; });
    const unsigned stopping = module.BindMessage([&](auto, auto) {
        EXPECT_TRUE(module.TryPostThreadMessage(counting, 0, 0));
        module.StopWork();
        EXPECT_EQ(handled, 0) << "what is queued comes after this handler";
        EXPECT_FALSE(module.TryPostThreadMessage(counting, 0, 0));
    });
    ASSERT_TRUE(create(module));
    EXPECT_TRUE(module.TryPostThreadMessage(stopping, 0, 0));
    CommonAbility::WaitForThread(module);
    EXPECT_EQ(handled, 1);
}

TEST_F(MessageThread, HandlesExactlyWhatItAcceptedWhenPostersMeetAStop)
{
    for (int round = 0; round < 200; ++round) {
        std::atomic<int> accepted = 0;
        int handled = 0;
        ModuleBase module;
        const unsigned message = module.BindMessage([&](auto, auto) { ++handled; });
        ASSERT_TRUE(create(module));
        runOnThreads(4, [&](int number) {
            if (number == 3) {
                module.StopWork();
            }
            while (module.TryPostThreadMessage(message, 0, 0)) {
                ++accepted;
            }
        });
        ASSERT_EQ(handled, accepted) << "in round " << round;
    }
}

TEST_F(MessageThread, GoesOnAfterAHandlerThatThrowsAndAMessageOfNobody)
{
    std::string calls;
    ModuleBase module;
    module.BindMessage([&](auto, auto) { throw std::runtime_error("disk full"); });
    module.BindMessage([&](auto, auto) { throw 5; });
    module.BindMessage([&](std::uint64_t left, std::int64_t right) {
        calls += std::to_string(left) + '|' + std::to_string(right) + ' ';
    });
    ASSERT_TRUE(create(module));
    for (const unsigned message : {0U, 0x8000U, 0x8003U, 0x8001U, 17U, 0x8002U}) {
        EXPECT_TRUE(module.TryPostThreadMessage(message, ~std::uint64_t{0}, -std::int64_t{message}));
    }
    module.StopWork();
    EXPECT_EQ(calls, "18446744073709551615|-32770 ");
    const std::string thread = "thread MessageThreadOfATest, message ";
    const std::string function = "CommonAbility::MessageLoop::run";
    EXPECT_TRUE(m_log.linesWere({{function, thread + "0: nothing is bound to it"},
                                 {function, thread + "32768: its handler has thrown: disk full"},
                                 {function, thread + "32771: nothing is bound to it"},
                                 {function, thread + "32769: its handler has thrown"},
                                 {function, thread + "17: nothing is bound to it"}}));
}

TEST_F(MessageThread, SleepsWhileItIsIdle)
{
    ModuleBase module;
    ASSERT_TRUE(create(module));
    module.TryPostThreadMessage(module.BindMessage([](auto, auto) {}), 0, 0);
    std::this_thread::sleep_for(10ms);
    const std::clock_t before = std::clock();
    std::this_thread::sleep_for(200ms);
    if (std::filesystem::path::preferred_separator == '/') { // elsewhere the clock may count what passes, used or not
        EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 50);
    }
    module.StopWork();
}

// The object goes while a handler runs and more is queued: the rest is dropped, and the thread leaves nothing behind.
TEST_F(MessageThread, EndsByItselfWhenItsObjectIsDestroyed)
{
    testsupport::Gate running;
    testsupport::Gate goOn;
    std::atomic<int> handled = 0;
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> left = held;
    {
        ModuleBase sleeping;
        ASSERT_TRUE(create(sleeping));
        sleeping.BindMessage([held](auto, auto) {});
        ModuleBase module;
        ASSERT_TRUE(create(module));
        const unsigned message = module.BindMessage([&, held = std::move(held)](auto, auto) {
            ++handled;
            running.open();
            goOn.pass();
        });
        module.TryPostThreadMessage(message, 0, 0);
        module.TryPostThreadMessage(message, 0, 0);
        running.pass();
    }
    goOn.open();
    for (int wait = 0; !left.expired() && wait < 10'000; ++wait) {
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_TRUE(left.expired());
    EXPECT_EQ(handled, 1);
}
