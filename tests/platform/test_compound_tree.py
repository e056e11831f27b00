"""nvdl tree against olefile, on files written by libgsf in both sector sizes, and on files that
are not compound files or are damaged."""
import os
import subprocess
import sys

import pytest

sys.path.insert(0, os.path.dirname(__file__))
import cfb_oracle  # noqa: E402

NVDL = os.path.join(os.environ.get("NVDL_BUILD_DIR", "build"), "nvdl")


def tree(path):
    return subprocess.run([NVDL, "tree", str(path)], capture_output=True, text=True)


@pytest.mark.parametrize("sector_size", [512, 4096])
def test_tree_matches_olefile_on_libgsf_files(tmp_path, sector_size):
    path = tmp_path / "gsf.cfb"
    cfb_oracle.gsf_write(str(path), sector_size)
    result = tree(path)
    assert result.returncode == 0, result.stderr
    assert result.stderr == ""
    lines = result.stdout.splitlines()
    assert lines == cfb_oracle.olefile_lines(path)
    assert "/Workspace/Blocks/Meas4\tstream\t200003\t-" in lines


def test_unreadable_files_give_a_one_line_error(tmp_path):
    text = tmp_path / "notes.txt"
    text.write_text("plain text, not a storage\n" * 50)
    good = tmp_path / "gsf.cfb"
    cfb_oracle.gsf_write(str(good), 512)
    data = good.read_bytes()
    # The first directory sector past the end of the file; a file cut in the middle.
    damaged = tmp_path / "damaged.cfb"
    damaged.write_bytes(data[:48] + (0x00FFFFFF).to_bytes(4, "little") + data[52:])
    cut = tmp_path / "cut.cfb"
    cut.write_bytes(data[: len(data) // 2])
    for path, message in [(text, "not a compound file"), (tmp_path / "missing.wkd", ""),
                          (damaged, "damaged"), (cut, "")]:
        result = tree(path)
        assert (result.returncode, result.stdout) == (1, ""), path
        assert len(result.stderr.splitlines()) == 1 and message in result.stderr, result.stderr
