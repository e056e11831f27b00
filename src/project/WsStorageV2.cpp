// The direct writer of a workspace file, made on demand by a workspace for a recording front end.
#include "nvdl/IWsStorageV2.h"

#include "frame/ObjectCount.h"
#include "frame/TextChecks.h"
#include "platform/ComPtr.h"
#include "project/WkdStorage.h"
#include "project/Workspace.h"

namespace nvdl {

namespace {

constexpr std::size_t kMaxName = 99;

class CWsStorageV2 final : public IWsStorageV2 {
public:
    CWsStorageV2() { ++g_nObjects; }
    ~CWsStorageV2() { --g_nObjects; }

    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        *ppv = nullptr;
        if (riid != IID_IUnknown && riid != IID_IWsStorageV2) return E_NOINTERFACE;
        *ppv = static_cast<IWsStorageV2*>(this);
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++m_cRef; }
    ULONG Release() override {
        const ULONG left = --m_cRef;
        if (left == 0) delete this;
        return left;
    }

    HRESULT Unused() override { return S_OK; }

    HRESULT Start(IStorage* root, BSTR name, IStorage** blocks) override {
        if (!root || !name || !blocks) return E_POINTER;
        *blocks = nullptr;
        std::string text = trimmed(bstrToAnsi(name));
        if (text.size() > kMaxName) text.resize(kMaxName);
        ComPtr<IStorage> storage;
        HRESULT h = writeWkdHead(root, text, -1, storage.out());
        if (SUCCEEDED(h))
            h = storage->CreateStorage(u"Blocks", STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_WRITE, 0, 0, blocks);
        if (SUCCEEDED(h)) m_workspace = std::move(storage);
        return h;
    }

    HRESULT IsStarted(SHORT* started) override {
        if (!started) return E_POINTER;
        *started = m_workspace ? -1 : 0;
        return S_OK;
    }

    HRESULT Finish() override {
        m_workspace = ComPtr<IStorage>();
        return E_FAIL;
    }

private:
    ULONG m_cRef = 1;
    ComPtr<IStorage> m_workspace;
};

}  // namespace

HRESULT createWsStorageV2(void** ppv) {
    *ppv = static_cast<IWsStorageV2*>(new CWsStorageV2);
    return S_OK;
}

}  // namespace nvdl
