"""nvdl convert through the built tool: workspace file to project file and back, a zip bundle to a
project file, the choice of a project's workspace, and failures that leave no file behind."""
import hashlib
import os
import subprocess
import zipfile

import numpy

import nvdl

BUILD = os.environ.get("NVDL_BUILD_DIR", "build")
NVDL = os.path.join(BUILD, "nvdl")


def convert(*words):
    return subprocess.run([NVDL, "convert", *map(str, words)], capture_output=True, text=True)


def digest(path):
    return hashlib.sha256(open(path, "rb").read()).hexdigest()


def workspace(name, values):
    ws = nvdl.Dispatch("nv_bench.Workspace")
    ws.Name = name
    ws.Measurements.Add(nvdl.from_numpy(values, Name=name + ".m"))
    return ws


def test_workspace_to_project_and_back(tmp_path):
    source = tmp_path / "bench.wkd"
    workspace("bench", numpy.array([1 + 4j, 2 + 5j, 3 + 6j])).Save(str(source))
    before = digest(source)

    made = convert(source, tmp_path / "bench.vpj")
    assert made.returncode == 0, made.stderr
    assert made.stdout == "project\t%s\t1\n" % (tmp_path / "bench.vpj")
    project = nvdl.open(tmp_path / "bench.vpj")
    assert len(project.Workspaces) == 1
    m = project.Workspaces[0].Measurements[0]
    assert m.Name == "bench.m"
    assert numpy.array_equal(m.to_numpy(), [1 + 4j, 2 + 5j, 3 + 6j])
    project.Close()

    back = convert(tmp_path / "bench.vpj", tmp_path / "again.wkd", "--quiet")
    assert back.returncode == 0, back.stderr
    assert back.stdout == "workspace\t%s\t1\n" % (tmp_path / "again.wkd")
    again = nvdl.open(tmp_path / "again.wkd")
    assert numpy.array_equal(again.Measurements[0].to_numpy(), [1 + 4j, 2 + 5j, 3 + 6j])
    assert digest(source) == before
    assert sorted(os.listdir(tmp_path)) == ["again.wkd", "bench.vpj", "bench.wkd"]


def test_a_workspace_of_a_project_by_number_or_name(tmp_path):
    project = nvdl.Dispatch("nv_bench.Project")
    project.Workspaces.Add(workspace("first", [1]))
    project.Workspaces.Add(workspace("second", [2, 2]))
    project.Save(str(tmp_path / "two.vpj"))
    project.Close()
    for choice, name in (("2", "second.m"), ("first", "first.m"), (None, "first.m")):
        out = tmp_path / ("%s.wkd" % choice)
        assert convert(tmp_path / "two.vpj", out, *(["--workspace", choice] if choice else [])).returncode == 0
        assert [m.Name for m in nvdl.open(out).Measurements] == [name]
    for choice in ("3", "0", "third"):
        run = convert(tmp_path / "two.vpj", tmp_path / "none.wkd", "--workspace", choice)
        assert run.returncode == 1
        assert run.stderr == "nvdl convert: %s: holds no workspace %s\n" % (tmp_path / "two.vpj", choice)
        assert not (tmp_path / "none.wkd").exists()


def test_a_bundle_becomes_a_project_with_its_recordings(tmp_path):
    recording = tmp_path / "run.trc"
    subprocess.run([os.path.join(BUILD, "nvdl_test_make_recording"), str(recording), "float", "64", "2"], check=True)
    project = nvdl.Dispatch("nv_bench.Project")
    project.Workspaces.Add(workspace("old", [0]))
    project.Save(str(tmp_path / "p.vpj"))
    project.Close()
    with zipfile.ZipFile(tmp_path / "bundle.zip", "w") as bundle:
        bundle.write(tmp_path / "p.vpj", "p.vpj")
        bundle.write(recording, "run.trc")

    run = convert(tmp_path / "bundle.zip", tmp_path / "out.vpj")
    assert run.returncode == 0, run.stderr
    converted = nvdl.open(tmp_path / "out.vpj")
    force = converted.Workspaces[0].Measurements[0]
    assert force.Response == "Force"
    # Channel 1 stores 100 + (i * 37) % 101 - 50 at sample i.
    expected = [100 + (i * 37) % 101 - 50 for i in range(128)]
    assert numpy.allclose(force.to_numpy(), expected)
    converted.Close()


def test_a_failed_conversion_leaves_no_file(tmp_path):
    source = tmp_path / "bench.wkd"
    workspace("bench", [1, 2]).Save(str(source))
    target = tmp_path / "missing-folder" / "out.vpj"
    run = convert(source, target)
    assert run.returncode == 1
    assert run.stderr.startswith("nvdl convert: %s: " % target) and run.stderr.count("\n") == 1
    assert sorted(os.listdir(tmp_path)) == ["bench.wkd"]
    same = convert(source, tmp_path / "." / "bench.wkd")
    assert same.returncode == 1 and "is the file being converted" in same.stderr
