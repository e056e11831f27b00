"""Octave analysis through the Python client: the band grid, the rise of white noise, a tone in its
band, intensity signs and the records it leaves alone."""

import unittest

import numpy as np

import nvdl


def spectrum(values, df=1.0, function="Spectrum"):
    m = nvdl.Dispatch("nv_bench.measurement")
    values = np.asarray(values, dtype=np.float32)
    m.YArray(values, len(values), np.zeros_like(values))
    m.XIncrement = df
    m.FunctionType = function
    return m


class BandGrid(unittest.TestCase):
    def test_centres_follow_the_base_ten_grid(self):
        third = spectrum(np.ones(20001)).Octave(3)
        self.assertEqual((third.Size, third.XAxisType, third.FunctionType), (34, 1103, 1002))
        np.testing.assert_allclose(third.XArray, 1000 * 2 ** (np.arange(-20, 14) * np.log2(1000) / 30), rtol=1e-6)
        octave = spectrum(np.ones(20001)).Octave(1)
        np.testing.assert_allclose(octave.XArray, 1000 * 2.0 ** np.arange(-6, 5), rtol=1e-6)
        self.assertTrue(octave.Name.startswith("Oct("))

    def test_a_line_across_an_edge_shares_its_square(self):
        values = np.zeros(2001)
        lo = 1000 * 10 ** (-0.05)  # lower edge of the 1 kHz third octave
        line = int(round(lo))
        values[line] = 1.0
        bands = np.asarray(spectrum(values).Octave(3).YRealArray)
        lit = np.nonzero(bands)[0]
        self.assertEqual(len(lit), 2)
        self.assertAlmostEqual(float(np.sum(bands[lit] ** 2)), 1.0, places=4)
        self.assertAlmostEqual(float(bands[lit[1]] ** 2), line + 0.5 - lo, places=4)


class Levels(unittest.TestCase):
    def test_white_noise_rises_one_decibel_per_third_octave(self):
        rng = np.random.default_rng(11)
        blocks = [spectrum(np.abs(np.fft.rfft(rng.standard_normal(16384))) / 8192.0, df=0.5) for _ in range(8)]
        levels = np.mean([20 * np.log10(np.asarray(b.Octave(3).YRealArray)) for b in blocks], axis=0)
        steps = np.diff(levels[10:26])  # 100 Hz .. 3.2 kHz: bands well inside the data
        self.assertAlmostEqual(float(np.mean(steps)), 1.0, delta=0.05)
        self.assertLess(float(np.max(np.abs(steps - 1.0))), 0.5)

    def test_a_tone_lands_in_its_band_with_its_level(self):
        rate, n, amplitude = 8192.0, 8192, 2.0
        t = np.arange(n) / rate
        record = nvdl.Dispatch("nv_bench.measurement")
        record.YArray(np.asarray(amplitude * np.sin(2 * np.pi * 1000 * t), dtype=np.float32), n)
        record.XIncrement = 1 / rate
        record.FunctionType = "Time record"
        bands = record.Octave(3)
        self.assertEqual(bands.FunctionType, 1002)
        values = np.asarray(bands.YRealArray)
        centres = np.asarray(bands.XArray)
        self.assertAlmostEqual(float(centres[values.argmax()]), 1000.0, places=2)
        # Bands sum peak-scaled lines: the tone shows its amplitude, √2 times its RMS.
        self.assertAlmostEqual(float(values.max()), amplitude, places=3)
        self.assertAlmostEqual(float(values.max()) / np.sqrt(2), np.sqrt(np.mean(record.YRealArray) ** 2 + np.var(record.YRealArray)), places=3)
        # lasting effects on the record
        self.assertEqual((record.WindowType, record.BandwidthCorrectionFactor), (1302, 1.0))

    def test_the_bandwidth_correction_lowers_the_bands(self):
        plain = spectrum(np.ones(2001))
        corrected = spectrum(np.ones(2001))
        corrected.BandwidthCorrectionFactor = 1.5
        ratio = np.asarray(plain.Octave(3).YRealArray) / np.asarray(corrected.Octave(3).YRealArray)
        np.testing.assert_allclose(ratio, np.sqrt(1.5), rtol=1e-5)
        self.assertEqual(corrected.BandwidthCorrectionFactor, 1.0)


class Routes(unittest.TestCase):
    def test_intensity_keeps_its_sign(self):
        values = np.ones(2001)
        values[:700] = -1.0
        m = nvdl.Dispatch("nv_bench.measurement")
        m.YArray(np.asarray(values, dtype=np.float32), 2001)
        m.FunctionType = "Sound intensity"
        bands = np.asarray(m.Octave(3).YRealArray)
        self.assertLess(bands[10], 0)  # 100 Hz
        self.assertGreater(bands[-1], 0)

    def test_other_records_are_copied(self):
        frf = spectrum(np.ones(64), function="FRF")
        copy = frf.Octave(3)
        self.assertEqual((copy.Size, copy.XAxisType), (64, 1100))
        logarithmic = spectrum(np.ones(64))
        logarithmic.XAxisType = "Logarithmic"
        labelled = logarithmic.Octave(3)
        self.assertEqual((labelled.Size, labelled.XAxisType), (64, 1103))

    def test_data_below_ten_hertz_give_no_bands(self):
        self.assertEqual(spectrum(np.ones(10)).Octave(3).Size, 0)


if __name__ == "__main__":
    unittest.main()
