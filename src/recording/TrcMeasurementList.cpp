#include "recording/TrcMeasurementList.h"

#include <cstdio>

#include "recording/TrcFile.h"
#include "recording/TrcMeasurement.h"
#include "recording/TrcSubMeasurement.h"

namespace nvdl::trc {

template <class Child>
int CTrcMeasurementList<Child>::Reset(SectionType type, const char* name) {
    RemoveAll();
    CTrcBaseSection::Init();
    SetVersionNumber(kBaseVersion);
    SetSectionType(type);
    SetSectionName(name);
    m_isRead = 0;
    return m_toc.Init();
}

template <class Child>
int CTrcMeasurementList<Child>::Attach(CTrcFile* file, CTrcBaseSection* owner) {
    m_file = file;
    m_owner = owner;
    for (auto& child : m_items) child->Init(file, 1);
    return 1;
}

template <class Child>
int CTrcMeasurementList<Child>::Add(std::unique_ptr<Child> child) {
    if (!child) return 0;
    child->Init(m_file, 1);
    m_items.push_back(std::move(child));
    return 1;
}

template <class Child>
Child* CTrcMeasurementList<Child>::GetItem(long index) const {
    return index >= 0 && index < GetCount() ? m_items[static_cast<std::size_t>(index)].get() : nullptr;
}

template <class Child>
int CTrcMeasurementList<Child>::RemoveAll() {
    while (!m_items.empty()) m_items.pop_back();
    return 1;
}

template <class Child>
std::int64_t CTrcMeasurementList<Child>::GetSectionSize() {
    std::int64_t size = tocSize(GetCount());
    for (auto& child : m_items) size += child->GetSectionSize();
    return size;
}

template <class Child>
int CTrcMeasurementList<Child>::UpdateTocSections() {
    const std::int64_t tables = GetSectionOffset() + tocSize(GetCount());
    m_toc.Init();
    std::int64_t headersSize = 0, tablesSize = 0;
    for (auto& child : m_items) {
        headersSize += child->GetHeader().GetSectionSize();
        tablesSize += child->GetMainHeaderSize();
    }
    std::int64_t table = tables, header = tables + tablesSize, data = header + headersSize;
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        Child& child = *m_items[i];
        child.SetSectionOffset(table);
        child.SetHeaderOffset(header);
        // The header size of every entry is the size of the whole header zone, not of the child's
        // own header: a browser reads the zone in one go from the first entry.
        child.SetHeaderSize(headersSize);
        char name[CTrcBaseSection::kNameSize];
        std::snprintf(name, sizeof name, Child::kNameFormat, static_cast<long>(i + 1));
        child.SetSectionName(name);
        header += child.GetHeader().GetSectionSize();
        child.SetDataOffset(data);
        if (!child.UpdateTocSections()) return 0;
        data += child.GetDataZoneSize();
        table += child.GetMainHeaderSize();
        if (!m_toc.Add(child)) return 0;
    }
    return 1;
}

template <class Child>
int CTrcMeasurementList<Child>::Write() {
    return Write(m_owner, m_file);
}

template <class Child>
int CTrcMeasurementList<Child>::Write(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !file || !file->IsOpened() || file->IsReadOnly()) return 0;
    const TocEntry* entry = EntryIn(*owner->GetToc());
    if (!entry) return 0;
    if (entry->sectionSize > 0 && entry->sectionSize > GetSectionSize()) return 0;  // shrunk since the layout
    return file->Seek(GetSectionOffset(), 0) ? InternWrite(file) : 0;
}

template <class Child>
int CTrcMeasurementList<Child>::InternWrite(CTrcFile* file) {
    if (!m_toc.Write(file, this)) return 0;
    for (auto& child : m_items)
        if (!child->Write(this, file)) return 0;
    return 1;
}

template <class Child>
int CTrcMeasurementList<Child>::Read(long index) {
    return ReadUnder(m_owner, m_file, index);
}

template <class Child>
int CTrcMeasurementList<Child>::Read(CTrcBaseSection* owner, CTrcFile* file) {
    return ReadUnder(owner, file, -1);
}

template <class Child>
int CTrcMeasurementList<Child>::ReadUnder(CTrcBaseSection* owner, CTrcFile* file, long index) {
    if (index == -1 && m_isRead) return 1;  // everything is in memory already
    if (!owner || !owner->GetToc() || !file || !file->IsOpened()) return 0;
    const TocEntry* entry = EntryIn(*owner->GetToc());
    if (!entry) return 0;
    RemoveAll();
    m_toc.Init();
    m_isRead = 0;
    if (!file->Seek(entry->sectionOffset, 0)) return 0;
    SetSectionOffset(entry->sectionOffset);
    // A file from before measurements were stored this way simply has none.
    if (entry->version < kBaseVersion) return 1;
    SetVersionNumber(entry->version);
    return InternRead(file, index);
}

template <class Child>
int CTrcMeasurementList<Child>::InternRead(CTrcFile* file, long index) {
    RemoveAll();
    m_isRead = 0;
    if (index < -1 || !file || !m_toc.Read(file) || index >= m_toc.GetCount()) return 0;
    // In a sound file the children tile the file, so together they never outgrow it; only a damaged
    // table, with children reusing the same bytes, would. Stopping there bounds what a read builds.
    const std::int64_t room = file->GetFileSize();
    std::int64_t used = m_toc.GetTocSize(-1);
    const long first = index == -1 ? 0 : index, last = index == -1 ? m_toc.GetCount() - 1 : index;
    for (long i = first; i <= last; ++i) {
        const TocEntry& entry = *m_toc.GetItem(i);
        auto child = std::make_unique<Child>();
        child->Init(file, 1);
        child->TakeEntry(entry);
        child->SetHeaderOffset(entry.headerOffset);
        child->SetHeaderSize(entry.headerSize);
        child->SetDataOffset(entry.dataOffset);
        if (!child->Read(this, file)) return 0;
        used += child->GetSectionSize();
        if (used > room) return 0;
        Add(std::move(child));
    }
    m_isRead = index == -1 ? 1 : 0;
    return 1;
}

template class CTrcMeasurementList<CTrcMeasurementSection>;
template class CTrcMeasurementList<CTrcSubMeasurementSection>;

}  // namespace nvdl::trc
