"""The measurement through the Python client: defaults, enumerated properties, naming, identity,
value rules, dimensions, samples, parameters, clones and the property walk."""

import os
import tempfile
import unittest
from unittest import mock

import numpy as np

import nvdl

E_INVALIDARG = 0x80070057


def new():
    return nvdl.Dispatch("nv_bench.measurement")


class Properties(unittest.TestCase):
    def test_a_new_measurement(self):
        m = new()
        self.assertEqual((m.Size, m.FunctionType, m.XAxisType, m.Averages), (32768, 1000, 1100, -1))
        self.assertEqual((m.Name, m.AcousticWeighting), ("()", "Off"))
        self.assertTrue(m.Modified)
        self.assertEqual(len(m.YRealArray), 32768)

    def test_enumerations_take_text_or_code_from_one_shared_table(self):
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
        m.WindowType = "Exponential"
        self.assertEqual(m.WindowType, 1202)  # the averaging code: the table does not know the group
        self.assertEqual(m.Translate(1302), "Hanning")
        self.assertEqual(m.Translate(1029), "")  # no text: a null string

    def test_name_is_built_from_type_and_channels_and_the_identity_stays(self):
        m, f = new(), new()
        m.FunctionType, m.Response, m.Reference = "Autopower", "resp", "ref"
        f.FunctionType, f.Response, f.Reference = "FRF", "acc", "force"
        self.assertEqual((m.Name, f.Name), ("Autopower(resp)", "FRF(acc,force)"))
        self.assertEqual(m.Id, m.Id)
        self.assertEqual(m.Tag, m.Id)

    def test_refused_values(self):
        m = new()
        # Overlap and Averages keep the value they refuse; a channel and the increment do not.
        for name, value, after in (("Overlap", 2, 2), ("Averages", -3, -3), ("ResponseChannel", -5, -1),
                                   ("XIncrement", 0, 1.0)):
            with self.assertRaises(nvdl.ComError):
                setattr(m, name, value)
            self.assertEqual(getattr(m, name), after, name)
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

    def test_y_dimension_from_a_unit_or_a_dimension_name(self):
        m = new()
        m.YDimension = "m/s\u00b2"
        self.assertEqual((m.YDimension, m.YdDimension.Name), ("Acceleration", "Acceleration"))
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


class SamplesParametersAndCopies(unittest.TestCase):
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

    def test_parameters_merge_by_name_and_belong_to_the_measurement(self):
        m = new()
        params = m.Parameters
        for name, value in (("Gain", "1"), ("GAIN", "2")):
            p = nvdl.Dispatch("nv_bench.parameter")
            p.Name, p.Value = name, value
            params.Add(p)
        self.assertEqual(len(params), 1)
        self.assertEqual(params["gain"].Value, "2")
        self.assertEqual([x.Name for x in params], ["Gain"])
        self.assertEqual(params[0].Parent, m)

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
        self.assertEqual((c.Name, c.FunctionType, c.Parameters["Unit"].Value), ("run", 1002, "g"))
        np.testing.assert_array_equal(c.YRealArray, data)
        self.assertEqual(m.CloneHeaderOnly().Size, 100)


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
        try:
            with mock.patch.dict(os.environ, {"NVDL_REGISTRY": f.name}):
                m = new()
                m.MeasurementTime = 38051.5  # 5 March 2004, noon
                self.assertEqual(m.Property("MeasurementTime"), "05.03.2004 12:00:00")
        finally:
            os.unlink(f.name)


if __name__ == "__main__":
    unittest.main()
