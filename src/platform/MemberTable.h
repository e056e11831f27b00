// Builds the member table of an interface from its member list, so that each member is declared
// once: its parameter names, types, directions and the code that unpacks a late-bound call into a
// direct call all follow from the C++ signature written in the list; marks add what C++ cannot say
// (optional parameters, BOOL and DATE values, hidden members, fixed member numbers).
//
// Members that share a name (the get and put halves of a property) share a member number; numbers
// are given in order of first appearance from 1, unless a member names its own (DISPID_NEWENUM, ...).
// Pointer parameters to a value type are outputs; the last output of a get or a method is its return
// value. VARIANT* is an input unless marked out(), or it is the last parameter of a get. SHORT and
// double parameters are declared I2 and R8 unless marked as BOOL or DATE.
#pragma once

#include <initializer_list>
#include <tuple>
#include <type_traits>
#include <utility>

#include "nvdl/Members.h"
#include "platform/TypeDescription.h"

namespace nvdl {

namespace detail {

template <class T>
concept DispatchInterface = std::is_base_of_v<IDispatch, T> && !std::is_same_v<T, IDispatch>;

// Per C++ parameter type: its declared type, its default direction, and how a call fills it.
template <class T>
struct Arg;

// Common output behaviour: a local value that, after success, goes to the result or to the
// caller's by-reference variant.
template <class Value>
struct OutBase {
    Value local{};
    Value* target(const CallFrame& f) { return f.nullOutputs ? nullptr : &local; }
    static VARIANT* destination(CallFrame& f, const ArgSlot& s) {
        if (s.role == SlotRole::Retval) return f.result;
        const VARIANT* given = f.params[s.position];
        if (given && given->vt == (VT_BYREF | VT_VARIANT)) return given->pvarVal;
        return nullptr;
    }
};

// What a member that let an exception out answers: E_OUTOFMEMORY for a failed allocation, else
// E_FAIL with the exception's text in the thread's error record.
HRESULT failureOfException(const IID& iid) noexcept;
HRESULT loadConverted(const VARIANT* in, VARTYPE vt, Variant& holder);
HRESULT loadObject(const VARIANT* in, const IID& iid, void** object);
void storeValue(VARIANT* dest, VARIANT& value);  // moves value into dest (clearing dest first)

template <>
struct Arg<BSTR> {
    static constexpr VARTYPE kType = VT_BSTR;
    static constexpr bool kOutput = false;
    Variant holder;
    // A left-out optional text is the empty (null) text.
    HRESULT load(CallFrame& f, const ArgSlot& s) {
        const VARIANT* in = f.params[s.position];
        if (in && in->vt == VT_ERROR && in->scode == DISP_E_PARAMNOTFOUND) return S_OK;
        return loadConverted(in, VT_BSTR, holder);
    }
    BSTR get() { return holder.vt == VT_BSTR ? holder.bstrVal : nullptr; }
    void store(CallFrame&, const ArgSlot&) {}
};

template <class Num, VARTYPE VT, VARTYPE Alt = VT>
struct NumberArg {
    static constexpr VARTYPE kType = VT;
    static constexpr bool kOutput = false;
    Variant holder;
    Num value{};
    HRESULT load(CallFrame& f, const ArgSlot& s) {
        VARTYPE vt = s.declared == Alt ? Alt : VT;
        HRESULT h = loadConverted(f.params[s.position], vt, holder);
        if (SUCCEEDED(h)) value = extract(holder);
        return h;
    }
    static Num extract(const VARIANT& v) {
        if constexpr (std::is_same_v<Num, LONG>) return v.lVal;
        else if constexpr (std::is_same_v<Num, SHORT>) return v.vt == VT_BOOL ? v.boolVal : v.iVal;
        else if constexpr (std::is_same_v<Num, float>) return v.fltVal;
        else return v.vt == VT_DATE ? v.date : v.dblVal;
    }
    Num get() { return value; }
    void store(CallFrame&, const ArgSlot&) {}
};
template <> struct Arg<LONG> : NumberArg<LONG, VT_I4> {};
template <> struct Arg<SHORT> : NumberArg<SHORT, VT_I2, VT_BOOL> {};
template <> struct Arg<float> : NumberArg<float, VT_R4> {};
template <> struct Arg<double> : NumberArg<double, VT_R8, VT_DATE> {};

template <>
struct Arg<VARIANT> {
    static constexpr VARTYPE kType = VT_VARIANT;
    static constexpr bool kOutput = false;
    VARIANT value{};
    HRESULT load(CallFrame& f, const ArgSlot& s) {
        if (const VARIANT* in = f.params[s.position]) value = *in;  // a view: the callee does not own it
        return S_OK;
    }
    VARIANT get() { return value; }
    void store(CallFrame&, const ArgSlot&) {}
};

// VARIANT*: an input (the caller's variant itself) unless the table marks it as output.
template <>
struct Arg<VARIANT*> : OutBase<Variant> {
    static constexpr VARTYPE kType = VT_VARIANT;
    static constexpr bool kOutput = false;
    VARIANT* pointer = nullptr;
    HRESULT load(CallFrame& f, const ArgSlot& s) {
        if (s.role == SlotRole::In) pointer = const_cast<VARIANT*>(f.params[s.position]);
        else pointer = target(f);
        return S_OK;
    }
    VARIANT* get() { return pointer; }
    void store(CallFrame& f, const ArgSlot& s) {
        if (s.role == SlotRole::In) return;
        if (VARIANT* dest = destination(f, s)) storeValue(dest, local);
    }
};

template <>
struct Arg<IDispatch*> {
    static constexpr VARTYPE kType = VT_DISPATCH;
    static constexpr bool kOutput = false;
    IDispatch* object = nullptr;
    ~Arg() {
        if (object) object->Release();
    }
    HRESULT load(CallFrame& f, const ArgSlot& s) {
        return loadObject(f.params[s.position], IID_IDispatch, reinterpret_cast<void**>(&object));
    }
    IDispatch* get() { return object; }
    void store(CallFrame&, const ArgSlot&) {}
};

template <>
struct Arg<IUnknown*> {
    static constexpr VARTYPE kType = VT_UNKNOWN;
    static constexpr bool kOutput = false;
    IUnknown* object = nullptr;
    ~Arg() {
        if (object) object->Release();
    }
    HRESULT load(CallFrame& f, const ArgSlot& s) {
        return loadObject(f.params[s.position], IID_IUnknown, reinterpret_cast<void**>(&object));
    }
    IUnknown* get() { return object; }
    void store(CallFrame&, const ArgSlot&) {}
};

template <DispatchInterface I>
struct Arg<I*> {
    static constexpr VARTYPE kType = VT_PTR;
    static constexpr bool kOutput = false;
    I* object = nullptr;
    ~Arg() {
        if (object) object->Release();
    }
    HRESULT load(CallFrame& f, const ArgSlot& s) {
        return loadObject(f.params[s.position], I::iid, reinterpret_cast<void**>(&object));
    }
    I* get() { return object; }
    void store(CallFrame&, const ArgSlot&) {}
};

template <>
struct Arg<SAFEARRAY*> {
    static constexpr VARTYPE kType = VT_ARRAY | VT_R4;
    static constexpr bool kOutput = false;
    SAFEARRAY* array = nullptr;
    HRESULT load(CallFrame& f, const ArgSlot& s);
    SAFEARRAY* get() { return array; }
    void store(CallFrame&, const ArgSlot&) {}
};

// Outputs of value types.
template <class Value, VARTYPE VT, VARTYPE Alt = VT>
struct ValueOut : OutBase<Value> {
    static constexpr VARTYPE kType = VT;
    static constexpr bool kOutput = true;
    Value* pointer = nullptr;
    ~ValueOut() {
        if constexpr (std::is_same_v<Value, BSTR>) SysFreeString(this->local);
        else if constexpr (std::is_same_v<Value, SAFEARRAY*>) SafeArrayDestroy(this->local);
        else if constexpr (std::is_pointer_v<Value>) {
            if (this->local) this->local->Release();
        }
    }
    HRESULT load(CallFrame& f, const ArgSlot&) {
        pointer = this->target(f);
        return S_OK;
    }
    Value* get() { return pointer; }
    void store(CallFrame& f, const ArgSlot& s) {
        VARIANT value;
        VariantInit(&value);
        value.vt = s.declared == Alt ? Alt : VT;
        if constexpr (std::is_same_v<Value, LONG>) value.lVal = this->local;
        else if constexpr (std::is_same_v<Value, SHORT>) value.iVal = this->local;
        else if constexpr (std::is_same_v<Value, float>) value.fltVal = this->local;
        else if constexpr (std::is_same_v<Value, double>) value.dblVal = this->local;
        else {
            value.byref = this->local;  // ownership passes to the variant
            this->local = nullptr;
            if constexpr (std::is_same_v<Value, SAFEARRAY*>) value.vt = VT_ARRAY | VT_R4;
            else if constexpr (!std::is_same_v<Value, BSTR> && !std::is_same_v<Value, IUnknown*>) {
                value.pdispVal = static_cast<IDispatch*>(static_cast<Value>(value.byref));
            }
        }
        VARIANT* dest = this->destination(f, s);
        if (dest) storeValue(dest, value);
        else VariantClear(&value);
    }
};
template <> struct Arg<BSTR*> : ValueOut<BSTR, VT_BSTR> {};
template <> struct Arg<LONG*> : ValueOut<LONG, VT_I4> {};
template <> struct Arg<SHORT*> : ValueOut<SHORT, VT_I2, VT_BOOL> {};
template <> struct Arg<float*> : ValueOut<float, VT_R4> {};
template <> struct Arg<double*> : ValueOut<double, VT_R8, VT_DATE> {};
template <> struct Arg<IDispatch**> : ValueOut<IDispatch*, VT_DISPATCH> {};
template <> struct Arg<IUnknown**> : ValueOut<IUnknown*, VT_UNKNOWN> {};
template <> struct Arg<SAFEARRAY**> : ValueOut<SAFEARRAY*, VT_ARRAY | VT_R4> {};
template <DispatchInterface I>
struct Arg<I**> : ValueOut<I*, VT_DISPATCH> {
    static constexpr VARTYPE kType = VT_PTR;  // a named interface: declared as a pointer to it
};

struct SignatureItem {
    VARTYPE vt;
    bool output;     // an output unless the table says otherwise
    bool byPointer;  // an input passed by pointer (VARIANT*)
};

template <auto Method>
struct Thunk;

template <class C, class... A, HRESULT (C::*Method)(A...)>
struct Thunk<Method> {
    using Interface = C;
    static constexpr std::size_t kArity = sizeof...(A);

