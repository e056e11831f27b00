// Damaged and hostile compound files end in a status code: no crash, no endless loop, no
// allocation beyond what the file's size justifies.
#include <fstream>
#include <random>

#include <gtest/gtest.h>

#include "CompoundTestSupport.h"
#include "platform/CompoundFormat.h"

namespace nvdl::test {
namespace {

constexpr DWORD kCreate = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;
using Bytes = std::vector<std::uint8_t>;

Bytes load(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

void save(const std::filesystem::path& file, const Bytes& bytes) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

// Opens the file and reads every element of it; the status of the first failure, or S_OK.
HRESULT openAndReadEverything(const std::filesystem::path& file) {
    Ref<IStorage> root;
    HRESULT h = openCompoundFile(file, kRead, root.out());
    if (FAILED(h)) return h;
    std::vector<Ref<IStorage>> pending;
    std::vector<IStorage*> todo{root.get()};
    while (!todo.empty()) {
        IStorage* storage = todo.back();
        todo.pop_back();
        std::vector<STATSTG> elements;
        if (FAILED(h = storage->EnumElements(&elements))) return h;
        for (const STATSTG& e : elements) {
            if (e.type == STGTY_STORAGE) {
                pending.emplace_back();
                if (FAILED(h = storage->OpenStorage(e.name.c_str(), nullptr, kRead, nullptr, 0, pending.back().out())))
                    return h;
                todo.push_back(pending.back().get());
            } else {
                Ref<IStream> s;
                if (FAILED(h = storage->OpenStream(e.name.c_str(), nullptr, kRead, 0, s.out()))) return h;
                std::uint8_t buffer[8192];
                ULONG got = 0;
                do {
                    if (FAILED(h = s->Read(buffer, sizeof buffer, &got))) return h;
                } while (got > 0);
            }
        }
    }
    return S_OK;
}

// A small well-formed file: a storage, a mini-stream stream and a stream in file sectors.
class CompoundDamagedFileTest : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        Ref<IStorage> root;
        CompoundFileOptions options;
        options.largeSectors = GetParam();
        ASSERT_EQ(createCompoundFile(good, kCreate, root.out(), options), S_OK);
        Ref<IStorage> sub;
        ASSERT_EQ(root->CreateStorage(u"sub", kCreate, 0, 0, sub.out()), S_OK);
        Ref<IStream> s;
        ASSERT_EQ(sub->CreateStream(u"mini", kCreate, 0, 0, s.out()), S_OK);
        writeAll(s.get(), content("mini", 300));
        ASSERT_EQ(root->CreateStream(u"big", kCreate, 0, 0, s.out()), S_OK);
        writeAll(s.get(), content("big", 20000));
        s.reset();
        sub.reset();
        root.reset();
        bytes = load(good);
        sectorSize = std::size_t{1} << cfb::load16(bytes.data() + 30);
    }
    std::size_t sectorOffset(std::uint32_t sector) const { return (sector + 1) * sectorSize; }
    // The directory entry of that name (the directory fits one sector here).
    std::uint8_t* entry(const std::u16string& name) {
        std::uint8_t* dirSector = bytes.data() + sectorOffset(cfb::load32(bytes.data() + 48));
        for (std::size_t i = 0; i < sectorSize / 128; ++i) {
            std::uint8_t* e = dirSector + i * 128;
            std::u16string n;
            for (std::size_t c = 0; c < 31 && cfb::load16(e + 2 * c); ++c) n.push_back(cfb::load16(e + 2 * c));
            if (n == name) return e;
        }
        ADD_FAILURE() << "no entry";
        return dirSector;
    }
    std::uint8_t* fatEntry(std::uint32_t sector) {
        return bytes.data() + sectorOffset(cfb::load32(bytes.data() + 76)) + 4 * sector;
    }
    HRESULT openPatched() {
        save(bad, bytes);
        return openAndReadEverything(bad);
    }

