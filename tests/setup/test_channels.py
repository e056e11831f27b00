"""Channels through the Python client: date properties set and read as text by name beside a plain
real, and enumeration texts beyond ASCII."""

import os
import tempfile
import unittest
from unittest import mock

import nvdl


class Channels(unittest.TestCase):
    def setUp(self):
        # An empty settings file: dates read and written as M/d/yyyy h:mm:ss tt.
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        path = os.path.join(folder.name, "registry.txt")
        open(path, "w").close()
        patch = mock.patch.dict(os.environ, {"NVDL_REGISTRY": path})
        patch.start()
        self.addCleanup(patch.stop)

    def test_dates_by_name(self):
        cases = [("nv_bench.transducer", "CalibrationDate", "3/15/2021 6:00:00 PM", 44270.75, None),
                 ("nv_bench.transducer", "CalibrationDue", "1/2/2022", 44563.0, None),
                 ("nv_bench.strain", "CalibrationDate", "44270.75", 44270.75, "44270.75")]
        for prog_id, name, text, serial, read_back in cases:
            channel = nvdl.Dispatch(prog_id)
            channel._put("Property", name, text)
            self.assertEqual(getattr(channel, name), serial, name)
            self.assertEqual(channel.Property(name), read_back or text, name)

    def test_translations(self):
        cases = [("nv_bench.source", 273, "DC"), ("nv_bench.source", 0, "Inactive"),
                 ("nv_bench.transducer", 131, "ICP\u00ae"), ("nv_bench.strain", 0, "")]
        for prog_id, code, text in cases:
            self.assertEqual(nvdl.Dispatch(prog_id).Translate(code), text, (prog_id, code))


if __name__ == "__main__":
    unittest.main()
