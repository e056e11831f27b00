"""numpy's min/max of the long channel of bench_trc_compressed, for comparison.

Reads the layout the bench leaves beside its recording (stream offset, scan stride, block bytes,
scans, blocksize, steps, step length), maps the file with np.memmap and takes the minimum and the
maximum of every step of the channel's samples, which stand in blocks between status records.
Prints the best time of a few runs and the channel's bytes per second.

With --bench and the path of bench_trc_compressed, runs the bench and numpy in turns, --rounds
times, each for about two seconds, and prints the least and the spread (largest - least) over the
rounds of the mean times of the reduced read, the raw reads and numpy: on a machine shared with
other work the turns meet the same load.

Usage: python3 bench/compressed_reference.py [recording] [--bench BINARY [--rounds N]]
       (recording: default $NVDL_BENCH_DIR or /tmp)
"""
import argparse
import json
import os
import subprocess
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


def numpy_times(path, runs, seconds=0.0):
    """The times of `runs` reductions of the channel (more while `seconds` have not passed), with
    the layout and the last pairs."""
    with open(path + ".layout") as f:
        offset, stride, block_bytes, scans, blocksize, steps, step = map(int, f.read().split())
    times = []
    begin = time.perf_counter()
    while len(times) < runs or time.perf_counter() - begin < seconds:
        start = time.perf_counter()
        stream = np.memmap(path, dtype=np.uint8, mode="r", offset=offset, shape=(scans, stride))
        data = stream[:, :block_bytes].view("<f4")
        pairs = reduce(data, blocksize, steps, step)
        times.append(time.perf_counter() - start)
        del stream
    return times, scans * block_bytes, steps, step, pairs


def bench_times(binary):
    """One run of the bench's raw and reduced reads: their mean times per iteration in seconds."""
    out = subprocess.run([binary, "--benchmark_filter=RawRead|ReducedReadOfTheChannel", "--benchmark_format=json"],
                         check=True, capture_output=True, text=True).stdout
    times = {b["name"].split("/")[0]: b["real_time"] / 1e3 for b in json.loads(out)["benchmarks"]}
    return times["RawReadOfTheChannel"], times["ReducedReadOfTheChannel"]


def rounds(path, binary, count):
    series = {"ours": [], "pread": [], "numpy": []}
    for _ in range(count):
        raw, ours = bench_times(binary)
        series["pread"].append(raw)
        series["ours"].append(ours)
        # Like the bench's figures, the mean time of the runs of about two seconds.
        times = numpy_times(path, 1, 2.0)[0]
        series["numpy"].append(sum(times) / len(times))
    for name, times in series.items():
        print(f"{name:6} least {min(times) * 1e3:6.1f} ms, spread {(max(times) - min(times)) * 1e3:6.1f} ms "
              f"over {count} rounds: " + " ".join(f"{t * 1e3:.0f}" for t in times))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("recording", nargs="?",
                        default=os.path.join(os.environ.get("NVDL_BENCH_DIR") or "/tmp", "nvdl_bench_compressed.trc"))
    parser.add_argument("--bench", help="bench_trc_compressed, to run in turns with numpy")
    parser.add_argument("--rounds", type=int, default=5)
    args = parser.parse_args()
    if args.bench:
        rounds(args.recording, args.bench, args.rounds)
        return
    times, channel_bytes, steps, step, pairs = numpy_times(args.recording, 3)
    best = min(times)
    print(f"numpy min/max over memmap: {best * 1e3:.1f} ms, {channel_bytes / best / 1e9:.2f} GB/s "
          f"({steps} steps of {step}, first pair {pairs[0]:.3f} {pairs[1]:.3f})")


if __name__ == "__main__":
    main()
