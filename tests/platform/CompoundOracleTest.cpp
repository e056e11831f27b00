// Independent readers and writers agree with the compound-file layer: olefile reads every file
// written here, and files written by libgsf read back identically here.
#include <fstream>
#include <map>
#include <sstream>

#include <gtest/gtest.h>

#include "CompoundTestSupport.h"
#include "platform/CompoundName.h"

namespace nvdl::test {
namespace {

constexpr DWORD kCreate = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;

// One manifest line: kind, size and class identifier of an element, by path.
struct Element {
    std::string kind;
    std::uint64_t size = 0;
    std::string clsid;
    friend bool operator==(const Element&, const Element&) = default;
};
using Manifest = std::map<std::string, Element>;

std::ostream& operator<<(std::ostream& out, const Element& e) {
    return out << e.kind << " " << e.size << " " << e.clsid;
}

Manifest parseManifest(const std::string& text) {
    Manifest m;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string path, kind, size, clsid;
        std::getline(fields, path, '\t');
        std::getline(fields, kind, '\t');
        std::getline(fields, size, '\t');
        std::getline(fields, clsid, '\t');
        m[path] = {kind, std::stoull(size), clsid};
    }
    return m;
}

void writeManifest(const Manifest& m, const std::filesystem::path& file) {
    std::ofstream out(file);
    for (const auto& [path, e] : m) out << path << '\t' << e.kind << '\t' << e.size << '\t' << e.clsid << '\n';
}

// Walks a tree through the layer: every element into `found`, every stream compared with the
// content rule, every storage's children checked to come in storage order.
void walk(IStorage* storage, const std::string& prefix, Manifest& found) {
    std::vector<STATSTG> elements;
    ASSERT_EQ(storage->EnumElements(&elements), S_OK);
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const STATSTG& e = elements[i];
        if (i > 0) {
            EXPECT_LT(cfb::compareNames(elements[i - 1].name, e.name), 0);
        }
        std::string path = prefix.empty() ? utf16ToUtf8(e.name) : prefix + "/" + utf16ToUtf8(e.name);
        if (e.type == STGTY_STORAGE) {
            found[path] = {"storage", 0, formatGuid(e.clsid)};
            Ref<IStorage> child;
            ASSERT_EQ(storage->OpenStorage(e.name.c_str(), nullptr, kRead, nullptr, 0, child.out()), S_OK);
            walk(child.get(), path, found);
        } else {
            found[path] = {"stream", e.cbSize, "-"};
            Ref<IStream> s;
            ASSERT_EQ(storage->OpenStream(e.name.c_str(), nullptr, kRead, 0, s.out()), S_OK);
            EXPECT_EQ(readAll(s.get()), content(path, static_cast<std::size_t>(e.cbSize))) << path;
        }
    }
}

Manifest readTree(const std::filesystem::path& file) {
    Manifest found;
    Ref<IStorage> root;
    EXPECT_EQ(openCompoundFile(file, kRead, root.out()), S_OK);
    if (!root) return found;
    STATSTG st;
    EXPECT_EQ(root->Stat(&st, STATFLAG_NONAME), S_OK);
    found["/"] = {"storage", 0, formatGuid(st.clsid)};
    walk(root.get(), "", found);
    return found;
}

// Writes `model` (parents listed before their children) through the layer.
void writeTree(const std::filesystem::path& file, const Manifest& model, bool largeSectors) {
    std::vector<std::pair<std::string, Element>> ordered(model.begin(), model.end());
    Ref<IStorage> root;
    CompoundFileOptions options;
    options.largeSectors = largeSectors;
    ASSERT_EQ(createCompoundFile(file, kCreate, root.out(), options), S_OK);
    std::map<std::string, IStorage*> storages{{"", root.get()}};
    std::vector<Ref<IStorage>> held(model.size());
    std::size_t next = 0;
    for (const auto& [path, e] : ordered) {
        CLSID clsid = e.kind == "storage" ? *parseGuid(e.clsid) : CLSID{};
        if (path == "/") {
            ASSERT_EQ(root->SetClass(clsid), S_OK);
            continue;
        }
        auto slash = path.rfind('/');
        std::string parent = slash == std::string::npos ? "" : path.substr(0, slash);
        std::u16string name = u16(slash == std::string::npos ? path : path.substr(slash + 1));
        IStorage* into = storages.at(parent);
        if (e.kind == "storage") {
            Ref<IStorage>& s = held[next++];
            ASSERT_EQ(into->CreateStorage(name.c_str(), kCreate, 0, 0, s.out()), S_OK);
            ASSERT_EQ(s->SetClass(clsid), S_OK);
            storages[path] = s.get();
        } else {
            Ref<IStream> s;
            ASSERT_EQ(into->CreateStream(name.c_str(), kCreate, 0, 0, s.out()), S_OK);
            writeAll(s.get(), content(path, static_cast<std::size_t>(e.size)));
        }
    }
    ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
}

