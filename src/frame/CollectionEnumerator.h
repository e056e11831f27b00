// The enumerator of a collection: a snapshot of its items taken when it was made, shared by its clones.
#pragma once

#include <memory>
#include <vector>

#include "nvdl/Dispatch.h"

namespace nvdl {

class CCollectionEnumerator final : public IEnumVARIANT {
public:
    using Snapshot = std::vector<Variant>;

    // A new enumerator with one reference; an empty snapshot gives an enumerator with no array.
    static CCollectionEnumerator* create(std::shared_ptr<const Snapshot> items, ULONG position = 0);

    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override { return ++m_cRef; }
    ULONG Release() override;

    // S_OK when the full count was delivered, S_FALSE when fewer.
    HRESULT Next(ULONG count, VARIANT* items, ULONG* fetched) override;
    HRESULT Skip(ULONG count) override;
    HRESULT Reset() override;
    HRESULT Clone(IEnumVARIANT** copy) override;

private:
    CCollectionEnumerator(std::shared_ptr<const Snapshot> items, ULONG position)
        : m_items(std::move(items)), m_position(position) {}
    ~CCollectionEnumerator() = default;

    ULONG size() const { return m_items ? static_cast<ULONG>(m_items->size()) : 0; }

    ULONG m_cRef = 1;
    std::shared_ptr<const Snapshot> m_items;
    ULONG m_position;
};

}  // namespace nvdl
