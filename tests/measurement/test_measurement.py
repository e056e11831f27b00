"""The measurement through the Python client: defaults, enumerated properties, naming, identity,
value rules, parameters, clones and the property walk."""

import os
import tempfile
import unittest

import numpy as np

import nvdl

E_INVALIDARG = 0x80070057


def new():
    return nvdl.Dispatch("nv_bench.measurement")


class Defaults(unittest.TestCase):
    def test_a_new_measurement(self):
        m = new()
        self.assertEqual(m.Size, 32768)
        self.assertEqual(m.FunctionType, 1000)
        self.assertEqual(m.XAxisType, 1100)
        self.assertTrue(m.Modified)
        self.assertEqual(m.Name, "()")
        self.assertEqual(m.AcousticWeighting, "Off")
        self.assertEqual(m.Averages, -1)
        self.assertEqual(len(m.YRealArray), 32768)


class Enumerations(unittest.TestCase):
    def test_text_or_code(self):
        m = new()
        m.FunctionType = "Autopower"
        self.assertEqual(m.FunctionType, 1003)
        m.FunctionType = 1011
        self.assertEqual(m.FunctionType, 1011)
        with self.assertRaises(nvdl.ComError) as caught:
            m.FunctionType = "Nonsense"
        self.assertEqual(caught.exception.hresult, E_INVALIDARG)
        self.assertEqual(m.FunctionType, 1011)
        m.FunctionType = ""
        self.assertEqual(m.FunctionType, 1000)

    def test_shared_table_finds_the_lowest_code(self):
        m = new()
        m.WindowType = "Exponential"
        self.assertEqual(m.WindowType, 1202)  # the averaging code: the table does not know the group
        self.assertEqual(m.Translate(1302), "Hanning")
        self.assertEqual(m.Translate(1029), "")  # no text: a null string


class Naming(unittest.TestCase):
    def test_name_is_built_from_type_and_channels(self):
        m = new()
        m.FunctionType = "Autopower"
        m.Response = "resp"
        m.Reference = "ref"
        self.assertEqual(m.Name, "Autopower(resp)")
        f = new()
        f.FunctionType = "FRF"
        f.Response, f.Reference = "acc", "force"
        self.assertEqual(f.Name, "FRF(acc,force)")

    def test_identity(self):
        m = new()
        self.assertTrue(m.Id.startswith(".UID."))
        self.assertEqual(m.Id, m.Id)
        self.assertEqual(m.Tag, m.Id)
        m.Tag = "mine"
        self.assertEqual(m.Tag, "mine")


class ValueRules(unittest.TestCase):
    def test_refused_values_that_are_kept(self):
        m = new()
        with self.assertRaises(nvdl.ComError):
            m.Overlap = 2
        self.assertEqual(m.Overlap, 2)
        with self.assertRaises(nvdl.ComError):
            m.Averages = -3
        self.assertEqual(m.Averages, -3)

    def test_refused_values_that_are_not(self):
        m = new()
        with self.assertRaises(nvdl.ComError):
            m.ResponseChannel = -1
        self.assertEqual(m.ResponseChannel, -1)
        with self.assertRaises(nvdl.ComError):
            m.XIncrement = 0
        m.XAxisType = "Logarithmic"
        with self.assertRaises(nvdl.ComError):
            m.XIncrement = 1.0
        m.XIncrement = 2.0
        self.assertEqual(m.XIncrement, 2.0)

    def test_weighting_blank_reads_off(self):
        m = new()
        m.AcousticWeighting = "  "
        self.assertEqual(m.AcousticWeighting, "Off")
        m.AcousticWeighting = " A "
        self.assertEqual(m.AcousticWeighting, "A")

    def test_complex_and_samples(self):
        m = new()
        m.YArray(np.arange(8, dtype=np.float32), 8)
        self.assertEqual(m.Size, 8)
        self.assertFalse(m.Complex)
        m.Complex = -1
        self.assertTrue(m.Complex)
        self.assertEqual(list(m.YImagArray), [0.0] * 8)
        m.YImag(2)
        self.assertEqual(m.YReal(3), 3.0)
        self.assertAlmostEqual(m.Amplitude(3), 3.0)
        with self.assertRaises(nvdl.ComError) as caught:
            m.YReal(8)
        self.assertEqual(caught.exception.hresult, E_INVALIDARG)
        self.assertEqual(m.X(3), 3.0)
        m._put("YReal", 3, 2.5)  # a property that takes an index: the value goes last
        self.assertEqual(m.YReal(3), 2.5)
        self.assertEqual(len(m.YRealSectionArray(5, 0)), 5)  # the first argument is the count


