// The native half of the Python client: creating objects by ProgID, GetIDsOfNames and Invoke,
// and the conversions between Python values and automation values. It knows no class.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <map>
#include <tuple>
#include <vector>

#include "nvdl/nvdl.h"

namespace py = pybind11;

namespace {

// One reference on an object of the server.
class Handle {
public:
    explicit Handle(IDispatch* object) : m_object(object) {}  // takes the reference
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() {
        if (m_object) m_object->Release();
    }
    IDispatch* get() const { return m_object; }

private:
    IDispatch* m_object;
};

// One reference on an enumerator.
class Enumerator {
public:
    explicit Enumerator(IEnumVARIANT* e) : m_enum(e) {}
    Enumerator(const Enumerator&) = delete;
    Enumerator& operator=(const Enumerator&) = delete;
    ~Enumerator() {
        if (m_enum) m_enum->Release();
    }
    IEnumVARIANT* get() const { return m_enum; }

private:
    IEnumVARIANT* m_enum;
};

py::object g_missing = py::none();

// Text crosses as UTF-16 on the server's side and as str on Python's; pybind11 converts between them.
py::object text(std::u16string_view wide) { return py::cast(std::u16string(wide)); }

py::object fromVariant(const VARIANT& v);

py::object fromPlain(const VARIANT& v) {
    switch (v.vt) {
        case VT_EMPTY:
        case VT_NULL: return py::none();
        case VT_I2: return py::int_(v.iVal);
        case VT_I4: return py::int_(v.lVal);
        case VT_R4: return py::float_(v.fltVal);
        case VT_R8: return py::float_(v.dblVal);
        case VT_DATE: return py::float_(v.date);
        case VT_BOOL: return py::bool_(v.boolVal != 0);
        case VT_ERROR: return py::int_(static_cast<std::uint32_t>(v.scode));
        case VT_BSTR: return text(nvdl::bstrView(v.bstrVal));
        case VT_DISPATCH:
        case VT_UNKNOWN: {
            if (!v.punkVal) return py::none();
            IDispatch* object = nullptr;
            if (SUCCEEDED(v.punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&object))))
                return py::cast(new Handle(object), py::return_value_policy::take_ownership);
            IEnumVARIANT* e = nullptr;
            if (SUCCEEDED(v.punkVal->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(&e))))
                return py::cast(new Enumerator(e), py::return_value_policy::take_ownership);
            return py::none();
        }
        case VT_ARRAY | VT_R4: {
            std::span<float> data = nvdl::floatArrayData(v.parray);
            py::array_t<float> out(static_cast<py::ssize_t>(data.size()));
            std::copy(data.begin(), data.end(), out.mutable_data());
            return out;
        }
        default: throw py::type_error("value of an unsupported automation type " + std::to_string(v.vt));
    }
}

py::object fromVariant(const VARIANT& v) {
    if (v.vt == (VT_BYREF | VT_VARIANT)) return v.pvarVal ? fromVariant(*v.pvarVal) : py::none();
    return fromPlain(v);
}

nvdl::Variant toVariant(const py::handle& value) {
    nvdl::Variant v;
    if (value.is_none()) return v;
    if (value.is(g_missing)) return nvdl::Variant::missing();
    if (py::isinstance<py::bool_>(value)) return nvdl::Variant::fromBool(value.cast<bool>());
    if (py::isinstance<py::int_>(value)) {
        long long n = value.cast<long long>();
        if (n >= INT32_MIN && n <= INT32_MAX) return nvdl::Variant::fromLong(static_cast<LONG>(n));
        return nvdl::Variant::fromDouble(static_cast<double>(n));
    }
    if (py::isinstance<py::float_>(value)) return nvdl::Variant::fromDouble(value.cast<double>());
    if (py::isinstance<py::str>(value)) return nvdl::Variant::fromString(value.cast<std::u16string>());
    if (py::isinstance<Handle>(value)) return nvdl::Variant::fromDispatch(value.cast<Handle&>().get());
    if (py::isinstance<py::array>(value) || py::isinstance<py::list>(value) || py::isinstance<py::tuple>(value)) {
        auto array = py::array_t<float, py::array::c_style | py::array::forcecast>::ensure(value);
        if (!array || array.ndim() != 1) throw py::type_error("only one-dimensional arrays of numbers are passed");
        v.vt = VT_ARRAY | VT_R4;
        v.parray = nvdl::makeFloatArray(std::span<const float>(array.data(), static_cast<std::size_t>(array.size())));
        if (!v.parray) throw std::bad_alloc();
        return v;
    }
    throw py::type_error("cannot pass a value of type " + std::string(py::str(value.get_type().attr("__name__"))));
}

// A failed call: the status and what the thread's error record says about it.
py::tuple failure(HRESULT h) {
    std::u16string description, source;
    if (auto record = nvdl::takeErrorInfo()) {
        description = record->description;
        source = record->source;
    }
    return py::make_tuple(static_cast<std::uint32_t>(h), text(description), text(source));
}

py::object create(const std::u16string& progId) {
    IDispatch* object = nullptr;
    HRESULT h = nvdl::CreateObject(progId, &object);
    if (FAILED(h)) return failure(h);
    return py::cast(new Handle(object), py::return_value_policy::take_ownership);
}

py::object memberId(const Handle& handle, const std::u16string& name) {
    std::u16string wide = name;
    OLECHAR* names[] = {wide.data()};
    DISPID id;
    if (FAILED(handle.get()->GetIDsOfNames(IID_NULL, names, 1, 0, &id))) return py::none();
    return py::int_(id);
}

