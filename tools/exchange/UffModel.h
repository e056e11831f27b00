// The universal file's datasets as plain values, between the text reader/writer and the mapping
// onto workspace objects: 58 (a function at a node), 15/2411 (nodes), 82 (trace lines), 55 (data at
// nodes, here mode shapes) and 164 (units).
#pragma once

#include <array>
#include <string>
#include <vector>

namespace nvdl::exchange::uff {

// One axis description of a function (records 8 to 11 of dataset 58): the kind of quantity, the
// exponents of length, force and temperature that convert its values between unit systems, and
// the label and unit texts.
struct Axis {
    int dataType = 0;
    int lengthExponent = 0, forceExponent = 0, temperatureExponent = 0;
    std::string label = "NONE", unit = "NONE";
};

// Ordinate codes of dataset 58.
enum OrdinateType : int { kRealSingle = 2, kRealDouble = 4, kComplexSingle = 5, kComplexDouble = 6 };

struct Function {
    std::array<std::string, 5> idLines;
    int functionType = 0, functionId = 1, version = 0, loadCase = 0;
    std::string responseEntity = "NONE", referenceEntity = "NONE";
    long responseNode = 0, referenceNode = 0;
    int responseDirection = 0, referenceDirection = 0;
    int ordinateType = kRealDouble;
    bool even = true;
    double xMinimum = 0, xIncrement = 0, z = 0;
    Axis abscissa, numerator, denominator, zAxis;
    std::vector<double> x;   // the abscissa of each value when the spacing is uneven
    std::vector<double> re, im;
    bool complex() const { return ordinateType == kComplexSingle || ordinateType == kComplexDouble; }
    bool doublePrecision() const { return ordinateType == kRealDouble || ordinateType == kComplexDouble; }
};

struct Node {
    long label = 0;
    int definitionSystem = 0, displacementSystem = 0, color = 0;
    double x = 0, y = 0, z = 0;
};

struct TraceLine {
    long number = 0;
    int color = 0;
    std::string id;
    std::vector<long> nodes;  // 0 lifts the pen: the next node starts a new stroke
};

// Dataset 55 as the writer and the mode mapping use it: the analysis parameters of record 7/8
// kept whole, and the values at each node (real, or real and imaginary interleaved).
struct NodeData {
    std::array<std::string, 5> idLines;
    int modelType = 1, analysisType = 2, dataCharacteristic = 2, quantityKind = 8, dataType = 5, valuesPerNode = 3;
    std::vector<long> integers;  // record 7 after its two counts: load case, mode number, ...
    std::vector<double> reals;   // record 8
    struct AtNode {
        long node = 0;
        std::vector<double> values;
    };
    std::vector<AtNode> nodes;
    bool complex() const { return dataType == 5; }
};

// Dataset 164: factors that turn the file's units into SI ones.
struct Units {
    int code = 1;
    std::string description = "SI - mks (Newton)";
    int temperatureMode = 2;
    double length = 1, force = 1, temperature = 1, temperatureOffset = 273.15;
};

struct File {
    bool hasUnits = false;
    Units units;
    std::vector<Node> nodes;
    bool nodesAs2411 = true;  // how the writer writes nodes; the reader tells which it found last
    std::vector<TraceLine> traceLines;
    std::vector<NodeData> nodeData;
    std::vector<Function> functions;
};

}  // namespace nvdl::exchange::uff
