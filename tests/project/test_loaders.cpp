// Loaders: from a file to its class (stored class, signature, extension, filter), and from a class
// to its loader, of this module or of a shared library of its own.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "../frame/ForeignParent.h"
#include "nvdl/Bstr.h"
#include "nvdl/Storage.h"
#include "platform/ComPtr.h"
#include "project/FileSignature.h"
#include "project/LoaderRegistry.h"
#include "SettingsFileTest.h"

namespace nvdl::test {
namespace {

TEST(FileSignature, MatchesTheFilesBytesAtItsPlace) {
    enum Outcome { Matches, Differs, Unusable };
    const struct {
        const char* signature;
        Outcome outcome;
    } rows[] = {
        {"0,2,,4D5A", Matches},       {" 0 , 2 , , 4d5a ", Matches}, {"0,2,,4D5B", Differs},
        {"-2,2,,CAFE", Matches},      {"-2,2,,4D5A", Differs},       {"-10,2,,4D5A", Matches},
        {"-11,2,,4D5A", Differs},     {"9,2,,FE00", Differs},        {"2,2,F0FF,9000", Matches},
        {"2,2,F0FF,9100", Differs},   {"0,1,,4D5AFF", Matches},      {"0,2,,", Unusable},
        {"0,0,,4D5A", Unusable},      {"0,2,4D5A", Unusable},        {"0,2,,4D", Unusable},
        {"0,2,FF,4D5A", Unusable},    {"0,2,,4G5A", Unusable},       {"x,2,,4D5A", Unusable},
    };
    for (const auto& row : rows) {
        const std::optional<FileSignature> signature = ParseFileSignature(row.signature);
        std::istringstream file(std::string("\x4D\x5A\x90\x00" "body" "\xCA\xFE", 10));
        const Outcome outcome = !signature ? Unusable : MatchFileSignature(file, *signature) ? Matches : Differs;
        EXPECT_EQ(outcome, row.outcome) << row.signature;
    }
}

constexpr const char* kStored = "{11111111-0000-0000-0000-000000000001}";
constexpr const char* kSigned = "{22222222-0000-0000-0000-000000000002}";
constexpr const char* kByExtension = "{33333333-0000-0000-0000-000000000003}";
constexpr const char* kByFilter = "{44444444-0000-0000-0000-000000000004}";
constexpr const char* kCompoundHeader = "{55555555-0000-0000-0000-000000000005}";
constexpr const char* kEchoClass = "{9D1C1F6E-3B57-4F0A-8E2D-517A0C44E619}";  // served by the test library
constexpr const char* kOther = "{12345678-0000-0000-0000-000000000000}";

class LoaderTest : public SettingsFileTest {
protected:
    std::string file(const std::string& name, const std::string& bytes = "") const {
        std::ofstream(dir_ / name, std::ios::binary) << bytes;
        return (dir_ / name).string();
    }
    std::string compoundFile(const std::string& name, const char* storedClass) const {
        ComPtr<IStorage> root;
        EXPECT_EQ(createCompoundFile(dir_ / name, STGM_CREATE | STGM_READWRITE, root.out()), S_OK);
        if (storedClass) root->SetClass(*parseGuid(storedClass));
        root->Commit(STGC_DEFAULT);
        return (dir_ / name).string();
    }
    // The class text of the file, or "none" for the failure of an empty chain.
    static std::string classOf(const std::string& path) {
        CLSID cls = CLSID_CTrcLoader;
        const HRESULT h = FindLoaderForFile(path, &cls);
        if (SUCCEEDED(h)) return formatGuid(cls);
        return h == MK_E_INVALIDEXTENSION && cls == CLSID_NULL ? "none" : "other failure";
    }
    static std::pair<std::string, Values> loader(const char* hive, const char* name, const char* filter,
                                                 const char* progId) {
        return {std::string(hive) + "\\" + kLoadersKey + "\\" + name, {{"FILTER", filter}, {"LOADER", progId}}};
    }
    // Registers the test library for its class, its class as the loader of ".echo" files, and
    // `more` keys.
    void registerEcho(const std::string& library, std::vector<std::pair<std::string, Values>> more = {}) {
        const std::string key = std::string("HKEY_CLASSES_ROOT\\CLSID\\") + kEchoClass;
        more.insert(more.end(), {{key + "\\InprocServer32", {{"", library}}},
                                 {key + "\\CLSIDLoader", {{"", kEchoClass}}},
                                 {"HKEY_CLASSES_ROOT\\Test.Echo\\CLSID", {{"", kEchoClass}}},
                                 {"HKEY_CLASSES_ROOT\\.echo", {{"", "Test.Echo"}}}});
        writeSettings(more);
    }
    // The status of making the loader; a made loader is called with Load on `file`.
    static HRESULT loadWith(const std::string& loaderText, const std::string& file) {
        ComPtr<IWorkspaceLoader> loader;
        HRESULT h = createWorkspaceLoader(loaderText, loader.out());
        if (FAILED(h)) return loader ? E_UNEXPECTED : h;
        ForeignParent workspace(IID_IWorkspace);
        return loader->Load(Bstr(std::string_view(file)).get(), &workspace);
    }
};

TEST_F(LoaderTest, FirstAnswerOfTheChainWins) {
    const std::string type = std::string("HKEY_CLASSES_ROOT\\FileType\\") + kSigned;
    writeSettings({
        {type + "\\0", {{"", "0,4,,53494721"}}},  // "SIG!"
        {type + "\\1", {{"", "bad"}}},            // passed over, the walk goes on
        {type + "\\2", {{"", "-1,1,,5A"}}},
        {type + "\\4", {{"", "0,1,,79"}}},        // behind the gap: never read
        {std::string("HKEY_CLASSES_ROOT\\FileType\\") + kCompoundHeader + "\\0", {{"", "0,4,,D0CF11E0"}}},
        {"HKEY_CLASSES_ROOT\\.abc", {{"", "Test.Abc"}}},
        {"HKEY_CLASSES_ROOT\\Test.Abc\\CLSID", {{"", kByExtension}}},
        {"HKEY_CLASSES_ROOT\\Test.Filter\\CLSID", {{"", kByFilter}}},
        loader("HKEY_CURRENT_USER", "A", "*.one", "Test.Unknown"),  // a loader nobody knows
        loader("HKEY_CURRENT_USER", "B", "Some files (*.ABC;*.One;*.xyz)", "Test.Filter"),
    });
    const std::pair<std::string, std::string> rows[] = {
        {compoundFile("stored.abc", kStored), kStored},             // not tested against signatures
        {compoundFile("unclassed.abc", nullptr), kCompoundHeader},  // a null stored class says nothing
        {file("signed.abc", "SIG!rest"), kSigned},                  // before the extension
        {file("signed.none", "..Z"), kSigned},
        {file("signed.y", "y"), "none"},
        {file("plain.ABC"), kByExtension},                          // before the filter that lists it too
        {(dir_ / "missing.abc").string(), kByExtension},            // the name is enough
        {file("plain.xYZ"), kByFilter},
        {file("plain.one"), kByFilter},
        {file("plain.qqq"), "none"},
        {file("noextension", "SI"), "none"},
    };
    for (const auto& [path, expected] : rows) EXPECT_EQ(classOf(path), expected) << path;
}

TEST_F(LoaderTest, FiltersOfTheUserHideThoseOfTheMachine) {
    const std::pair<std::string, Values> classes = {"HKEY_CLASSES_ROOT\\Test.Filter\\CLSID", {{"", kByFilter}}};
    writeSettings({classes, loader("HKEY_LOCAL_MACHINE", "M", "*.m;*.u", "Test.Filter")});
    EXPECT_EQ(classOf(file("x.m")), kByFilter);
    writeSettings({classes, loader("HKEY_LOCAL_MACHINE", "M", "*.m;*.u", "Test.Filter"),
                   loader("HKEY_CURRENT_USER", "U", "*.u", "Test.Filter")});
    EXPECT_EQ(classOf(file("x.u")), kByFilter);
    EXPECT_EQ(classOf(file("x.m")), "none");
}

TEST(LoaderClasses, FirstWorkspaceClassIsReadAsTheWorkspaceClass) {
    const std::pair<const char*, CLSID> rows[] = {
        {"{21F56F02-072D-11D0-8FB4-00608CDF9883}", CLSID_CWorkspace},
        {"{21f56f02-072d-11d0-8fb4-00608cdf9883}", CLSID_CWorkspace},
        {"{21F56F02-072D-11D0-8FB4-00608CDF9884}", *parseGuid("{21F56F02-072D-11D0-8FB4-00608CDF9884}")},
    };
    for (const auto& [given, expected] : rows) {
        CLSID result = CLSID_CTrcLoader;
        EXPECT_EQ(GetNewClsidLoader(*parseGuid(given), &result), S_OK);
        EXPECT_EQ(result, expected) << given;
    }
}

TEST_F(LoaderTest, BuiltInLoadersAreFoundByFileClassOrName) {
    writeSettings({{"HKEY_CLASSES_ROOT\\CLSID\\" + std::string(kOther) + "\\CLSIDLoader", {{"x", "y"}}}});
    std::string text;
    EXPECT_EQ(GetProgIDLoaderFromCLSID(*parseGuid(kOther), text), E_FAIL);  // no default value
    CLSID cls;
    ASSERT_EQ(FindLoaderForFile((dir_ / "run.Wkd").string(), &cls), S_OK);
    ASSERT_EQ(GetProgIDLoaderFromCLSID(cls, text), S_OK);
    EXPECT_EQ(text, formatGuid(CLSID_CWkdLoader));
    ASSERT_EQ(FindLoaderForFile((dir_ / "take.TRC").string(), &cls), S_OK);
    ASSERT_EQ(GetProgIDLoaderFromCLSID(cls, text), S_OK);
    for (const std::string& name : {text, std::string("nv_bench.io_newtrc")})
        EXPECT_EQ(loadWith(name, "take.trc"), E_POINTER) << name;  // made, and it loads only into this server's workspaces
}

TEST_F(LoaderTest, PluginIsFoundThroughTheChainAndCalled) {
    registerEcho(NVDL_TEST_LOADER_PLUGIN);
    const std::string path = (dir_ / "data.ECHO").string();
    CLSID cls;
    std::string text;
    ASSERT_EQ(FindLoaderForFile(path, &cls), S_OK);
    ASSERT_EQ(GetProgIDLoaderFromCLSID(cls, text), S_OK);
    for (const std::string& name : {text, std::string("test.echo")}) {
        std::filesystem::remove(path);
        EXPECT_EQ(loadWith(name, path), S_OK) << name;
        std::ifstream in(path);
        EXPECT_EQ((std::stringstream() << in.rdbuf()).str(), "loaded") << name;
    }
}

TEST_F(LoaderTest, LoadersThatCannotBeMadeAreCleanFailures) {
    std::ofstream(dir_ / "text.so") << "text";
    const struct {
        std::string library, loaderText;
        HRESULT expected;
    } rows[] = {
        {(dir_ / "missing.so").string(), kEchoClass, CO_E_DLLNOTFOUND},
        {(dir_ / "text.so").string(), kEchoClass, CO_E_DLLNOTFOUND},
        {"libm.so.6", kEchoClass, CO_E_ERRORINDLL},  // loads, but serves no classes
        {"", kEchoClass, REGDB_E_CLASSNOTREG},
        {NVDL_TEST_LOADER_PLUGIN, kOther, CLASS_E_CLASSNOTAVAILABLE},  // not the library's class
        {NVDL_TEST_LOADER_PLUGIN, "", CO_E_CLASSSTRING},
        {NVDL_TEST_LOADER_PLUGIN, "nv_bench.unknown", CO_E_CLASSSTRING},
        {NVDL_TEST_LOADER_PLUGIN, "{not a class}", CO_E_CLASSSTRING},
        {NVDL_TEST_LOADER_PLUGIN, "nv_bench.parameter", E_NOINTERFACE},  // a class here, not a loader
    };
    for (const auto& row : rows) {
        registerEcho(row.library, {{"HKEY_CLASSES_ROOT\\CLSID\\" + std::string(kOther) + "\\InprocServer32",
                                    {{"", row.library}}}});
        EXPECT_EQ(loadWith(row.loaderText, (dir_ / "x").string()), row.expected) << row.library << row.loaderText;
    }
}

}  // namespace
}  // namespace nvdl::test
