// The channel lists of a stored setup: inputs, outputs, tachos and strains. Each is a table of n
// entries followed by n fixed channel blocks, the channels named by number ("INPUT1", ...). Lists
// own their channels. Channel positions (GetItem) are 0-based; channel numbers are 1-based.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "recording/TrcBaseSection.h"
#include "recording/TrcInputChannel.h"
#include "recording/TrcOutputChannel.h"
#include "recording/TrcStrainChannel.h"
#include "recording/TrcTachoChannel.h"
#include "recording/TrcToc.h"

namespace nvdl::trc {

class CTrcFile;

struct ListShape {
    std::int32_t version;
    SectionType type;
    const char* name;
    const char* itemName;  // printf format of the channels' names
    // A list that came later than its table: an older entry stands for a file from before the list,
    // read as an empty list.
    bool olderEntryIsEmpty;
};

template <class Item>
class TrcChannelList : public CTrcBaseSection {
public:
    int Init();
    int Uninit() { return RemoveAll(); }

    int Add(std::unique_ptr<Item> channel);
    long GetTotalChannels() const { return static_cast<long>(m_items.size()); }
    Item* GetItem(long index0) const;
    int RemoveAll();  // from the last channel to the first

    std::int64_t GetSectionSize() override {
        return tocSize(GetTotalChannels()) + Item::kBlockSize * GetTotalChannels();
    }
    CTrcTableManagment* GetToc() override { return &m_toc; }
    // Gives each channel its offset behind the table and its numbered name, and rebuilds the table.
    int UpdateTocSections();

    int Write(CTrcBaseSection* owner, CTrcFile* file);
    // Builds the list from the table at this list's entry in the owner's table. A channel that
    // cannot be read is dropped and the read fails.
    int Read(CTrcBaseSection* owner, CTrcFile* file);
    int Copy(TrcChannelList& target) const;

protected:
    explicit TrcChannelList(const ListShape& shape) : m_shape(shape) { Init(); }
    ~TrcChannelList() override { RemoveAll(); }

    long CountUsed(bool (*used)(const Item&)) const;
    // The 1-based number of the used channel at 0-based position `used0` among used channels; 0 if none.
    long NumberOfUsed(bool (*used)(const Item&), long used0) const;

private:
    const ListShape& m_shape;
    CTrcTableManagment m_toc;
    std::vector<std::unique_ptr<Item>> m_items;
};

class CTrcInputChannels final : public TrcChannelList<CTrcInputChannel> {
public:
    CTrcInputChannels();
    long GetUsedChannels() const;  // channels whose Usage is not 0
    long GetChannelNrFromUsedIndex(long used0) const;
};

class CTrcOutputChannels final : public TrcChannelList<CTrcOutputChannel> {
public:
    CTrcOutputChannels();
    long GetUsedChannels() const;  // channels whose Usage is not 0
};

class CTrcTachoChannels final : public TrcChannelList<CTrcTachoChannel> {
public:
    CTrcTachoChannels();
    long GetUsedChannels() const;  // channels with the rpm or the cola part active
    long GetChannelNrFromUsedIndex(long used0) const;
};

class CTrcStrainChannels final : public TrcChannelList<CTrcStrainChannel> {
public:
    static constexpr std::int32_t kVersion = 20071205;
    CTrcStrainChannels();
};

}  // namespace nvdl::trc
