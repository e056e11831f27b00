#include "project/WkdStorage.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "frame/ClassTable.h"
#include "frame/LateBound.h"
#include "frame/Resources.h"
#include "geometry/GeometryStream.h"
#include "geometry/ModeStream.h"
#include "measurement/Measurement.h"
#include "measurement/MeasurementPersistHelpers.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "platform/RecordLayout.h"
#include "project/SmallStreams.h"
#include "project/Workspace.h"
#include "setup/SectionRecord.h"

namespace nvdl {

namespace {

constexpr DWORD kCreate = STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_WRITE;
constexpr DWORD kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;
constexpr const char* kVersionTag = "20030819";
constexpr const char* kWorkspaceStreamTag = "20020220";
constexpr std::size_t kMaxName = 200;       // written
constexpr std::size_t kMaxNameRead = 99;    // read
constexpr std::size_t kMaxVersionRead = 50;

// The tags of the files that the reader takes, oldest first.
constexpr const char* kKnownTags[] = {"19951107", "19951205", "19960905", "19970312", "19970805",
                                      "19970819", "19990222", "19991006", "20021112", "20030819"};

struct WorkspaceRecord {
    std::string tag;
    std::int16_t Default = 0;
};
constexpr std::size_t kWorkspaceRecordSize = 176;
constexpr record::Field<WorkspaceRecord, 1> kWorkspaceFields[] = {
    {record::text(&WorkspaceRecord::tag, 50), {0}},
    {record::i16(&WorkspaceRecord::Default), {50}},
};
constexpr std::span<const record::Field<WorkspaceRecord, 1>> kWorkspaceTable(kWorkspaceFields);
static_assert(record::fitsAndDisjoint(kWorkspaceTable, 0, kWorkspaceRecordSize));

std::u16string indexedName(const char* base, std::size_t i) { return widen(std::string(base) + "<" + std::to_string(i) + ">"); }

HRESULT openChild(IStorage* parent, const std::u16string& name, IStorage** child) {
    return parent->OpenStorage(name.c_str(), nullptr, kRead, nullptr, 0, child);
}

HRESULT streamsOf(IStorage* storage, std::vector<STATSTG>& streams, bool stopAtStorage) {
    std::vector<STATSTG> elements;
    HRESULT h = storage->EnumElements(&elements);
    if (FAILED(h)) return h;
    for (STATSTG& e : elements) {
        if (e.type != STGTY_STREAM) {
            if (stopAtStorage) break;
            continue;
        }
        streams.push_back(std::move(e));
    }
    return S_OK;
}

// The version of the file: the text of the streams of Version, read in turn. An empty text leaves
// the version 0; a text that is not a known tag is a failure.
bool readVersion(IStorage* root, long& version) {
    ComPtr<IStorage> storage;
    if (FAILED(openChild(root, u"Version", storage.out()))) return false;
    std::vector<STATSTG> streams;
    if (FAILED(streamsOf(storage.get(), streams, true))) return false;
    version = 0;
    for (const STATSTG& s : streams) {
        std::string text;
        if (FAILED(readSmallStream(storage.get(), s.name, kMaxVersionRead, text))) return false;
        text = text.c_str();  // up to its zero
        if (text.empty()) continue;
        version = wkdVersionNumber(text);
        if (version == 0) return false;
    }
    return true;
}

// Reads one stored measurement: its header through the reader of the file's generation, told
// where its samples lie.
HRESULT readMeasurement(IStorage* holder, const std::string& streamName, const std::string& locationName,
                        const WkdPlace& place, long version, ComPtr<IMeasurement>& out) {
    ComPtr<IStream> stream;
    HRESULT h = holder->OpenStream(widen(streamName).c_str(), nullptr, kRead, 0, stream.out());
    if (FAILED(h)) return h;
    ComPtr<IMeasurement> m(CMeasurement::createMeasurement());
    ComPtr<IPersistStream> reader;
    h = m->QueryInterface(measurementPersistIidOfTag(version), reinterpret_cast<void**>(reader.out()));
    if (FAILED(h)) return h;
    Bstr file(std::string_view{place.file}), path(std::string_view{place.nestedPath}),
        name(std::string_view{locationName});
    h = m->Location(file.get(), place.nestedPath.empty() ? 0 : -1, path.get(), name.get(), version);
    if (SUCCEEDED(h)) h = reader->Load(stream.get());
    if (SUCCEEDED(h)) out = std::move(m);
    return h;
}

HRESULT addTo(ICollection* collection, IDispatch* item) {
    Variant key, before, after;
    LONG index = 0;
    return collection->Add(item, &key, &before, &after, &index);
}

// The measurements of Blocks, each with the sub-measurements of its storage in SubBlocks. A stream
// that cannot be read is passed over.
bool loadBlocks(IStorage* workspaceStorage, long version, CWorkspace& workspace, const WkdPlace& place) {
    ComPtr<IStorage> blocks, subBlocks;
    if (FAILED(openChild(workspaceStorage, u"Blocks", blocks.out()))) return false;
    openChild(workspaceStorage, u"SubBlocks", subBlocks.out());
    std::vector<STATSTG> streams;
    if (FAILED(streamsOf(blocks.get(), streams, true))) return false;
    for (const STATSTG& s : streams) {
        std::string name = narrow(s.name);
        if (std::size_t marker = name.find("SubMeas<"); marker != std::string::npos) name = name.substr(marker);
        ComPtr<IMeasurement> m;
        if (FAILED(readMeasurement(blocks.get(), name, name, place, version, m))) continue;
        ComPtr<IStorage> children;
        std::vector<STATSTG> subStreams;
        if (subBlocks && SUCCEEDED(openChild(subBlocks.get(), s.name, children.out())) &&
            SUCCEEDED(streamsOf(children.get(), subStreams, false))) {
            ComPtr<ICollection> subs;
            m->get_Measurements(subs.out());
            for (const STATSTG& c : subStreams) {
                const std::string childName = narrow(c.name);
                ComPtr<IMeasurement> sub;
                if (subs && SUCCEEDED(readMeasurement(children.get(), childName, name + childName, place, version, sub)))
                    addTo(subs.get(), sub.get());
            }
        }
        addTo(&workspace.measurements(), m.get());
    }
    return true;
}

// Geometries or modes: one stream each, read by `load`; a record that cannot be read ends the load.
template <class LoadStream>
bool loadStreams(IStorage* workspaceStorage, const char16_t* name, long version, CObjectCollection& into,
                 LoadStream load) {
    ComPtr<IStorage> storage;
    std::vector<STATSTG> streams;
    if (FAILED(openChild(workspaceStorage, name, storage.out())) || FAILED(streamsOf(storage.get(), streams, true)))
        return false;
    for (const STATSTG& s : streams) {
        ComPtr<IStream> stream;
        ComPtr<IDispatch> object;
        if (FAILED(storage->OpenStream(s.name.c_str(), nullptr, kRead, 0, stream.out())) ||
            FAILED(load(stream.get(), version, object.out())))
            return false;
        addTo(&into, object.get());
    }
    return true;
}

// Each element of AcqSetups is the storage of one setup; one that cannot be read is passed over.
void loadSetups(IStorage* workspaceStorage, CWorkspace& workspace) {
    ComPtr<IStorage> setups;
    std::vector<STATSTG> elements;
    if (FAILED(openChild(workspaceStorage, u"AcqSetups", setups.out())) || FAILED(setups->EnumElements(&elements))) return;
    for (const STATSTG& e : elements) {
        ComPtr<IStorage> storage;
        ComPtr<IDispatch> setup;
        ComPtr<IPersistStorage> persist;
        if (e.type != STGTY_STORAGE || FAILED(openChild(setups.get(), e.name, storage.out())) ||
            FAILED(createInstance(CLSID_CSetup, setup.out())) ||
            FAILED(setup->QueryInterface(IID_IPersistStorage, reinterpret_cast<void**>(persist.out()))) ||
            FAILED(persist->Load(storage.get())))
            continue;
        addTo(&workspace.setups(), setup.get());
    }
}

// The elements of the workspace storage, by name; other names are passed over.
HRESULT loadWorkspaceStorage(IStorage* storage, long version, CWorkspace& workspace, const WkdPlace& place,
                             std::string& message) {
    std::vector<STATSTG> elements;
    HRESULT h = storage->EnumElements(&elements);
    if (FAILED(h)) return h;
    for (const STATSTG& e : elements) {
        if (e.name == u"WorkspaceName") {
            std::string text;
            if (FAILED(readSmallStream(storage, e.name, kMaxNameRead, text))) {
                message = "Cannot read the WorkspaceName stream";
                return E_FAIL;
            }
            if (!text.empty()) text.back() = '\0';  // the last byte read makes room for the end
            Bstr name(std::string_view{text.c_str()});
            workspace.put_Name(name.get());
        } else if (e.name == u"WorkspaceStream") {
            ComPtr<IStream> stream;
            if (FAILED(storage->OpenStream(e.name.c_str(), nullptr, kRead, 0, stream.out()))) {
                message = "Cannot open the WorkspaceData stream";
                return E_FAIL;
            }
            std::uint8_t bytes[kWorkspaceRecordSize];
            if (FAILED(section::readExactly(stream.get(), bytes, kWorkspaceRecordSize))) {
                message = "Cannot read the WorkspaceData stream";
                return E_FAIL;
            }
            WorkspaceRecord stored;
            record::decode(kWorkspaceTable, 0, bytes, stored);
            if (stored.tag >= kWorkspaceStreamTag) workspace.put_Default(stored.Default);
        } else if (e.name == u"Blocks") {
            if (!loadBlocks(storage, version, workspace, place)) {
                message = loadStringResource(IDS_ALREADY_IN_COLLECTION);  // the text the files have always shown here
                return E_FAIL;
            }
        } else if (e.name == u"Geometries") {
            if (!loadStreams(storage, u"Geometries", version, workspace.geometries(), loadGeometryStream)) {
                message = loadStringResource(IDS_PARAMETER_NAME_BLANK);
                return E_FAIL;
            }
        } else if (e.name == u"Modes") {
            if (!loadStreams(storage, u"Modes", version, workspace.modes(), loadModeStream)) {
                message = loadStringResource(IDS_INVALID_VERSION);
                return E_FAIL;
            }
        } else if (e.name == u"AcqSetups") {
            loadSetups(storage, workspace);
        }
    }
    return S_OK;
}

}  // namespace

HRESULT loadWkd(IStorage* root, CWorkspace& workspace, const WkdPlace& place, std::string& message) {
    message.clear();
    if (!root) return E_POINTER;
    std::vector<STATSTG> elements;
    HRESULT h = root->EnumElements(&elements);
    if (FAILED(h)) return h;
    const auto versionStorage = std::find_if(elements.begin(), elements.end(), [](const STATSTG& e) {
        return e.type != STGTY_STORAGE || e.name == u"Version";
    });
    if (versionStorage == elements.end() || versionStorage->type != STGTY_STORAGE) return E_FAIL;
    long version = 0;
    if (!readVersion(root, version)) {
        message = loadStringResource(IDS_NO_PROPERTY_PUT);  // the text the files have always shown here
        return E_FAIL;
    }
    if (version > kWkdVersion) {
        message = "Your current wkd file loader does not support this file version <" + std::to_string(version) +
                  ">.\nYou need a software update to be able to load this file.";
        return E_FAIL;
    }
    // The workspace storage is the first element of another name, whatever its name.
    const auto workspaceElement =
        std::find_if(elements.begin(), elements.end(), [](const STATSTG& e) { return e.name != u"Version"; });
    if (workspaceElement == elements.end()) return E_FAIL;
    ComPtr<IStorage> storage;
    if (FAILED(h = openChild(root, workspaceElement->name, storage.out()))) return h;
    return loadWorkspaceStorage(storage.get(), version, workspace, place, message);
}

long wkdVersionNumber(const std::string& tag) {
    for (const char* known : kKnownTags)
        if (tag == known) return std::atol(known);
    return 0;
}

}  // namespace nvdl

