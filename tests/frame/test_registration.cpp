// The module's entry and its registration: every class of the table is made by identifier and by
// ProgID and describes itself; factories, locks and unloading; registration writes the keys of the
// table under the classes root and removal gives the settings file back as it was.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string_view>

#include "../platform/EnvGuard.h"
#include "../platform/TempDir.h"
#include "frame/ClassTable.h"
#include "frame/ObjectCount.h"
#include "frame/Registration.h"
#include "nvdl/Identifiers.h"
#include "nvdl/ServerEntry.h"
#include "nvdl/nvdl.h"
#include "platform/CodePage.h"
#include "platform/Registry.h"
#include "platform/RegistryTree.h"
#include "platform/TypeDescription.h"
#include "project/LoaderRegistry.h"

namespace nvdl::test {
namespace {

using registry::Hive;

// Every member of the object's type description has a name that late binding resolves to the
// member's own number.
void expectDescribedMembers(IDispatch* object, const char* progId) {
    unsigned count = 0;
    ASSERT_EQ(object->GetTypeInfoCount(&count), S_OK) << progId;
    ASSERT_EQ(count, 1u) << progId;
    ITypeInfo* info = nullptr;
    ASSERT_EQ(object->GetTypeInfo(0, 0, &info), S_OK) << progId;
    const TYPEATTR* attr = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attr), S_OK) << progId;
    EXPECT_GT(attr->cFuncs, 0) << progId;
    for (unsigned i = 0; i < attr->cFuncs; ++i) {
        const FUNCDESC* desc = nullptr;
        ASSERT_EQ(info->GetFuncDesc(i, &desc), S_OK) << progId;
        BSTR name = nullptr;
        unsigned names = 0;
        ASSERT_EQ(info->GetNames(desc->memid, &name, 1, &names), S_OK) << progId << " member " << i;
        DISPID id = DISPID_UNKNOWN;
        EXPECT_EQ(object->GetIDsOfNames(IID_NULL, &name, 1, 0, &id), S_OK) << progId << "." << narrow(bstrView(name));
        EXPECT_EQ(id, desc->memid) << progId << "." << narrow(bstrView(name));
        SysFreeString(name);
    }
    info->Release();
}

// Each class is made three ways; each object answers IDispatch and describes its members.
TEST(ClassTable, EveryClassIsMadeByIdentifierAndByProgIdAndDescribesItself) {
    const std::vector<const ClassInfo*> classes = registeredClasses();
    ASSERT_GE(classes.size(), 30u);
    std::set<std::string> progIds, clsids;
    for (const ClassInfo* info : classes) {
        SCOPED_TRACE(info->progId);
        EXPECT_TRUE(progIds.insert(registry::foldCase(info->progId)).second) << "ProgID twice";
        EXPECT_TRUE(clsids.insert(formatGuid(info->clsid)).second) << "class identifier twice";
        const long before = g_nObjects;

        IClassFactory* factory = nullptr;
        ASSERT_EQ(DllGetClassObject(info->clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
        IDispatch* byClass = nullptr;
        ASSERT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&byClass)), S_OK);
        factory->Release();
        IDispatch* byProgId = nullptr;
        ASSERT_EQ(CreateObject(widen(info->progId), &byProgId), S_OK);
        IDispatch* byTable = nullptr;
        ASSERT_EQ(createInstance(info->clsid, &byTable), S_OK);

        for (IDispatch* object : {byClass, byProgId, byTable}) {
            void* dispatch = nullptr;
            ASSERT_EQ(object->QueryInterface(IID_IDispatch, &dispatch), S_OK);
            static_cast<IDispatch*>(dispatch)->Release();
            expectDescribedMembers(object, info->progId);
        }
        EXPECT_GE(g_nObjects, before + 3);  // with the collections a class owns
        for (IDispatch* object : {byClass, byProgId, byTable}) object->Release();
        EXPECT_EQ(g_nObjects, before);
    }
}