    TempDir dir;
    std::filesystem::path good = dir.file("good.cfb");
    std::filesystem::path bad = dir.file("bad.cfb");
    Bytes bytes;
    std::size_t sectorSize = 512;
};

TEST_P(CompoundDamagedFileTest, WellFormedBaseReads) { EXPECT_EQ(openAndReadEverything(good), S_OK); }

TEST_P(CompoundDamagedFileTest, NotACompoundFile) {
    save(bad, Bytes{});
    EXPECT_EQ(openAndReadEverything(bad), STG_E_FILEALREADYEXISTS);
    save(bad, Bytes(5000, 'x'));
    EXPECT_EQ(openAndReadEverything(bad), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(isCompoundFile(bad), S_FALSE);
    bytes.resize(300);  // the signature, then too short a header
    EXPECT_EQ(openPatched(), STG_E_INVALIDHEADER);
}

TEST_P(CompoundDamagedFileTest, HeaderFieldsOutOfRange) {
    Bytes original = bytes;
    cfb::store16(bytes.data() + 30, 10);  // sector shift
    EXPECT_EQ(openPatched(), STG_E_INVALIDHEADER);
    bytes = original;
    cfb::store16(bytes.data() + 28, 0xFEFF);  // byte order
    EXPECT_EQ(openPatched(), STG_E_INVALIDHEADER);
    bytes = original;
    cfb::store32(bytes.data() + 44, 0xFFFFFFF0);  // FAT sector count
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    bytes = original;
    cfb::store32(bytes.data() + 44, 200);  // FAT sectors listed in DIFAT sectors that do not exist
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    bytes = original;
    cfb::store32(bytes.data() + 76, 0x7FFFFFFF);  // first FAT sector far past the end
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    bytes = original;
    cfb::store32(bytes.data() + 48, 0x7FFFFFFF);  // directory past the end
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
}

TEST_P(CompoundDamagedFileTest, ChainLoopsAndSharedSectors) {
    Bytes original = bytes;
    std::uint32_t first = cfb::load32(entry(u"big") + 116);
    cfb::store32(fatEntry(first + 1), first);  // the chain turns back
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    bytes = original;
    cfb::store32(fatEntry(first), first);  // a sector linked to itself
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    bytes = original;
    // The directory's chain runs into the stream's sectors.
    cfb::store32(fatEntry(cfb::load32(bytes.data() + 48)), first);
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    bytes = original;
    cfb::store32(entry(u"mini") + 116, 4000);  // a mini sector beyond the mini stream
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
}

TEST_P(CompoundDamagedFileTest, SizesBeyondTheirChains) {
    Bytes original = bytes;
    cfb::store32(entry(u"big") + 120, 1000000);
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    bytes = original;
    cfb::store32(entry(u"mini") + 120, 4000);
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    bytes = original;
    cfb::store32(entry(u"Root Entry") + 120, 0x7FFFFFC0);  // the mini stream
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    if (GetParam()) {
        bytes = original;
        cfb::store64(entry(u"big") + 120, ~std::uint64_t{0});
        EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    }
}

TEST_P(CompoundDamagedFileTest, DirectoryTreeLoopsAndBadReferences) {
    Bytes original = bytes;
    std::uint32_t child = cfb::load32(entry(u"Root Entry") + 76);
    std::uint8_t* childEntry = bytes.data() + sectorOffset(cfb::load32(bytes.data() + 48)) + 128 * child;
    cfb::store32(childEntry + 68, child);  // left sibling is itself
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    bytes = original;
    cfb::store32(entry(u"sub") + 76, 0);  // the storage's child is the root
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    bytes = original;
    cfb::store32(entry(u"sub") + 76, 1000);  // past the directory
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    bytes = original;
    std::uint32_t subId = cfb::load32(entry(u"Root Entry") + 76);
    cfb::store32(entry(u"mini") + 72, subId);  // a storage reached from inside itself
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
    bytes = original;
    cfb::store16(entry(u"big") + 64, 70);  // name length past the field
    EXPECT_EQ(openPatched(), STG_E_DOCFILECORRUPT);
}

TEST_P(CompoundDamagedFileTest, EveryTruncationAndRandomDamage) {
    Bytes original = bytes;
    for (std::size_t length = 0; length < original.size(); length += original.size() / 97 + 1) {
        bytes.assign(original.begin(), original.begin() + static_cast<std::ptrdiff_t>(length));
        // Every sector of the file is in use: losing one is noticed.
        if (length + sectorSize <= original.size()) {
            EXPECT_TRUE(FAILED(openPatched())) << length;
        }
    }
    std::mt19937 random(GetParam() ? 4096 : 512);
    int failures = 0;
    for (int round = 0; round < 1500; ++round) {
        bytes = original;
        int edits = 1 + static_cast<int>(random() % 8);
        for (int i = 0; i < edits; ++i) {
            // Mostly within the header and the table sectors, where damage matters most.
            std::size_t at = random() % 2 ? random() % 512 : random() % bytes.size();
            bytes[at] = static_cast<std::uint8_t>(random() % 3 ? random() : (random() % 2 ? 0xFF : 0xFE));
        }
        if (FAILED(openPatched())) ++failures;
    }
    EXPECT_GT(failures, 100);  // the damage was noticed often, and nothing crashed
}

TEST(CompoundDepthTest, NestingIsBoundedForWritersAndReaders) {
    TempDir dir;
    Ref<IStorage> root;
    ASSERT_EQ(createCompoundFile(dir.file("deep.cfb"), kCreate, root.out()), S_OK);
    Ref<IStorage> level;
    ASSERT_EQ(root->CreateStorage(u"d", kCreate, 0, 0, level.out()), S_OK);
    for (int depth = 2; depth <= 256; ++depth) {
        Ref<IStorage> next;
        ASSERT_EQ(level->CreateStorage(u"d", kCreate, 0, 0, next.out()), S_OK) << depth;
        swap(level, next);
    }
    Ref<IStorage> tooDeep;
    EXPECT_EQ(level->CreateStorage(u"d", kCreate, 0, 0, tooDeep.out()), STG_E_INVALIDFUNCTION);
    level.reset();
    root.reset();
    EXPECT_EQ(openAndReadEverything(dir.file("deep.cfb")), S_OK);
}

INSTANTIATE_TEST_SUITE_P(SectorSizes, CompoundDamagedFileTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return info.param ? std::string("Large") : std::string("Small");
                         });

}  // namespace
}  // namespace nvdl::test
