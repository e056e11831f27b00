"""Recordings from Python: a recording opens into a workspace, its channels give physical values,
a long channel gives a min/max picture with its compression factor, spans are paged in raw, and a
zip bundle's recordings become the project's workspaces."""
import math
import os
import subprocess
import zipfile

import numpy
import pytest

import nvdl

BUILD = os.environ.get("NVDL_BUILD_DIR", "build")
SETTINGS_KEY = "HKEY_CURRENT_USER\\Software\\norvane instruments\\Sonvara\\CurrentVersion\\Settings"


def make_recording(path, kind, block, scans):
    subprocess.run([os.path.join(BUILD, "nvdl_test_make_recording"), str(path), kind, str(block), str(scans)],
                   check=True)


def stored(number, count):
    """The values the recording holds for channel `number`, as make_recording writes them."""
    i = numpy.arange(count, dtype=numpy.int64)
    return (number * 100 + (i * 37) % 101 - 50).astype(numpy.float64)


@pytest.fixture
def settings(tmp_path, monkeypatch):
    def write(**values):
        path = tmp_path / "registry.txt"
        lines = ["[" + SETTINGS_KEY + "]"] + ['"%s"="%s"' % item for item in values.items()]
        path.write_text("\n".join(lines) + "\n")
        monkeypatch.setenv("NVDL_REGISTRY", str(path))
    write()
    return write


@pytest.mark.parametrize("kind", ["float", "int16"])
def test_channels_in_physical_units(tmp_path, settings, kind):
    run = tmp_path / "run.trc"
    make_recording(run, kind, 64, 4)
    ws = nvdl.Dispatch("nv_bench.Workspace")
    ws.Load(str(run))
    channels = [m for m in ws.Measurements]
    assert [m.Response for m in channels] == ["Force", "Accel", "Tacho 1"]  # the stored one not asked for
    assert ws.Setups.Count == 1
    assert [m.ChannelFileID for m in channels] == ["nv_bench.io_newtrc:Recorder(Input):0",
                                                   "nv_bench.io_newtrc:Recorder(Input):2",
                                                   "nv_bench.io_newtrc:Recorder(Rpm):0"]
    assert all("(%s,%s)" % (m.Response, m.Response) in m.Name for m in channels)
    # Volts to units: 16-bit samples are full-scale counts of the range; "Accel" has 100 mV per
    # unit; the tacho's range is twice its end rpm, its values rotation speed in rad/s.
    full_scale = {"float": lambda r: 1.0, "int16": lambda r: r / 32767.0}[kind]
    scales = [full_scale(5.0), full_scale(2.0) * 10.0, full_scale(6000.0) * 2 * math.pi / 60]
    for m, number, scale in zip(channels, (1, 3, 4), scales):
        values = numpy.asarray(m.YRealArray, dtype=numpy.float64)
        numpy.testing.assert_allclose(values, stored(number, 256) * scale, rtol=1e-5)
        assert m.CompressionFactor == 1.0 and m.XIncrement == pytest.approx(1e-3)


def test_long_channel_gives_reduced_picture_and_raw_spans(tmp_path, settings):
    settings(LongFileFeature="1", MaxBlockSize="256")
    run = tmp_path / "long.trc"
    make_recording(run, "float", 512, 40)  # 20480 samples: 128 steps of 160
    ws = nvdl.Dispatch("nv_bench.Workspace")
    ws.Load(str(run))
    force = [m for m in ws.Measurements][0]
    assert force.FileSamples == 20480 and force.Size == 256
    assert force.CompressionFactor == pytest.approx(80.0)
    steps = stored(1, 20480).reshape(128, 160)
    expected = numpy.column_stack([steps.min(axis=1), steps.max(axis=1)]).ravel()
    numpy.testing.assert_array_equal(numpy.asarray(force.YRealArray), expected)

    force.ReadData(1000, 200)  # fits a block: the samples themselves
    assert force.CompressionFactor == 1.0
    section = numpy.asarray(force.YRealSectionArray(200, 200))
    numpy.testing.assert_array_equal(section, stored(1, 1200)[1000:])


def test_zip_bundle_recordings_become_workspaces(tmp_path, settings, monkeypatch):
    unpack = tmp_path / "unpack"
    unpack.mkdir()
    monkeypatch.setenv("TMPDIR", str(unpack))
    vpj = tmp_path / "inner.vpj"
    p = nvdl.Dispatch("nv_bench.Project")
    setup = nvdl.Dispatch("nv_bench.setup")
    setup.Name = "Hammer"
    p.Setups.Add(setup)
    p.Save(str(vpj))
    p.Close()
    run = tmp_path / "run.trc"
    make_recording(run, "int16", 64, 2)
    bundle = tmp_path / "bundle.zip"
    with zipfile.ZipFile(bundle, "w", zipfile.ZIP_DEFLATED) as z:
        z.writestr("inner.vpj", vpj.read_bytes())
        z.writestr("runs/run.TRC", run.read_bytes())

    p = nvdl.Dispatch("nv_bench.Project")
    p.Load(str(bundle))
    workspaces = [w for w in p.Workspaces]
    assert len(workspaces) == 1
    # The import of a bundle takes every section: the channels and the stored measurement.
    names = [m.Name for m in workspaces[0].Measurements]
    assert len(names) == 4 and names[-1] == "Stored"
    accel = [m for m in workspaces[0].Measurements][1]
    numpy.testing.assert_allclose(numpy.asarray(accel.YRealArray), stored(3, 128) * 2.0 / 32767.0 * 10.0, rtol=1e-5)
    p.Close()
