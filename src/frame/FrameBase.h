// What every model object carries besides its interface: a life token that back references
// observe, so that a child can tell a live parent from a dead one.
#pragma once

#include <memory>

#include "nvdl/Dispatch.h"

namespace nvdl {

// Internal identity: QueryInterface with it answers the object's CFrameBase, without a reference.
inline constexpr IID IID_IFrameObject{0x5a0f3c1e, 0x2b7d, 0x4e86, {0x91, 0x3a, 0x6c, 0x0e, 0x58, 0xd2, 0x17, 0xb4}};

class CFrameBase {
public:
    CFrameBase() = default;
    CFrameBase(const CFrameBase&) = delete;
    CFrameBase& operator=(const CFrameBase&) = delete;
    virtual ~CFrameBase() = default;

    // Made when a back reference first watches this object: most objects are never watched (the
    // results of the signal operators, embedded collections) and so never allocate one. Like the
    // rest of an object, it is used from one thread at a time.
    std::weak_ptr<const char> lifeToken() const {
        if (!m_life) m_life = std::make_shared<char>(0);
        return m_life;
    }

    // The frame of an object of this server, or null for any other object.
    static CFrameBase* of(IUnknown* object);

private:
    mutable std::shared_ptr<char> m_life;
};

// An uncounted back reference. An object of this server is watched through its life token, so a
// parent that has gone is seen as dead; an object from elsewhere cannot be watched and is trusted.
class WeakParent {
public:
    enum class State { None, Alive, Dead };

    void set(IDispatch* parent);
    // The object that embeds the holder of this reference: it lives as long as the holder, so it is
    // kept without watching its life (and without making it a life token).
    void setEnclosing(IDispatch* parent) {
        m_parent = parent;
        m_token.reset();
        m_watched = false;
    }
    // An embedded part's owner is its enclosing object; a detached part watches its owner's life.
    void setOwner(IDispatch* owner, bool embedded) { embedded ? setEnclosing(owner) : set(owner); }
    void clear() { set(nullptr); }
    // The parent if it lives. A dead parent is cleared, so the next look costs nothing.
    State check();
    IDispatch* get() { return check() == State::Alive ? m_parent : nullptr; }

private:
    IDispatch* m_parent = nullptr;
    std::weak_ptr<const char> m_token;
    bool m_watched = false;
};

}  // namespace nvdl
