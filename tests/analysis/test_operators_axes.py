"""Operators on the edges of their rules, checked against values worked out here: the transform's 1%
rule on an arbitrary axis, jωⁿ and weighting refusals, sums and differences on an arbitrary axis,
the running histogram, acoustic intensity and the complex shift."""

import unittest

import numpy as np

import nvdl

E_INVALIDARG = 0x80070057


def measurement(values, imag=None, function="Time record", x_axis=None, x=None, dt=1.0, x_dimension=None):
    m = nvdl.Dispatch("nv_bench.measurement")
    values = np.asarray(values, dtype=np.float32)
    if imag is None:
        m.YArray(values, len(values))
    else:
        m.YArray(values, len(values), np.asarray(imag, dtype=np.float32))
    m.XIncrement = dt
    m.FunctionType = function
    if x_dimension:
        m.XDimension = x_dimension
    if x_axis:
        m.XAxisType = x_axis
    if x is not None:
        m.XArray = np.asarray(x, dtype=np.float32)
    return m


def refused(call):
    try:
        call()
    except nvdl.ComError as error:
        return error.hresult
    return None


class ArbitraryAxis(unittest.TestCase):
    def test_transform_takes_steps_within_one_percent_only(self):
        n = 16
        even = np.arange(n, dtype=np.float64) * 0.01
        ok = measurement(np.ones(n), x_axis="Arbitrary", x=even).Fft()
        self.assertEqual(ok.XAxisType, 1100)  # the result is equidistant again
        self.assertAlmostEqual(ok.XIncrement, 1.0 / (n * 0.01), places=3)
        uneven = even.copy()
        uneven[5] += 0.0002  # a step 2% off the mean step
        self.assertEqual(refused(lambda: measurement(np.ones(n), x_axis="Arbitrary", x=uneven).Fft()), E_INVALIDARG)

    def test_sums_and_differences_follow_the_x_values(self):
        x = np.array([0.0, 1.0, 3.0, 6.0, 10.0])
        y = np.array([2.0, 4.0, 8.0, 16.0, 32.0])
        integral = np.asarray(measurement(y, x_axis="Arbitrary", x=x).SumIntegrate().YRealArray, dtype=np.float64)
        expected = np.concatenate([[0.0], np.cumsum(np.diff(x) * y[:-1])])
        np.testing.assert_allclose(integral, expected, rtol=1e-6)
        derivative = np.asarray(measurement(y, x_axis="Arbitrary", x=x).SumDifferentiate().YRealArray,
                                dtype=np.float64)
        slopes = np.diff(y) / np.diff(x)
        np.testing.assert_allclose(derivative, np.append(slopes, slopes[-1]), rtol=1e-6)


class Refusals(unittest.TestCase):
    def test_jwn_of_power_zero_and_unknown_weightings(self):
        spectrum = measurement(np.ones(8), np.zeros(8), function="Spectrum", dt=10.0, x_dimension="Frequency")
        self.assertEqual(refused(lambda: spectrum.jwn(0)), E_INVALIDARG)
        self.assertEqual(refused(lambda: spectrum.WeightingFunction("a")), E_INVALIDARG)  # compared exactly
        self.assertEqual(refused(lambda: spectrum.WeightingFunction("E")), E_INVALIDARG)

    def test_a_weighting_is_near_unity_at_one_kilohertz(self):
        spectrum = measurement(np.ones(201), function="Spectrum", dt=10.0, x_dimension="Frequency")
        curve = spectrum.WeightingFunction("A")
        self.assertEqual((curve.FunctionType, curve.AcousticWeighting, curve.Complex), (1036, "A", False))
        gains = np.asarray(curve.YRealArray)
        self.assertAlmostEqual(gains[100], 1.0, delta=0.01)  # 1000 Hz
        self.assertLess(gains[5], 0.1)  # 50 Hz lies about 30 dB down


class RunningHistogram(unittest.TestCase):
    def test_first_call_makes_101_classes_and_later_calls_keep_them(self):
        first = measurement(np.array([-2.0, 0.0, 0.0, 2.0]))
        h = nvdl.Dispatch("nv_bench.measurement")
        h.HistogramAdd(first)
        self.assertEqual((h.Size, h.FunctionType), (101, 1017))
        self.assertAlmostEqual(h.XStart, -3.0, places=5)  # 1.5 times the peak
        counts = np.asarray(h.YRealArray)
        self.assertEqual(counts.sum(), 4)
        h.HistogramAdd(measurement(np.array([100.0, -100.0, 0.0])))  # beyond the range: the end classes
        self.assertEqual(h.Size, 101)
        counts = np.asarray(h.YRealArray)
        self.assertEqual(counts.sum(), 7)
        self.assertEqual((counts[0], counts[-1]), (1, 1))