class Parameters(unittest.TestCase):
    def test_collection_rules(self):
        m = new()
        p = nvdl.Dispatch("nv_bench.parameter")
        p.Name, p.Value = "Gain", "1"
        params = m.Parameters
        self.assertEqual(params.Add(p), 0)
        q = nvdl.Dispatch("nv_bench.parameter")
        q.Name, q.Value = "GAIN", "2"
        params.Add(q)
        self.assertEqual(len(params), 1)
        self.assertEqual(params["gain"].Value, "2")
        self.assertEqual([x.Name for x in params], ["Gain"])
        self.assertEqual(params[0].Parent, m)
        blank = nvdl.Dispatch("nv_bench.parameter")
        with self.assertRaises(nvdl.ComError) as caught:
            params.Add(blank)
        self.assertEqual(caught.exception.description, "Parameter Name required (blank not allowed).")


class Copies(unittest.TestCase):
    def test_clone_has_a_new_identity_and_the_same_samples(self):
        m = new()
        data = np.linspace(-1, 1, 100, dtype=np.float32)
        m.YArray(data, 100)
        m.FunctionType = "Spectrum"
        m.Name = "run.UID.abc"
        p = nvdl.Dispatch("nv_bench.parameter")
        p.Name, p.Value = "Unit", "g"
        m.Parameters.Add(p)
        c = m.Clone()
        self.assertNotEqual(c.Id, m.Id)
        self.assertEqual(c.Name, "run")
        self.assertEqual(c.FunctionType, 1002)
        np.testing.assert_array_equal(c.YRealArray, data)
        self.assertEqual(c.Parameters["Unit"].Value, "g")
        h = m.CloneHeaderOnly()
        self.assertEqual(h.Size, 100)


class ByName(unittest.TestCase):
    def test_walk_lists_header_properties(self):
        m = new()
        names = [m.PropertyName(i) for i in range(m.PropertiesCount)]
        for hidden in ("Modified", "XArray", "YRealArray", "YImagArray"):
            self.assertNotIn(hidden, names)
        for shown in ("Name", "FunctionType", "Size", "MeasurementTime", "Id"):
            self.assertIn(shown, names)

    def test_property_put_and_get(self):
        m = new()
        m.PropertyPut("TestId", "T-7")
        self.assertEqual(m.Property("TestId"), "T-7")
        m.PropertyPut("NoSuchProperty", "1")  # passed over
        with self.assertRaises(nvdl.ComError) as caught:
            m.PropertyPut("Power", "many")
        self.assertEqual(caught.exception.description, "Power does not have property put.")

    def test_measurement_time_follows_the_regional_settings(self):
        with tempfile.NamedTemporaryFile("w", suffix=".txt", delete=False) as f:
            f.write('[HKEY_CURRENT_USER\\Control Panel\\International]\n'
                    '"sShortDate"="dd.MM.yyyy"\n"sDate"="."\n"sTimeFormat"="HH:mm:ss"\n"sTime"=":"\n'
                    '"s1159"=""\n"s2359"=""\n')
            path = f.name
        old = os.environ.get("NVDL_REGISTRY")
        os.environ["NVDL_REGISTRY"] = path
        try:
            m = new()
            m.MeasurementTime = 38051.5  # 5 March 2004, noon
            self.assertEqual(m.Property("MeasurementTime"), "05.03.2004 12:00:00")
        finally:
            if old is None:
                del os.environ["NVDL_REGISTRY"]
            else:
                os.environ["NVDL_REGISTRY"] = old
            os.unlink(path)


class Dimensions(unittest.TestCase):
    def test_y_dimension_from_a_unit_or_a_dimension_name(self):
        m = new()
        m.YDimension = "m/s\u00b2"
        self.assertEqual(m.YDimension, "Acceleration")
        self.assertEqual(m.YdDimension.Name, "Acceleration")
        m.YDimension = "velocity"
        self.assertEqual(m.YDimension, "Velocity")
        with self.assertRaises(nvdl.ComError) as caught:
            m.YDimension = "furlongs per fortnight squared"
        self.assertEqual(caught.exception.hresult, E_INVALIDARG)
        self.assertEqual(m.YDimension, "")

    def test_linear_unit_of_an_autopower(self):
        m = new()
        m.FunctionType = "Autopower"
        m.YDimension = "(m/s\u00b2)\u00b2"
        self.assertEqual(m.LinearUnitY, "m/s\u00b2")


if __name__ == "__main__":
    unittest.main()
