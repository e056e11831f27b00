"""Measurement operators through the Python client, checked against numpy and scipy on signals made
here: transforms, spectral estimates of a known linear system, calculus with its dimensions,
weighting, histogram, window, and the kept oddities of the arithmetic operators."""

import unittest

import numpy as np
import scipy.signal

import nvdl

E_INVALIDARG = 0x80070057
NOT_SPECTRA = 0x800A017C
RATE = 1024.0
N = 1024


def measurement(values, imag=None, dt=1.0 / RATE, function="Time record", x="s", y=None):
    m = nvdl.Dispatch("nv_bench.measurement")
    values = np.asarray(values, dtype=np.float32)
    if imag is None:
        m.YArray(values, len(values))
    else:
        m.YArray(values, len(values), np.asarray(imag, dtype=np.float32))
    m.XIncrement = dt
    m.FunctionType = function
    if x:
        m.XDimension = x
    if y:
        m.YDimension = y
    return m


def complex_of(m):
    re = np.asarray(m.YRealArray, dtype=np.float64)
    return re + 1j * np.asarray(m.YImagArray, dtype=np.float64) if m.Complex else re


class Transform(unittest.TestCase):
    def test_sine_reads_its_amplitude_on_its_line(self):
        t = np.arange(N) / RATE
        s = measurement(3.0 * np.sin(2 * np.pi * 17 * t)).Fft()
        self.assertEqual((s.Size, s.FunctionType, s.XIncrement, s.XDimension), (N // 2 + 1, 1002, 1.0, "Frequency"))
        spectrum = np.abs(complex_of(s))
        self.assertAlmostEqual(spectrum[17], 3.0, places=4)
        self.assertLess(np.delete(spectrum, 17).max(), 1e-4)

    def test_inverse_restores_the_record_and_pads_a_zoomed_spectrum(self):
        x = np.random.default_rng(1).standard_normal(N)
        back = measurement(x).Fft().Fft()
        self.assertEqual((back.FunctionType, back.Size), (1001, N))
        np.testing.assert_allclose(back.YRealArray, x, atol=1e-4)
        zoomed = measurement(np.ones(20), np.zeros(20), dt=10.0, function="Spectrum", x=None)
        zoomed.XStart = 100
        self.assertEqual(zoomed.Fft().Size, 2 * (20 + 10) - 2)

    def test_refused_axes(self):
        with self.assertRaises(nvdl.ComError) as caught:
            measurement(np.ones(8), dt=0.0).Fft()
        self.assertEqual(caught.exception.hresult, E_INVALIDARG)


class SpectralEstimates(unittest.TestCase):
    """Blocks of white noise through a known filter, against the same estimates in numpy."""

    @classmethod
    def setUpClass(cls):
        rng = np.random.default_rng(7)
        blocks, length = 16, 512
        x = rng.standard_normal(blocks * length)
        y = scipy.signal.lfilter([0.2, 0.3], [1.0, -0.5], x) + 0.2 * rng.standard_normal(x.size)
        cls.blocks = [(x[k * length:(k + 1) * length], y[k * length:(k + 1) * length]) for k in range(blocks)]
        cls.df = RATE / length

    def averaged(self):
        sums = [None, None, None]
        for bx, by in self.blocks:
            sx, sy = measurement(bx).Fft(), measurement(by).Fft()
            for k, term in enumerate((sx.Psd(sx), sy.Psd(sy), sx.Psd(sy))):
                sums[k] = term if sums[k] is None else sums[k].Add(term, 0)
        return [s.ScalarMultiply(1.0 / len(self.blocks)) for s in sums]

    def reference(self):
        def spectrum(v):
            f = np.fft.rfft(v) * 2 / len(v)
            f[0] /= 2
            f[-1] /= 2
            return f

        gxx = gyy = gxy = 0
        for bx, by in self.blocks:
            fx, fy = spectrum(bx), spectrum(by)
            gxx = gxx + np.abs(fx) ** 2
            gyy = gyy + np.abs(fy) ** 2
            gxy = gxy + np.conj(fx) * fy
        scale = 2 * self.df * len(self.blocks)
        return gxx / scale, gyy / scale, gxy / scale

    def test_psd_frf_coherence_agree_with_numpy(self):
        gxx, gyy, gxy = self.averaged()
        rxx, ryy, rxy = self.reference()
        self.assertEqual((gxy.FunctionType, gxy.BandwidthCorrectionFactor), (1005, 1.0))
        np.testing.assert_allclose(complex_of(gxx).real, rxx, rtol=1e-3)
        np.testing.assert_allclose(complex_of(gxy), rxy, rtol=1e-3, atol=1e-3 * np.abs(rxy).max())
        h1 = gxy.Frf(gxx, 1)
        h2 = gxy.ComplexConjugate().Frf(gyy, "h2")  # Gyy / Gyx
        self.assertEqual(h1.FunctionType, 1011)
        np.testing.assert_allclose(complex_of(h1), rxy / rxx, rtol=2e-3, atol=1e-4)
        np.testing.assert_allclose(complex_of(h2), ryy / np.conj(rxy), rtol=2e-3, atol=1e-4)
        coherence = gxy.Coherence(gxx, gyy)
        self.assertEqual((coherence.FunctionType, coherence.Complex), (1013, False))
        np.testing.assert_allclose(coherence.YRealArray, np.abs(rxy) ** 2 / (rxx * ryy), atol=2e-3)
        # the filter's own response shows through the first estimator
        w, h = scipy.signal.freqz([0.2, 0.3], [1.0, -0.5], worN=len(rxx), include_nyquist=True)
        self.assertLess(np.median(np.abs(complex_of(h1) - h)), 0.05)

    def test_psd_wants_spectra_and_its_dimension_is_a_density(self):
        a = measurement(np.ones(16), y="m/s²")
        with self.assertRaises(nvdl.ComError) as caught:
            a.Psd(a)
        self.assertEqual(caught.exception.hresult & 0xFFFFFFFF, NOT_SPECTRA)
        s = measurement(np.random.default_rng(2).standard_normal(64), y="m/s²").Fft()
        self.assertEqual(s.Psd(s).YDimension, "Acceleration²/Hz")


class Calculus(unittest.TestCase):
    def test_integration_divides_by_j_omega_and_changes_the_dimension(self):
        x = np.random.default_rng(3).standard_normal(N)
        acceleration = measurement(x, y="m/s²").Fft()
        velocity = acceleration.Integrate()
        displacement = velocity.Integrate()
        self.assertEqual((velocity.YDimension, displacement.YDimension), ("Velocity", "Length"))
        f = np.arange(N // 2 + 1) * RATE / N
        jw = 1j * 2 * np.pi * f
        a = complex_of(acceleration)
        np.testing.assert_allclose(complex_of(velocity)[1:], a[1:] / jw[1:], rtol=1e-4)
        np.testing.assert_allclose(complex_of(displacement)[1:], a[1:] / jw[1:] ** 2, rtol=1e-4)
        back = velocity.Differentiate()
        self.assertEqual(back.YDimension, "Acceleration")
        np.testing.assert_allclose(complex_of(back), a, rtol=1e-4, atol=1e-6)

    def test_time_records_integrate_by_running_sums(self):
        x = np.random.default_rng(4).standard_normal(100)
        m = measurement(x, dt=0.5, y="m/s²")
        summed = m.Integrate()
        np.testing.assert_allclose(summed.YRealArray, np.cumsum(x) * 0.5, rtol=1e-4, atol=1e-5)
        self.assertEqual(summed.YDimension, "Velocity")
        np.testing.assert_allclose(summed.Differentiate().YRealArray, x, rtol=1e-3, atol=1e-4)

    def test_jwn_refuses_power_zero(self):
        with self.assertRaises(nvdl.ComError) as caught:
            measurement(np.ones(16)).Fft().jwn(0)
        self.assertEqual(caught.exception.hresult, E_INVALIDARG)


class Weighting(unittest.TestCase):
    def test_a_weighting_curve_and_its_product(self):
        s = measurement(np.random.default_rng(5).standard_normal(N), y="Pa").Fft()
        curve = s.WeightingFunction("A")
        self.assertEqual((curve.FunctionType, curve.AcousticWeighting, curve.Size), (1036, "A", s.Size))
        gains = np.asarray(curve.YRealArray)
        decibels = np.interp(np.log10(500), np.log10([398.1, 501.2]), [-4.8, -3.2])
        self.assertAlmostEqual(gains[500], 10 ** (0.05 * decibels), places=4)
        weighted = s.Multiply(curve)
        self.assertEqual(weighted.AcousticWeighting, "A")
        self.assertEqual(weighted.YDimension, "Pressure")
        np.testing.assert_allclose(complex_of(weighted), complex_of(s) * gains, rtol=1e-5, atol=1e-7)
        self.assertEqual(weighted.Divide(curve).AcousticWeighting, "")
        with self.assertRaises(nvdl.ComError):
            s.WeightingFunction("a")


class RecordOperators(unittest.TestCase):
    def test_histogram_counts_match_numpy(self):
        x = np.random.default_rng(6).standard_normal(5000).astype(np.float32)
        h = measurement(x, y="m").Histogram(21, -2.0, 2.0)
        self.assertEqual((h.FunctionType, h.XStart, h.XDimension), (1017, -2.0, "Length"))
        self.assertAlmostEqual(h.XIncrement, 0.2, places=6)
        inside = x[(x >= -2.0) & (x < 2.0)]
        counts, _ = np.histogram(inside, bins=20, range=(-2.0, 2.0))
        got = np.asarray(h.YRealArray)
        np.testing.assert_array_equal(got[1:20], counts[1:20])
        self.assertEqual(got[0], counts[0] + np.count_nonzero(x < -2.0))  # clipped into the end classes
        self.assertEqual(got[20], np.count_nonzero(x >= 2.0))

    def test_window_applies_the_amplitude_correction(self):
        m = measurement(np.ones(8))
        m.WindowType = "Hanning"
        m.BandwidthCorrectionFactor = 0
        first = m.Window()
        np.testing.assert_allclose(first.YRealArray, 2 * np.sin(np.pi * np.arange(8) / 8) ** 2, atol=1e-6)
        self.assertEqual((m.BandwidthCorrectionFactor, first.BandwidthCorrectionFactor), (1.5, 0.0))
        self.assertAlmostEqual(max(m.Window().YRealArray), 1.0)  # the factor is now 1.5: height 1
        windowed = measurement(3 * np.sin(2 * np.pi * 16 * np.arange(N) / RATE))
        windowed.WindowType, windowed.BandwidthCorrectionFactor = "Hanning", 0
        line = np.abs(complex_of(windowed.Multiply(windowed.Window()).Fft()))[16]
        self.assertAlmostEqual(line, 3.0, places=3)

    def test_arithmetic_keeps_the_first_header_and_its_complex_flag(self):
        a = measurement(np.arange(100), function="Spectrum")
        a.Name = "first"
        b = measurement(np.ones(80), np.ones(80))
        total = a.Add(b, 0)
        self.assertEqual((total.Size, total.Name, total.Complex), (80, "first", False))
        np.testing.assert_allclose(total.YRealArray, np.arange(80) + 1)
        self.assertEqual(len(total.YImagArray), 80)  # an imaginary vector under Complex 0
        np.testing.assert_allclose(a.Subtract(b).YRealArray, np.arange(80) - 1)

    def test_add_of_amplitudes_changes_the_first_operand(self):
        a = measurement([3.0, 0.0], [4.0, 2.0])
        b = measurement([0.0, 1.0], [1.0, 0.0])
        total = a.Add(b, 1)
        np.testing.assert_allclose(total.YRealArray, [6.0, 3.0])
        np.testing.assert_allclose(total.YImagArray, [0.0, 0.0])
        np.testing.assert_allclose(a.YRealArray, [5.0, 2.0])
        np.testing.assert_allclose(b.YImagArray, [1.0, 0.0])  # the other one works on a clone

    def test_scalars_square_root_concatenation_and_compression(self):
        m = measurement([-4.0, 9.0], y="m")
        root = m.sqr()
        np.testing.assert_allclose(complex_of(root), [2j, 3], atol=1e-6)
        self.assertTrue(root.Name.startswith("Sqr("))
        np.testing.assert_allclose(complex_of(m.ComplexMultiply(0, 1)), [-4j, 9j])
        np.testing.assert_allclose(complex_of(m.ScalarAdd(1)), [-3, 10])
        np.testing.assert_allclose(m.Concatenate(m).YRealArray, [-4, 9, -4, 9])
        long = measurement(np.sin(np.arange(10000) / 100.0))
        picture = long.Compress(100)
        self.assertEqual((picture.Size, picture.XIncrement), (100, np.float32(10000 / RATE / 100)))
        values = np.asarray(long.YRealArray)  # 50 blocks of 200 samples
        self.assertEqual(picture.YRealArray[0], values[:200].min())
        self.assertEqual(picture.YRealArray[1], values[:200].max())

    def test_in_place_members_do_nothing(self):
        m = measurement([1.0, 2.0])
        m.InPlaceEnergySpectralDensity()
        m.InPlaceComplexMultiply(2, 3)
        np.testing.assert_array_equal(m.YRealArray, [1.0, 2.0])


if __name__ == "__main__":
    unittest.main()
