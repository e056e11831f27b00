// Damaged and hostile compound files end in a status code: no crash, no endless loop, no
// allocation beyond what the file's size justifies.
#include <functional>
#include <random>

#include <gtest/gtest.h>

#include "CompoundTestSupport.h"
#include "platform/CompoundFormat.h"

namespace nvdl::test {
namespace {

Bytes load(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

void save(const std::filesystem::path& file, const Bytes& bytes) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

// Reads every element below `storage`; the status of the first failure, or S_OK.
HRESULT readEverything(IStorage* storage) {
    std::vector<STATSTG> elements;
    HRESULT h = storage->EnumElements(&elements);
    for (std::size_t i = 0; i < elements.size() && SUCCEEDED(h); ++i) {
        const STATSTG& e = elements[i];
        if (e.type == STGTY_STORAGE) {
            Ref<IStorage> child;
            h = storage->OpenStorage(e.name.c_str(), nullptr, kRead, nullptr, 0, child.out());
            if (SUCCEEDED(h)) h = readEverything(child.get());
        } else {
            Ref<IStream> s;
            h = storage->OpenStream(e.name.c_str(), nullptr, kRead, 0, s.out());
            Bytes buffer(8192);
            for (ULONG got = 1; SUCCEEDED(h) && got > 0;) h = s->Read(buffer.data(), 8192, &got);
        }
    }
    return h;
}

HRESULT openAndReadEverything(const std::filesystem::path& file) {
    Ref<IStorage> root;
    HRESULT h = openCompoundFile(file, kRead, root.out());
    return FAILED(h) ? h : readEverything(root.get());
}

// A small well-formed file: a storage, a mini-stream stream and a stream in file sectors.
class CompoundDamagedFileTest : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        {
            Ref<IStorage> root, sub;
            ASSERT_EQ(createCompoundFile(good, kCreate, root.out(), {GetParam()}), S_OK);
            ASSERT_EQ(root->CreateStorage(u"sub", kCreate, 0, 0, sub.out()), S_OK);
            putStream(sub.get(), u"mini", content("mini", 300));
            putStream(root.get(), u"big", content("big", 20000));
        }
        ASSERT_EQ(openAndReadEverything(good), S_OK);
        original = bytes = load(good);
        sectorSize = std::size_t{1} << cfb::load16(at(30));
    }
    std::uint8_t* at(std::size_t offset) { return bytes.data() + offset; }
    std::uint8_t* sector(std::uint32_t index) { return at((index + 1) * sectorSize); }
    std::uint32_t directorySector() { return cfb::load32(at(48)); }
    // The directory entry of that number, and of that name (the directory fits one sector here).
    std::uint8_t* entry(std::uint32_t id) { return sector(directorySector()) + 128 * id; }
    std::uint8_t* entry(const std::u16string& name) {
        for (std::uint32_t id = 0; id < sectorSize / 128; ++id) {
            std::u16string n;
            for (const std::uint8_t* c = entry(id); n.size() < 31 && cfb::load16(c); c += 2)
                n.push_back(cfb::load16(c));
            if (n == name) return entry(id);
        }
        ADD_FAILURE() << "no entry";
        return entry(0u);
    }
    std::uint8_t* fatEntry(std::uint32_t index) { return sector(cfb::load32(at(76))) + 4 * index; }
    HRESULT openPatched() {
        save(bad, bytes);
        return openAndReadEverything(bad);
    }

