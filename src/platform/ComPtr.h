// One counted reference to an object of any interface: released when the holder goes, handed on by
// move, copied by taking another reference.
#pragma once

#include <utility>

#include "nvdl/Unknown.h"

namespace nvdl {

template <class T>
class ComPtr {
public:
    ComPtr() = default;
    // Takes over a reference that the caller already owns.
    explicit ComPtr(T* owned) : m_p(owned) {}
    // Takes a reference of its own on an object that the caller keeps.
    static ComPtr share(T* object) {
        if (object) object->AddRef();
        return ComPtr(object);
    }
    // The object's interface I, or an empty holder if it has none.
    template <class I = T>
    static ComPtr<I> query(IUnknown* object) {
        I* result = nullptr;
        if (object) object->QueryInterface(I::iid, reinterpret_cast<void**>(&result));
        return ComPtr<I>(result);
    }

    ComPtr(const ComPtr& other) : m_p(other.m_p) {
        if (m_p) m_p->AddRef();
    }
    ComPtr(ComPtr&& other) noexcept : m_p(std::exchange(other.m_p, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(m_p, other.m_p);
        return *this;
    }
    ~ComPtr() { reset(); }

    T* get() const { return m_p; }
    T* operator->() const { return m_p; }
    T& operator*() const { return *m_p; }
    explicit operator bool() const { return m_p != nullptr; }

    // Gives up the reference to the caller.
    T* release() { return std::exchange(m_p, nullptr); }
    void reset(T* owned = nullptr) {
        if (T* old = std::exchange(m_p, owned)) old->Release();
    }
    // For an output parameter: the old reference is dropped and the callee's is taken over.
    T** out() {
        reset();
        return &m_p;
    }
    void** outVoid() { return reinterpret_cast<void**>(out()); }

private:
    T* m_p = nullptr;
};

}  // namespace nvdl
