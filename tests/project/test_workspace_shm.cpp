// The workspace's shared record as another process reads it by the link text, and measurements that
// read the workspace's name through it.
#include <sys/wait.h>
#include <unistd.h>

#include "WorkspaceTestSupport.h"
#include "platform/SharedMemory.h"

namespace nvdl::test {
namespace {

// A stand-in project of another server that knows one member, Master, read late-bound.
struct MasterParent final : IDispatch {
    explicit MasterParent(SHORT value) : master(value) {}
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        *ppv = riid == IID_IUnknown || riid == IID_IDispatch ? static_cast<IDispatch*>(this) : nullptr;
        return *ppv ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return 2; }  // lives on the test's stack
    ULONG Release() override { return 1; }
    HRESULT GetTypeInfoCount(unsigned* count) override { return *count = 0, S_OK; }
    HRESULT GetTypeInfo(unsigned, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, OLECHAR** names, unsigned, LCID, DISPID* ids) override {
        *ids = 3;
        return std::u16string_view(names[0]) == u"Master" ? S_OK : DISP_E_UNKNOWNNAME;
    }
    HRESULT Invoke(DISPID, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT* out, EXCEPINFO*, unsigned*) override {
        if (!(flags & DISPATCH_PROPERTYGET) || !out) return DISP_E_MEMBERNOTFOUND;
        out->vt = VT_I2;
        out->iVal = master;
        return S_OK;
    }
    SHORT master;
};

std::string linkOf(IDispatch* workspace) { return propertyText(workspace, "ShmLink"); }
void rename(IDispatch* object, const char* name) { putValues(object, {{"Name", name}}); }

// The record as a child process that knows only the link text reads it and sends it back.
std::string readInChild(const std::string& link) {
    int ends[2];
    if (::pipe(ends) != 0) return "no pipe";
    const pid_t child = ::fork();
    if (child == 0) {
        const std::string seen = readShmRecord(link);
        ::_exit(::write(ends[1], seen.data(), seen.size()) == static_cast<ssize_t>(seen.size()) ? 0 : 1);
    }
    ::close(ends[1]);
    char buffer[kShmRecordSize] = {};
    const ssize_t got = child > 0 ? ::read(ends[0], buffer, sizeof buffer) : -1;
    ::close(ends[0]);
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return "child failed";
    return std::string(buffer, got > 0 ? got : 0);
}

// The first name is kept for good, unless the parent is a project whose Master is exactly -1; a clone
// has the same link text but a block of its own, and the record goes with its workspace.
TEST(WorkspaceShm, RenamesReachTheRecordOnlyUnderAMasterProject) {
    const std::pair<SHORT, bool> cases[] = {{0, false}, {1, false}, {-1, true}};
    for (const auto& [master, follows] : cases) {
        MasterParent project(master);
        ComPtr<IWorkspace> ws = newWorkspace();
        ASSERT_EQ(ws->put_Parent(&project), S_OK);
        const std::string link = linkOf(ws.get());
        EXPECT_EQ(link.rfind("0x", 0), 0u);
        EXPECT_EQ(readInChild(link), "");
        rename(ws.get(), " first:run ");
        EXPECT_EQ(readInChild(link), "first run") << master;
        rename(ws.get(), std::string(200, 'L').c_str());
        EXPECT_EQ(readInChild(link), follows ? std::string(149, 'L') : "first run") << master;
        ComPtr<IWorkspace> clone;
        ASSERT_EQ(ws->Clone(clone.out()), S_OK);
        EXPECT_EQ(linkOf(clone.get()), link);
        rename(clone.get(), "clone");
        EXPECT_EQ(readShmRecord(link), follows ? std::string(149, 'L') : "first run") << master;
        ws = {};
        EXPECT_EQ(readShmRecord(link), "") << master;
    }
    EXPECT_NE(linkOf(newWorkspace().get()), linkOf(newWorkspace().get()));
}

// Under a master project a measurement and its sub-measurement keep the workspace's link text and
// read the current name through it; elsewhere a measurement answers its stored name, here none.
TEST(WorkspaceShm, MeasurementsReadTheWorkspaceNameThroughTheLink) {
    for (SHORT master : {SHORT{0}, SHORT{-1}}) {
        MasterParent project(master);
        ComPtr<IWorkspace> ws = newWorkspace();
        ASSERT_EQ(ws->put_Parent(&project), S_OK);
        ComPtr<IMeasurement> m = measurementOf("m", {1, 2}), sub = measurementOf("sub", {3});
        addItem(collectionNamed(ws.get(), u"Measurements").get(), m.get());
        addItem(collectionNamed(m.get(), u"Measurements").get(), sub.get());
        rename(ws.get(), "Run A");
        rename(ws.get(), "Run B");
        for (IDispatch* measurement : {static_cast<IDispatch*>(m.get()), static_cast<IDispatch*>(sub.get())}) {
            EXPECT_EQ(propertyText(measurement, "Workspace"), master ? "Run B" : "") << master;
            EXPECT_EQ(propertyText(measurement, "MeasShmLink"), master ? linkOf(ws.get()) : "") << master;
        }
    }
}

}  // namespace
}  // namespace nvdl::test

namespace nvdl::test {
namespace {

// A second process that knows the link reads each new name of a workspace of a master project.
TEST(WorkspaceShm, ASecondProcessFollowsRenamesInAMasterProject) {
    ComPtr<IDispatch> project = newObject(u"nv_bench.Project");
    putValues(project.get(), {{"Master", "-1"}});
    ComPtr<IDispatch> workspace = newObject(u"nv_bench.workspace");
    addItem(collectionNamed(project.get(), u"Workspaces").get(), workspace.get());
    for (const char* name : {"Left rig", "Right rig"}) {
        rename(workspace.get(), name);
        EXPECT_EQ(readInChild(linkOf(workspace.get())), name);
    }
}

}  // namespace
}  // namespace nvdl::test
