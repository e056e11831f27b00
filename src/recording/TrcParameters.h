// Parameter lists of a recording: CTrcParametersSection is a table of n entries named
// "PARAMETER%ld" followed by n records of 460 bytes, one CTrcParameterSection each, holding a
// name and value pair. Lists stand in a setup, twice in its saving section and in every stored
// measurement's header; whose table holds the list's own entry is told by the owner given to
// Write and Read.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "recording/TrcBaseSection.h"
#include "recording/TrcToc.h"

namespace nvdl::trc {

class CTrcFile;

class CTrcParameterSection final : public CTrcBaseSection {
public:
    static constexpr std::int32_t kVersionV1 = 20040309;  // name char[100] at 4, value at 104
    static constexpr std::int32_t kVersionV2 = 20080314;  // name char[150] at 4, value char[256] at 154
    static constexpr std::int64_t kRecordSize = 460;
    static constexpr std::size_t kNameSize = 150;
    static constexpr std::size_t kValueSize = 256;

    CTrcParameterSection() { Init(); }
    int Init();

    const char* GetName() const { return m_name.c_str(); }
    void SetName(const char* name);    // ignores null; at most 149 characters
    const char* GetValue() const { return m_value.c_str(); }
    void SetValue(const char* value);  // ignores null; at most 255 characters

    std::int64_t GetSectionSize() override { return kRecordSize; }
    // Written always in the current layout; read from either layout into the current one.
    int Write(CTrcBaseSection* owner, CTrcFile* file);
    int Read(CTrcBaseSection* owner, CTrcFile* file);
    int Copy(CTrcParameterSection& target) const;

private:
    std::string m_name, m_value;
};

class CTrcParametersSection final : public CTrcBaseSection {
public:
    CTrcParametersSection() { Init(); }
    int Init();
    int Uninit() { return RemoveAll(); }

    int Add(std::unique_ptr<CTrcParameterSection> parameter);
    long GetCount() const { return static_cast<long>(m_items.size()); }
    CTrcParameterSection* GetItem(long index) const;
    int RemoveAll();

    std::int64_t GetSectionSize() override;
    CTrcTableManagment* GetToc() override { return &m_toc; }
    // Gives each parameter its offset behind the table and its numbered name, and rebuilds the table.
    int UpdateTocSections();

    int Write(CTrcBaseSection* owner, CTrcFile* file);
    int Read(CTrcBaseSection* owner, CTrcFile* file);
    int Copy(CTrcParametersSection& target) const;

private:
    CTrcTableManagment m_toc;
    std::vector<std::unique_ptr<CTrcParameterSection>> m_items;
};

}  // namespace nvdl::trc
