#include "analysis/ChannelFiles.h"

#include <algorithm>
#include <cctype>
#include <charconv>

#include "cli/Failure.h"
#include "exchange/Csv.h"
#include "nvdl/nvdl.h"

namespace nvdl::analysis {

namespace {

constexpr LONG kTimeRecord = 1001;

bool endsWith(const std::string& path, std::string_view extension) {
    if (path.size() < extension.size()) return false;
    return std::equal(extension.begin(), extension.end(), path.end() - static_cast<long>(extension.size()),
                      [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; });
}

bool parseNumber(std::string_view text, long& value) {
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
    return problem == std::errc{} && end == text.data() + text.size() && value >= 1;
}

ComPtr<ICollection> measurementsOf(IWorkspace* workspace) {
    ComPtr<ICollection> items;
    workspace->get_Measurements(items.out());
    return items;
}

ComPtr<IWorkspace> newWorkspace(std::string& error) {
    ComPtr<IDispatch> object;
    HRESULT h = CreateObject(u"nv_bench.Workspace", object.out());
    if (FAILED(h)) error = tool::reasonOf(h, "cannot create a workspace");
    return ComPtr<IWorkspace>::query(object.get());
}

}  // namespace

HRESULT addItem(ICollection* collection, IDispatch* item) {
    Variant key, before, after;
    LONG index = 0;
    return collection->Add(item, &key, &before, &after, &index);
}

bool loadTimeRecords(const std::string& file, TimeRecords& loaded, std::string& error) {
    loaded.workspace = newWorkspace(error);
    if (!loaded.workspace) return false;
    const Bstr name{std::string_view{file}};
    Variant anyLoader;
    if (HRESULT h = loaded.workspace->Load(name.get(), anyLoader); FAILED(h)) {
        error = tool::reasonOf(h, "cannot load the file");
        return false;
    }
    return gatherTimeRecords(loaded.workspace, loaded, error);
}

bool gatherTimeRecords(const ComPtr<IWorkspace>& workspace, TimeRecords& loaded, std::string& error) {
    loaded.workspace = workspace;
    loaded.records.clear();
    loaded.numbers.clear();
    ComPtr<ICollection> items = measurementsOf(workspace.get());
    LONG count = 0;
    if (items) items->get_Count(&count);
    bool numbered = true;
    for (LONG i = 0; i < count; ++i) {
        ComPtr<IDispatch> item;
        if (FAILED(items->Item(Variant::fromLong(i), item.out()))) continue;
        ComPtr<IMeasurement> m = ComPtr<IMeasurement>::query(item.get());
        Variant type;
        if (!m || FAILED(m->get_FunctionType(&type)) || FAILED(type.changeType(VT_I4)) || type.lVal != kTimeRecord)
            continue;
        LONG channel = 0;
        m->get_ResponseChannel(&channel);
        numbered = numbered && channel > 0 &&
                   std::find(loaded.numbers.begin(), loaded.numbers.end(), channel) == loaded.numbers.end();
        loaded.numbers.push_back(channel);
        loaded.records.push_back(std::move(m));
    }
    if (loaded.records.empty()) {
        error = "holds no time record";
        return false;
    }
    if (!numbered)
        for (std::size_t i = 0; i < loaded.numbers.size(); ++i) loaded.numbers[i] = static_cast<long>(i) + 1;
    return true;
}

bool pickChannels(const TimeRecords& loaded, const std::string& list, std::vector<IMeasurement*>& picked,
                  std::string& error) {
    picked.clear();
    if (list.empty()) {
        for (const auto& r : loaded.records) picked.push_back(r.get());
        return true;
    }
    std::string_view rest = list;
    while (!rest.empty()) {
        const std::size_t comma = rest.find(',');
        const std::string_view item = rest.substr(0, comma);
        rest = comma == std::string_view::npos ? std::string_view{} : rest.substr(comma + 1);
        const std::size_t dash = item.find('-');
        long first = 0, last = 0;
        if (!parseNumber(item.substr(0, dash), first) ||
            !parseNumber(dash == std::string_view::npos ? item : item.substr(dash + 1), last) || last < first) {
            error = "\"" + list + "\" is not a list of channel numbers";
            return false;
        }
        for (long n = first; n <= last; ++n) {
            auto at = std::find(loaded.numbers.begin(), loaded.numbers.end(), n);
            if (at == loaded.numbers.end()) {
                error = "has no channel " + std::to_string(n);
                return false;
            }
            picked.push_back(loaded.records[static_cast<std::size_t>(at - loaded.numbers.begin())].get());
        }
    }
    return true;
}

long numberOf(const TimeRecords& loaded, const IMeasurement* record) {
    for (std::size_t i = 0; i < loaded.records.size(); ++i)
        if (loaded.records[i].get() == record) return loaded.numbers[i];
    return 0;
}

bool writeResults(const std::vector<IMeasurement*>& results, const std::string& path, std::string& error) {
    if (endsWith(path, ".csv")) {
        std::vector<IDispatch*> items(results.begin(), results.end());
        return exchange::writeMeasurementsCsv(items, path, error);
    }
    if (!endsWith(path, ".wkd")) {
        error = "the results go to a .wkd or a .csv file";
        return false;
    }
    ComPtr<IWorkspace> workspace = newWorkspace(error);
    if (!workspace) return false;
    ComPtr<ICollection> items = measurementsOf(workspace.get());
    for (IMeasurement* m : results)
        if (HRESULT h = addItem(items.get(), m); FAILED(h)) {
            error = tool::reasonOf(h, "cannot gather the results");
            return false;
        }
    const Bstr name{std::string_view{path}};
    Variant anyLoader;
    if (HRESULT h = workspace->Save(name.get(), anyLoader); FAILED(h)) {
        error = tool::reasonOf(h, "cannot write the workspace file");
        return false;
    }
    return true;
}

}  // namespace nvdl::analysis
