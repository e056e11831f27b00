"""Reference timings for bench_cross_spectrum: scipy.signal.coherence on the same 2-channel record
(same generator, blocks of 4096, Hann window, no overlap), and the same road as the C++ benchmark
through the Python client (Window, Fft, Psd of each pair, Add, then Frf and Coherence).

Run:  PYTHONPATH=<build>/python /usr/bin/python3 bench/cross_spectrum_reference.py [--cpp <bench binary>]
With --cpp the C++ benchmark is run too and the ratios are printed. To time numpy and scipy as
shipped, run this command with OPENBLAS_CORETYPE and OPENBLAS_L2_SIZE unset.
"""

import argparse
import json
import subprocess
import time

import numpy as np
import scipy.signal

SAMPLES = 10_000_000
BLOCK = 4096
RATE = 25600.0


def noise(first, count):
    """Uniform noise in [-0.5, 0.5) from the counter-based generator of the C++ benchmark."""
    with np.errstate(over="ignore"):
        z = np.arange(first, first + count, dtype=np.uint64) + np.uint64(0x9E3779B97F4A7C15)
        z = (z ^ (z >> np.uint64(30))) * np.uint64(0xBF58476D1CE4E5B9)
        z = (z ^ (z >> np.uint64(27))) * np.uint64(0x94D049BB133111EB)
        z ^= z >> np.uint64(31)
    return (z >> np.uint64(11)).astype(np.float64) * 2.0**-53 - 0.5


def record():
    x = noise(0, SAMPLES)
    y = scipy.signal.lfilter([0.05, 0.1, 0.05], [1.0, -1.6, 0.8], x) + 0.1 * noise(1 << 40, SAMPLES)
    return x.astype(np.float32), y.astype(np.float32)


def best_of(runs, work):
    times = []
    for _ in range(runs):
        start = time.perf_counter()
        result = work()
        times.append(time.perf_counter() - start)
    return min(times), result


def scipy_road(x, y):
    return scipy.signal.coherence(x, y, fs=RATE, window="hann", nperseg=BLOCK, noverlap=0, detrend=False)


def client_road(x, y):
    import nvdl

    def spectrum(samples):
        block = nvdl.Dispatch("nv_bench.measurement")
        block.YArray(samples, BLOCK)
        block.XIncrement = 1.0 / RATE
        block.FunctionType = "Time record"
        block.WindowType = "Hanning"
        block.BandwidthCorrectionFactor = 0
        return block.Multiply(block.Window()).Fft()

    sums = [None, None, None]
    blocks = SAMPLES // BLOCK
    for b in range(blocks):
        sx = spectrum(x[b * BLOCK:(b + 1) * BLOCK])
        sy = spectrum(y[b * BLOCK:(b + 1) * BLOCK])
        for k, term in enumerate((sx.Psd(sx), sy.Psd(sy), sx.Psd(sy))):
            sums[k] = term if sums[k] is None else sums[k].Add(term, 0)
    gxx, gyy, gxy = (s.ScalarMultiply(1.0 / blocks) for s in sums)
    gxy.Frf(gxx, 1)
    return gxy.Coherence(gxx, gyy)


def cpp_road(binary, runs):
    """Best of `runs` repetitions, each the mean time of the benchmark's iterations."""
    out = subprocess.run([binary, "--benchmark_format=json", f"--benchmark_repetitions={runs}"],
                         check=True, capture_output=True, text=True).stdout
    rows = json.loads(out)["benchmarks"]
    return min(row["real_time"] for row in rows if row.get("run_type", "iteration") == "iteration") / 1000.0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cpp", help="path of the bench_cross_spectrum binary")
    parser.add_argument("--no-client", action="store_true", help="skip the road through the Python client")
    args = parser.parse_args()

    runs = 3  # every road is timed as the best of this many runs
    x, y = record()
    scipy_time, (f, coherence) = best_of(runs, lambda: scipy_road(x, y))
    print(f"scipy.signal.coherence: {scipy_time * 1000:.0f} ms (coherence at {f[16]:.0f} Hz: {coherence[16]:.4f})")
    if not args.no_client:
        client_time, result = best_of(runs, lambda: client_road(x, y))
        print(f"nvdl client road:       {client_time * 1000:.0f} ms (coherence at line 16: {result.YRealArray[16]:.4f})")
        print(f"client road / scipy:    {client_time / scipy_time:.2f}x the time")
    if args.cpp:
        cpp_time = cpp_road(args.cpp, runs)
        print(f"C++ road:               {cpp_time * 1000:.0f} ms")
        print(f"scipy / C++ road:       {scipy_time / cpp_time:.2f}x faster in C++")


if __name__ == "__main__":
    main()
