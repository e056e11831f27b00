// CTrcMeasurementList: a list of stored measurements (or of one measurement's sub-measurements),
// laid out for fast browsing. At the list's offset stands its table, then three zones: the main
// tables of all children, then the headers of all children, then the data of all children (for a
// measurement directly followed by its sub-measurements). A reader can so list what a file holds
// with short, close reads; the bulk values are only read on demand through the data sections.
//
// Reading is lazy: Read(-1) brings in the table, the headers and the structure of every child,
// Read(index) only the child at that position of the table (it is then the list's only item,
// while the whole table stays in memory).
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "recording/TrcBaseSection.h"
#include "recording/TrcToc.h"

namespace nvdl::trc {

class CTrcFile;

template <class Child>
class CTrcMeasurementList : public CTrcBaseSection {
public:
    int Uninit() { return RemoveAll(); }

    int Add(std::unique_ptr<Child> child);  // the child takes this list's file
    long GetCount() const { return static_cast<long>(m_items.size()); }
    Child* GetItem(long index) const;
    int RemoveAll();
    int IsRead() const { return m_isRead; }

    std::int64_t GetSectionSize() override;
    CTrcTableManagment* GetToc() override { return &m_toc; }
    // Gives every child its place in the three zones and its numbered name, and rebuilds the table.
    int UpdateTocSections();

    // Under the owner given at Init, or under the one given here.
    int Write();
    int Write(CTrcBaseSection* owner, CTrcFile* file);
    int Read(long index);
    int Read(CTrcBaseSection* owner, CTrcFile* file);  // every child
    // The table and the children, at the file's position.
    int InternWrite(CTrcFile* file);
    int InternRead(CTrcFile* file, long index);

protected:
    int Reset(SectionType type, const char* name);       // empty and unread
    int Attach(CTrcFile* file, CTrcBaseSection* owner);  // new pointers for the list and its children

    CTrcFile* m_file = nullptr;
    CTrcBaseSection* m_owner = nullptr;

private:
    int ReadUnder(CTrcBaseSection* owner, CTrcFile* file, long index);

    CTrcTableManagment m_toc;
    std::vector<std::unique_ptr<Child>> m_items;
    int m_isRead = 0;
};

}  // namespace nvdl::trc
