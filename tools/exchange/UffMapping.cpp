// The whole mapping: a workspace's selection into one file, and one file into a workspace.
#include "exchange/UffMapping.h"

#include "platform/ComPtr.h"
#include "project/Workspace.h"

namespace nvdl::exchange::uff {

namespace {

HRESULT addTo(CObjectCollection& list, IDispatch* item) {
    Variant key, before, after;
    LONG index = 0;
    return list.Add(item, &key, &before, &after, &index);
}

}  // namespace

bool fileFromContent(const Content& content, bool nodesAs2411, File& file, std::string& error) {
    file = File{};
    file.hasUnits = true;  // values are written as the workspace keeps them, in SI
    file.nodesAs2411 = nodesAs2411;
    NodeLabels labels;
    geometriesToFile(content.geometries, file, labels);
    modesToFile(content.modes, file, labels);
    for (IDispatch* m : content.measurements) {
        Function f;
        if (!functionFromMeasurement(m, f, error)) return false;
        f.functionId = static_cast<int>(file.functions.size()) + 1;
        file.functions.push_back(std::move(f));
    }
    return true;
}

bool addFileToWorkspace(const File& file, CWorkspace& workspace, const std::string& geometryName, std::string& error) {
    // The shapes name their nodes by the component the geometry's nodes are put in.
    const std::string component = geometryName;
    if (!file.nodes.empty()) {
        ComPtr<IDispatch> geometry;
        if (!geometryFromFile(file, geometryName, component, geometry.out(), error)) return false;
        if (FAILED(addTo(workspace.geometries(), geometry.get()))) {
            error = "the workspace refuses the geometry";
            return false;
        }
    }
    for (const NodeData& d : file.nodeData) {
        ComPtr<IDispatch> mode;
        if (!modeFromNodeData(d, component, mode.out(), error)) return false;
        if (FAILED(addTo(workspace.modes(), mode.get()))) {
            error = "the workspace refuses a mode";
            return false;
        }
    }
    for (const Function& f : file.functions) {
        ComPtr<IDispatch> m;
        if (!measurementFromFunction(f, file.units, m.out(), error)) return false;
        if (FAILED(addTo(workspace.measurements(), m.get()))) {
            error = "the workspace refuses a measurement";
            return false;
        }
    }
    return true;
}

}  // namespace nvdl::exchange::uff
