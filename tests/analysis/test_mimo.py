"""The multi-input analysis through the Python client: two partly correlated references driving three
responses through known filters, with noise on the responses. The spectral matrices are averaged
from time blocks with the measurement operators; the FRFs, multiple coherences and principal
components are checked against numpy on the same matrices and against the system that made them."""

import unittest

import numpy as np
import scipy.signal

import nvdl

RATE = 1024.0
LENGTH = 256
BLOCKS = 64
# Response j = sum over references i of FILTERS[j][i] applied to reference i, plus noise NOISE[j].
FILTERS = [
    [([0.5, 0.25], [1.0]), ([0.2], [1.0, -0.4])],
    [([1.0, -0.5], [1.0]), ([0.3, 0.3], [1.0])],
    [([0.1], [1.0, 0.3]), ([0.8, 0.1], [1.0])],
]
NOISE = [0.02, 0.3, 1.0]
MIXING = np.array([[1.0, 0.0], [0.6, 0.8]])  # reference 2 shares 60 % of reference 1's source


def measurement(values):
    m = nvdl.Dispatch("nv_bench.measurement")
    m.YArray(np.asarray(values, dtype=np.float32), len(values))
    m.XIncrement = 1.0 / RATE
    m.FunctionType = "Time record"
    m.XDimension = "s"
    return m


def complex_of(m):
    re = np.asarray(m.YRealArray, dtype=np.float64)
    return re + 1j * np.asarray(m.YImagArray, dtype=np.float64) if m.Complex else re


def averaged(terms_per_block):
    sums = None
    for terms in terms_per_block:
        sums = terms if sums is None else [s.Add(t, 0) for s, t in zip(sums, terms)]
    return [s.ScalarMultiply(1.0 / BLOCKS) for s in sums]


