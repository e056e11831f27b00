#include "platform/CompoundDirectory.h"

#include <algorithm>
#include <bit>

#include "platform/CompoundError.h"
#include "platform/CompoundName.h"

namespace nvdl::cfb {

namespace {

bool nameLess(const std::vector<DirEntry>& entries, std::uint32_t a, std::uint32_t b) {
    return compareNames(entries[a].name, entries[b].name) < 0;
}

// Builds a balanced tree over kids[lo, hi) and returns its root. Levels above `blackLevels` are
// complete and black, the last partial level red: every path to a leaf then passes the same
// number of black entries and no red entry has a red child.
std::uint32_t buildTree(std::vector<DirEntry>& out, const std::vector<std::uint32_t>& kids, std::size_t lo,
                        std::size_t hi, std::size_t depth, std::size_t blackLevels) {
    if (lo >= hi) return NOSTREAM;
    std::size_t mid = lo + (hi - lo) / 2;
    DirEntry& e = out[kids[mid]];
    e.color = depth < blackLevels ? Color::Black : Color::Red;
    e.left = buildTree(out, kids, lo, mid, depth + 1, blackLevels);
    e.right = buildTree(out, kids, mid + 1, hi, depth + 1, blackLevels);
    return kids[mid];
}

}  // namespace

Directory::Directory() {
    DirEntry root;
    root.name = u"Root Entry";
    root.type = EntryType::Root;
    m_entries.push_back(root);
    m_slots.resize(1);
}

Directory::Directory(std::vector<DirEntry> entries) : m_entries(std::move(entries)), m_slots(m_entries.size()) {
    const std::size_t n = m_entries.size();
    if (n == 0 || m_entries[kRoot].type != EntryType::Root) fail(STG_E_DOCFILECORRUPT);
    std::vector<bool> seen(n);
    seen[kRoot] = true;
    struct Pending {
        std::uint32_t storage;
        std::size_t depth;
    };
    std::vector<Pending> pending{{kRoot, 0}};
    std::vector<std::uint32_t> path;
    while (!pending.empty()) {
        Pending p = pending.back();
        pending.pop_back();
        std::vector<std::uint32_t>& kids = m_slots[p.storage].children;
        // In-order walk of the sibling tree, without recursion: a hostile tree may be a long list.
        std::uint32_t cur = m_entries[p.storage].child;
        while (cur != NOSTREAM || !path.empty()) {
            while (cur != NOSTREAM) {
                if (cur >= n || seen[cur]) fail(STG_E_DOCFILECORRUPT);
                EntryType t = m_entries[cur].type;
                if (t != EntryType::Storage && t != EntryType::Stream) fail(STG_E_DOCFILECORRUPT);
                seen[cur] = true;
                path.push_back(cur);
                cur = m_entries[cur].left;
            }
            cur = path.back();
            path.pop_back();
            kids.push_back(cur);
            m_slots[cur].parent = p.storage;
            cur = m_entries[cur].right;
        }
        std::stable_sort(kids.begin(), kids.end(),
                         [&](std::uint32_t a, std::uint32_t b) { return nameLess(m_entries, a, b); });
        for (std::uint32_t k : kids) {
            if (m_entries[k].type != EntryType::Storage) continue;
            if (p.depth + 1 > kMaxDepth) fail(STG_E_DOCFILECORRUPT);
            pending.push_back({k, p.depth + 1});
        }
    }
    for (std::size_t i = 0; i < n; ++i)
        if (!seen[i]) m_entries[i] = DirEntry{};
}

bool Directory::isStorage(std::uint32_t id) const {
    EntryType t = m_entries[id].type;
    return t == EntryType::Storage || t == EntryType::Root;
}

std::uint32_t Directory::find(std::uint32_t storage, std::u16string_view name) const {
    const std::vector<std::uint32_t>& kids = m_slots[storage].children;
    auto it = std::lower_bound(kids.begin(), kids.end(), name, [&](std::uint32_t id, std::u16string_view key) {
        return compareNames(m_entries[id].name, key) < 0;
    });
    if (it != kids.end() && compareNames(m_entries[*it].name, name) == 0) return *it;
    return NOSTREAM;
}

void Directory::insertChild(std::uint32_t storage, std::uint32_t id) {
    std::vector<std::uint32_t>& kids = m_slots[storage].children;
    auto it = std::upper_bound(kids.begin(), kids.end(), id,
                               [&](std::uint32_t a, std::uint32_t b) { return nameLess(m_entries, a, b); });
    kids.insert(it, id);
    m_slots[id].parent = storage;
}

void Directory::eraseChild(std::uint32_t storage, std::uint32_t id) {
    std::vector<std::uint32_t>& kids = m_slots[storage].children;
    kids.erase(std::find(kids.begin(), kids.end(), id));
}

std::uint32_t Directory::add(std::uint32_t storage, std::u16string name, EntryType type) {
    if (type == EntryType::Storage) {
        std::size_t depth = 1;
        for (std::uint32_t p = storage; p != kRoot; p = m_slots[p].parent) ++depth;
        if (depth > kMaxDepth) fail(STG_E_INVALIDFUNCTION);
    }
    std::uint32_t id = static_cast<std::uint32_t>(std::max<std::size_t>(m_freeHint, 1));
    while (id < m_entries.size() && m_entries[id].type != EntryType::Unused) ++id;
    m_freeHint = static_cast<std::size_t>(id) + 1;
    if (id > MAXREGSID) fail(STG_E_MEDIUMFULL);
    if (id == m_entries.size()) {
        m_entries.emplace_back();
        m_slots.emplace_back();
    }
    DirEntry& e = m_entries[id];
    e = DirEntry{};
    e.name = std::move(name);
    e.type = type;
    insertChild(storage, id);
    return id;
}

std::vector<std::uint32_t> Directory::subtree(std::uint32_t id) const {
    std::vector<std::uint32_t> out{id};
    for (std::size_t i = 0; i < out.size(); ++i)
        for (std::uint32_t k : m_slots[out[i]].children) out.push_back(k);
    return out;
}

void Directory::remove(std::uint32_t id) {
    std::vector<std::uint32_t> ids = subtree(id);
    eraseChild(m_slots[id].parent, id);
    for (std::uint32_t k : ids) {
        m_entries[k] = DirEntry{};
        Slot& s = m_slots[k];
        s.children.clear();
        s.parent = NOSTREAM;
        ++s.generation;
        m_freeHint = std::min<std::size_t>(m_freeHint, k);
    }
}

void Directory::rename(std::uint32_t id, std::u16string name) {
    std::uint32_t parent = m_slots[id].parent;
    eraseChild(parent, id);
    m_entries[id].name = std::move(name);
    insertChild(parent, id);
}

std::vector<std::uint8_t> Directory::encode(std::size_t sectorSize) const {
    std::vector<DirEntry> out = m_entries;
    std::size_t used = out.size();
    while (used > 1 && out[used - 1].type == EntryType::Unused) --used;
    out.resize(used);
    for (DirEntry& e : out) e.left = e.right = e.child = NOSTREAM;
    for (std::size_t id = 0; id < used; ++id) {
        if (!isStorage(static_cast<std::uint32_t>(id))) continue;
        const std::vector<std::uint32_t>& kids = m_slots[id].children;
        std::size_t blackLevels = static_cast<std::size_t>(std::bit_width(kids.size() + 1)) - 1;
        out[id].child = buildTree(out, kids, 0, kids.size(), 0, blackLevels);
    }
    out[kRoot].color = Color::Black;
    std::size_t perSector = sectorSize / kDirEntrySize;
    std::size_t slots = (used + perSector - 1) / perSector * perSector;
    std::vector<std::uint8_t> bytes(slots * kDirEntrySize);
    for (std::size_t i = 0; i < slots; ++i)
        encodeDirEntry(i < used ? out[i] : DirEntry{}, bytes.data() + i * kDirEntrySize);
    return bytes;
}

}  // namespace nvdl::cfb
