"""nvdl plot through the built program: PNG pictures that decode with their size and show the
measurements' colours, SVG documents that parse, files of every kind the tool reads (workspace,
project, recording), and the one-line failures."""
import os
import subprocess
import xml.etree.ElementTree as ElementTree

import numpy
import pytest
from PIL import Image

import nvdl

BUILD = os.environ.get("NVDL_BUILD_DIR", "build")
NVDL = os.path.join(BUILD, "nvdl")
SETTINGS_KEY = "HKEY_CURRENT_USER\\Software\\norvane instruments\\Sonvara\\CurrentVersion\\Settings"
RATE = 1024.0


def measurement(name, function, values, dx=1.0, x="Hz", y=None):
    m = nvdl.from_numpy(values, Name=name, FunctionType=function, XIncrement=dx, XDimension=x)
    if y:
        m.YDimension = y
    return m


def frf(name, mode_hz):
    f = numpy.arange(512.0)
    h = 1.0 / (mode_hz**2 - f**2 + 2j * 0.02 * mode_hz * f)
    return measurement(name, "FRF", h, y="m/s²/N")


def bench_workspace():
    """0, 1: FRFs; 2: coherence; 3: time record; 4: third-octave bands of an autopower."""
    ws = nvdl.Dispatch("nv_bench.Workspace")
    f = numpy.arange(512.0)
    t = numpy.arange(2048) / RATE
    autopower = measurement("Apower", "Autopower", 1.0 / (1.0 + (f / 100.0) ** 2))
    for m in (frf("H1 a", 80.0), frf("H1 b", 200.0),
              measurement("Coh", "Coherence", 0.9 + 0.1 * numpy.cos(f / 40.0)),
              measurement("Accel", "Time record", numpy.sin(2 * numpy.pi * 12 * t), dx=1.0 / RATE, x="s"),
              autopower.Octave(3)):
        ws.Measurements.Add(m)
    return ws


@pytest.fixture
def workspace_file(tmp_path):
    path = tmp_path / "bench.wkd"
    bench_workspace().Save(str(path))
    return path


def plot(*args):
    return subprocess.run([NVDL, "plot", *map(str, args)], capture_output=True, text=True)


def pixels(path):
    return numpy.asarray(Image.open(path).convert("RGB")).reshape(-1, 3)


def share(picture, hue):
    """The share of pixels in the first measurement's blue or the second's red (blended edges
    included; the grid is grey and the text black)."""
    r, g, b = (picture[:, k].astype(int) for k in range(3))
    return float(numpy.mean((b - r > 60) & (b > g) if hue == "blue" else (r - g > 80) & (r - b > 80)))


@pytest.mark.parametrize("index", [0, 2, 3, 4])
def test_each_kind_of_measurement_gives_a_png_of_the_asked_size(tmp_path, workspace_file, index):
    out = tmp_path / "picture.png"
    run = plot(workspace_file, out, "--measurement", index, "--width", 640, "--height", 420)
    assert run.returncode == 0, run.stderr
    with Image.open(out) as image:
        assert image.format == "PNG" and image.size == (640, 420)
    picture = pixels(out)
    assert len(numpy.unique(picture, axis=0)) > 8  # text, grid and trace, not a blank page
    assert share(picture, "blue") > 0.001


def test_measurements_overlay_in_their_own_colours(tmp_path, workspace_file):
    one = tmp_path / "one.png"
    assert plot(workspace_file, one, "--measurement", "H1 a").returncode == 0
    assert share(pixels(one), "red") == 0
    both = tmp_path / "both.png"
    run = plot(workspace_file, both, "--measurement", 0, "--measurement", "H1 b")
    assert run.returncode == 0, run.stderr
    assert share(pixels(both), "blue") > 0.001 and share(pixels(both), "red") > 0.001
    # Without a choice the measurements drawn like the first one come in: both FRFs.
    default = tmp_path / "default.png"
    assert plot(workspace_file, default).returncode == 0
    assert share(pixels(default), "red") > 0.001


def test_svg_parses_with_the_asked_size(tmp_path, workspace_file):
    out = tmp_path / "picture.SVG"
    run = plot(workspace_file, out, "--width", 500, "--height", 300, "--title", "Bench FRF", "--linear-frequency")
    assert run.returncode == 0, run.stderr
    root = ElementTree.parse(out).getroot()
    assert root.tag.endswith("svg")
    assert float(root.get("width").removesuffix("pt")) == 500
    assert float(root.get("height").removesuffix("pt")) == 300


def test_workspace_of_a_project(tmp_path):
    project = nvdl.Dispatch("nv_bench.Project")
    empty = nvdl.Dispatch("nv_bench.Workspace")
    empty.Name = "Empty"
    project.Workspaces.Add(empty)
    project.Workspaces.Add(bench_workspace())
    path = tmp_path / "bench.vpj"
    project.Save(str(path))
    project.Close()
    out = tmp_path / "frf.png"
    run = plot(path, out, "--workspace", 1, "--measurement", 1)
    assert run.returncode == 0, run.stderr
    assert share(pixels(out), "blue") > 0.001
    run = plot(path, out, "--workspace", 0)
    assert run.returncode == 1 and run.stderr == "nvdl plot: %s: the file holds no measurements\n" % path


def test_long_recording_channel_is_drawn_as_its_overview(tmp_path, monkeypatch):
    registry = tmp_path / "registry.txt"
    registry.write_text('[%s]\n"LongFileFeature"="1"\n"MaxBlockSize"="256"\n' % SETTINGS_KEY)
    monkeypatch.setenv("NVDL_REGISTRY", str(registry))
    run = tmp_path / "long.trc"
    subprocess.run([os.path.join(BUILD, "nvdl_test_make_recording"), str(run), "float", "512", "40"], check=True)
    out = tmp_path / "overview.png"
    result = plot(run, out, "--measurement", 0)
    assert result.returncode == 0, result.stderr
    # The recorded values sweep their whole range in every chunk: the envelope fills the panel.
    assert share(pixels(out), "blue") > 0.3


@pytest.mark.parametrize("case", ["damaged", "missing", "extension", "measurement", "width"])
def test_failures_are_one_line(tmp_path, workspace_file, case):
    damaged = tmp_path / "damaged.wkd"
    damaged.write_bytes(b"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1" + bytes(600))
    out = tmp_path / "out.png"
    args, expected = {
        "damaged": ([damaged, out], "nvdl plot: %s: " % damaged),
        "missing": ([tmp_path / "none.wkd", out], "nvdl plot: %s: " % (tmp_path / "none.wkd")),
        "extension": ([workspace_file, tmp_path / "out.gif"], "nvdl plot: %s: the picture's file name must end in .png or .svg" % (tmp_path / "out.gif")),
        "measurement": ([workspace_file, out, "--measurement", 9], "nvdl plot: %s: no measurement 9" % workspace_file),
        "width": ([workspace_file, out, "--width", 10], "nvdl plot: %s: width and height must be from 64 to 16384" % out),
    }[case]
    run = plot(*args)
    assert run.returncode == 1
    assert run.stderr.count("\n") == 1 and run.stderr.startswith(expected), run.stderr
    assert not out.exists() and not (tmp_path / "out.gif").exists()
