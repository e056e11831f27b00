// Geometries and modes as nodes (2411/15), trace lines (82) and data at nodes (55). A node's place
// in the file is its component's position plus its own coordinates; a component's lines become
// one trace line, lifting the pen between lines that do not continue each other. A mode is data
// of a normal-mode analysis: three translations per node (complex when any coefficient has an
// imaginary part), its frequency and damping ratio among the analysis parameters.
#include <cmath>
#include <numbers>
#include <set>

#include "exchange/UffFields.h"
#include "exchange/UffMapping.h"
#include "frame/LateBound.h"
#include "geometry/Component.h"
#include "geometry/Geometry.h"
#include "geometry/Line.h"
#include "geometry/Mode.h"
#include "geometry/ModeCoeff.h"
#include "geometry/Node.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"

namespace nvdl::exchange::uff {

namespace {

constexpr LONG kDirectionX = 1501;

std::string textOf(IDispatch* object, const char16_t* name) {
    Variant v;
    if (FAILED(latebound::get(object, name, &v)) || FAILED(v.changeType(VT_BSTR))) return {};
    return narrow(bstrView(v.bstrVal));
}

double numberOf(IDispatch* object, const char16_t* name) {
    Variant v;
    if (FAILED(latebound::get(object, name, &v)) || FAILED(v.changeType(VT_R8))) return 0;
    return v.dblVal;
}

// The items of a list property of an object, each with a reference held.
std::vector<ComPtr<IDispatch>> itemsOf(IDispatch* owner, const char16_t* list) {
    std::vector<ComPtr<IDispatch>> out;
    Variant v;
    if (FAILED(latebound::get(owner, list, &v)) || v.vt != VT_DISPATCH || !v.pdispVal) return out;
    auto* collection = static_cast<ICollection*>(v.pdispVal);
    LONG count = 0;
    collection->get_Count(&count);
    for (LONG i = 0; i < count; ++i) {
        ComPtr<IDispatch> item;
        if (SUCCEEDED(collection->Item(Variant::fromLong(i), item.out())) && item) out.push_back(std::move(item));
    }
    return out;
}

HRESULT addItem(IDispatch* owner, const char16_t* list, IDispatch* item) {
    Variant v;
    HRESULT h = latebound::get(owner, list, &v);
    if (FAILED(h) || v.vt != VT_DISPATCH || !v.pdispVal) return FAILED(h) ? h : E_FAIL;
    Variant key, before, after;
    LONG index = 0;
    return static_cast<ICollection*>(v.pdispVal)->Add(item, &key, &before, &after, &index);
}

HRESULT put(IDispatch* object, const char16_t* name, const Variant& value) { return latebound::put(object, name, value); }

}  // namespace

long NodeLabels::labelOf(const std::string& component, const std::string& node) {
    auto found = byName.find({component, node});
    if (found != byName.end()) return found->second;
    byName[{component, node}] = ++highest;
    return highest;
}

void geometriesToFile(const std::vector<IDispatch*>& geometries, File& file, NodeLabels& labels) {
    struct Placed {
        std::string component, name;
        Node node;
    };
    std::vector<Placed> placed;
    std::set<long> numbers;
    bool numbered = true;
    for (IDispatch* geometry : geometries)
        for (const auto& component : itemsOf(geometry, u"Components")) {
            const std::string componentName = textOf(component.get(), u"Name");
            const double cx = numberOf(component.get(), u"X"), cy = numberOf(component.get(), u"Y"),
                         cz = numberOf(component.get(), u"Z");
            for (const auto& n : itemsOf(component.get(), u"Nodes")) {
                Placed p{componentName, textOf(n.get(), u"Name"), {}};
                p.node.x = cx + numberOf(n.get(), u"X");
                p.node.y = cy + numberOf(n.get(), u"Y");
                p.node.z = cz + numberOf(n.get(), u"Z");
                p.node.color = static_cast<int>(numberOf(n.get(), u"ColorIndex"));
                const auto number = parseInteger(p.name);
                numbered = numbered && number && *number > 0 && *number < 1000000000 && numbers.insert(*number).second;
                placed.push_back(std::move(p));
            }
        }
    for (Placed& p : placed) {
        p.node.label = numbered ? *parseInteger(p.name) : labels.highest + 1;
        labels.byName[{p.component, p.name}] = p.node.label;
        labels.highest = std::max(labels.highest, p.node.label);
        file.nodes.push_back(p.node);
    }
    long traceNumber = 0;
    for (IDispatch* geometry : geometries)
        for (const auto& component : itemsOf(geometry, u"Components")) {
            const std::string componentName = textOf(component.get(), u"Name");
            TraceLine t;
            t.number = ++traceNumber;
            t.id = componentName;
            for (const auto& line : itemsOf(component.get(), u"Lines")) {
                const long a = labels.labelOf(componentName, textOf(line.get(), u"Node1"));
                const long b = labels.labelOf(componentName, textOf(line.get(), u"Node2"));
                if (t.nodes.empty() || t.nodes.back() != a) {
                    if (!t.nodes.empty()) t.nodes.push_back(0);
                    t.nodes.push_back(a);
                }
                t.nodes.push_back(b);
            }
            if (!t.nodes.empty()) file.traceLines.push_back(std::move(t));
        }
}

void modesToFile(const std::vector<IDispatch*>& modes, File& file, NodeLabels& labels) {
    long number = 0;
    for (IDispatch* mode : modes) {
        NodeData d;
        d.idLines = {textOf(mode, u"Name"), textOf(mode, u"Description"), "", "", ""};
        d.integers = {1, ++number};
        d.reals = {numberOf(mode, u"Frequency"), 0.0, numberOf(mode, u"Damping"), 0.0};
        // Three translations per node, in the order the nodes first appear in the shape.
        std::map<long, std::size_t> at;
        bool complex = false;
        for (const auto& c : itemsOf(mode, u"Shape")) {
            const long label = labels.labelOf(textOf(c.get(), u"Component"), textOf(c.get(), u"Node"));
            const long direction = static_cast<long>(numberOf(c.get(), u"Direction")) - kDirectionX;
            if (direction < 0 || direction > 5) continue;
            auto [it, fresh] = at.try_emplace(label, d.nodes.size());
            if (fresh) d.nodes.push_back({label, std::vector<double>(6, 0.0)});
            const double im = numberOf(c.get(), u"Imaginary");
            complex = complex || im != 0;
            // Radial, theta and phi stand where x, y and z do.
            auto& values = d.nodes[it->second].values;
            values[static_cast<std::size_t>(direction % 3) * 2] = numberOf(c.get(), u"Real");
            values[static_cast<std::size_t>(direction % 3) * 2 + 1] = im;
        }
        d.dataType = complex ? 5 : 2;
        if (!complex)
            for (auto& n : d.nodes) n.values = {n.values[0], n.values[2], n.values[4]};
        file.nodeData.push_back(std::move(d));
    }
}

bool geometryFromFile(const File& file, const std::string& name, const std::string& componentName, IDispatch** result,
                      std::string& error) {
    ComPtr<IDispatch> geometry(CGeometry::create());
    ComPtr<IDispatch> component(CComponent::create());
    HRESULT h = put(geometry.get(), u"Name", Variant::fromAnsi(name));
    if (SUCCEEDED(h)) h = put(component.get(), u"Name", Variant::fromAnsi(componentName));
    std::set<long> known;
    for (std::size_t i = 0; SUCCEEDED(h) && i < file.nodes.size(); ++i) {
        const Node& n = file.nodes[i];
        if (!known.insert(n.label).second) {
            error = "node " + std::to_string(n.label) + " is given twice";
            return false;
        }
        ComPtr<IDispatch> node(CNode::create());
        const double scale = file.units.length;
        h = put(node.get(), u"Name", Variant::fromAnsi(std::to_string(n.label)));
        if (SUCCEEDED(h)) h = put(node.get(), u"X", Variant::fromFloat(static_cast<float>(n.x * scale)));
        if (SUCCEEDED(h)) h = put(node.get(), u"Y", Variant::fromFloat(static_cast<float>(n.y * scale)));
        if (SUCCEEDED(h)) h = put(node.get(), u"Z", Variant::fromFloat(static_cast<float>(n.z * scale)));
        if (SUCCEEDED(h)) h = put(node.get(), u"ColorIndex", Variant::fromLong(n.color));
        if (SUCCEEDED(h)) h = addItem(component.get(), u"Nodes", node.get());
    }
    for (const TraceLine& t : file.traceLines)
        for (std::size_t i = 1; SUCCEEDED(h) && i < t.nodes.size(); ++i) {
            if (t.nodes[i - 1] == 0 || t.nodes[i] == 0) continue;
            ComPtr<IDispatch> line(CLine::create());
            const Variant first = Variant::fromAnsi(std::to_string(t.nodes[i - 1])), second = Variant::fromAnsi(std::to_string(t.nodes[i]));
            const VARIANT ends[] = {first, second};
            h = latebound::call(line.get(), u"Node12", ends, nullptr);
            if (SUCCEEDED(h)) h = put(line.get(), u"ColorIndex", Variant::fromLong(t.color));
            if (SUCCEEDED(h)) h = addItem(component.get(), u"Lines", line.get());
        }
    if (SUCCEEDED(h)) h = addItem(geometry.get(), u"Components", component.get());
    if (FAILED(h)) {
        error = "the nodes cannot be made a geometry";
        return false;
    }
    *result = geometry.release();
    return true;
}

bool modeFromNodeData(const NodeData& d, const std::string& component, IDispatch** result, std::string& error) {
    ComPtr<IDispatch> mode(CMode::create());
    double frequency = d.reals.empty() ? 0.0 : d.reals[0], damping = d.reals.size() > 2 ? d.reals[2] : 0.0;
    double modalRe = 0, modalIm = 0;
    if (d.analysisType == 3 && d.reals.size() >= 2) {
        // A complex eigenvalue -sigma + j omega_d: the undamped frequency is its modulus.
        const double modulus = std::hypot(d.reals[0], d.reals[1]);
        frequency = modulus / (2 * std::numbers::pi);
        damping = modulus > 0 ? -d.reals[0] / modulus : 0.0;
        modalRe = d.reals.size() > 2 ? d.reals[2] : 0.0;
        modalIm = d.reals.size() > 3 ? d.reals[3] : 0.0;
    }
    const std::string name = d.idLines[0].empty() ? "Mode " + std::to_string(d.integers.size() > 1 ? d.integers[1] : 0) : d.idLines[0];
    HRESULT h = put(mode.get(), u"Name", Variant::fromAnsi(name));
    if (SUCCEEDED(h)) h = put(mode.get(), u"Description", Variant::fromAnsi(d.idLines[1]));
    if (SUCCEEDED(h)) h = put(mode.get(), u"Frequency", Variant::fromFloat(static_cast<float>(frequency)));
    if (SUCCEEDED(h)) h = put(mode.get(), u"Damping", Variant::fromFloat(static_cast<float>(damping)));
    if (SUCCEEDED(h)) h = put(mode.get(), u"ModalAReal", Variant::fromFloat(static_cast<float>(modalRe)));
    if (SUCCEEDED(h)) h = put(mode.get(), u"ModalAImag", Variant::fromFloat(static_cast<float>(modalIm)));
    if (SUCCEEDED(h)) h = put(mode.get(), u"Type", Variant::fromLong(1601));
    // The first three values of a node are its translations; rotations have no place in a shape.
    const std::size_t step = d.complex() ? 2 : 1;
    for (const NodeData::AtNode& n : d.nodes)
        for (std::size_t k = 0; SUCCEEDED(h) && k < 3 && (k + 1) * step <= n.values.size(); ++k) {
            const double re = n.values[k * step], im = d.complex() ? n.values[k * step + 1] : 0.0;
            if (re == 0 && im == 0) continue;
            ComPtr<IDispatch> c(CModeCoeff::create());
            const Variant onComponent = Variant::fromAnsi(component), atNode = Variant::fromAnsi(std::to_string(n.node)),
                          direction = Variant::fromLong(kDirectionX + static_cast<LONG>(k));
            const VARIANT where[] = {onComponent, atNode, direction};
            h = latebound::call(c.get(), u"Location", where, nullptr);
            if (SUCCEEDED(h)) h = put(c.get(), u"Real", Variant::fromFloat(static_cast<float>(re)));
            if (SUCCEEDED(h)) h = put(c.get(), u"Imaginary", Variant::fromFloat(static_cast<float>(im)));
            if (SUCCEEDED(h)) h = addItem(mode.get(), u"Shape", c.get());
        }
    if (FAILED(h)) {
        error = "the data at nodes \"" + name + "\" cannot be made a mode";
        return false;
    }
    *result = mode.release();
    return true;
}

}  // namespace nvdl::exchange::uff