class TwoReferencesThreeResponses(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        rng = np.random.default_rng(11)
        sources = rng.standard_normal((2, BLOCKS * LENGTH))
        refs = MIXING @ sources
        resp = []
        for j in range(3):
            y = sum(scipy.signal.lfilter(b, a, refs[i]) for i, (b, a) in enumerate(FILTERS[j]))
            resp.append(y + NOISE[j] * rng.standard_normal(y.size))

        def blocks():
            for k in range(BLOCKS):
                s = slice(k * LENGTH, (k + 1) * LENGTH)
                f = [measurement(r[s]).Fft() for r in refs]
                x = [measurement(r[s]).Fft() for r in resp]
                # Gff(r, c) = F_r·conj(F_c) and Gxf(j, i) = X_j·conj(F_i): a.Psd(b) is conj(a)·b.
                yield ([f[c].Psd(f[r]) for c in range(2) for r in range(2)] +
                       [f[i].Psd(x[j]) for i in range(2) for j in range(3)] + [xj.Psd(xj) for xj in x])

        spectra = averaged(blocks())
        cls.gff, cls.gxf, cls.gxx = spectra[:4], spectra[4:10], spectra[10:]
        cls.analysis = nvdl.Dispatch("nv_bench.MultiInput")
        for g in cls.gff:
            cls.analysis.AddGff(g)
        for g in cls.gxf:
            cls.analysis.AddGxf(g)
        for g in cls.gxx:
            cls.analysis.AddGxx(g)
        cls.analysis.Analyze()
        # The same matrices per line, in numpy: a[l, r, c], g[l, j, i], p[l, j].
        cls.lines = cls.gff[0].Size
        cls.a = np.stack([complex_of(m) for m in cls.gff], axis=-1).reshape(cls.lines, 2, 2).transpose(0, 2, 1)
        cls.g = np.stack([complex_of(m) for m in cls.gxf], axis=-1).reshape(cls.lines, 2, 3).transpose(0, 2, 1)
        cls.p = np.stack([complex_of(m).real for m in cls.gxx], axis=-1)

    def frfs(self):
        return np.stack([[complex_of(self.analysis.Frf(j + 1, i + 1)) for i in range(2)] for j in range(3)]).transpose(2, 0, 1)

    def test_counts_come_from_the_measurements(self):
        self.assertEqual((self.analysis.Inputs, self.analysis.Responses, self.analysis.Lines), (0, 0, 0))
        self.assertEqual(self.lines, LENGTH // 2 + 1)
        self.assertEqual(self.analysis.Frf(3, 2).Size, self.lines)

    def test_frfs_agree_with_numpy_on_the_same_matrices(self):
        h = self.frfs()
        by_solve = np.linalg.solve(self.a.transpose(0, 2, 1), self.g.transpose(0, 2, 1)).transpose(0, 2, 1)
        by_pinv = self.g @ np.linalg.pinv(self.a)
        scale = np.abs(by_solve).max()
        np.testing.assert_allclose(h, by_solve, rtol=1e-4, atol=1e-5 * scale)
        np.testing.assert_allclose(h, by_pinv, rtol=1e-4, atol=1e-5 * scale)
        frf = self.analysis.Frf(2, 1)
        self.assertEqual((frf.FunctionType, frf.Complex), (1011, True))

    def test_frfs_find_the_filters(self):
        h = self.frfs()
        for j in range(3):
            for i, (b, a) in enumerate(FILTERS[j]):
                _, truth = scipy.signal.freqz(b, a, worN=self.lines, include_nyquist=True)
                self.assertLess(np.median(np.abs(h[:, j, i] - truth)), 0.05 + 0.1 * NOISE[j], (j, i))

    def test_multiple_coherence_agrees_with_numpy_and_falls_where_the_noise_says(self):
        h = self.frfs()
        coherent = np.einsum("lji,lik,ljk->lj", h, self.a, np.conj(h)).real
        expected = np.clip(coherent / self.p, 0.0, 1.0)
        got = np.stack([complex_of(self.analysis.MultipleCoherence(j + 1)) for j in range(3)], axis=-1)
        np.testing.assert_allclose(got, expected, atol=1e-5)
        self.assertEqual(self.analysis.MultipleCoherence(1).FunctionType, 1014)
        # The system's own coherence: signal power over signal and noise power, both white in.
        gff_true = MIXING @ MIXING.T
        for j in range(3):
            truth = np.stack([scipy.signal.freqz(b, a, worN=self.lines, include_nyquist=True)[1] for b, a in FILTERS[j]], -1)
            signal = np.einsum("li,ik,lk->l", truth, gff_true, np.conj(truth)).real
            ideal = signal / (signal + NOISE[j] ** 2)
            # Measured in the spread of a coherence estimated from BLOCKS blocks.
            spread = np.sqrt(2.0 * ideal / BLOCKS) * (1.0 - ideal) + 1e-3
            deviation = np.abs(got[1:-1, j] - ideal[1:-1]) / spread[1:-1]
            self.assertLess(np.median(deviation), 1.5, j)
        self.assertLess(np.median(got[:, 2]), np.median(got[:, 1]))
        self.assertLess(np.median(got[:, 1]), np.median(got[:, 0]))

    def test_principal_components_are_the_eigenvalues_of_gff(self):
        expected = np.linalg.eigvalsh(self.a)[:, ::-1]
        got = np.stack([complex_of(self.analysis.PrincipalComponent(k + 1)) for k in range(2)], axis=-1)
        np.testing.assert_allclose(got, expected, rtol=1e-5, atol=1e-6 * expected.max())
        self.assertEqual(self.analysis.PrincipalComponent(2).FunctionType, 1020)


class Refusals(unittest.TestCase):
    def test_failures_raise_with_their_message(self):
        analysis = nvdl.Dispatch("nv_bench.MultiInput")
        with self.assertRaises(nvdl.ComError) as caught:
            analysis.Analyze()
        self.assertIn("# inputs 0 (i.e. # references) should be positive", caught.exception.description)
        with self.assertRaises(nvdl.ComError):
            analysis.Frf(1, 1)
        s = measurement(np.random.default_rng(3).standard_normal(64)).Fft()
        spectrum = s.Psd(s)
        for _ in range(3):
            analysis.AddGff(spectrum)
        with self.assertRaises(nvdl.ComError) as caught:
            analysis.Analyze()
        self.assertIn("not the square", caught.exception.description)
        with self.assertRaises(nvdl.ComError):
            analysis.AddGff(nvdl.Dispatch("nv_bench.parameter"))
        with self.assertRaises(nvdl.ComError):
            analysis.Inputs = -1
        analysis.Clear()
        analysis.AddGff(spectrum)
        analysis.AddGxf(spectrum)
        analysis.AddGxx(spectrum)
        analysis.Analyze()
        np.testing.assert_allclose(complex_of(analysis.MultipleCoherence(1)), 1.0, atol=1e-5)
        np.testing.assert_allclose(complex_of(analysis.Frf(1, 1)), 1.0, atol=1e-5)
        with self.assertRaises(nvdl.ComError):
            analysis.MultipleCoherence(2)


if __name__ == "__main__":
    unittest.main()
