// CDataBlock: measurements delivered many at once by an outside producer, kept as one image of their
// flat records, each at the stride of the longest so that any record is found at once. A measurement
// object is made from a record when a client asks for it.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "frame/ObjectFrame.h"
#include "nvdl/IDataBlock.h"

namespace nvdl {

class CDataBlock final : public CObjectFrame<CDataBlock, IDataBlock> {
public:
    static constexpr const char* kClassName = "CDataBlock";
    static constexpr const CLSID& kClassId = CLSID_CDataBlock;
    static constexpr IID kModifiedParents[] = {IID_IWorkspace};

    static IDispatch* create() { return (new CDataBlock)->dispatch(); }
    CDataBlock() : CObjectFrame(IID_IDataBlock) {}

    NVDL_IMPLEMENTS(NVDL_IDATABLOCK_MEMBERS)

    // Packs `count` records from `records`, of which `available` bytes may be read: a record that
    // does not lie whole within them is refused with E_FAIL and leaves the block empty.
    HRESULT InitializeChecked(LONG count, std::span<const std::uint8_t> records);

    // The parent, the name and a copy of the image; an empty source gives E_FAIL.
    static HRESULT Copy(IDataBlock* source, IDataBlock* target);

    std::uint64_t imageSize() const { return m_imageSize; }
    std::uint64_t stride() const { return m_stride; }

private:
    // The image of `count` records of the given lengths, each copied to its place at the stride of
    // the longest; an allocation that fails leaves the block empty.
    HRESULT pack(LONG count, const std::uint8_t* records, const std::vector<std::size_t>& lengths);
    void clear();

    std::string m_id;
    std::string m_name;
    LONG m_count = 0;
    std::unique_ptr<std::uint8_t[]> m_image;
    std::uint64_t m_imageSize = 0;
    std::uint64_t m_stride = 0;
};

// The length of the packed record at `record`, of which `available` bytes may be read: the head,
// its parameter text and its vectors. 0 when the head does not fit or a length field is negative.
std::uint64_t packedRecordLength(const std::uint8_t* record, std::size_t available);

}  // namespace nvdl
