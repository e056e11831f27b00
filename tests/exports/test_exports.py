"""The shared library exports the public API and nothing else: every defined dynamic symbol is a
name that the public headers declare."""
import os
import pathlib
import re
import subprocess

SOURCE = pathlib.Path(os.environ["NVDL_SOURCE_DIR"])
LIBRARY = pathlib.Path(os.environ["NVDL_BUILD_DIR"]) / "libnvdl.so"


def exported_names():
    out = subprocess.run(["nm", "-DC", "--defined-only", str(LIBRARY)], check=True, capture_output=True,
                         text=True).stdout
    names = []
    for line in out.splitlines():
        parts = line.split(" ", 2)
        if len(parts) == 3:
            names.append(parts[2])
    return names


def base_name(symbol):
    """The identifier a header would declare: the last name before the arguments."""
    symbol = re.sub(r"^(typeinfo name for|typeinfo for|vtable for) ", "", symbol)
    symbol = re.sub(r"\[abi:\w+\]", "", symbol)
    parts = re.sub(r"operator\W*\(?\)?\(.*$", "operator", symbol).split("(")[0].split("::")
    # An operator is declared with its class.
    return parts[-2] if parts[-1] == "operator" and len(parts) > 1 else parts[-1]


def test_every_export_is_declared_in_a_public_header():
    headers = "\n".join(p.read_text(encoding="utf-8") for p in (SOURCE / "include" / "nvdl").glob("*.h"))
    names = exported_names()
    assert any(n.startswith("nvdl::CreateObject") for n in names)
    assert any(n.startswith("daFft") for n in names)
    undeclared = [n for n in names
                  if not n.startswith("std::") and base_name(n) and
                  not re.search(r"\b%s\b" % re.escape(base_name(n)), headers)]
    assert not undeclared, undeclared
    leaked = [n for n in names if n.startswith("std::") or "::cfb::" in n or "::registry::" in n or
              "::units::" in n or "::detail::" in n or n.startswith(("typeinfo", "vtable"))]
    assert not leaked, leaked