// The ProgIDs of the server's classes: each one resolves to its class and friendly name.
TEST(ClassTable, TheServersProgIdsResolve) {
    const char* progIds[] = {
        "nv_bench.Project", "nv_bench.workspace", "nv_bench.measurement", "nv_bench.datablock", "nv_bench.savefunction",
        "nv_bench.geometry", "nv_bench.component", "nv_bench.node", "nv_bench.line", "nv_bench.triangle",
        "nv_bench.mode", "nv_bench.modecoeff", "nv_bench.parameter", "nv_bench.setup", "nv_bench.transducer",
        "nv_bench.input", "nv_bench.strain", "nv_bench.source", "nv_bench.acquisition", "nv_bench.processing",
        "nv_bench.tacho", "nv_bench.rpm", "nv_bench.SinRed", "nv_bench.SRS", "nv_bench.ShockCapture",
        "nv_bench.SteppedSine", "nv_bench.throughput", "nv_bench.octave", "nv_bench.Impact", "nv_bench.timefilter",
        "nv_bench.Resampling", "nv_bench.PostProcessing", "nv_bench.Frontend", "nv_bench.Layout"};
    for (const char* progId : progIds) {
        const ClassInfo* info = findClassByProgId(widen(progId));
        ASSERT_TRUE(info) << progId;
        EXPECT_STREQ(info->progId, progId);
        EXPECT_EQ(std::string_view(info->friendlyName).substr(0, 8), "Sonvara ") << progId;
        CLSID clsid{};
        EXPECT_EQ(CLSIDFromProgID(widen(progId).c_str(), &clsid), S_OK);
        EXPECT_EQ(clsid, info->clsid) << progId;
    }
}

// Locks and live objects both keep the module; a kept factory does not.
TEST(ServerEntry, LocksAndObjectsKeepTheModuleLoaded) {
    ASSERT_EQ(g_nLocks, 0);
    ASSERT_EQ(g_nObjects, 0);
    IClassFactory* factory = nullptr;
    ASSERT_EQ(DllGetClassObject(CLSID_CParameter, IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
    EXPECT_EQ(DllCanUnloadNow(), S_OK) << "the module's own factory holds nothing";

    // Lock (+1 LockServer(true), -1 LockServer(false)), create (+1 an object, -1 release the last one),
    // then the locks counted and what DllCanUnloadNow answers.
    struct Step {
        int lock, create;
        long locks;
        HRESULT canUnload;
    };
    const Step steps[] = {
        {+1, 0, 1, S_FALSE}, {+1, 0, 2, S_FALSE}, {-1, 0, 1, S_FALSE}, {-1, 0, 0, S_OK},
        {0, +1, 0, S_FALSE}, {+1, 0, 1, S_FALSE}, {0, -1, 1, S_FALSE}, {-1, 0, 0, S_OK},
    };
    std::vector<IDispatch*> objects;
    for (std::size_t i = 0; i < std::size(steps); ++i) {
        const Step& step = steps[i];
        if (step.lock) factory->LockServer(step.lock > 0);
        if (step.create > 0) {
            IDispatch* object = nullptr;
            ASSERT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&object)), S_OK);
            objects.push_back(object);
        } else if (step.create < 0) {
            objects.back()->Release();
            objects.pop_back();
        }
        EXPECT_EQ(g_nLocks, step.locks) << "step " << i;
        EXPECT_EQ(DllCanUnloadNow(), step.canUnload) << "step " << i;
    }

    // A refused creation leaves nothing alive and nothing in the output.
    void* object = reinterpret_cast<void*>(1);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IClassFactory, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(g_nObjects, 0);
    factory->Release();
    EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

// The value every (key, value name) of the rows ends with: a later row of the same key and name wins.
std::map<std::pair<std::string, std::string>, std::string> finalValues(const std::vector<RegistrationRow>& rows,
                                                                        std::string_view modulePath) {
    std::map<std::pair<std::string, std::string>, std::string> values;
    for (const RegistrationRow& row : rows)
        values[{registry::foldCase(row.key), registry::foldCase(row.valueName)}] = withModulePath(row.value, modulePath);
    return values;
}

