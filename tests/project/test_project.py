"""A project file from Python: built, saved, listed by nvdl ls and nvdl tree (olefile sees the same
tree), loaded again; and zip bundles, with the archives that are refused."""
import os
import subprocess
import sys
import zipfile

import numpy
import pytest

import nvdl

NVDL = os.path.join(os.environ.get("NVDL_BUILD_DIR", "build"), "nvdl")

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "platform"))
import cfb_oracle  # noqa: E402


def make_project(path):
    p = nvdl.Dispatch("nv_bench.Project")
    for name in ("Left", "Right"):
        ws = nvdl.Dispatch("nv_bench.Workspace")
        ws.Name = name
        m = nvdl.Dispatch("nv_bench.measurement")
        m.YArray(numpy.arange(8, dtype=numpy.float32), 8)
        m.Name = "acc " + name
        ws.Measurements.Add(m)
        p.Workspaces.Add(ws)
    layout = nvdl.Dispatch("nv_bench.Layout")
    layout.Name = "Overview"
    p.Layouts.Add(layout)
    setup = nvdl.Dispatch("nv_bench.setup")
    setup.Name = "Hammer"
    p.Setups.Add(setup)
    p.Save(str(path))
    p.Close()
    return p


def test_save_list_tree_and_load(tmp_path):
    path = tmp_path / "bench.vpj"
    make_project(path)

    tree = subprocess.run([NVDL, "tree", str(path)], capture_output=True, text=True)
    assert tree.returncode == 0, tree.stderr
    assert tree.stdout.splitlines() == cfb_oracle.olefile_lines(path)
    assert "/Data/File 2/Workspace/Blocks/Meas<0>\tstream" in tree.stdout

    listing = subprocess.run([NVDL, "ls", str(path)], capture_output=True, text=True)
    assert listing.returncode == 0, listing.stderr
    lines = listing.stdout.splitlines()
    assert lines[0] == "project\t" + str(path)
    assert "  workspace\tRight" in lines
    assert any(line.startswith("  measurement\t0\tacc Left\t") for line in lines)
    assert "layout\t0\tOverview" in lines and "setup\t0\tHammer" in lines

    p = nvdl.Dispatch("nv_bench.Project")
    p.Load(str(path))
    assert [w.Name for w in p.Workspaces] == ["Left", "Right"]
    right = [w for w in p.Workspaces][1]
    assert list([m for m in right.Measurements][0].YRealArray) == list(range(8))
    p.Close()


def write_zip(path, entries):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as z:
        for name, data in entries:
            z.writestr(name, data)


def test_zip_bundles(tmp_path, monkeypatch):
    unpack = tmp_path / "unpack"
    unpack.mkdir()
    monkeypatch.setenv("TMPDIR", str(unpack))
    settings = tmp_path / "registry.txt"
    settings.write_text('[HKEY_CURRENT_USER\\Software\\norvane instruments\\Sonvara\\CurrentVersion\\Settings]\n'
                        '"ZipExtractLimitMB"="1"\n')
    monkeypatch.setenv("NVDL_REGISTRY", str(settings))
    vpj = tmp_path / "inner.vpj"
    make_project(vpj)
    before = set(os.listdir(tmp_path))

    bundle = tmp_path / "bundle.zip"
    write_zip(bundle, [("inner.VPJ", vpj.read_bytes()), ("notes.txt", b"hello")])
    p = nvdl.Dispatch("nv_bench.Project")
    p.Load(str(bundle))  # the recordings (none here) take the workspaces' place
    assert p.Workspaces.Count == 0
    assert [s.Name for s in p.Setups] == ["Hammer"]
    p.Close()

    refused = [
        ([("notes.txt", b"no project")], "no project file"),
        ([("../x", b"up")], "../x"),
        ([("/etc/x", b"root")], "/etc/x"),
        ([("C:\\x", b"drive")], "C:\\x"),
        ([("inner.vpj", vpj.read_bytes()), ("zeros.trc", b"\0" * (8 << 20))], "zip bomb"),
    ]
    for entries, said in refused:
        write_zip(bundle, entries)
        p = nvdl.Dispatch("nv_bench.Project")
        with pytest.raises(Exception) as failure:
            p.Load(str(bundle))
        assert said in str(failure.value)
        assert p.Workspaces.Count == 0
        assert os.listdir(unpack) == []  # nothing left behind, nothing written elsewhere
    assert set(os.listdir(tmp_path)) == before | {"bundle.zip"}
