#include "frame/FrameBase.h"

namespace nvdl {

CFrameBase* CFrameBase::of(IUnknown* object) {
    if (!object) return nullptr;
    void* frame = nullptr;
    if (FAILED(object->QueryInterface(IID_IFrameObject, &frame))) return nullptr;
    return static_cast<CFrameBase*>(frame);
}

void WeakParent::set(IDispatch* parent) {
    m_parent = parent;
    m_token.reset();
    m_watched = false;
    if (CFrameBase* frame = CFrameBase::of(parent)) {
        m_token = frame->lifeToken();
        m_watched = true;
    }
}

WeakParent::State WeakParent::check() {
    if (!m_parent) return State::None;
    if (m_watched && m_token.expired()) {
        m_parent = nullptr;
        m_token.reset();
        m_watched = false;
        return State::Dead;
    }
    return State::Alive;
}

}  // namespace nvdl
