"""nvdl register and unregister: the library writes its keys to the settings store named by
NVDL_REGISTRY, naming its own path, and removing them gives back the file byte for byte."""
import os
import pathlib
import subprocess

BUILD = pathlib.Path(os.environ.get("NVDL_BUILD_DIR", "build"))
NVDL = BUILD / "nvdl"
LIBRARY = (BUILD / "libnvdl.so").resolve()

UNRELATED = (b"Windows Registry Editor Version 5.00\r\n\r\n; keys of other programs\r\n"
             b"[HKEY_CLASSES_ROOT\\.wav]\r\n@=\"player.wav\"\r\n\r\n"
             b"[HKEY_CURRENT_USER\\Software\\Other]\r\n\"Path\"=\"C:\\\\x\"\r\n")


def run(args, registry, trace=None):
    env = dict(os.environ, NVDL_REGISTRY=str(registry))
    if trace:
        env["NVDL_TRACE"] = str(trace)
    return subprocess.run([str(NVDL)] + args, env=env, capture_output=True, text=True)


def test_register_then_unregister_leaves_the_file_as_it_was(tmp_path):
    store = tmp_path / "registry.txt"
    store.write_bytes(UNRELATED)
    trace = tmp_path / "trace.txt"

    done = run(["register"], store, trace)
    assert done.returncode == 0, done.stderr
    text = store.read_bytes().decode("utf-8")
    assert "[HKEY_CLASSES_ROOT\\nv_bench.parameter\\CLSID]" in text
    assert '@="%s"' % LIBRARY in text  # InprocServer32 names the library itself
    assert '@="\\"%s\\\\Sonvara.exe\\" \\"%%1\\""' % LIBRARY.parent in text
    assert text.startswith(UNRELATED.decode("utf-8"))

    done = run(["unregister", str(LIBRARY)], store, trace)
    assert done.returncode == 0, done.stderr
    assert store.read_bytes() == UNRELATED

    lines = trace.read_text().splitlines()
    assert lines.count("NVDL.DLL connecting") == lines.count("NVDL.DLL disconnecting") >= 2


def test_failures_and_help(tmp_path):
    blocked = tmp_path / "file"
    blocked.write_text("")
    cases = [  # arguments, settings file, exit status
        (["register", str(tmp_path / "missing.so")], tmp_path / "registry.txt", 1),
        (["register", "a", "b"], tmp_path / "registry.txt", 2),
        (["unregister", "/bin/sh"], tmp_path / "registry.txt", 1),  # a library without the entry
        (["register"], blocked / "registry.txt", 1),  # a store that cannot be written
    ]
    for args, store, status in cases:
        assert run(args, store).returncode == status, args
    assert not (tmp_path / "registry.txt").exists()

    shown = run(["--help"], tmp_path / "registry.txt")
    assert shown.returncode == 0
    assert "nvdl register" in shown.stdout and "nvdl unregister" in shown.stdout
