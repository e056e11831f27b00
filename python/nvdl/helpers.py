"""Short helpers for scripts: open a workspace, project, recording or bundle by its file, and take a
measurement's values and abscissa as numpy arrays. They only call the objects' own members."""

import builtins
import os
import struct
import uuid

_COMPOUND_SIGNATURE = b"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1"
_PROJECT_CLASS = uuid.UUID("1e1827e6-9acb-46ba-b199-20067d5f8b78")
_ZIP_SIGNATURE = b"PK\x03\x04"


def _root_class(head, f):
    """The class identifier of a compound file's root storage (the first directory entry)."""
    if len(head) < 512:
        return None
    sector_shift = struct.unpack_from("<H", head, 0x1E)[0]
    first_directory_sector = struct.unpack_from("<I", head, 0x30)[0]
    if not 7 <= sector_shift <= 16 or first_directory_sector >= 0xFFFFFFFA:
        return None
    f.seek((first_directory_sector + 1) << sector_shift)
    entry = f.read(128)
    return uuid.UUID(bytes_le=entry[0x50:0x60]) if len(entry) == 128 else None


def file_class(path):
    """"project", "workspace" or "bundle" by the file's contents (a compound file by the class of its
    root storage), else "recording" for a .trc file and "workspace" for anything else, which the
    workspace's loaders then read."""
    with builtins.open(path, "rb") as f:
        head = f.read(512)
        if head.startswith(_ZIP_SIGNATURE):
            return "bundle"
        if head.startswith(_COMPOUND_SIGNATURE):
            return "project" if _root_class(head, f) == _PROJECT_CLASS else "workspace"
    if os.path.splitext(path)[1].lower() == ".zip":
        return "bundle"
    return "recording" if os.path.splitext(path)[1].lower() == ".trc" else "workspace"


def open(path):  # noqa: A001 - the name scripts expect: nvdl.open(path)
    """A project (nv_bench.Project) for a project file or zip bundle, else a workspace
    (nv_bench.Workspace) loaded from the file: a workspace file, or a recording as measurements."""
    from . import Dispatch

    path = os.fspath(path)
    kind = file_class(path)
    loaded = Dispatch("nv_bench.Project" if kind in ("project", "bundle") else "nv_bench.Workspace")
    loaded.Load(path)
    return loaded


def to_numpy(m):
    """The values of a measurement: a float array, or a complex array for a complex measurement."""
    import numpy

    real = numpy.asarray(m.YRealArray)
    if not m.Complex:
        return real
    return real + 1j * numpy.asarray(m.YImagArray)


def x_numpy(m):
    """The abscissa of a measurement: its X values when it has them (an uneven axis), else
    XStart + i * XIncrement for each of its values."""
    import numpy

    x = m.XArray
    if x is not None and len(x) > 0:
        return numpy.asarray(x)
    return m.XStart + numpy.arange(m.Size, dtype=numpy.float64) * m.XIncrement


def from_numpy(values, **properties):
    """A new measurement (nv_bench.measurement) holding the values, complex when the array is, with
    the given properties put in the order given (e.g. FunctionType="Time record", XIncrement=1e-3)."""
    import numpy

    from . import Dispatch

    values = numpy.asarray(values)
    m = Dispatch("nv_bench.measurement")
    real = numpy.ascontiguousarray(values.real, dtype=numpy.float32)
    if numpy.iscomplexobj(values):
        m.YArray(real, len(real), numpy.ascontiguousarray(values.imag, dtype=numpy.float32))
    else:
        m.YArray(real, len(real))
    for name, value in properties.items():
        setattr(m, name, value)
    return m
