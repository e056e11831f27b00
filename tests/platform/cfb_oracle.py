#!/usr/bin/python3
"""Independent readers and writers of compound files for the storage-layer tests.

  cfb_oracle.py gsf-write FILE SECTOR_SIZE   write the reference tree with libgsf, print its manifest
  cfb_oracle.py olefile-check FILE MANIFEST  check FILE with olefile against a manifest

A manifest has one line per element below the root, tab-separated: path (names joined by '/'),
'storage' or 'stream', size, and the class identifier (storages) or '-'. The first line describes
the root ('/'). Stream contents follow content(path, size), the same rule as the C++ tests.
"""
import sys
import uuid


def content(path, size):
    seed = sum(path.encode("utf-8")) % 251
    return bytes((seed + i * 131 + (i >> 8)) & 0xFF for i in range(size))


def clsid_bytes(text):
    return uuid.UUID(text.strip("{}")).bytes_le


# The reference tree written with libgsf: (path, kind, size or class identifier).
GSF_TREE = [
    ("/", "storage", "{11111111-2222-3333-4455-66778899AABB}"),
    ("Version", "storage", "{00000000-0000-0000-0000-000000000000}"),
    ("Version/Version", "stream", 9),
    ("Workspace", "storage", "{5B44CB71-F17B-4140-9D50-EC6F33B896B8}"),
    ("Workspace/Blocks", "storage", "{00000000-0000-0000-0000-000000000000}"),
    ("Workspace/Blocks/Meas0", "stream", 0),
    ("Workspace/Blocks/Meas1", "stream", 63),
    ("Workspace/Blocks/Meas2", "stream", 4095),
    ("Workspace/Blocks/Meas3", "stream", 4096),
    ("Workspace/Blocks/Meas4", "stream", 200003),
    ("Workspace/Blocks/m5", "stream", 64),
    ("Workspace/WorkspaceName", "stream", 12),
    ("Workspace/Empty", "storage", "{01020304-0506-0708-090A-0B0C0D0E0F10}"),
    ("a", "stream", 1),
    ("Zeta Stream Name Of 31 Chars.xy", "stream", 5000),
]


def gsf_write(path, sector_size):
    """Writes the reference tree to path; returns its manifest lines."""
    import gi
    gi.require_version("Gsf", "1")
    from gi.repository import Gsf

    sink = Gsf.OutputStdio.new(path)
    root = Gsf.OutfileMSOle.new_full(sink, sector_size, 64)
    outputs = {"": root}
    manifest = []
    for elem_path, kind, value in GSF_TREE:
        if elem_path == "/":
            root.set_class_id(clsid_bytes(value))
            manifest.append(f"/\tstorage\t0\t{value}")
            continue
        parent, _, name = elem_path.rpartition("/")
        if kind == "storage":
            child = outputs[parent].new_child(name, True)
            child.set_class_id(clsid_bytes(value))
            outputs[elem_path] = child
            manifest.append(f"{elem_path}\tstorage\t0\t{value}")
        else:
            child = outputs[parent].new_child(name, False)
            data = content(elem_path, value)
            if data:
                child.write(data)
            child.close()
            manifest.append(f"{elem_path}\tstream\t{value}\t-")
    # Storages close children first.
    for elem_path in sorted((p for p in outputs if p), key=lambda p: -p.count("/")):
        outputs[elem_path].close()
    root.close()
    return manifest


def olefile_check(path, manifest_path):
    import olefile

    errors = []
    ole = olefile.OleFileIO(path, raise_defects=olefile.DEFECT_INCORRECT)
    expected = {}
    with open(manifest_path, encoding="utf-8") as f:
        for line in f:
            elem_path, kind, size, clsid = line.rstrip("\n").split("\t")
            expected[elem_path] = (kind, int(size), clsid)
    root_kind, _, root_clsid = expected.pop("/")
    if ("{" + ole.root.clsid + "}" if ole.root.clsid else "{00000000-0000-0000-0000-000000000000}") != root_clsid:
        errors.append(f"root class {ole.root.clsid} != {root_clsid}")
    found = {}
    for parts in ole.listdir(streams=True, storages=True):
        elem_path = "/".join(parts)
        if ole.get_type(parts) == olefile.STGTY_STORAGE:
            clsid = ole.getclsid(parts) or "00000000-0000-0000-0000-000000000000"
            found[elem_path] = ("storage", 0, "{" + clsid + "}")
        else:
            found[elem_path] = ("stream", ole.get_size(parts), "-")
    if found != expected:
        for key in sorted(set(found) | set(expected)):
            if found.get(key) != expected.get(key):
                errors.append(f"{key}: olefile {found.get(key)} != expected {expected.get(key)}")
    # Contents: streams up to 64 MiB are compared whole; larger ones are not read by olefile.
    for elem_path, (kind, size, _) in expected.items():
        if kind == "stream" and size <= (64 << 20) and elem_path in found:
            data = ole.openstream(elem_path.split("/")).read()
            if data != content(elem_path, size):
                errors.append(f"{elem_path}: content differs")
    ole.close()
    for e in errors:
        print(e)
    return 1 if errors else 0


def main(argv):
    if len(argv) == 4 and argv[1] == "gsf-write":
        print("\n".join(gsf_write(argv[2], int(argv[3]))))
        return 0
    if len(argv) == 4 and argv[1] == "olefile-check":
        return olefile_check(argv[2], argv[3])
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv))
