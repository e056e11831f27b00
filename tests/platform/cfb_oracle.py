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


NULL_CLSID = "{00000000-0000-0000-0000-000000000000}"

# The reference tree written with libgsf: (path, kind, size or class identifier).
GSF_TREE = [
    ("/", "storage", "{11111111-2222-3333-4455-66778899AABB}"),
    ("Version", "storage", NULL_CLSID),
    ("Version/Version", "stream", 9),
    ("Workspace", "storage", "{5B44CB71-F17B-4140-9D50-EC6F33B896B8}"),
    ("Workspace/Blocks", "storage", NULL_CLSID),
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
        parent, _, name = elem_path.rpartition("/")
        if elem_path == "/":
            root.set_class_id(clsid_bytes(value))
        elif kind == "storage":
            outputs[elem_path] = outputs[parent].new_child(name, True)
            outputs[elem_path].set_class_id(clsid_bytes(value))
        else:
            child = outputs[parent].new_child(name, False)
            if value:
                child.write(content(elem_path, value))
            child.close()
        size, clsid = (0, value) if kind == "storage" else (value, "-")
        manifest.append(f"{elem_path}\t{kind}\t{size}\t{clsid}")
    # Storages close children first.
    for elem_path in sorted((p for p in outputs if p), key=lambda p: -p.count("/")):
        outputs[elem_path].close()
    root.close()
    return manifest


def olefile_check(path, manifest_path):
    import olefile

    with open(manifest_path, encoding="utf-8") as f:
        rows = (line.rstrip("\n").split("\t") for line in f)
        expected = {elem_path: (kind, int(size), clsid) for elem_path, kind, size, clsid in rows}
    ole = olefile.OleFileIO(path, raise_defects=olefile.DEFECT_INCORRECT)
    found = {"/": ("storage", 0, "{" + ole.root.clsid + "}" if ole.root.clsid else NULL_CLSID)}
    for parts in ole.listdir(streams=True, storages=True):
        if ole.get_type(parts) == olefile.STGTY_STORAGE:
            clsid = ole.getclsid(parts)
            found["/".join(parts)] = ("storage", 0, "{" + clsid + "}" if clsid else NULL_CLSID)
        else:
            found["/".join(parts)] = ("stream", ole.get_size(parts), "-")
    errors = [f"{key}: olefile {found.get(key)} != expected {expected.get(key)}"
              for key in sorted(set(found) | set(expected)) if found.get(key) != expected.get(key)]
    # Contents: streams up to 64 MiB are compared whole; larger ones are not read by olefile.
    for elem_path, (kind, size, _) in expected.items():
        if kind == "stream" and size <= (64 << 20) and elem_path in found:
            if ole.openstream(elem_path.split("/")).read() != content(elem_path, size):
                errors.append(f"{elem_path}: content differs")
    ole.close()
    for e in errors:
        print(e)
    return 1 if errors else 0


def storage_order(name):
    # Shorter names first, then by upper-cased UTF-16 units (ASCII names here).
    return (len(name.encode("utf-16-le")), name.upper().encode("utf-16-be"))


def olefile_lines(path):
    """The tree as olefile sees it, printed the way nvdl tree prints it."""
    import olefile
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
