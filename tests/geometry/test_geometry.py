"""A geometry built from Python: the coordinate type by its text, names built through the parents,
lists walked in order, and a clone that stands apart from its original."""
import pytest

import nvdl


def test_geometry_built_from_python():
    geometry = nvdl.Dispatch("nv_bench.geometry")
    geometry.Name = "Plate"
    geometry.CoordinateType = "Spherical"
    assert geometry.CoordinateType == 1403
    with pytest.raises(Exception):
        geometry.CoordinateType = "Polar"
    component = nvdl.Dispatch("nv_bench.component")
    component.XYZ(1.9, 0, 0)
    geometry.Components.Add(component)
    for name in ("A", "B", "A"):
        node = nvdl.Dispatch("nv_bench.node")
        node.Name = name
        component.Nodes.Add(node)
    assert [n.FullName for n in component.Nodes] == ["Plate.Comp.A", "Plate.Comp.B", "Plate.Comp.A(2)"]
    assert component.Clip("%1 %2 %8") == "Comp 1 Rectangular"

    copy = geometry.Clone()
    copy.Components.Item(0).Nodes.Item(0).Name = "Z"
    assert [n.Name for n in component.Nodes] == ["A", "B", "A(2)"]
    assert geometry.Translate(1504) == "Radial Direction"
