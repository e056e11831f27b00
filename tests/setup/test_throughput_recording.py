"""The throughput section's recording members, late-bound. ReadScan and ReadRPMScan fill arrays of
the caller's and have no late-bound form."""
import pytest

import nvdl


def test_refusals_and_size_texts(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    throughput, setup = nvdl.Dispatch("nv_bench.throughput"), nvdl.Dispatch("nv_bench.setup")
    for call in (lambda: throughput.Open(str(tmp_path / "missing.trc")), lambda: throughput.IsOpened,
                 lambda: throughput.ThroughputSetup, lambda: throughput.Cut("", "out.trc", 0.0, 1.0),
                 lambda: throughput.ReadMeasurement(str(tmp_path / "missing.trc"), 1),
                 lambda: throughput.EstimatedFileSize(setup, 0), lambda: throughput.FreeDiskSize("/no/such/x")):
        with pytest.raises(nvdl.ComError) as failed:
            call()
        assert failed.value.hresult == 0x80004005  # E_FAIL
    assert throughput.Close() == -1
    assert throughput.EstimatedFileSize(setup, 2).endswith(" KB")
    assert not (tmp_path / "dummy.trc").exists()
    assert throughput.FreeDiskSize(str(tmp_path / "x.trc"))[-3:] in (" KB", " MB", " GB")