class Spectra(unittest.TestCase):
    def test_acoustic_intensity_of_a_crosspower(self):
        imag = np.array([0.0, 4.0, -8.0, 12.0])
        cross = measurement(np.zeros(4), imag, function="Crosspower", dt=2.0)
        intensity = cross.AcousticIntensity(0.5, 0.0)  # b of 0 is taken as 1
        x = np.arange(4) * 2.0
        k = 1.0 / (4 * np.pi * 0.5 * 1.0)
        expected = np.where(x > 0, imag * k / np.where(x > 0, x, 1), 0.0)
        np.testing.assert_allclose(intensity.YRealArray, expected, rtol=1e-6)
        self.assertEqual((intensity.FunctionType, intensity.Complex), (1025, False))
        self.assertEqual(refused(lambda: measurement(np.zeros(4), imag, function="Spectrum").AcousticIntensity(1, 1)),
                         E_INVALIDARG)

    def test_complex_add_shifts_every_line(self):
        m = measurement(np.array([1.0, 2.0]), np.array([0.5, -0.5]), function="Spectrum")
        shifted = m.ComplexAdd(3.0, -1.0)
        np.testing.assert_allclose(shifted.YRealArray, [4.0, 5.0])
        np.testing.assert_allclose(shifted.YImagArray, [-0.5, -1.5])


if __name__ == "__main__":
    unittest.main()


class WeightingText(unittest.TestCase):
    """Multiplying by a weighting curve names it in AcousticWeighting; dividing by one takes it out."""

    @staticmethod
    def spectrum(weighting):
        m = measurement(np.ones(4), function="Spectrum")
        m.AcousticWeighting = weighting
        return m

    @staticmethod
    def curve(weighting):
        c = measurement(np.full(4, 2.0), function="Weighting")
        c.AcousticWeighting = weighting
        return c

    def test_multiply_appends_the_curve_once(self):
        cases = [("Off", "A", "A"), ("off", "A", "A"), ("", "A", "A"), ("B", "A", "BA"), ("BA", "A", "BA")]
        for own, weighting, expected in cases:
            with self.subTest(own=own, weighting=weighting):
                product = self.spectrum(own).Multiply(self.curve(weighting))
                self.assertEqual(product.AcousticWeighting, expected)
                np.testing.assert_allclose(product.YRealArray, np.full(4, 2.0))

    def test_divide_takes_the_curve_out(self):
        # An empty weighting is stored as "Off".
        cases = [("Off", "A", "Off"), ("A", "", "A"), ("A", "A", ""), ("A", "B", "?"), ("BAC", "A", "BC"),
                 ("BA", "C", "BA")]
        for own, weighting, expected in cases:
            with self.subTest(own=own, weighting=weighting):
                self.assertEqual(self.spectrum(own).Divide(self.curve(weighting)).AcousticWeighting, expected)
        # A quotient whose weighting came out empty knows none to take out.
        unweighted = self.spectrum("A").Divide(self.curve("A"))
        self.assertEqual(unweighted.Divide(self.curve("B")).AcousticWeighting, "?")

    def test_a_window_operand_hands_over_its_window(self):
        window = measurement(np.full(4, 0.5), function="Window")
        window.WindowType = "Hanning"
        window.WindowParameter = 0.25
        window.BandwidthCorrectionFactor = 1.5
        product = measurement(np.ones(4)).Multiply(window)
        self.assertEqual((product.WindowType, product.WindowParameter, product.BandwidthCorrectionFactor),
                         (1302, 0.25, 1.5))
        self.assertEqual(product.FunctionType, 1001)  # the function type stays


class RmsOfTheObject(unittest.TestCase):
    def test_a_time_record_over_its_whole_length_or_a_span(self):
        x = np.arange(10, dtype=np.float64)
        m = measurement(x)
        self.assertAlmostEqual(m.Rms(), np.sqrt(np.mean(x ** 2)), places=5)
        self.assertAlmostEqual(m.Rms2(2, 5), np.sqrt(np.mean(x[2:6] ** 2)), places=5)
        self.assertAlmostEqual(m.Rms3(-3, 50, 701), np.sqrt(np.mean(x ** 2)), places=5)  # the span is clipped

    def test_a_spectrum_by_its_amplitude_convention(self):
        x = np.arange(10, dtype=np.float64)
        s = measurement(x, function="Spectrum")
        # The code divides the sum of squares by 1 (701), 8 (703) or 2 (any other).
        total = np.sqrt(np.sum(x ** 2))
        self.assertAlmostEqual(s.Rms3(0, 9, 701), total, places=4)
        self.assertAlmostEqual(s.Rms3(0, 9, 703), total / np.sqrt(8), places=4)
        self.assertAlmostEqual(s.Rms3(0, 9, 0), total / np.sqrt(2), places=4)


class Noise(unittest.TestCase):
    def test_white_noise_fills_the_block_over_the_whole_band(self):
        m = measurement(np.zeros(4096), function="Spectrum")
        noise = m.WhiteNoise()
        values = np.asarray(noise.YRealArray, dtype=np.float64)
        self.assertEqual((noise.FunctionType, noise.Size, noise.Complex), (1001, 4096, False))
        # The generator's level 1 puts 1/(lines) into each line's amplitude squared, and the real
        # signal carries half of that power.
        self.assertAlmostEqual(np.sqrt(np.mean(values ** 2)), np.sqrt(0.5), delta=0.02)
        spectrum = np.abs(np.fft.rfft(values))
        # Every part of the band carries energy: no quarter of it is empty.
        quarters = np.array_split(spectrum[1:], 4)
        self.assertTrue(all(q.mean() > 0.25 * spectrum[1:].mean() for q in quarters))
