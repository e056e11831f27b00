"""numpy's min/max of the long channel of bench_trc_compressed, for comparison.

Reads the layout the bench leaves beside its recording (stream offset, scan stride, block bytes,
scans, blocksize, steps, step length), maps the file with np.memmap and takes the minimum and the
maximum of every step of the channel's samples, which stand in blocks between status records.
Prints the best time of a few runs and the channel's bytes per second.

Usage: python3 bench/compressed_reference.py [recording]   (default $NVDL_BENCH_DIR or /tmp)
"""
import os
import sys
import time

import numpy as np


def reduce(data, blocksize, steps, step):
    pairs = np.empty(2 * steps, dtype=np.float32)
    for k in range(steps):
        r0, c0 = divmod(k * step, blocksize)
        r1, c1 = divmod((k + 1) * step, blocksize)
        if r0 == r1:
            parts = [data[r0, c0:c1]]
        else:
            parts = [data[r0, c0:], data[r0 + 1:r1], data[r1, :c1]]
        parts = [p for p in parts if p.size]
        pairs[2 * k] = min(p.min() for p in parts)
        pairs[2 * k + 1] = max(p.max() for p in parts)
    return pairs


def main():
    default = os.path.join(os.environ.get("NVDL_BENCH_DIR") or "/tmp", "nvdl_bench_compressed.trc")
    path = sys.argv[1] if len(sys.argv) > 1 else default
    with open(path + ".layout") as f:
        offset, stride, block_bytes, scans, blocksize, steps, step = map(int, f.read().split())
    best = float("inf")
    for _ in range(3):
        start = time.perf_counter()
        stream = np.memmap(path, dtype=np.uint8, mode="r", offset=offset, shape=(scans, stride))
        data = stream[:, :block_bytes].view("<f4")
        pairs = reduce(data, blocksize, steps, step)
        best = min(best, time.perf_counter() - start)
        del stream
    channel_bytes = scans * block_bytes
    print(f"numpy min/max over memmap: {best * 1e3:.1f} ms, {channel_bytes / best / 1e9:.2f} GB/s "
          f"({steps} steps of {step}, first pair {pairs[0]:.3f} {pairs[1]:.3f})")


if __name__ == "__main__":
    main()