namespace nvdl {

namespace {

HRESULT createChild(IStorage* parent, const std::u16string& name, IStorage** child) {
    return parent->CreateStorage(name.c_str(), kCreate, 0, 0, child);
}

HRESULT saveToStream(IStorage* storage, const std::u16string& name, IDispatch* object) {
    ComPtr<IPersistStream> persist;
    ComPtr<IStream> stream;
    HRESULT h = object->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(persist.out()));
    if (SUCCEEDED(h)) h = storage->CreateStream(name.c_str(), kCreate, 0, 0, stream.out());
    return FAILED(h) ? h : persist->Save(stream.get(), 1);
}

void clearModified(IDispatch* object) {
    Variant cleared = Variant::fromShort(0);
    latebound::put(object, u"Modified", cleared);
}

// Measurement i in Blocks as Meas<i>, and its sub-measurements, if any, in SubBlocks/Meas<i>.
HRESULT saveMeasurement(IStorage* blocks, IStorage* subBlocks, IDispatch* item, std::size_t i) {
    const std::u16string name = indexedName("Meas", i);
    HRESULT h = saveToStream(blocks, name, item);
    if (FAILED(h)) return h;
    ComPtr<IMeasurement> m = ComPtr<IMeasurement>::query(item);
    ComPtr<ICollection> subs;
    LONG count = 0;
    if (m && SUCCEEDED(m->get_Measurements(subs.out())) && subs && SUCCEEDED(subs->get_Count(&count)) && count > 0) {
        ComPtr<IStorage> children;
        if (FAILED(h = createChild(subBlocks, name, children.out()))) return h;
        for (LONG j = 0; j < count; ++j) {
            ComPtr<IDispatch> sub;
            if (FAILED(h = subs->Item(Variant::fromLong(j), sub.out()))) return h;
            if (FAILED(h = saveToStream(children.get(), indexedName("SubMeas", static_cast<std::size_t>(j)), sub.get())))
                return h;
        }
    }
    clearModified(item);
    return S_OK;
}

// Each object of the collection in a stream of its own, written by `save`.
template <class SaveStream>
HRESULT saveStreams(IStorage* workspaceStorage, const char16_t* storageName, const char* streamBase,
                    CObjectCollection& items, SaveStream save) {
    if (items.size() == 0) return S_OK;
    ComPtr<IStorage> storage;
    HRESULT h = createChild(workspaceStorage, storageName, storage.out());
    for (std::size_t i = 0; SUCCEEDED(h) && i < items.size(); ++i) {
        ComPtr<IStream> stream;
        h = storage->CreateStream(indexedName(streamBase, i).c_str(), kCreate, 0, 0, stream.out());
        if (SUCCEEDED(h)) h = save(stream.get(), items.itemAt(i));
    }
    return h;
}

HRESULT saveSetups(IStorage* workspaceStorage, CObjectCollection& setups) {
    if (setups.size() == 0) return S_OK;
    ComPtr<IStorage> storage;
    HRESULT h = createChild(workspaceStorage, u"AcqSetups", storage.out());
    for (std::size_t i = 0; SUCCEEDED(h) && i < setups.size(); ++i) {
        ComPtr<IStorage> child;
        ComPtr<IPersistStorage> persist;
        h = createChild(storage.get(), indexedName("Setup", i), child.out());
        if (SUCCEEDED(h)) h = setups.itemAt(i)->QueryInterface(IID_IPersistStorage, reinterpret_cast<void**>(persist.out()));
        if (SUCCEEDED(h)) h = persist->Save(child.get(), 0);
        if (SUCCEEDED(h)) clearModified(setups.itemAt(i));
    }
    return h;
}

}  // namespace

