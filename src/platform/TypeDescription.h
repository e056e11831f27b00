// The description of one automation interface: a static table of its members in interface order,
// each with its name, member number, kind, parameters and a way to call it. It answers the type
// information questions of late binding (names to numbers, calls by number, walks over members).
// Tables are built once per interface by the templates of MemberTable.h.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "nvdl/Dispatch.h"

namespace nvdl {

class InterfaceDescription;
struct MemberEntry;

// Where one C++ parameter of a member comes from and goes to during a call.
enum class SlotRole : std::uint8_t { In, Out, Retval };
struct ArgSlot {
    SlotRole role = SlotRole::In;
    unsigned position = 0;  // In and Out: index among the dispatch parameters
    VARTYPE declared = VT_EMPTY;  // the declared value type (for I2 against BOOL, R8 against DATE)
};

// The arguments of one call, in declared order.
struct CallFrame {
    std::vector<const VARIANT*> params;  // one per dispatch parameter, missing optionals as the "missing" variant
    VARIANT* result = nullptr;           // where the retval goes; may be null
    bool nullOutputs = false;            // pass null for every output (the frame's E_POINTER checks)
    unsigned argErr = 0;                 // the dispatch parameter that failed to convert
    IID iid{};                           // the called interface, for the error record of a failure
};

using MemberThunk = HRESULT (*)(IDispatch* self, const MemberEntry& entry, CallFrame& frame);

struct MemberEntry {
    const char* name = "";
    MEMBERID memid = DISPID_UNKNOWN;
    FUNCDESC desc;
    std::vector<PARAMDESC> params;  // dispatch view
    std::vector<ArgSlot> slots;     // one per C++ parameter
    std::vector<std::string> names; // one per C++ parameter; the dispatch view points into them
    MemberThunk thunk = nullptr;
    bool hasRetval = false;
    bool hasOutputs = false;
};

class InterfaceDescription final : public ITypeInfo {
public:
    InterfaceDescription(const IID& iid, const char* name, std::vector<MemberEntry> members);

    // A static description lives as long as the process: reference operations count nothing.
    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }

    HRESULT GetTypeAttr(const TYPEATTR** attr) override;
    HRESULT GetFuncDesc(unsigned index, const FUNCDESC** desc) override;
    HRESULT GetNames(MEMBERID memid, BSTR* names, unsigned maxNames, unsigned* count) override;
    HRESULT GetIDsOfNames(OLECHAR** names, unsigned count, MEMBERID* ids) override;
    HRESULT Invoke(IDispatch* instance, MEMBERID memid, WORD flags, DISPPARAMS* params, VARIANT* result,
                   EXCEPINFO* excep, unsigned* argErr) override;

    const IID& iid() const { return m_attr.guid; }
    const char* name() const { return m_name; }
    const std::vector<MemberEntry>& members() const { return m_members; }
    // The same members under another identity and name (collection interfaces share one table).
    std::unique_ptr<InterfaceDescription> alias(const IID& iid, const char* name) const;
    // Calls one member with every output null and every input empty: each member with an output
    // must answer E_POINTER without touching anything.
    HRESULT invokeWithNullOutputs(IDispatch* instance, const MemberEntry& entry) const;

private:
    const MemberEntry* find(MEMBERID memid, WORD flags) const;
    const MemberEntry* findByName(const OLECHAR* name) const;

    const char* m_name;
    TYPEATTR m_attr;
    std::vector<MemberEntry> m_members;
    std::vector<std::pair<std::string, std::size_t>> m_byName;
};

// Registers a description in the system's type library, under its interface identifier. The
// library keeps it for the life of the process.
const InterfaceDescription& registerInterface(std::unique_ptr<InterfaceDescription> description);
// The descriptions of the type library, one per interface identifier, in no particular order.
std::vector<const InterfaceDescription*> registeredInterfaces();

}  // namespace nvdl

// The system's type library identifier, and its lookup by the platform's name.
inline constexpr GUID LIBID_NVDL{0x3d6b21a4, 0x8c41, 0x4f0e, {0x9a, 0x57, 0x1c, 0x62, 0x0b, 0xd4, 0x73, 0x9e}};
// Only LIBID_NVDL at version 1.0 is registered: another library or version gives TYPE_E_LIBNOTREGISTERED.
HRESULT LoadRegTypeLib(REFIID libid, WORD major, WORD minor, LCID lcid, ITypeLib** lib);