// The object's type description, which the type library owns and keeps for the life of the
// process: its address names the interface. 0 for an object without one.
std::uintptr_t typeKey(const Handle& handle) {
    ITypeInfo* info = nullptr;
    if (FAILED(handle.get()->GetTypeInfo(0, 0, &info)) || !info) return 0;
    info->Release();
    return reinterpret_cast<std::uintptr_t>(info);
}

// The outputs of a member beyond its return value: their places among its parameters.
std::vector<unsigned> findOutputPlaces(ITypeInfo* info, DISPID id, WORD flags) {
    std::vector<unsigned> places;
    const TYPEATTR* attr = nullptr;
    if (SUCCEEDED(info->GetTypeAttr(&attr))) {
        for (unsigned i = 0; i < attr->cFuncs; ++i) {
            const FUNCDESC* f = nullptr;
            if (FAILED(info->GetFuncDesc(i, &f)) || f->memid != id) continue;
            if (!((f->invkind == INVOKE_FUNC && (flags & DISPATCH_METHOD)) ||
                  (f->invkind == INVOKE_PROPERTYGET && (flags & DISPATCH_PROPERTYGET))))
                continue;
            for (SHORT p = 0; p < f->cParams; ++p)
                if (f->lprgelemdescParam[p].flags & PARAMFLAG_FOUT) places.push_back(static_cast<unsigned>(p));
            break;
        }
    }
    return places;
}

// The same, remembered per interface and member: a call asks for them every time. The interpreter
// lock keeps the cache to one thread.
const std::vector<unsigned>& outputPlaces(IDispatch* object, DISPID id, WORD flags) {
    static const std::vector<unsigned> none;
    static std::map<std::tuple<ITypeInfo*, DISPID, WORD>, std::vector<unsigned>> known;
    ITypeInfo* info = nullptr;
    if (FAILED(object->GetTypeInfo(0, 0, &info)) || !info) return none;
    info->Release();  // the type library keeps it
    auto key = std::make_tuple(info, id, flags);
    auto found = known.find(key);
    if (found == known.end()) found = known.emplace(key, findOutputPlaces(info, id, flags)).first;
    return found->second;
}

// Calls a member. For a put the last argument is the value. Answers the result, or for a failure
// the tuple (status, description, source) wrapped as ("error", ...).
py::object invoke(const Handle& handle, DISPID id, WORD flags, const py::tuple& args) {
    IDispatch* object = handle.get();
    const bool isPut = flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF);
    std::vector<nvdl::Variant> values;
    values.reserve(args.size() + 4);
    for (const py::handle& a : args) values.push_back(toVariant(a));

    // Outputs the caller did not give are passed as by-reference holders and come back after the result.
    static const std::vector<unsigned> noPlaces;
    const std::vector<unsigned>& places = isPut ? noPlaces : outputPlaces(object, id, flags);
    std::vector<nvdl::Variant> holders;
    holders.reserve(places.size());
    std::vector<std::size_t> holderSlots;
    for (unsigned place : places) {
        if (place < values.size()) continue;
        while (values.size() < place) values.push_back(nvdl::Variant::missing());
        holders.emplace_back();
        values.push_back(nvdl::Variant::byRef(&holders.back()));
    }

    // rgvarg holds the arguments last first.
    std::vector<VARIANT> rgvarg(values.rbegin(), values.rend());
    DISPID named = DISPID_PROPERTYPUT;
    DISPPARAMS params{rgvarg.empty() ? nullptr : rgvarg.data(), isPut ? &named : nullptr,
                      static_cast<unsigned>(rgvarg.size()), isPut ? 1u : 0u};
    nvdl::Variant result;
    unsigned argErr = 0;
    HRESULT h = object->Invoke(id, IID_NULL, 0, flags, &params, &result, nullptr, &argErr);
    if (FAILED(h)) return py::make_tuple("error", failure(h));
    py::object value = fromVariant(result);
    if (holders.empty()) return py::make_tuple("ok", value);
    py::list all;
    all.append(value);
    for (const nvdl::Variant& holder : holders) all.append(fromVariant(holder));
    return py::make_tuple("ok", py::tuple(all));
}

py::object enumNext(const Enumerator& e) {
    nvdl::Variant item;
    ULONG fetched = 0;
    if (e.get()->Next(1, &item, &fetched) != S_OK || fetched != 1) throw py::stop_iteration();
    return fromVariant(item);
}

}  // namespace

PYBIND11_MODULE(_nvdl, m) {
    m.doc() = "Native half of the nvdl client";
    py::class_<Handle>(m, "Handle")
        .def("identity", [](const Handle& h) { return reinterpret_cast<std::uintptr_t>(h.get()); });
    py::class_<Enumerator>(m, "Enumerator").def("next", &enumNext);
    m.def("set_missing", [](py::object missing) { g_missing = std::move(missing); });
    m.def("create", &create);
    m.def("member_id", &memberId);
    m.def("type_key", &typeKey);
    m.def("invoke", &invoke);
    m.def("object_count", [] { return nvdl::ObjectCount(); });
    m.attr("DISPATCH_METHOD") = DISPATCH_METHOD;
    m.attr("DISPATCH_PROPERTYGET") = DISPATCH_PROPERTYGET;
    m.attr("DISPATCH_PROPERTYPUT") = DISPATCH_PROPERTYPUT;
    m.attr("DISPATCH_PROPERTYPUTREF") = DISPATCH_PROPERTYPUTREF;
    m.attr("DISPID_NEWENUM") = DISPID_NEWENUM;
    // Release the sentinel while the interpreter can still do it.
    m.add_object("_cleanup", py::capsule([] { g_missing = py::object(); }));
}
