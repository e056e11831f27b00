// The project file against other processes: a save killed at any point never damages the file it
// replaces, and the lock on an open project keeps a second process waiting until it is dropped.
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

#include "../platform/TempDir.h"
#include "InterruptedSaves.h"
#include "ProjectTestSupport.h"
#include "platform/FileLock.h"

namespace nvdl::test {
namespace {

// A project of `count` workspaces of one measurement of `samples` samples, each of the value `level`.
ComPtr<IProject> projectOf(int count, int samples, float level) {
    ComPtr<IProject> p = newProject();
    ComPtr<ICollection> workspaces = collectionNamed(p.get(), u"Workspaces");
    for (int w = 0; w < count; ++w) {
        ComPtr<IWorkspace> ws = newWorkspace();
        addItem(collectionNamed(ws.get(), u"Measurements").get(), measurementOf("m", std::vector<float>(samples, level)).get());
        addItem(workspaces.get(), ws.get());
    }
    return p;
}

// The level of the last workspace's samples, or -1 when the file does not load whole.
float levelOf(const std::filesystem::path& file, int expectedCount) {
    ComPtr<IProject> p = newProject();
    if (FAILED(loadProject(p.get(), file))) return -1;
    ComPtr<ICollection> workspaces = collectionNamed(p.get(), u"Workspaces");
    if (countOf(workspaces.get()) != expectedCount) return -1;
    ComPtr<IDispatch> last = itemAt(workspaces.get(), expectedCount - 1);
    auto m = ComPtr<IMeasurement>::query(itemAt(collectionNamed(last.get(), u"Measurements").get(), 0).get());
    float value = -1;
    m->get_YReal(0, &value);
    return value;
}

TEST(ProjectSave, AKilledSaveLeavesTheOldFileWhole) {
    TempDir dir;
    const auto file = dir.path() / "run.vpj";
    constexpr int kCount = 20, kSamples = 8192;
    ASSERT_EQ(saveProject(projectOf(kCount, kSamples, 1.0f).get(), file), S_OK);
    ComPtr<IProject> replacement = projectOf(kCount, kSamples, 2.0f);
    const auto started = std::chrono::steady_clock::now();
    ASSERT_EQ(saveProject(replacement.get(), dir.path() / "timing.vpj"), S_OK);
    const auto saveTime = std::chrono::steady_clock::now() - started;
    replacement->Close();
    std::filesystem::remove(dir.path() / "timing.vpj");

    const int replaced = killSavesAtRandomPoints(
        saveTime, [&] { return SUCCEEDED(saveProject(replacement.get(), file)); }, [&] { return levelOf(file, kCount); },
        1.0f, 2.0f);
    EXPECT_GT(replaced, 0);
    std::vector<std::string> left;
    ASSERT_EQ(saveProject(projectOf(1, 16, 3.0f).get(), file), S_OK);  // clears what killed saves left
    for (const auto& entry : std::filesystem::directory_iterator(dir.path())) left.push_back(entry.path().filename().string());
    EXPECT_EQ(left, std::vector<std::string>{"run.vpj"});
}

bool readable(int fd, int milliseconds) {
    pollfd p{fd, POLLIN, 0};
    return ::poll(&p, 1, milliseconds) == 1;
}

TEST(ProjectLock, ASecondProcessWaitsForTheLock) {
    TempDir dir;
    const auto file = dir.path() / "locked.vpj";
    ComPtr<IProject> holder = newProject();
    ASSERT_EQ(saveProject(holder.get(), file), S_OK);  // a save leaves the file locked
    EXPECT_TRUE(FileLock::lockedByOther(file));

    int pipeFds[2];
    ASSERT_EQ(::pipe(pipeFds), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::close(pipeFds[0]);
        ComPtr<IProject> second = newProject();
        Bstr path(std::string_view{file.string()});
        SHORT locked = 0;
        const bool seen = FileLock::lockedByOther(file);
        (void)!::write(pipeFds[1], seen ? "S" : "s", 1);
        second->Lock(path.get(), &locked);  // waits for the holder
        (void)!::write(pipeFds[1], "L", 1);
        _exit(0);
    }
    ::close(pipeFds[1]);
    char seen = 0, locked = 0;
    ASSERT_EQ(::read(pipeFds[0], &seen, 1), 1);
    EXPECT_EQ(seen, 'S');  // the second process sees the lock
    EXPECT_FALSE(readable(pipeFds[0], 300));  // and waits while it is held
    EXPECT_EQ(holder->Close(), S_OK);
    ASSERT_TRUE(readable(pipeFds[0], 10000));
    ASSERT_EQ(::read(pipeFds[0], &locked, 1), 1);
    EXPECT_EQ(locked, 'L');
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(pipeFds[0]);
    EXPECT_FALSE(FileLock::lockedByOther(file));

    // The toggle: a second call with a name while a lock is held only releases it.
    SHORT flag = 0;
    Bstr path(std::string_view{file.string()});
    ASSERT_EQ(holder->Lock(path.get(), &flag), S_OK);
    EXPECT_TRUE(FileLock::lockedByOther(file));
    EXPECT_EQ(holder->Close(), S_OK);
    EXPECT_FALSE(FileLock::lockedByOther(file));
}

}  // namespace
}  // namespace nvdl::test
