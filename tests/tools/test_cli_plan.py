"""nvdl plan through the built program: the lines it prints, the wisdom file it keeps, and its
failures (a usage mistake, a cache it cannot write)."""

import os
import subprocess

NVDL = os.path.join(os.environ.get("NVDL_BUILD_DIR", "build"), "nvdl")


def plan(cache, *lengths):
    env = dict(os.environ, XDG_CACHE_HOME=str(cache))
    env.pop("NVDL_FFT_WISDOM", None)
    return subprocess.run([NVDL, "plan", *lengths], env=env, capture_output=True, text=True)


def test_measures_then_knows(tmp_path):
    first = plan(tmp_path, "64", "96")
    assert first.returncode == 0, first.stderr
    rows = [line.split("\t") for line in first.stdout.splitlines()]
    assert [r[:2] for r in rows[:2]] == [["64", "measured"], ["96", "measured"]]
    assert rows[2][0] == "wisdom" and os.path.getsize(rows[2][1]) > 0
    again = plan(tmp_path, "64")
    assert again.returncode == 0 and again.stdout.split("\t")[1] == "known"


def test_failures_are_one_line(tmp_path):
    for lengths, status in ((["0"], 2), (["64k"], 2), ([], 2)):
        result = plan(tmp_path, *lengths)
        assert result.returncode == status and result.stdout == ""
        assert "usage: nvdl plan SIZE..." in result.stderr
    blocked = tmp_path / "file"
    blocked.write_text("not a folder")
    result = plan(blocked, "128")
    assert result.returncode == 1
    assert result.stderr.count("\n") == 1 and result.stderr.startswith("nvdl plan: ")
    assert "cannot write the wisdom file" in result.stderr
