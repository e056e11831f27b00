// How workspace objects and universal-file datasets stand for each other. Measurements become
// functions (58), the nodes of geometries one node dataset (2411 or 15) with a trace line (82) per
// component, modes data at nodes (55); the file says its units are SI (164). Reading the other way,
// a file's functions become measurements, its nodes and trace lines one geometry and its data at
// nodes modes, every value brought to SI by the units the file gives.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "exchange/UffModel.h"
#include "nvdl/Dispatch.h"

namespace nvdl {
class CWorkspace;
}

namespace nvdl::exchange::uff {

struct Content {
    std::vector<IDispatch*> measurements, geometries, modes;
};

// False with `error` set when a measurement's values cannot be read.
bool fileFromContent(const Content& content, bool nodesAs2411, File& file, std::string& error);

// New objects in the workspace for the file's datasets; the geometry (when the file has nodes) is
// named `geometryName`. False with `error` set when an object refuses a value.
bool addFileToWorkspace(const File& file, CWorkspace& workspace, const std::string& geometryName, std::string& error);

// --- The parts, each in its own source file ---

// Measurements <-> functions.
bool functionFromMeasurement(IDispatch* measurement, Function& function, std::string& error);
bool measurementFromFunction(const Function& function, const Units& units, IDispatch** measurement, std::string& error);

// Geometries and modes <-> nodes, trace lines and data at nodes. Node labels are the node names
// when every name is a distinct positive whole number, else 1, 2, ... in the order of the nodes;
// the map of (component, node) names to labels serves the modes too.
struct NodeLabels {
    std::map<std::pair<std::string, std::string>, long> byName;  // (component, node) -> label
    long highest = 0;
    // The label of a node; a node of no geometry gets the next label above all others.
    long labelOf(const std::string& component, const std::string& node);
};
void geometriesToFile(const std::vector<IDispatch*>& geometries, File& file, NodeLabels& labels);
void modesToFile(const std::vector<IDispatch*>& modes, File& file, NodeLabels& labels);
bool geometryFromFile(const File& file, const std::string& name, const std::string& component, IDispatch** geometry,
                      std::string& error);
bool modeFromNodeData(const NodeData& data, const std::string& component, IDispatch** mode, std::string& error);

}  // namespace nvdl::exchange::uff
