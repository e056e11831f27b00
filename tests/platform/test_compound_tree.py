"""nvdl tree against olefile, on files written by libgsf in both sector sizes, and on files that
are not compound files or are damaged."""
import os
import subprocess
import sys

import olefile
import pytest

sys.path.insert(0, os.path.dirname(__file__))
import cfb_oracle  # noqa: E402

NVDL = os.path.join(os.environ.get("NVDL_BUILD_DIR", "build"), "nvdl")


def tree(path):
    return subprocess.run([NVDL, "tree", str(path)], capture_output=True, text=True)


def storage_order(name):
    # Shorter names first, then by upper-cased UTF-16 units (ASCII names here).
    return (len(name.encode("utf-16-le")), name.upper().encode("utf-16-be"))


def olefile_lines(path):
    """The tree as olefile sees it, printed the way nvdl tree prints it."""
    ole = olefile.OleFileIO(str(path))
    null = "00000000-0000-0000-0000-000000000000"
    lines = ["/\tstorage\t0\t{%s}" % (ole.root.clsid or null)]

    def walk(entry, prefix):
        for kid in sorted(entry.kids, key=lambda k: storage_order(k.name)):
            path_text = prefix + "/" + kid.name
            if kid.entry_type == olefile.STGTY_STORAGE:
                lines.append("%s\tstorage\t0\t{%s}" % (path_text, kid.clsid or null))
                walk(kid, path_text)
            else:
                lines.append("%s\tstream\t%d\t-" % (path_text, kid.size))

    walk(ole.root, "")
    ole.close()
    return lines


@pytest.mark.parametrize("sector_size", [512, 4096])
def test_tree_matches_olefile_on_libgsf_files(tmp_path, sector_size):
    path = tmp_path / "gsf.cfb"
    cfb_oracle.gsf_write(str(path), sector_size)
    result = tree(path)
    assert result.returncode == 0, result.stderr
    assert result.stderr == ""
    lines = result.stdout.splitlines()
    assert lines == olefile_lines(path)
    assert "/Workspace/Blocks/Meas4\tstream\t200003\t-" in lines
    assert "/Workspace\tstorage\t0\t{5B44CB71-F17B-4140-9D50-EC6F33B896B8}" in lines


def one_line_error(result):
    assert result.returncode == 1
    assert result.stdout == ""
    assert len(result.stderr.splitlines()) == 1


def test_not_a_compound_file(tmp_path):
    text = tmp_path / "notes.txt"
    text.write_text("plain text, not a storage\n" * 50)
    result = tree(text)
    one_line_error(result)
    assert "not a compound file" in result.stderr
    one_line_error(tree(tmp_path / "missing.wkd"))


def test_damaged_compound_file(tmp_path):
    path = tmp_path / "gsf.cfb"
    cfb_oracle.gsf_write(str(path), 512)
    data = bytearray(path.read_bytes())
    # Point the first directory sector past the end of the file.
    data[48:52] = (0x00FFFFFF).to_bytes(4, "little")
    damaged = tmp_path / "damaged.cfb"
    damaged.write_bytes(bytes(data))
    result = tree(damaged)
    one_line_error(result)
    assert "damaged" in result.stderr
    # Cut in the middle.
    cut = tmp_path / "cut.cfb"
    cut.write_bytes(path.read_bytes()[: len(data) // 2])
    one_line_error(tree(cut))