    TempDir dir;
    std::filesystem::path good = dir.file("good.cfb");
    std::filesystem::path bad = dir.file("bad.cfb");
    Bytes original, bytes;
    std::size_t sectorSize = 512;
};

TEST_P(CompoundDamagedFileTest, NotACompoundFile) {
    save(bad, Bytes{});
    EXPECT_EQ(openAndReadEverything(bad), STG_E_FILEALREADYEXISTS);
    save(bad, Bytes(5000, 'x'));
    EXPECT_EQ(openAndReadEverything(bad), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(isCompoundFile(bad), S_FALSE);
    bytes.resize(300);  // the signature, then too short a header
    EXPECT_EQ(openPatched(), STG_E_INVALIDHEADER);
}

TEST_P(CompoundDamagedFileTest, EachDamageGivesItsStatus) {
    struct Damage {
        const char* what;
        HRESULT expected;
        std::function<void()> patch;
    };
    const std::uint32_t big = cfb::load32(entry(u"big") + 116);
    const std::uint32_t firstChild = cfb::load32(entry(u"Root Entry") + 76);
    constexpr HRESULT kCorrupt = STG_E_DOCFILECORRUPT;
    std::vector<Damage> damages = {
        {"sector shift", STG_E_INVALIDHEADER, [&] { cfb::store16(at(30), 10); }},
        {"byte order", STG_E_INVALIDHEADER, [&] { cfb::store16(at(28), 0xFEFF); }},
        {"FAT sector count", kCorrupt, [&] { cfb::store32(at(44), 0xFFFFFFF0); }},
        {"FAT sectors in missing DIFAT sectors", kCorrupt, [&] { cfb::store32(at(44), 200); }},
        {"first FAT sector past the end", kCorrupt, [&] { cfb::store32(at(76), 0x7FFFFFFF); }},
        {"directory past the end", kCorrupt, [&] { cfb::store32(at(48), 0x7FFFFFFF); }},
        {"chain turns back", kCorrupt, [&] { cfb::store32(fatEntry(big + 1), big); }},
        {"sector linked to itself", kCorrupt, [&] { cfb::store32(fatEntry(big), big); }},
        {"directory chain runs into a stream", kCorrupt, [&] { cfb::store32(fatEntry(directorySector()), big); }},
        {"mini sector beyond the mini stream", kCorrupt, [&] { cfb::store32(entry(u"mini") + 116, 4000); }},
        {"stream size beyond its chain", kCorrupt, [&] { cfb::store32(entry(u"big") + 120, 1000000); }},
        {"mini stream size beyond its chain", kCorrupt, [&] { cfb::store32(entry(u"mini") + 120, 4000); }},
        {"root's mini stream size", kCorrupt, [&] { cfb::store32(entry(u"Root Entry") + 120, 0x7FFFFFC0); }},
        {"sibling is itself", kCorrupt, [&] { cfb::store32(entry(firstChild) + 68, firstChild); }},
        {"storage's child is the root", kCorrupt, [&] { cfb::store32(entry(u"sub") + 76, 0); }},
        {"child past the directory", kCorrupt, [&] { cfb::store32(entry(u"sub") + 76, 1000); }},
        {"storage reached from inside itself", kCorrupt, [&] { cfb::store32(entry(u"mini") + 72, firstChild); }},
        {"name length past the field", kCorrupt, [&] { cfb::store16(entry(u"big") + 64, 70); }},
    };
    if (GetParam())
        damages.push_back({"64-bit stream size", kCorrupt, [&] { cfb::store64(entry(u"big") + 120, ~0ull); }});
    for (const Damage& d : damages) {
        bytes = original;
        d.patch();
        EXPECT_EQ(openPatched(), d.expected) << d.what;
    }
}

TEST_P(CompoundDamagedFileTest, EveryTruncationAndRandomDamage) {
    // Every sector of the file is in use: losing one is noticed.
    for (std::size_t length = 0; length + sectorSize <= original.size(); length += original.size() / 97 + 1) {
        bytes.assign(original.begin(), original.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_TRUE(FAILED(openPatched())) << length;
    }
    std::mt19937 random(GetParam() ? 4096 : 512);
    int failures = 0;
    for (int round = 0; round < 1500; ++round) {
        bytes = original;
        for (int i = 0, edits = 1 + static_cast<int>(random() % 8); i < edits; ++i) {
            // Mostly within the header and the table sectors, where damage matters most.
            std::size_t pos = random() % 2 ? random() % 512 : random() % bytes.size();
            bytes[pos] = static_cast<std::uint8_t>(random() % 3 ? random() : (random() % 2 ? 0xFF : 0xFE));
        }
        if (FAILED(openPatched())) ++failures;
    }
    EXPECT_GT(failures, 100);  // the damage was noticed often, and nothing crashed
}

TEST(CompoundDepthTest, NestingIsBoundedForWritersAndReaders) {
    TempDir dir;
    Ref<IStorage> root, level;
    ASSERT_EQ(createCompoundFile(dir.file("deep.cfb"), kCreate, root.out()), S_OK);
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

INSTANTIATE_TEST_SUITE_P(SectorSizes, CompoundDamagedFileTest, ::testing::Bool(), sectorSizeName);

}  // namespace
}  // namespace nvdl::test