std::string fileBytes(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

class RegistrationTest : public ::testing::Test {
protected:
    void SetUp() override {
        env_.set("NVDL_REGISTRY", file_.string());
        std::ofstream(file_, std::ios::binary) << kUnrelated;
    }

    // Keys of other programs, comments and a line end missing at the end.
    static constexpr const char* kUnrelated =
        "Windows Registry Editor Version 5.00\n\n; other programs\n[HKEY_CLASSES_ROOT\\.wav]\n@=\"player.wav\"\n\n"
        "[HKEY_CLASSES_ROOT\\CLSID\\{00000000-0000-0000-0000-0000000000AA}]\n@=\"Other class\"\n; its end\n\n"
        "[HKEY_CURRENT_USER\\Software\\norvane instruments\\Sonvara\\CurrentVersion\\Settings]\n\"UnitService\"=\"0\"";

    EnvGuard env_;
    TempDir dir_;
    std::filesystem::path file_ = dir_.file("registry.txt");
};

TEST_F(RegistrationTest, RegisteringWritesEveryRowAndRemovingGivesTheFileBack) {
    const std::vector<RegistrationRow> rows = registrationRows();
    EXPECT_EQ(rows.size(), registeredClasses().size() * 9 + registeredInterfaces().size() * 5 + 6);
    const std::string original = fileBytes(file_);
    const std::string module = "/opt/nvdl/lib/libnvdl.so";
    ASSERT_EQ(registerServerAt("/elsewhere/old/libnvdl.so"), S_OK);
    ASSERT_EQ(registerServerAt(module), S_OK);  // the keys of the first registration go first

    for (const auto& [keyAndName, value] : finalValues(rows, module))
        EXPECT_EQ(registry::readString(Hive::ClassesRoot, keyAndName.first, keyAndName.second), value)
            << keyAndName.first << " " << keyAndName.second;
    EXPECT_EQ(fileBytes(file_).find("/elsewhere/"), std::string::npos);
    const std::string project = "CLSID\\" + formatGuid(CLSID_CProject);
    EXPECT_EQ(registry::readString(Hive::ClassesRoot, project + "\\InprocServer32", ""), module);
    EXPECT_EQ(registry::readString(Hive::ClassesRoot, project + "\\ProgID", ""), "nv_bench.Project");
    EXPECT_EQ(registry::readString(Hive::ClassesRoot, "nv_bench.project", ""), "Sonvara Project File");
    EXPECT_EQ(registry::readString(Hive::ClassesRoot, "nv_bench.project\\DefaultIcon", ""),
              "\"/opt/nvdl/lib\\Sonvara.exe\",2");
    EXPECT_EQ(registry::readString(Hive::ClassesRoot, "Interface\\" + formatGuid(IID_IParameter), ""), "IParameter");
    EXPECT_EQ(registry::readString(Hive::ClassesRoot, ".wav", ""), "player.wav");

    for (const ClassInfo* info : registeredClasses()) {
        const std::optional<std::string> stored =
            registry::readString(Hive::ClassesRoot, std::string(info->progId) + "\\CLSID", "");
        ASSERT_TRUE(stored) << info->progId;
        EXPECT_EQ(parseGuid(*stored), info->clsid) << info->progId;
        CLSID found{};
        EXPECT_EQ(ClassFromProgId(info->progId, &found), S_OK);
        EXPECT_EQ(found, info->clsid) << info->progId;
    }

    ASSERT_EQ(unregisterServer(), S_OK);
    EXPECT_EQ(fileBytes(file_), original);
    EXPECT_FALSE(registry::keyExists(Hive::ClassesRoot, "nv_bench.project"));
    EXPECT_FALSE(registry::keyExists(Hive::ClassesRoot, "Interface"));
}

TEST_F(RegistrationTest, TheModuleEntriesNameTheFileTheyWereLoadedFrom) {
    const std::string original = fileBytes(file_);
    ASSERT_EQ(DllRegisterServer(), S_OK);
    const std::string self = narrow(utf8ToUtf16(std::filesystem::canonical("/proc/self/exe").string()));
    EXPECT_EQ(registry::readString(Hive::ClassesRoot, "CLSID\\" + formatGuid(CLSID_CProject) + "\\InprocServer32", ""),
              self);
    ASSERT_EQ(DllUnregisterServer(), S_OK);
    EXPECT_EQ(fileBytes(file_), original);

    // Removing what is not there leaves the file alone, not even rewritten.
    struct stat before {}, after {};
    ASSERT_EQ(::stat(file_.c_str(), &before), 0);
    ASSERT_EQ(DllUnregisterServer(), S_OK);
    ASSERT_EQ(::stat(file_.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
}

}  // namespace
}  // namespace nvdl::test
