#include "frame/Registration.h"

#include <algorithm>
#include <set>

#include "frame/ClassTable.h"
#include "nvdl/Identifiers.h"
#include "platform/Registry.h"
#include "platform/RegistryTree.h"
#include "platform/TypeDescription.h"

namespace nvdl {

namespace {

// Which rows a pattern makes: one per creatable class, one per interface, or one.
enum class Scope { EachClass, EachInterface, Once };

// Placeholders: {class}, <ProgID> and <Name> (the friendly name) of a class; {iid} and <Name> of an
// interface; {typelib} the type library; {project} the project class. The module placeholders stay
// until the module's path is known.
struct RowPattern {
    Scope scope;
    const char* key;
    const char* valueName;
    const char* value;
};

constexpr const char* kAutomationMarshaller = "{00020424-0000-0000-C000-000000000046}";

constexpr RowPattern kRows[] = {
    {Scope::EachClass, "CLSID\\{class}", "", "<Name>"},
    {Scope::EachClass, "CLSID\\{class}\\InprocServer32", "", "<MODULEFULLPATHNAME>"},
    {Scope::EachClass, "CLSID\\{class}\\InprocServer32", "ThreadingModel", "Apartment"},
    {Scope::EachClass, "CLSID\\{class}\\ProgID", "", "<ProgID>"},
    {Scope::EachClass, "CLSID\\{class}\\VersionIndependentProgID", "", "<ProgID>"},
    {Scope::EachClass, "CLSID\\{class}\\InprocHandler32", "", "ole32.dll"},
    {Scope::EachClass, "CLSID\\{class}\\TypeLib", "", "{typelib}"},
    {Scope::EachClass, "<ProgID>", "", "<Name>"},
    {Scope::EachClass, "<ProgID>\\CLSID", "", "{class}"},
    {Scope::EachInterface, "Interface\\{iid}", "", "<Name>"},
    {Scope::EachInterface, "Interface\\{iid}\\ProxyStubClsid", "", kAutomationMarshaller},
    {Scope::EachInterface, "Interface\\{iid}\\ProxyStubClsid32", "", kAutomationMarshaller},
    {Scope::EachInterface, "Interface\\{iid}\\TypeLib", "", "{typelib}"},
    {Scope::EachInterface, "Interface\\{iid}\\TypeLib", "Version", "1.0"},
    {Scope::Once, "nv_bench.project", "", "Sonvara Project File"},
    {Scope::Once, "nv_bench.project\\DefaultIcon", "", "\"<MODULEPATH>\\Sonvara.exe\",2"},
    {Scope::Once, "nv_bench.project\\CLSID", "", "{project}"},
    {Scope::Once, "nv_bench.project\\Shell", "", "Open"},
    {Scope::Once, "nv_bench.project\\Shell\\Open", "", ""},
    {Scope::Once, "nv_bench.project\\Shell\\Open\\command", "", "\"<MODULEPATH>\\Sonvara.exe\" \"%1\""},
};

using Substitutions = std::vector<std::pair<std::string_view, std::string>>;

std::string substituted(std::string_view pattern, const Substitutions& substitutions) {
    std::string text(pattern);
    for (const auto& [placeholder, replacement] : substitutions) {
        for (std::size_t at = text.find(placeholder); at != std::string::npos;
             at = text.find(placeholder, at + replacement.size()))
            text.replace(at, placeholder.size(), replacement);
    }
    return text;
}

void addRows(Scope scope, const Substitutions& substitutions, std::vector<RegistrationRow>& rows) {
    for (const RowPattern& pattern : kRows)
        if (pattern.scope == scope)
            rows.push_back({substituted(pattern.key, substitutions), pattern.valueName,
                            substituted(pattern.value, substitutions)});
}

// The distinct keys of the rows, the last row's key first.
std::vector<std::string> keysLastFirst(const std::vector<RegistrationRow>& rows) {
    std::vector<std::string> keys;
    std::set<std::string> seen;
    for (auto row = rows.rbegin(); row != rows.rend(); ++row)
        if (seen.insert(registry::foldCase(row->key)).second) keys.push_back(row->key);
    return keys;
}

std::vector<registry::Change> deletions(const std::vector<RegistrationRow>& rows) {
    std::vector<registry::Change> changes;
    for (std::string& key : keysLastFirst(rows))
        changes.push_back({registry::Change::Kind::DeleteKey, registry::Hive::ClassesRoot, std::move(key), {}, {}});
    return changes;
}

}  // namespace

std::vector<RegistrationRow> registrationRows() {
    const std::string typeLibrary = formatGuid(LIBID_NVDL);
    std::vector<RegistrationRow> rows;

    std::vector<const ClassInfo*> classes = registeredClasses();
    std::ranges::sort(classes, [](const ClassInfo* a, const ClassInfo* b) {
        return registry::foldCase(a->progId) < registry::foldCase(b->progId);
    });
    for (const ClassInfo* info : classes)
        addRows(Scope::EachClass,
                {{"{class}", formatGuid(info->clsid)}, {"<ProgID>", info->progId}, {"<Name>", info->friendlyName},
                 {"{typelib}", typeLibrary}},
                rows);

    std::vector<const InterfaceDescription*> interfaces = registeredInterfaces();
    std::ranges::sort(interfaces, [](const InterfaceDescription* a, const InterfaceDescription* b) {
        return std::string_view(a->name()) < std::string_view(b->name());
    });
    for (const InterfaceDescription* description : interfaces)
        addRows(Scope::EachInterface,
                {{"{iid}", formatGuid(description->iid())}, {"<Name>", description->name()}, {"{typelib}", typeLibrary}},
                rows);

    addRows(Scope::Once, {{"{project}", formatGuid(CLSID_CProject)}}, rows);
    return rows;
}

std::string withModulePath(std::string_view value, std::string_view modulePath) {
    const std::size_t slash = modulePath.rfind('/');
    const std::string_view directory = slash == std::string_view::npos ? std::string_view() : modulePath.substr(0, slash);
    return substituted(value, {{"<MODULEPATH>", std::string(directory)}, {"<MODULEFULLPATHNAME>", std::string(modulePath)}});
}

HRESULT registerServerAt(std::string_view modulePath) {
    const std::vector<RegistrationRow> rows = registrationRows();
    std::vector<registry::Change> changes = deletions(rows);  // stale keys of an earlier registration go first
    for (const RegistrationRow& row : rows)
        changes.push_back({registry::Change::Kind::SetString, registry::Hive::ClassesRoot, row.key, row.valueName,
                           withModulePath(row.value, modulePath)});
    return registry::applyChanges(changes) ? S_OK : SELFREG_E_CLASS;
}

HRESULT unregisterServer() { return registry::applyChanges(deletions(registrationRows())) ? S_OK : SELFREG_E_CLASS; }

}  // namespace nvdl