HRESULT writeWkdHead(IStorage* root, std::string name, std::int16_t defaultFlag, IStorage** workspaceStorage) {
    if (!root || !workspaceStorage) return E_POINTER;
    std::uint8_t record[kWorkspaceRecordSize] = {};
    record::encode(kWorkspaceTable, 0, WorkspaceRecord{kWorkspaceStreamTag, defaultFlag}, record);
    if (name.size() > kMaxName) name.resize(kMaxName);
    ComPtr<IStorage> version, storage;
    HRESULT h = createChild(root, u"Version", version.out());
    if (SUCCEEDED(h)) h = root->SetClass(CLSID_CWorkspace);
    if (SUCCEEDED(h)) h = writeSmallStream(version.get(), u"Version", kVersionTag, std::char_traits<char>::length(kVersionTag) + 1);
    if (SUCCEEDED(h)) h = createChild(root, u"Workspace", storage.out());
    if (SUCCEEDED(h)) h = writeSmallStream(storage.get(), u"WorkspaceStream", record, kWorkspaceRecordSize);
    if (SUCCEEDED(h)) h = writeSmallStream(storage.get(), u"WorkspaceName", name.c_str(), name.size() + 1);
    if (SUCCEEDED(h)) *workspaceStorage = storage.release();
    return h;
}