    static HRESULT call(IDispatch* self, const MemberEntry& entry, CallFrame& frame) {
        try {
            return callWith(self, entry, frame, std::index_sequence_for<A...>{});
        } catch (...) {
            return failureOfException(frame.iid);
        }
    }

    template <std::size_t... N>
    static HRESULT callWith(IDispatch* self, const MemberEntry& entry, CallFrame& frame, std::index_sequence<N...>) {
        std::tuple<Arg<A>...> args;
        HRESULT h = S_OK;
        (void)((SUCCEEDED(h = loadOne<N>(args, entry, frame))) && ...);
        if (FAILED(h)) return h;
        HRESULT result = (static_cast<C*>(self)->*Method)(std::get<N>(args).get()...);
        if (SUCCEEDED(result) && !frame.nullOutputs) (std::get<N>(args).store(frame, entry.slots[N]), ...);
        return result;
    }

    template <std::size_t N, class Tuple>
    static HRESULT loadOne(Tuple& args, const MemberEntry& entry, CallFrame& frame) {
        const ArgSlot& slot = entry.slots[N];
        if (frame.nullOutputs && slot.role == SlotRole::In && !frame.params[slot.position]) return E_POINTER;
        HRESULT h = std::get<N>(args).load(frame, slot);
        if (FAILED(h)) frame.argErr = slot.position;
        return h;
    }

