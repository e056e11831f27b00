#include "recording/TrcChannelLists.h"

#include <cstdio>

#include "recording/TrcFile.h"

namespace nvdl::trc {

template <class Item>
int TrcChannelList<Item>::Init() {
    RemoveAll();
    CTrcBaseSection::Init();
    SetVersionNumber(m_shape.version);
    SetSectionType(m_shape.type);
    SetSectionName(m_shape.name);
    m_toc.Init();
    return 1;
}

template <class Item>
int TrcChannelList<Item>::Add(std::unique_ptr<Item> channel) {
    if (!channel) return 0;
    m_items.push_back(std::move(channel));
    return 1;
}

template <class Item>
Item* TrcChannelList<Item>::GetItem(long index0) const {
    return index0 >= 0 && index0 < GetTotalChannels() ? m_items[static_cast<std::size_t>(index0)].get() : nullptr;
}

template <class Item>
int TrcChannelList<Item>::RemoveAll() {
    while (!m_items.empty()) m_items.pop_back();
    return 1;
}

template <class Item>
int TrcChannelList<Item>::UpdateTocSections() {
    std::int64_t offset = GetSectionOffset() + tocSize(GetTotalChannels());
    m_toc.Init();
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        Item& channel = *m_items[i];
        char name[CTrcBaseSection::kNameSize];
        std::snprintf(name, sizeof name, m_shape.itemName, static_cast<long>(i + 1));
        channel.SetSectionName(name);
        channel.SetSectionOffset(offset);
        m_toc.Add(channel);
        offset += channel.GetSectionSize();
    }
    return 1;
}

template <class Item>
int TrcChannelList<Item>::Write(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !file || !file->IsOpened() || file->IsReadOnly()) return 0;
    if (!file->Seek(GetSectionOffset(), 0) || !m_toc.Write(file, this)) return 0;
    for (const auto& channel : m_items)
        if (!channel->Write(this, file)) return 0;
    return 1;
}

template <class Item>
int TrcChannelList<Item>::Read(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !file || !file->IsOpened()) return 0;
    const TocEntry* entry = EntryIn(*owner->GetToc());
    if (!entry) return 0;
    if (entry->version < m_shape.version) {
        if (!m_shape.olderEntryIsEmpty) return 0;
        RemoveAll();
        m_toc.Init();
        return 1;
    }
    RemoveAll();
    SetSectionOffset(entry->sectionOffset);
    if (!file->Seek(entry->sectionOffset, 0) || !m_toc.Read(file)) return 0;
    for (long i = 0; i < m_toc.GetCount(); ++i) {
        auto channel = std::make_unique<Item>();
        channel->SetSectionIndex(i);
        if (!channel->Read(this, file)) return 0;  // the channel that failed is dropped here
        m_items.push_back(std::move(channel));
    }
    return 1;
}

template <class Item>
int TrcChannelList<Item>::Copy(TrcChannelList& target) const {
    if (&target == this) return 1;
    target.RemoveAll();
    for (const auto& channel : m_items) {
        auto copy = std::make_unique<Item>();
        channel->Copy(*copy);
        copy->SetSectionName(channel->GetSectionName());
        target.m_items.push_back(std::move(copy));
    }
    return 1;
}

template <class Item>
long TrcChannelList<Item>::CountUsed(bool (*used)(const Item&)) const {
    long count = 0;
    for (const auto& channel : m_items) count += used(*channel) ? 1 : 0;
    return count;
}

template <class Item>
long TrcChannelList<Item>::NumberOfUsed(bool (*used)(const Item&), long used0) const {
    if (used0 < 0) return 0;
    long seen = 0;
    for (std::size_t i = 0; i < m_items.size(); ++i)
        if (used(*m_items[i]) && seen++ == used0) return static_cast<long>(i + 1);
    return 0;
}

template class TrcChannelList<CTrcInputChannel>;
template class TrcChannelList<CTrcOutputChannel>;
template class TrcChannelList<CTrcTachoChannel>;
template class TrcChannelList<CTrcStrainChannel>;

namespace {

constexpr ListShape kInputs{kBaseVersion, kInputChannels, "INPUTS_SECTION", "INPUT%ld", false};
constexpr ListShape kOutputs{kBaseVersion, kOutputChannels, "OUTPUTS_SECTION", "OUTPUT%ld", false};
constexpr ListShape kTachos{kBaseVersion, kTachoChannels, "RPMS_SECTION", "RPM%ld", false};
// Strains arrived after the setup's table was laid out; setups from before them have no strain list.
constexpr ListShape kStrains{CTrcStrainChannels::kVersion, kStrainChannels, "STRAINS_SECTION", "STRAIN%ld", true};

bool inputUsed(const CTrcInputChannel& channel) { return channel.GetUsage() != 0; }
bool outputUsed(const CTrcOutputChannel& channel) { return channel.GetUsage() != 0; }
bool tachoUsed(const CTrcTachoChannel& channel) { return channel.GetActivated() != 0; }

}  // namespace

CTrcInputChannels::CTrcInputChannels() : TrcChannelList(kInputs) {}
long CTrcInputChannels::GetUsedChannels() const { return CountUsed(inputUsed); }
long CTrcInputChannels::GetChannelNrFromUsedIndex(long used0) const { return NumberOfUsed(inputUsed, used0); }

CTrcOutputChannels::CTrcOutputChannels() : TrcChannelList(kOutputs) {}
long CTrcOutputChannels::GetUsedChannels() const { return CountUsed(outputUsed); }

CTrcTachoChannels::CTrcTachoChannels() : TrcChannelList(kTachos) {}
long CTrcTachoChannels::GetUsedChannels() const { return CountUsed(tachoUsed); }
long CTrcTachoChannels::GetChannelNrFromUsedIndex(long used0) const { return NumberOfUsed(tachoUsed, used0); }

CTrcStrainChannels::CTrcStrainChannels() : TrcChannelList(kStrains) {}

}  // namespace nvdl::trc
