#!/usr/bin/python3
"""Times numpy.fft.rfft and scipy.fft.rfft on float32 blocks of the sizes of bench_fft, for
comparison with daFft.

Run it with the machine's BLAS tuning variables unset for this command alone, so numpy and scipy
see their defaults:
    env -u OPENBLAS_CORETYPE -u OPENBLAS_L2_SIZE /usr/bin/python3 bench/fft_reference.py
Reports the best of several repeats, in microseconds per transform.
"""
import sys
import timeit

import numpy as np
import scipy.fft

SIZES = (4096, 65536, 1 << 20)


def best_time(function, block, repeats=7):
    # Enough calls per repeat for about 0.2 s, then the fastest repeat.
    calls = max(1, int(0.2 / max(timeit.timeit(lambda: function(block), number=1), 1e-7)))
    times = timeit.repeat(lambda: function(block), number=calls, repeat=repeats)
    return min(times) / calls * 1e6


def main():
    rng = np.random.default_rng(42)
    print(f"numpy {np.__version__}, scipy {scipy.__version__}")
    print(f"{'size':>10} {'numpy.fft.rfft us':>20} {'scipy.fft.rfft us':>20}")
    for n in SIZES:
        block = rng.uniform(-1.0, 1.0, n).astype(np.float32)
        numpy_us = best_time(np.fft.rfft, block)
        scipy_us = best_time(scipy.fft.rfft, block)
        print(f"{n:>10} {numpy_us:>20.1f} {scipy_us:>20.1f}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