HRESULT saveWkd(IStorage* root, CWorkspace& workspace, std::string& message) {
    message.clear();  // the failures of writing carry no text
    if (!root) return E_POINTER;
    Bstr name;
    workspace.get_Name(name.out());
    ComPtr<IStorage> storage;
    HRESULT h = writeWkdHead(root, bstrToAnsi(name.get()), workspace.m_fields.Default, storage.out());
    if (FAILED(h)) return h;

    CObjectCollection& measurements = workspace.measurements();
    if (measurements.size() > 0) {
        ComPtr<IStorage> blocks, subBlocks;
        h = createChild(storage.get(), u"Blocks", blocks.out());
        if (SUCCEEDED(h)) h = createChild(storage.get(), u"SubBlocks", subBlocks.out());
        for (std::size_t i = 0; SUCCEEDED(h) && i < measurements.size(); ++i)
            h = saveMeasurement(blocks.get(), subBlocks.get(), measurements.itemAt(i), i);
        if (FAILED(h)) return h;
    }
    if (FAILED(h = saveStreams(storage.get(), u"Geometries", "Geom", workspace.geometries(), saveGeometryStream))) return h;
    if (FAILED(h = saveStreams(storage.get(), u"Modes", "Mode", workspace.modes(), saveModeStream))) return h;
    if (FAILED(h = saveSetups(storage.get(), workspace.setups()))) return h;
    return root->Commit(STGC_DEFAULT);
}

}  // namespace nvdl

