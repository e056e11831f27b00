// How an interface of the object server is declared: one list of its members, in slot order, from
// which the interface struct, the member table of late binding and the class's own declarations are
// all made. Each entry of a list is
//
//     M(kind, Name, (parameters) [, marks...])
//
// kind   get, put, putref: the property accessors get_Name, put_Name, putref_Name;
//        call: the method Name;
//        frame_get, frame_put, frame_call: the same, with a body that the object frame gives
//        (Parent, Modified, Copy, Clone, ...), so the class declares nothing for them;
//        native: a slot with no late-bound form (members that take raw buffers);
//        native_frame: the same with a frame body (LoadTypeInfo);
//        field_get, field_put: a property that is a plain store in the class's field record
//        (`m_fields.Name`): the getter copies it out, the setter stores it and marks the object
//        modified. Their parameter is named `value`.
// marks  for the member table only: optional("p"), out("p"), declaredAs("p", VT_BOOL), typed(VT_DATE)
//        for the value of a property, hidden(), id(DISPID_VALUE). Parameter names come from the
//        parameter list itself.
//
// A list is a macro taking M; comments inside a list are written /* like this */.
#pragma once

#include "nvdl/Dispatch.h"

#define NVDL_MEMBER_NAME(kind, name) NVDL_MEMBER_NAME_##kind(name)
#define NVDL_MEMBER_NAME_get(name) get_##name
#define NVDL_MEMBER_NAME_put(name) put_##name
#define NVDL_MEMBER_NAME_putref(name) putref_##name
#define NVDL_MEMBER_NAME_call(name) name
#define NVDL_MEMBER_NAME_frame_get(name) get_##name
#define NVDL_MEMBER_NAME_frame_put(name) put_##name
#define NVDL_MEMBER_NAME_frame_call(name) name
#define NVDL_MEMBER_NAME_native(name) name
#define NVDL_MEMBER_NAME_native_frame(name) name
#define NVDL_MEMBER_NAME_field_get(name) get_##name
#define NVDL_MEMBER_NAME_field_put(name) put_##name

// One pure virtual member of an interface struct.
#define NVDL_PURE_MEMBER(kind, name, params, ...) virtual HRESULT NVDL_MEMBER_NAME(kind, name) params = 0;

// The declaration a class writes for each member whose body is its own; frame members declare nothing.
#define NVDL_CLASS_MEMBER(kind, name, params, ...) NVDL_CLASS_MEMBER_##kind(name, params)
#define NVDL_CLASS_MEMBER_get(name, params) HRESULT get_##name params override;
#define NVDL_CLASS_MEMBER_put(name, params) HRESULT put_##name params override;
#define NVDL_CLASS_MEMBER_putref(name, params) HRESULT putref_##name params override;
#define NVDL_CLASS_MEMBER_call(name, params) HRESULT name params override;
#define NVDL_CLASS_MEMBER_frame_get(name, params)
#define NVDL_CLASS_MEMBER_frame_put(name, params)
#define NVDL_CLASS_MEMBER_frame_call(name, params)
#define NVDL_CLASS_MEMBER_native(name, params) HRESULT name params override;
#define NVDL_CLASS_MEMBER_native_frame(name, params)
#define NVDL_CLASS_MEMBER_field_get(name, params) \
    HRESULT get_##name params override { return ::nvdl::field::give(this->m_fields.name, value); }
#define NVDL_CLASS_MEMBER_field_put(name, params) \
    HRESULT put_##name params override { return this->storeField(this->m_fields.name, value); }

// One row of the member table, for a table builder `table` (instantiated only inside the server).
#define NVDL_TABLE_ROW(kind, name, params, ...) NVDL_TABLE_ROW_##kind(name, params __VA_OPT__(, ) __VA_ARGS__)
#define NVDL_TABLE_ROW_get(name, params, ...) NVDL_ROW(PropertyGet, get_##name, name, params, __VA_ARGS__)
#define NVDL_TABLE_ROW_put(name, params, ...) NVDL_ROW(PropertyPut, put_##name, name, params, __VA_ARGS__)
#define NVDL_TABLE_ROW_putref(name, params, ...) NVDL_ROW(PropertyPutRef, putref_##name, name, params, __VA_ARGS__)
#define NVDL_TABLE_ROW_call(name, params, ...) NVDL_ROW(Method, name, name, params, __VA_ARGS__)
#define NVDL_TABLE_ROW_frame_get(name, params, ...) NVDL_ROW(PropertyGet, get_##name, name, params, __VA_ARGS__)
#define NVDL_TABLE_ROW_frame_put(name, params, ...) NVDL_ROW(PropertyPut, put_##name, name, params, __VA_ARGS__)
#define NVDL_TABLE_ROW_frame_call(name, params, ...) NVDL_ROW(Method, name, name, params, __VA_ARGS__)
#define NVDL_TABLE_ROW_native(name, params, ...)
#define NVDL_TABLE_ROW_native_frame(name, params, ...)
#define NVDL_TABLE_ROW_field_get(name, params, ...) NVDL_ROW(PropertyGet, get_##name, name, params, __VA_ARGS__)
#define NVDL_TABLE_ROW_field_put(name, params, ...) NVDL_ROW(PropertyPut, put_##name, name, params, __VA_ARGS__)
#define NVDL_ROW(kind, member, name, params, ...) \
    table.template row<&Self::member>(::nvdl::members::Kind::kind, #name, #params, {__VA_ARGS__});

// The body of an interface struct: the pure members of the list and the builder of its table.
#define NVDL_INTERFACE_BODY(Name, MEMBERS)          \
    using Self = Name;                              \
    MEMBERS(NVDL_PURE_MEMBER)                       \
    template <class Table>                          \
    static void describeMembers(Table& table) {     \
        using namespace ::nvdl::members;            \
        MEMBERS(NVDL_TABLE_ROW)                     \
    }                                               \
                                                    \
protected:                                          \
    ~Name() = default;

// The interface struct of a list: its identifier is IID_<Name>, its members those of the list.
#define NVDL_INTERFACE(Name, MEMBERS)                       \
    struct Name : IDispatch {                               \
        static constexpr const IID& iid = IID_##Name;       \
        static constexpr const char* interfaceName = #Name; \
        NVDL_INTERFACE_BODY(Name, MEMBERS)                  \
    }

// In a class body: the declarations of every member of the list that the class implements itself.
#define NVDL_IMPLEMENTS(MEMBERS) MEMBERS(NVDL_CLASS_MEMBER)

namespace nvdl::members {

enum class Kind { PropertyGet, PropertyPut, PropertyPutRef, Method };

// A mark on a member or one of its parameters, for the member table.
struct Mark {
    enum class What { Optional, Output, Declared, ValueType, Hidden, Id } what;
    const char* parameter = nullptr;
    VARTYPE type = VT_EMPTY;
    DISPID id = 0;
};

constexpr Mark optional(const char* parameter) { return {Mark::What::Optional, parameter}; }
constexpr Mark out(const char* parameter) { return {Mark::What::Output, parameter}; }
constexpr Mark declaredAs(const char* parameter, VARTYPE type) { return {Mark::What::Declared, parameter, type}; }
constexpr Mark typed(VARTYPE type) { return {Mark::What::ValueType, nullptr, type}; }
constexpr Mark hidden() { return {Mark::What::Hidden}; }
constexpr Mark id(DISPID id) { return {Mark::What::Id, nullptr, VT_EMPTY, id}; }

}  // namespace nvdl::members
