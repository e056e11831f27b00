"""A setup saved from Python: the storage tree that nvdl tree prints is the one olefile reads, it
holds the sections of a filled setup, and the file loads back into equal values."""
import os
import subprocess
import sys

import nvdl

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "platform"))
import cfb_oracle  # noqa: E402

NVDL = os.path.join(os.environ.get("NVDL_BUILD_DIR", "build"), "nvdl")


def filled_setup():
    setup = nvdl.Dispatch("nv_bench.setup")
    setup.Name = "Modal run"
    setup.Acquisition.SampleFrequency = 25600.4
    setup.Rpm.Orders = "1;2"
    setup.SinRed.Harmonics = "3"
    for name in ("Force", "Acc 1", "Acc 1"):
        channel = nvdl.Dispatch("nv_bench.input")
        channel.Name = name
        setup.InputChannels.Add(channel)
    transducer = nvdl.Dispatch("nv_bench.transducer")
    transducer.SerialNumber = "T-7"
    setup.Transducers.Add(transducer)
    function = nvdl.Dispatch("nv_bench.savefunction")
    function.Name = "Autopower"
    setup.Saving.MeasFunctions.Add(function)
    return setup


def test_saved_tree_agrees_with_olefile_and_loads_back(tmp_path):
    path = tmp_path / "modal.setup"
    filled_setup().Save(str(path))
    result = subprocess.run([NVDL, "tree", str(path)], capture_output=True, text=True)
    assert result.returncode == 0, result.stderr
    lines = result.stdout.splitlines()
    assert lines == cfb_oracle.olefile_lines(path)
    paths = {line.split("\t")[0] for line in lines}
    assert {"/Setup(1)", "/InputSection/InputChannel(3)", "/TransducerSection/Transducer(1)",
            "/SinRedSection/Rpm(1)", "/SavingSection/Saving(1)"} <= paths
    assert not any(p.startswith(("/StrainSection", "/SourceSection", "/ParameterSection")) for p in paths)

    loaded = nvdl.Dispatch("nv_bench.setup")
    loaded.Load(str(path))
    assert (loaded.Name, loaded.Acquisition.SampleFrequency, loaded.Rpm.Orders) == ("Modal run", 25600.0, "1;2")
    assert [c.Name for c in loaded.InputChannels] == ["Force", "Acc 1", "Acc 1"]  # channel names may repeat
    assert loaded.Saving.MeasFunctions[0].Name == "Autopower"
    assert loaded.Modified == 0
