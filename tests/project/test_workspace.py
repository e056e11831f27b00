"""A workspace file from Python: saved, listed by nvdl ls, loaded again with its items iterable and its
samples as numpy arrays; and the refusals of a file that cannot be written."""
import os
import stat
import subprocess
import sys

import numpy
import pytest

import nvdl

NVDL = os.path.join(os.environ.get("NVDL_BUILD_DIR", "build"), "nvdl")

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "platform"))
import cfb_oracle  # noqa: E402


def test_save_list_and_load(tmp_path):
    ws = nvdl.Dispatch("nv_bench.Workspace")
    ws.Name = "Bench"
    m = nvdl.Dispatch("nv_bench.measurement")
    m.YArray(numpy.arange(6, dtype=numpy.float32), 6)
    m.Name = "ramp"
    ws.Measurements.Add(m)
    mode = nvdl.Dispatch("nv_bench.mode")
    mode.Frequency = 42.0
    ws.Modes.Add(mode)
    setup = nvdl.Dispatch("nv_bench.setup")
    setup.Name = "Shaker"
    ws.Setups.Add(setup)
    path = tmp_path / "bench.wkd"
    ws.Save(str(path))
    assert ws.Name == "bench"  # after its file, once saved

    tree = subprocess.run([NVDL, "tree", str(path)], capture_output=True, text=True)
    assert tree.stdout.splitlines() == cfb_oracle.olefile_lines(path)
    assert "/Workspace/Blocks/Meas<0>\tstream" in tree.stdout

    listing = subprocess.run([NVDL, "ls", str(path)], capture_output=True, text=True)
    assert listing.returncode == 0, listing.stderr
    lines = listing.stdout.splitlines()
    assert lines[0] == "workspace\tBench"
    assert lines[1].startswith("measurement\t0\tramp\t") and "\t6\t" in lines[1]
    assert "setup\t0\tShaker" in lines

    loaded = nvdl.Dispatch("nv_bench.Workspace")
    loaded.Load(str(path))
    assert [x.Name for x in loaded.Measurements] == ["ramp"]
    assert [x.Frequency for x in loaded.Modes] == [42.0]
    assert [x.Name for x in loaded.Setups] == ["Shaker"]
    assert numpy.array_equal(loaded.Measurements[0].YRealArray, numpy.arange(6, dtype=numpy.float32))
    assert loaded.Modified == 0


def test_a_read_only_target_is_refused(tmp_path):
    path = tmp_path / "locked.wkd"
    path.write_bytes(b"old contents")
    path.chmod(stat.S_IRUSR)
    if os.access(path, os.W_OK):
        pytest.skip("running with rights that ignore file modes")
    ws = nvdl.Dispatch("nv_bench.Workspace")
    with pytest.raises(nvdl.ComError) as failure:
        ws.Save(str(path))
    assert failure.value.hresult == -13
    assert failure.value.description == "The file is not accessible in write mode."
    assert path.read_bytes() == b"old contents"