namespace nvdl {

// Measurement i as Meas<i> in Blocks, its sub-measurement j as SubMeas<j> in SubBlocks/Meas<i>: the
// names the save gave them, which paging finds by the parent's name followed by the child's.
void followSavedWorkspace(CWorkspace& workspace, const WkdPlace& place) {
    const SHORT inDataStorage = place.nestedPath.empty() ? 0 : -1;
    CObjectCollection& measurements = workspace.measurements();
    for (std::size_t i = 0; i < measurements.size(); ++i) {
        auto* m = dynamic_cast<CMeasurement*>(CFrameBase::of(measurements.itemAt(i)));
        if (!m) continue;
        const std::string name = narrow(indexedName("Meas", i));
        m->followSave(place.file, inDataStorage, place.nestedPath, name, kWkdVersion);
        ComPtr<ICollection> subs;
        LONG count = 0;
        if (FAILED(m->get_Measurements(subs.out())) || !subs || FAILED(subs->get_Count(&count))) continue;
        for (LONG j = 0; j < count; ++j) {
            ComPtr<IDispatch> item;
            if (FAILED(subs->Item(Variant::fromLong(j), item.out()))) continue;
            if (auto* sub = dynamic_cast<CMeasurement*>(CFrameBase::of(item.get())))
                sub->followSave(place.file, inDataStorage, place.nestedPath,
                                name + narrow(indexedName("SubMeas", static_cast<std::size_t>(j))), kWkdVersion);
        }
    }
}

}  // namespace nvdl
