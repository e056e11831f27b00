// The storage tree in memory: the same answers and order as a compound file's storages, handles that
// outlive their elements, the tree's own members, and whole trees copied to a file and back.
#include <gtest/gtest.h>

#include <functional>

#include "CompoundTestSupport.h"
#include "StorageTree.h"
#include "nvdl/INVRootStorage.h"
#include "nvdl/Persist.h"
#include "platform/ComPtr.h"
#include "platform/StorageCopy.h"

namespace nvdl::test {
namespace {

const CLSID kClassA{0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};
const CLSID kClassB{0x99999999, 0x8888, 0x7777, {8, 7, 6, 5, 4, 3, 2, 1}};

ComPtr<INVRootStorage> newTree() {
    ComPtr<INVRootStorage> tree;
    EXPECT_EQ(CreateNVRootStorage(tree.out()), S_OK);
    return tree;
}

ComPtr<IStorage> storageOf(INVRootStorage* tree) {
    ComPtr<IStorage> storage;
    EXPECT_EQ(tree->QueryInterface(IID_IStorage, storage.outVoid()), S_OK);
    return storage;
}

ComPtr<IPersistStorage> persistOf(INVRootStorage* tree) { return ComPtr<IPersistStorage>::query(tree); }

ComPtr<IStorage> subStorage(IStorage* parent, const char16_t* name, DWORD mode) {
    ComPtr<IStorage> sub;
    EXPECT_EQ(parent->CreateStorage(name, mode, 0, 0, sub.out()), S_OK);
    return sub;
}

// Streams of several sizes (one larger than a copy's chunk), an empty stream, nested storages with
// class identifiers.
void fillSample(IStorage* root) {
    ASSERT_EQ(root->SetClass(kClassA), S_OK);
    putStream(root, u"Header", content("Header", 10));
    putStream(root, u"Big", content("Big", 200001));
    putStream(root, u"Empty", {});
    ComPtr<IStorage> sub = subStorage(root, u"Sub", kCreate);
    ASSERT_EQ(sub->SetClass(kClassB), S_OK);
    putStream(sub.get(), u"x", content("x", 4097));
    ComPtr<IStorage> deeper = subStorage(sub.get(), u"Deeper", kCreate);
    putStream(deeper.get(), u"y", content("y", 3));
}

enum class Op { CreateStream, CreateStorage, OpenStream, OpenStorage, Destroy, Rename };

struct Step {
    Op op;
    std::u16string name;
    DWORD mode;
    HRESULT expected;
    std::u16string newName = {};
};

HRESULT apply(IStorage* storage, const Step& s) {
    ComPtr<IStream> stream;
    ComPtr<IStorage> sub;
    switch (s.op) {
        case Op::CreateStream: return storage->CreateStream(s.name.c_str(), s.mode, 0, 0, stream.out());
        case Op::CreateStorage: return storage->CreateStorage(s.name.c_str(), s.mode, 0, 0, sub.out());
        case Op::OpenStream: return storage->OpenStream(s.name.c_str(), nullptr, s.mode, 0, stream.out());
        case Op::OpenStorage: return storage->OpenStorage(s.name.c_str(), nullptr, s.mode, nullptr, 0, sub.out());
        case Op::Destroy: return storage->DestroyElement(s.name.c_str());
        case Op::Rename: return storage->RenameElement(s.name.c_str(), s.newName.c_str());
    }
    return E_UNEXPECTED;
}

std::vector<std::pair<std::u16string, DWORD>> listing(IStorage* storage) {
    std::vector<STATSTG> elements;
    EXPECT_EQ(storage->EnumElements(&elements), S_OK);
    std::vector<std::pair<std::u16string, DWORD>> out;
    for (const STATSTG& e : elements) out.emplace_back(e.name, e.type);
    return out;
}

TEST(MemoryStorage, AnswersAndOrdersElementsAsACompoundFileStorageDoes) {
    const std::u16string name31(31, u'n'), name32(32, u'n');
    const Step steps[] = {
        {Op::CreateStream, u"beta", kCreate, S_OK},
        {Op::CreateStream, u"BETA", kWrite, STG_E_FILEALREADYEXISTS},
        {Op::CreateStorage, u"Alpha", kCreate, S_OK},
        {Op::CreateStream, u"b", kCreate, S_OK},
        {Op::CreateStream, u"ZZ", kCreate, S_OK},
        {Op::CreateStream, u"aa", kCreate, S_OK},
        {Op::CreateStream, u"\u00e9t\u00e9", kCreate, S_OK},
        {Op::CreateStream, u"", kCreate, STG_E_INVALIDNAME},
        {Op::CreateStream, u"a/b", kCreate, STG_E_INVALIDNAME},
        {Op::CreateStream, name32, kCreate, STG_E_INVALIDNAME},
        {Op::CreateStream, name31, kCreate, S_OK},
        {Op::OpenStream, u"Beta", kRead, S_OK},
        {Op::OpenStream, u"Alpha", kRead, STG_E_FILENOTFOUND},
        {Op::OpenStorage, u"beta", kRead, STG_E_FILENOTFOUND},
        {Op::OpenStream, u"missing", kRead, STG_E_FILENOTFOUND},
        {Op::OpenStream, u"beta", kCreate, STG_E_INVALIDFLAG},
        {Op::OpenStream, u"beta", STGM_WRITE | STGM_READWRITE, STG_E_INVALIDFLAG},
        {Op::CreateStorage, u"BETA", kCreate, S_OK},  // replaces the stream of that name
        {Op::Rename, u"aa", 0, STG_E_FILEALREADYEXISTS, u"zz"},
        {Op::Rename, u"aa", 0, S_OK, u"Last"},
        {Op::Rename, u"nope", 0, STG_E_FILENOTFOUND, u"x"},
        {Op::Destroy, u"b", 0, S_OK},
        {Op::Destroy, u"B", 0, STG_E_FILENOTFOUND},
    };
    TempDir dir;
    ComPtr<IStorage> file;
    ASSERT_EQ(createCompoundFile(dir.file("order.cfb"), kCreate, file.out()), S_OK);
    ComPtr<INVRootStorage> tree = newTree();
    ComPtr<IStorage> memory = storageOf(tree.get());
    for (std::size_t i = 0; i < std::size(steps); ++i) {
        EXPECT_EQ(apply(file.get(), steps[i]), steps[i].expected) << "compound, step " << i;
        EXPECT_EQ(apply(memory.get(), steps[i]), steps[i].expected) << "memory, step " << i;
    }
    const std::vector<std::pair<std::u16string, DWORD>> expected = {
        {u"ZZ", STGTY_STREAM},     {u"\u00e9t\u00e9", STGTY_STREAM}, {u"BETA", STGTY_STORAGE},
        {u"Last", STGTY_STREAM},   {u"Alpha", STGTY_STORAGE},        {name31, STGTY_STREAM},
    };
    EXPECT_EQ(listing(memory.get()), expected);
    EXPECT_EQ(listing(file.get()), expected);
}

TEST(MemoryStorage, HandlesKeepTheirOwnPositionsAndOutliveOrLoseTheirElements) {
    ComPtr<INVRootStorage> tree = newTree();
    ComPtr<IStorage> root = storageOf(tree.get());
    ComPtr<IStream> writer, reader;
    ASSERT_EQ(root->CreateStream(u"s", kCreate, 0, 0, writer.out()), S_OK);
    writeAll(writer.get(), {'a', 'b', 'c', 'd'});
    ASSERT_EQ(root->OpenStream(u"s", nullptr, kRead, 0, reader.out()), S_OK);
    std::uint8_t two[2];
    ULONG got = 0;
    ASSERT_EQ(reader->Read(two, 2, &got), S_OK);
    EXPECT_EQ(std::string(two, two + got), "ab");
    writeAll(writer.get(), {'e'});  // the writer goes on where it stopped, not where the reader is
    ASSERT_EQ(reader->Read(two, 2, &got), S_OK);
    EXPECT_EQ(std::string(two, two + got), "cd");
    EXPECT_EQ(getStream(root.get(), u"s"), (Bytes{'a', 'b', 'c', 'd', 'e'}));

    // Opened for reading: no changes through the stream, nor through the storage or below it.
    EXPECT_EQ(reader->Write("x", 1, nullptr), STG_E_ACCESSDENIED);
    EXPECT_EQ(reader->SetSize(0), STG_E_ACCESSDENIED);
    subStorage(root.get(), u"dir", kCreate);
    ComPtr<IStorage> readOnly;
    ASSERT_EQ(root->OpenStorage(u"dir", nullptr, kRead, nullptr, 0, readOnly.out()), S_OK);
    ComPtr<IStream> none;
    EXPECT_EQ(readOnly->CreateStream(u"t", kCreate, 0, 0, none.out()), STG_E_ACCESSDENIED);
    EXPECT_EQ(readOnly->SetClass(kClassA), STG_E_ACCESSDENIED);

    // A stream held past the release of its whole tree still reads.
    ComPtr<IStream> kept;
    ASSERT_EQ(root->OpenStream(u"s", nullptr, kRead, 0, kept.out()), S_OK);
    root.reset();
    tree.reset();
    EXPECT_EQ(readAll(kept.get()), (Bytes{'a', 'b', 'c', 'd', 'e'}));

    // Destroyed, replaced or cleared elements: their handles answer STG_E_REVERTED.
    tree = newTree();
    root = storageOf(tree.get());
    ComPtr<IStream> destroyed, replaced;
    ComPtr<IStorage> cleared = subStorage(root.get(), u"c", kCreate);
    ComPtr<IStorage> clearedChild = subStorage(cleared.get(), u"cc", kCreate);
    ASSERT_EQ(root->CreateStream(u"d", kCreate, 0, 0, destroyed.out()), S_OK);
    ASSERT_EQ(root->CreateStream(u"r", kCreate, 0, 0, replaced.out()), S_OK);
    ASSERT_EQ(root->DestroyElement(u"d"), S_OK);
    ComPtr<IStream> fresh;
    ASSERT_EQ(root->CreateStream(u"r", kCreate, 0, 0, fresh.out()), S_OK);
    ASSERT_EQ(tree->Clear(), S_OK);
    std::vector<STATSTG> elements;
    EXPECT_EQ(destroyed->Read(two, 1, &got), STG_E_REVERTED);
    EXPECT_EQ(replaced->Write("x", 1, nullptr), STG_E_REVERTED);
    EXPECT_EQ(cleared->EnumElements(&elements), STG_E_REVERTED);
    EXPECT_EQ(clearedChild->CreateStream(u"t", kCreate, 0, 0, none.out()), STG_E_REVERTED);
    EXPECT_EQ(root->EnumElements(&elements), S_OK);
    EXPECT_TRUE(elements.empty());
}

TEST(MemoryStorage, WholeTreesGoToAFileAndComeBackByteForByte) {
    ComPtr<INVRootStorage> tree = newTree();
    fillSample(storageOf(tree.get()).get());
    const TreeContents original = contentsOf(storageOf(tree.get()).get());
    ASSERT_EQ(original.size(), 8u);

    TempDir dir;
    ComPtr<IStorage> file;
    ASSERT_EQ(createCompoundFile(dir.file("tree.cfb"), kCreate, file.out()), S_OK);
    ASSERT_EQ(persistOf(tree.get())->Save(file.get(), 0), S_OK);
    ASSERT_EQ(file->Commit(STGC_DEFAULT), S_OK);
    file.reset();
    ASSERT_EQ(openCompoundFile(dir.file("tree.cfb"), STGM_READ, file.out()), S_OK);
    TreeContents onDisk = contentsOf(file.get());
    EXPECT_EQ(onDisk, original);

    ComPtr<INVRootStorage> loaded = newTree();
    putStream(storageOf(loaded.get()).get(), u"Stale", {1});
    ASSERT_EQ(persistOf(loaded.get())->Load(file.get()), S_OK);
    EXPECT_EQ(contentsOf(storageOf(loaded.get()).get()), original);  // the stale stream is gone
    CLSID clsid{};
    EXPECT_EQ(persistOf(loaded.get())->GetClassID(&clsid), S_OK);
    EXPECT_EQ(clsid, kClassA);

    // The generic copy between two files' storages keeps what was there under other names.
    ComPtr<IStorage> other;
    ASSERT_EQ(createCompoundFile(dir.file("other.cfb"), kCreate, other.out()), S_OK);
    putStream(other.get(), u"Own", {7});
    ASSERT_EQ(copyStorageTree(file.get(), other.get()), S_OK);
    TreeContents expected = original;
    expected["Own"] = {STGTY_STREAM, CLSID{}, Bytes{7}};
    EXPECT_EQ(contentsOf(other.get()), expected);
    EXPECT_EQ(copyStorageTree(nullptr, other.get()), E_POINTER);
}

TEST(MemoryStorage, CopyFromIsDeepAndALoadThatFailsChangesNothing) {
    ComPtr<INVRootStorage> source = newTree();
    fillSample(storageOf(source.get()).get());
    const TreeContents original = contentsOf(storageOf(source.get()).get());
    ComPtr<INVRootStorage> copy = newTree();
    putStream(storageOf(copy.get()).get(), u"Old", {1, 2});
    ASSERT_EQ(copy->CopyFrom(source.get()), S_OK);
    EXPECT_EQ(contentsOf(storageOf(copy.get()).get()), original);

    ComPtr<IStorage> copySub;
    ASSERT_EQ(storageOf(copy.get())->OpenStorage(u"Sub", nullptr, kWrite, nullptr, 0, copySub.out()), S_OK);
    putStream(copySub.get(), u"x", {9});
    ASSERT_EQ(storageOf(copy.get())->DestroyElement(u"Header"), S_OK);
    EXPECT_EQ(contentsOf(storageOf(source.get()).get()), original);

    ASSERT_EQ(source->CopyFrom(source.get()), S_OK);
    EXPECT_EQ(contentsOf(storageOf(source.get()).get()), original);
    EXPECT_EQ(source->CopyFrom(nullptr), E_POINTER);

    // A storage that is gone cannot be read: the tree keeps what it had.
    ComPtr<IStorage> gone = subStorage(storageOf(copy.get()).get(), u"Gone", kCreate);
    ASSERT_EQ(storageOf(copy.get())->DestroyElement(u"Gone"), S_OK);
    EXPECT_EQ(persistOf(source.get())->Load(gone.get()), STG_E_REVERTED);
    EXPECT_EQ(contentsOf(storageOf(source.get()).get()), original);
}

TEST(MemoryStorage, ContentsAndDirtinessFollowEveryChange) {
    ComPtr<INVRootStorage> tree = newTree();
    ComPtr<IStorage> root = storageOf(tree.get());
    ComPtr<IPersistStorage> persist = persistOf(tree.get());
    TempDir dir;
    ComPtr<IStorage> file;
    ASSERT_EQ(createCompoundFile(dir.file("dirty.cfb"), kCreate, file.out()), S_OK);
    ComPtr<IStream> held;
    struct Case {
        const char* what;
        std::function<HRESULT()> change;
        HRESULT dirty;
        SHORT has;
    };
    const Case cases[] = {
        {"new", [] { return S_OK; }, S_FALSE, 0},
        {"stream made", [&] { return root->CreateStream(u"s", kCreate, 0, 0, held.out()); }, S_OK, -1},
        {"saved", [&] { return persist->Save(file.get(), 0); }, S_FALSE, -1},
        {"written through a held stream", [&] { return held->Write("x", 1, nullptr); }, S_OK, -1},
        {"loaded", [&] { return persist->Load(file.get()); }, S_FALSE, -1},
        {"read back as saved", [&] { return getStream(root.get(), u"s").empty() ? S_OK : E_FAIL; }, S_FALSE, -1},
        {"started anew", [&] { return persist->InitNew(nullptr); }, S_FALSE, 0},
        {"storage made", [&] { return subStorage(root.get(), u"d", kCreate) ? S_OK : E_FAIL; }, S_OK, -1},
        {"cleared", [&] { return tree->Clear(); }, S_OK, 0},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(c.change(), S_OK) << c.what;
        EXPECT_EQ(persist->IsDirty(), c.dirty) << c.what;
        SHORT has = 1;
        EXPECT_EQ(tree->HasContents(&has), S_OK);
        EXPECT_EQ(has, c.has) << c.what;
    }
    EXPECT_EQ(tree->HasContents(nullptr), E_POINTER);
    EXPECT_EQ(CreateNVRootStorage(nullptr), E_POINTER);
}

}  // namespace
}  // namespace nvdl::test
