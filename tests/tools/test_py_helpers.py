"""The Python helpers: nvdl.open by the file's class, measurement values and abscissa as numpy arrays,
and the README's example analysis run on a recording of a known structure."""
import os
import re
import subprocess
import sys
import textwrap
import zipfile

import numpy
import pytest

import nvdl

BUILD = os.environ.get("NVDL_BUILD_DIR", "build")
README = os.path.join(os.environ.get("NVDL_SOURCE_DIR", "."), "README.md")


def measurement(name, values):
    return nvdl.from_numpy(values, Name=name)


def make_recording(path):
    subprocess.run([os.path.join(BUILD, "nvdl_test_make_recording"), str(path), "float", "64", "2"], check=True)


def test_open_chooses_by_the_files_class(tmp_path):
    ws = nvdl.Dispatch("nv_bench.Workspace")
    ws.Measurements.Add(measurement("ramp", range(4)))
    ws.Save(str(tmp_path / "bench.wkd"))
    project = nvdl.Dispatch("nv_bench.Project")
    project.Workspaces.Add(ws.Clone())
    project.Save(str(tmp_path / "misnamed.wkd"))  # a project file whatever its name says
    make_recording(tmp_path / "run.trc")
    with zipfile.ZipFile(tmp_path / "bundle.zip", "w") as bundle:
        bundle.write(tmp_path / "misnamed.wkd", "p.vpj")
        bundle.write(tmp_path / "run.trc", "run.trc")

    opened = nvdl.open(tmp_path / "bench.wkd")
    assert [m.Name for m in opened.Measurements] == ["ramp"]
    assert not hasattr(opened, "Workspaces")
    assert len(nvdl.open(str(tmp_path / "misnamed.wkd")).Workspaces) == 1
    recording = nvdl.open(tmp_path / "run.trc")
    assert [m.Response for m in recording.Measurements][:2] == ["Force", "Accel"]
    project = nvdl.open(tmp_path / "bundle.zip")
    assert [m.Response for m in project.Workspaces[0].Measurements][:2] == ["Force", "Accel"]
    project.Close()
    with pytest.raises(FileNotFoundError):
        nvdl.open(tmp_path / "missing.wkd")


def test_values_and_abscissa_as_arrays():
    real = measurement("real", [1.5, -2, 3])
    real.XStart = 2.0
    real.XIncrement = 0.5
    assert real.to_numpy().dtype.kind == "f"
    assert numpy.array_equal(nvdl.to_numpy(real), [1.5, -2, 3])
    assert numpy.allclose(real.x_numpy(), [2.0, 2.5, 3.0])

    cplx = measurement("complex", numpy.array([1 + 3j, 2 - 4j]))
    assert numpy.array_equal(cplx.to_numpy(), numpy.array([1 + 3j, 2 - 4j]))
    cplx.XArray = numpy.array([10, 15], dtype=numpy.float32)  # an uneven axis
    assert numpy.array_equal(nvdl.x_numpy(cplx), [10, 15])


def test_the_readme_example_finds_the_modes(tmp_path):
    text = open(README, encoding="utf-8").read()
    section = text.split("## Python helpers", 1)[1]
    block = re.search(r"\n\n((?:    .*\n|\n)+)", section).group(1)
    script = tmp_path / "peaks.py"
    script.write_text(textwrap.dedent(block))
    recording = tmp_path / "modal.trc"
    subprocess.run([os.path.join(BUILD, "nvdl_test_modal_recording"), str(recording)], check=True)
    run = subprocess.run([sys.executable, str(script), str(recording)], capture_output=True, text=True,
                         timeout=120)
    assert run.returncode == 0, run.stderr
    lines = run.stdout.splitlines()
    assert [line.split()[0] for line in lines] == ["Acc1", "Acc2", "Acc3"]
    for line in lines:
        peaks = [float(f) for f in re.findall(r"([\d.]+) Hz", line)]
        coherence = [float(c) for c in re.findall(r"coherence ([\d.]+)", line)]
        for mode in (45.0, 125.0):
            assert any(abs(p - mode) <= 0.01 * mode for p in peaks), line
        assert len(peaks) == 2, line
        assert min(coherence) > 0.8, line
