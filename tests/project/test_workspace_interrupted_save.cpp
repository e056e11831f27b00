// A save cut short by the end of its process at any point never damages the file it replaces, and
// the next save in the folder leaves no temporary file of the cut ones behind.
#include <chrono>

#include "../platform/TempDir.h"
#include "InterruptedSaves.h"
#include "WorkspaceTestSupport.h"

namespace nvdl::test {
namespace {

// A workspace of `count` measurements of `samples` samples, each of the value `level`.
ComPtr<IWorkspace> workspaceOf(const char* name, int count, int samples, float level) {
    ComPtr<IWorkspace> ws = newWorkspace();
    putValues(ws.get(), {{"Name", name}});
    ComPtr<ICollection> measurements = collectionNamed(ws.get(), u"Measurements");
    for (int i = 0; i < count; ++i)
        addItem(measurements.get(), measurementOf(("m" + std::to_string(i)).c_str(), std::vector<float>(samples, level)).get());
    return ws;
}

HRESULT saveAs(IWorkspace* ws, const std::filesystem::path& file) {
    Bstr path(std::string_view{file.string()});
    return ws->Save(path.get(), Variant());
}

// The level of the samples of the file's first measurement, or -1 when the file does not load.
float levelOf(const std::filesystem::path& file, int expectedCount) {
    ComPtr<IWorkspace> ws = newWorkspace();
    Bstr path(std::string_view{file.string()});
    if (FAILED(ws->Load(path.get(), Variant()))) return -1;
    ComPtr<ICollection> measurements = collectionNamed(ws.get(), u"Measurements");
    if (countOf(measurements.get()) != expectedCount) return -1;
    auto m = ComPtr<IMeasurement>::query(itemAt(measurements.get(), expectedCount - 1).get());
    float value = -1;
    m->get_YReal(0, &value);
    return value;
}

TEST(WorkspaceSave, ACutShortSaveLeavesTheOldFileWhole) {
    TempDir dir;
    const auto file = dir.path() / "run.wkd";
    constexpr int kCount = 40, kSamples = 4096;
    ASSERT_EQ(saveAs(workspaceOf("old", kCount, kSamples, 1.0f).get(), file), S_OK);
    ComPtr<IWorkspace> replacement = workspaceOf("new", kCount, kSamples, 2.0f);
    const auto started = std::chrono::steady_clock::now();
    ASSERT_EQ(saveAs(replacement.get(), dir.path() / "timing.wkd"), S_OK);
    const auto saveTime = std::chrono::steady_clock::now() - started;
    std::filesystem::remove(dir.path() / "timing.wkd");

    const int replaced = killSavesAtRandomPoints(
        saveTime, [&] { return SUCCEEDED(saveAs(replacement.get(), file)); }, [&] { return levelOf(file, kCount); }, 1.0f,
        2.0f);
    EXPECT_GT(replaced, 0);  // some saves got through

    ASSERT_EQ(saveAs(workspaceOf("last", 1, 16, 3.0f).get(), file), S_OK);
    EXPECT_EQ(levelOf(file, 1), 3.0f);
    std::vector<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(dir.path())) left.push_back(entry.path().filename().string());
    EXPECT_EQ(left, std::vector<std::string>{"run.wkd"});
}

}  // namespace
}  // namespace nvdl::test