const std::string kNullClass = "{00000000-0000-0000-0000-000000000000}";

Manifest referenceModel(bool withManyFatSectors) {
    Manifest m = {
        {"/", {"storage", 0, "{1E1827E6-9ACB-46BA-B199-20067D5F8B78}"}},
        {"Version", {"storage", 0, kNullClass}},
        {"Version/Version", {"stream", 18, "-"}},
        {"Data", {"storage", 0, kNullClass}},
        {"Data/File 1", {"storage", 0, "{5B44CB71-F17B-4140-9D50-EC6F33B896B8}"}},
        {"Data/File 1/OriginFile", {"stream", 0, "-"}},
        {"Data/File 1/Workspace", {"storage", 0, kNullClass}},
        {"Data/File 1/Workspace/Blocks", {"storage", 0, kNullClass}},
        {"Data/File 1/Workspace/Blocks/Meas0", {"stream", 63, "-"}},
        {"Data/File 1/Workspace/Blocks/Meas1", {"stream", 64, "-"}},
        {"Data/File 1/Workspace/Blocks/Meas2", {"stream", 4095, "-"}},
        {"Data/File 1/Workspace/Blocks/Meas3", {"stream", 4096, "-"}},
        {"Data/File 1/Workspace/Blocks/Meas4", {"stream", 123457, "-"}},
        {"Data/File 1/Workspace/Blocks/\xc3\x89t\xc3\xa9 \xce\xb1\xce\xb2", {"stream", 777, "-"}},
        {"Layouts", {"storage", 0, "{01020304-0506-0708-090A-0B0C0D0E0F10}"}},
        {std::string(31, 'L'), {"stream", 1, "-"}},
    };
    // More than 109 FAT sectors in files of 512-byte sectors: the DIFAT comes into use.
    if (withManyFatSectors) m["Data/Long"] = {"stream", 8u << 20, "-"};
    return m;
}

class CompoundOracleTest : public ::testing::TestWithParam<bool> {
protected:
    TempDir dir;
};

TEST_P(CompoundOracleTest, OlefileReadsWhatWeWrite) {
    const bool large = GetParam();
    std::filesystem::path file = dir.file("ours.vpj");
    Manifest model = referenceModel(!large);
    writeTree(file, model, large);
    EXPECT_EQ(readTree(file), model);
    writeManifest(model, dir.file("ours.manifest"));
    std::string report;
    EXPECT_EQ(runOracle("olefile-check " + quoted(file) + " " + quoted(dir.file("ours.manifest")), &report), 0)
        << report;
}

TEST_P(CompoundOracleTest, LibgsfFilesReadBackIdentically) {
    const std::string sectorSize = GetParam() ? "4096" : "512";
    std::filesystem::path file = dir.file("gsf.cfb");
    std::string manifestText;
    ASSERT_EQ(runOracle("gsf-write " + quoted(file) + " " + sectorSize, &manifestText), 0);
    Manifest expected = parseManifest(manifestText);
    ASSERT_GT(expected.size(), 10u);
    EXPECT_EQ(readTree(file), expected);
}

TEST_P(CompoundOracleTest, LibgsfFileChangedHereStillReadsInOlefile) {
    const std::string sectorSize = GetParam() ? "4096" : "512";
    std::filesystem::path file = dir.file("gsf.cfb");
    std::string manifestText;
    ASSERT_EQ(runOracle("gsf-write " + quoted(file) + " " + sectorSize, &manifestText), 0);
    Manifest expected = parseManifest(manifestText);
    {
        Ref<IStorage> root;
        ASSERT_EQ(openCompoundFile(file, STGM_READWRITE | STGM_SHARE_EXCLUSIVE, root.out()), S_OK);
        Ref<IStorage> ws;
        ASSERT_EQ(root->OpenStorage(u"Workspace", nullptr, STGM_READWRITE, nullptr, 0, ws.out()), S_OK);
        ASSERT_EQ(ws->DestroyElement(u"Blocks"), S_OK);
        Ref<IStream> s;
        ASSERT_EQ(ws->CreateStream(u"WorkspaceName", kCreate, 0, 0, s.out()), S_OK);
        writeAll(s.get(), content("Workspace/WorkspaceName", 30000));
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    }
    for (auto it = expected.begin(); it != expected.end();)
        it = it->first.starts_with("Workspace/Blocks") ? expected.erase(it) : std::next(it);
    expected["Workspace/WorkspaceName"].size = 30000;
    EXPECT_EQ(readTree(file), expected);
    writeManifest(expected, dir.file("changed.manifest"));
    std::string report;
    EXPECT_EQ(runOracle("olefile-check " + quoted(file) + " " + quoted(dir.file("changed.manifest")), &report), 0)
        << report;
}

INSTANTIATE_TEST_SUITE_P(SectorSizes, CompoundOracleTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return info.param ? std::string("Large") : std::string("Small");
                         });

}  // namespace
}  // namespace nvdl::test
