"""Universal files that `nvdl export` writes, read by a reader of the fixed-width records written
here from the format's description: units, nodes, trace lines, mode shapes and functions (even and
uneven abscissa, real and complex) carry the values that were imported."""
import os
import subprocess

import pytest

TOOL = os.path.join(os.environ.get("NVDL_BUILD_DIR", "build"), "nvdl")


def fixed(line, widths):
    """The fields of a line at their fixed widths."""
    fields, at = [], 0
    for width in widths:
        fields.append(line[at:at + width])
        at += width
    return fields


def real(text):
    return float(text.strip().replace("D", "E"))


def datasets(text):
    """(number, lines) of every dataset between the delimiter lines."""
    lines = text.split("\n")
    found, i = [], 0
    while i < len(lines):
        if lines[i] == "    -1":
            end = lines.index("    -1", i + 1)
            found.append((int(lines[i + 1][:6]), lines[i + 2:end]))
            i = end + 1
        else:
            assert lines[i] == "", "text outside a dataset: %r" % lines[i]
            i += 1
    return found


def read_function(lines):
    f = {"name": lines[0]}
    r6 = lines[5]
    f["type"], f["response"], f["node"], f["direction"] = int(r6[0:5]), r6[31:41].strip(), int(r6[41:51]), int(r6[51:55])
    ordinate, count, even = (int(v) for v in fixed(lines[6], [10, 10, 10]))
    f["start"], f["step"] = (real(v) for v in fixed(lines[6][30:], [13, 13]))
    f["x_label"], f["x_unit"] = lines[7][26:46].strip(), lines[7][47:67].strip()
    f["y_label"], f["length_exponent"] = lines[8][26:46].strip(), int(lines[8][10:15])
    assert ordinate in (4, 6), "values are written in double precision"
    complex_ = ordinate == 6
    per_point = [13] * (not even) + [20] * (2 if complex_ else 1)
    numbers = []
    # Even values stand four to a line (4E20.12); uneven real points two (2(E13.5,E20.12)), complex one.
    widths = [20] * 4 if even else per_point * (2 if len(per_point) == 2 else 1)
    for line in lines[11:]:
        numbers += [real(v) for v in fixed(line, widths) if v.strip()]
    step = len(per_point)
    assert len(numbers) == count * step
    f["x"] = numbers[0::step] if not even else [f["start"] + i * f["step"] for i in range(count)]
    f["re"] = numbers[(0 if even else 1)::step]
    f["im"] = numbers[(1 if even else 2)::step] if complex_ else None
    return f


def read_file(path):
    content = {"functions": [], "nodes": {}, "traces": [], "modes": [], "units": None}
    for number, lines in datasets(open(path, encoding="latin-1").read()):
        if number == 164:
            content["units"] = (int(lines[0][:10]), [real(v) for v in fixed(lines[1], [25, 25, 25])])
        elif number == 2411:
            for k in range(0, len(lines), 2):
                label = int(lines[k][:10])
                content["nodes"][label] = [real(v) for v in fixed(lines[k + 1], [25, 25, 25])]
        elif number == 82:
            count = int(lines[0][10:20])
            nodes = [int(v) for line in lines[2:] for v in fixed(line, [10] * 8) if v.strip()]
            assert len(nodes) == count
            content["traces"].append(nodes)
        elif number == 55:
            kind = [int(v) for v in fixed(lines[5], [10] * 6)]
            reals = [real(v) for v in fixed(lines[7], [13] * 4)]
            shape = {}
            for k in range(8, len(lines), 2):
                shape[int(lines[k][:10])] = [real(v) for v in fixed(lines[k + 1], [13] * 6) if v.strip()]
            content["modes"].append({"name": lines[0], "kind": kind, "frequency": reals[0], "damping": reals[2],
                                     "shape": shape})
        elif number == 58:
            content["functions"].append(read_function(lines))
    return content


SOURCE = """    -1
    15
         3         0         0         1  1.00000E+00  2.00000E+00  3.00000E+00
         4         0         0         1 -1.00000E+00  0.00000E+00  5.00000E-01
    -1
    -1
    82
         1         2         1
NONE
         3         4
    -1
    -1
    55
Bending
NONE
NONE
NONE
NONE
         1         2         2         8         5         3
         2         4         1         1
  3.25000E+01  0.00000E+00  1.50000E-02  0.00000E+00
         4
  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00  1.00000E+00 -2.50000E-01
    -1
    -1
    58
Drive point
NONE
NONE
NONE
NONE
    4         1    1         0 ACC              4   3 HAMMER           3   3
         5         3         0  0.00000E+00  0.00000E+00  0.00000E+00
        18    0    0    0 Frequency            Hz
        12    1    0    0 Acceleration         m/s^2
        13    0    1    0 Force                N
         0    0    0    0
  1.00000E+01  1.00000E+00 -2.00000E+00  2.00000E+01  3.00000E+00  0.00000E+00
  4.00000E+01  5.00000E-01  6.00000E+00
    -1
    -1
    58
Force
NONE
NONE
NONE
NONE
    1         1    1         0 HAMMER           3  -3 NONE             0   0
         2         5         1  2.50000E-01  1.25000E-01  0.00000E+00
        17    0    0    0 Time                 s
        13    0    1    0 Force                N
         0    0    0    0
         0    0    0    0
  1.00000E+00  2.00000E+00  3.00000E+00  4.00000E+00  5.00000E+00
    -1
"""


@pytest.fixture
def exported(tmp_path):
    source = tmp_path / "beam.uff"
    source.write_text(SOURCE)
    workspace, out = tmp_path / "beam.wkd", tmp_path / "out.uff"
    subprocess.run([TOOL, "import", str(source), str(workspace)], check=True)
    subprocess.run([TOOL, "export", str(workspace), str(out)], check=True)
    return read_file(out)


def test_functions_keep_their_fields_and_values(exported):
    frf, force = exported["functions"]
    assert (frf["name"], frf["type"], frf["response"], frf["node"]) == ("Drive point", 4, "ACC+Z", 4)
    assert (frf["x_label"], frf["x_unit"], frf["y_label"], frf["length_exponent"]) == ("Frequency", "Hz", "Acceleration", 1)
    assert frf["x"] == [10.0, 20.0, 40.0]
    assert frf["re"] == [1.0, 3.0, 0.5] and frf["im"] == [-2.0, 0.0, 6.0]
    assert (force["type"], force["response"], force["node"], force["direction"]) == (1, "HAMMER-Z", 3, -3)
    assert force["im"] is None
    assert force["x"] == pytest.approx([0.25 + 0.125 * i for i in range(5)])
    assert force["re"] == [1.0, 2.0, 3.0, 4.0, 5.0]


def test_geometry_and_modes_keep_their_nodes(exported):
    assert exported["units"] == (1, [1.0, 1.0, 1.0])
    assert exported["nodes"] == {3: [1.0, 2.0, 3.0], 4: [-1.0, 0.0, 0.5]}
    assert exported["traces"] == [[3, 4]]
    (mode,) = exported["modes"]
    assert mode["name"] == "Bending"
    assert mode["kind"][1] == 2 and mode["kind"][4] == 5
    assert (mode["frequency"], mode["damping"]) == (32.5, 0.015)
    assert mode["shape"] == {4: [0.0, 0.0, 0.0, 0.0, 1.0, -0.25]}
