// Readiness of a descriptor told through shared memory: a pipe stands for the notice queue.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "platform/ReadinessRing.h"

namespace nvdl {
namespace {

class ReadinessRingTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(::pipe2(pipe_, O_NONBLOCK | O_CLOEXEC), 0);
        if (!ring_.open(pipe_[0])) GTEST_SKIP() << "no asynchronous interface on this system";
    }
    void TearDown() override {
        ring_.close();
        ::close(pipe_[0]);
        ::close(pipe_[1]);
    }
    void put() { ASSERT_EQ(::write(pipe_[1], "x", 1), 1); }
    void empty() {
        char buffer[4096];
        while (::read(pipe_[0], buffer, sizeof buffer) > 0) {
        }
    }
    // Something arrived; once settled and the queue read empty, the ring is quiet again.
    void expectMarkedThenQuietAgain() {
        EXPECT_FALSE(ring_.quiet());
        ring_.settle();
        empty();
        EXPECT_TRUE(ring_.quiet());
    }

    int pipe_[2] = {-1, -1};
    ReadinessRing ring_;
};

TEST_F(ReadinessRingTest, AWriteIsSeenAtOnceFromEveryWriter) {
    EXPECT_TRUE(ring_.quiet());
    put();
    EXPECT_FALSE(ring_.quiet());  // written by this thread, and it stays so until settled
    expectMarkedThenQuietAgain();
    std::thread([this] { put(); }).join();
    expectMarkedThenQuietAgain();
    const pid_t child = ::fork();
    if (child == 0) _exit(::write(pipe_[1], "x", 1) == 1 ? 0 : 1);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    expectMarkedThenQuietAgain();
}

TEST_F(ReadinessRingTest, AWriteBetweenSettleAndReadMarksTheRingAgain) {
    put();
    ring_.settle();
    put();  // arrives after the settle, before the queue is read
    empty();
    EXPECT_FALSE(ring_.quiet());
    ring_.settle();
    EXPECT_TRUE(ring_.quiet());
}

TEST_F(ReadinessRingTest, ManyWritesBeyondTheRingAreTakenInByOneSettle) {
    for (int i = 0; i < 200; ++i) std::thread([this] { put(); }).join();
    EXPECT_FALSE(ring_.quiet());
    ring_.settle();
    empty();
    ring_.settle();  // what came in while the ring was full, before the queue was emptied
    EXPECT_TRUE(ring_.quiet());
}

TEST_F(ReadinessRingTest, OnlyThePollingThreadTrustsAQuietRing) {
    bool quietThere = true;
    std::thread([&] { quietThere = ring_.quiet(); }).join();
    EXPECT_FALSE(quietThere);
    // A thread that used the ring has ended: the poll is placed anew before it is trusted.
    expectMarkedThenQuietAgain();
    put();
    EXPECT_FALSE(ring_.quiet());
}

TEST_F(ReadinessRingTest, APollWhoseThreadEndedIsPlacedAgain) {
    ring_.close();
    bool opened = false;
    std::thread([&] { opened = ring_.open(pipe_[0]); }).join();
    ASSERT_TRUE(opened);
    expectMarkedThenQuietAgain();  // placed by a thread that has left
    put();
    expectMarkedThenQuietAgain();
    ring_.settle();  // a settle with nothing new keeps the poll where it is
    EXPECT_TRUE(ring_.quiet());
}

TEST(ReadinessRing, APollTheKernelRefusesLeavesTheRingClosed) {
    ReadinessRing ring;
    ring.open(-1);  // no descriptor: the poll is refused, with its first completion or at once
    ring.settle();
    EXPECT_FALSE(ring.quiet());
    ring.settle();
    EXPECT_FALSE(ring.quiet());
}

}  // namespace
}  // namespace nvdl
