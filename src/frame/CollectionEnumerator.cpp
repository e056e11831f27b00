#include "frame/CollectionEnumerator.h"

namespace nvdl {

CCollectionEnumerator* CCollectionEnumerator::create(std::shared_ptr<const Snapshot> items, ULONG position) {
    if (items && items->empty()) items.reset();
    return new CCollectionEnumerator(std::move(items), position);
}

HRESULT CCollectionEnumerator::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    if (riid != IID_IUnknown && riid != IID_IEnumVARIANT) return E_NOINTERFACE;
    *ppv = static_cast<IEnumVARIANT*>(this);
    AddRef();
    return S_OK;
}

ULONG CCollectionEnumerator::Release() {
    ULONG left = --m_cRef;
    if (left == 0) delete this;
    return left;
}

HRESULT CCollectionEnumerator::Next(ULONG count, VARIANT* items, ULONG* fetched) {
    if (!items && count) return E_POINTER;
    ULONG delivered = 0;
    while (delivered < count && m_position < size()) {
        VariantInit(&items[delivered]);
        VariantCopy(&items[delivered], &(*m_items)[m_position]);
        ++delivered;
        ++m_position;
    }
    if (fetched) *fetched = delivered;
    return delivered == count ? S_OK : S_FALSE;
}

HRESULT CCollectionEnumerator::Skip(ULONG count) {
    ULONG available = size() - m_position;
    if (count > available) {
        m_position = size();
        return S_FALSE;
    }
    m_position += count;
    return S_OK;
}

HRESULT CCollectionEnumerator::Reset() {
    m_position = 0;
    return S_OK;
}

HRESULT CCollectionEnumerator::Clone(IEnumVARIANT** copy) {
    if (!copy) return E_POINTER;
    *copy = new CCollectionEnumerator(m_items, m_position);
    return S_OK;
}

}  // namespace nvdl
