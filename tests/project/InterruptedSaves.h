// Saves cut short by the end of their process: a child process saves, and is killed at a random
// point of the save; after each round the file on disk must still load whole, holding either the
// old contents or the new ones.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <random>
#include <thread>

namespace nvdl::test {

// Runs `save` in a child 200 times. Kill points are spread over twice `saveTime` (a child starts
// slower than the parent saves, more so under the sanitizers); every 25th save runs to its end and
// must succeed. `level` reads the file back: it must give `oldLevel` or `newLevel`. Returns how
// many rounds found the new contents.
inline int killSavesAtRandomPoints(std::chrono::steady_clock::duration saveTime, const std::function<bool()>& save,
                                   const std::function<float()>& level, float oldLevel, float newLevel) {
    std::mt19937 random(20261124);
    std::uniform_real_distribution<double> spread(0.0, 2.0);
    int replaced = 0;
    for (int round = 0; round < 200; ++round) {
        const bool runsToEnd = round % 25 == 24;
        const auto cut = std::chrono::duration_cast<std::chrono::microseconds>(saveTime * spread(random));
        const pid_t child = ::fork();
        EXPECT_GE(child, 0);
        if (child < 0) return replaced;
        if (child == 0) _exit(save() ? 0 : 1);
        if (!runsToEnd) {
            std::this_thread::sleep_for(cut);
            ::kill(child, SIGKILL);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        if (runsToEnd) {
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "round " << round;
        }
        const float found = level();
        EXPECT_TRUE(found == oldLevel || found == newLevel) << "round " << round << " after " << cut.count() << " us";
        if (found != oldLevel && found != newLevel) return replaced;
        replaced += found == newLevel;
    }
    return replaced;
}

}  // namespace nvdl::test
