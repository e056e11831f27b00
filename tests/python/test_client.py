"""The Python client against the server: creation by ProgID, properties and methods late-bound,
failures with their error record, object lifetime."""

import unittest

import nvdl


class ParameterThroughTheClient(unittest.TestCase):
    def test_name_and_value_in_any_case(self):
        p = nvdl.Dispatch("nv_bench.parameter")
        p.Name = "Sensitivity"
        p.value = "10.2"
        self.assertEqual(p.NAME, "Sensitivity")
        self.assertEqual(p.Value, "10.2")
        self.assertEqual(p.Modified, 1)

    def test_blank_name_raises_with_the_record(self):
        p = nvdl.Dispatch("nv_bench.parameter")
        p.Name = "Gain"
        with self.assertRaises(nvdl.ComError) as caught:
            p.Name = "   "
        self.assertEqual(caught.exception.hresult, 0x80004005)
        self.assertEqual(caught.exception.description, "Parameter Name required (blank not allowed).")
        self.assertTrue(caught.exception.source.endswith("libnvdl.so"))
        self.assertEqual(p.Name, "Gain")

    def test_clone_copies_name_and_value(self):
        p = nvdl.Dispatch("nv_bench.Parameter")
        p.Name = "Offset"
        p.Value = "-3"
        c = p.Clone()
        self.assertNotEqual(c, p)
        self.assertEqual((c.Name, c.Value), ("Offset", "-3"))

    def test_parent_takes_an_object_and_a_dead_parent_is_none(self):
        child = nvdl.Dispatch("nv_bench.parameter")
        parent = nvdl.Dispatch("nv_bench.parameter")
        child.Parent = parent
        self.assertEqual(child.Parent, parent)
        del parent
        with self.assertRaises(nvdl.ComError) as caught:
            child.Parent
        self.assertEqual(caught.exception.hresult, 0x80004003)
        self.assertIsNone(child.Parent)

    def test_unknown_members_and_classes(self):
        p = nvdl.Dispatch("nv_bench.parameter")
        self.assertFalse(hasattr(p, "NoSuchMember"))
        self.assertTrue(callable(p.Clone))
        with self.assertRaises(AttributeError):
            p._private
        with self.assertRaises(nvdl.ComError) as caught:
            nvdl.Dispatch("nv_bench.nosuchclass")
        self.assertEqual(caught.exception.hresult, 0x80040154)

    def test_missing_and_wrong_arguments(self):
        p = nvdl.Dispatch("nv_bench.parameter")
        with self.assertRaises(nvdl.ComError) as caught:
            p.Copy(nvdl.Missing)
        self.assertEqual(caught.exception.hresult, 0x80004003)  # a missing object is no target
        with self.assertRaises(nvdl.ComError) as caught:
            p.Copy(1, 2)
        self.assertEqual(caught.exception.hresult, 0x8002000E)
        with self.assertRaises(nvdl.ComError) as caught:
            p.Copy("not an object")
        self.assertEqual(caught.exception.hresult, 0x80020005)

    def test_copy_into_another_parameter(self):
        a = nvdl.Dispatch("nv_bench.parameter")
        b = nvdl.Dispatch("nv_bench.parameter")
        a.Name, a.Value = "Unit", "g"
        a.Copy(b)
        self.assertEqual((b.Name, b.Value), ("Unit", "g"))

    def test_object_count_returns_to_its_start(self):
        start = nvdl.object_count()
        objects = [nvdl.Dispatch("nv_bench.parameter") for _ in range(5)]
        clone = objects[0].Clone()
        self.assertEqual(nvdl.object_count(), start + 6)
        del objects, clone
        self.assertEqual(nvdl.object_count(), start)


if __name__ == "__main__":
    unittest.main()
