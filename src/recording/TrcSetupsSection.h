// CTrcSetupsSection: the first section of a recording file, a table of n entries followed by n
// setup sections named "SETUP1", ... It belongs to the root, whose table holds its entry. The
// recording's own setup stands in the recorder header, so files written here keep this list empty.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "recording/TrcBaseSection.h"
#include "recording/TrcSetupSection.h"
#include "recording/TrcToc.h"

namespace nvdl::trc {

class CTrcFile;

class CTrcSetupsSection final : public CTrcBaseSection {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;

    CTrcSetupsSection() { Init(nullptr, nullptr); }
    // Empties the list; the file and the root are used by Write and Read.
    int Init(CTrcFile* file, CTrcBaseSection* root);
    int Uninit() { return RemoveAll(); }

    int Add(std::unique_ptr<CTrcSetupSection> setup);
    long GetCount() const { return static_cast<long>(m_items.size()); }
    CTrcSetupSection* GetItem(long index) const;
    int RemoveAll();  // from the last setup to the first

    std::int64_t GetSectionSize() override;
    CTrcTableManagment* GetToc() override { return &m_toc; }
    // Places the setups behind the table, named by number, and rebuilds the table.
    int UpdateTocSections();

    int Write();
    // Builds the list from the table at this section's entry in the root's table. Reads once: a
    // list that was read is not read again.
    int Read();
    int IsRead() const { return m_read; }

private:
    CTrcFile* m_file = nullptr;
    CTrcBaseSection* m_root = nullptr;
    int m_read = 0;
    CTrcTableManagment m_toc;
    std::vector<std::unique_ptr<CTrcSetupSection>> m_items;
};

}  // namespace nvdl::trc