    // The declared type and default direction of each C++ parameter.
    static std::vector<SignatureItem> signature() { return {SignatureItem{Arg<A>::kType, Arg<A>::kOutput, std::is_same_v<A, VARIANT*>}...}; }
};

// Fills names, slots and the dispatch view of one entry from the signature.
void describe(MemberEntry& entry, members::Kind kind, const std::vector<SignatureItem>& signature,
              const char* parameters, std::initializer_list<members::Mark> marks);

}  // namespace detail

// Builds the table of one interface from its member list (nvdl/Members.h): each row names the
// member function, its kind, its name and its parameter list as written in the list.
template <class I>
class MemberTable {
public:
    MemberTable(const IID& iid, const char* name) : m_iid(iid), m_name(name) {}

    template <auto Method>
    void row(members::Kind kind, const char* name, const char* parameters, std::initializer_list<members::Mark> marks) {
        using T = detail::Thunk<Method>;
        static_assert(std::is_base_of_v<typename T::Interface, I> || std::is_same_v<typename T::Interface, I>,
                      "member of another interface");
        MemberEntry entry;
        entry.name = name;
        entry.memid = numberFor(name);
        entry.thunk = &T::call;
        detail::describe(entry, kind, T::signature(), parameters, marks);
        if (entry.memid != entry.desc.memid) renumber(name, entry.desc.memid);
        entry.memid = entry.desc.memid;
        m_members.push_back(std::move(entry));
    }
    // The finished description, registered in the type library.
    const InterfaceDescription& build() {
        return registerInterface(std::make_unique<InterfaceDescription>(m_iid, m_name, std::move(m_members)));
    }

private:
    MEMBERID numberFor(const char* name) {
        for (const MemberEntry& m : m_members)
            if (std::string_view(m.name) == name) return m.memid;
        return m_nextId++;
    }
    // A member with a fixed number gives it to the other halves of its property too.
    void renumber(std::string_view name, MEMBERID memid) {
        for (MemberEntry& m : m_members)
            if (name == m.name) m.memid = m.desc.memid = memid;
    }

    IID m_iid;
    const char* m_name;
    std::vector<MemberEntry> m_members;
    MEMBERID m_nextId = 1;
};

// The description of an interface declared by NVDL_INTERFACE, built and registered on first use.
template <class I>
const InterfaceDescription& describeInterface() {
    static const InterfaceDescription& description = [] () -> const InterfaceDescription& {
        MemberTable<I> table(I::iid, I::interfaceName);
        I::describeMembers(table);
        return table.build();
    }();
    return description;
}

}  // namespace nvdl
