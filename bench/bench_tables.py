#!/usr/bin/env python3
"""Runs the benchmark programs and regenerates the tables of bench/README.md.

Every figure of a table is a median of interleaved repetitions
(--benchmark_repetitions, --benchmark_enable_random_interleaving), taken under two conditions:

  alone  the row's library case and its anchors, run together on their own in a fresh process
         (--benchmark_filter): a fresh heap;
  whole  the whole benchmark program, where the other cases have already used and freed a lot of
         memory, as in a real program.

A ratio is the library's median divided by the anchor's median from the same process; the worse
of the two conditions is the one that counts against a target. Python 3 standard library only.
"""

import argparse
import datetime
import json
import os
import re
import statistics
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "linux"
BIN = BUILD / "bin"
RESULTS = BUILD / "bench-results"
README = ROOT / "bench" / "README.md"


class Row:
    """One line of a table: a library case against one or more anchors (the first one gives the
    ratio). `anchor_value` replaces an anchor benchmark by a fixed figure in nanoseconds;
    `counter` reads a user counter (in microseconds) instead of the time per iteration."""

    def __init__(self, label, lib, anchors=(), target=None, clock=None, counter=None, anchor_value=None,
                 anchor_label=None):
        self.label = label
        self.lib = lib
        self.anchors = list(anchors)
        self.target = target
        self.clock = clock
        self.counter = counter
        self.anchor_value = anchor_value
        self.anchor_label = anchor_label

    def benchmarks(self):
        return [self.lib] + self.anchors


class Table:
    def __init__(self, key, program, columns, rows, clock="cpu"):
        self.key = key
        self.program = program
        self.columns = columns  # header names: library column, then one per anchor
        self.rows = rows
        self.clock = clock


LIST = "bench_cow_1DArrayList"
MAP = "bench_cow_Map"

TABLES = [
    Table("strings", "bench_atr_String", ["atr_String", "std::string"], [
        Row("copy, 8 chars", "atr_Copy/8", ["std_Copy/8"]),
        Row("copy, 64 chars", "atr_Copy/64", ["std_Copy/64"]),
        Row("copy, 4096 chars", "atr_Copy/4096", ["std_Copy/4096"]),
        Row("copy then write one char, 64", "atr_CopyThenWrite/64", ["std_CopyThenWrite/64"]),
        Row("copy then write one char, 4096", "atr_CopyThenWrite/4096", ["std_CopyThenWrite/4096"]),
        Row("append loop, 16 pieces", "atr_AppendLoop/16", ["std_AppendLoop/16"], target=1.3),
        Row("append loop, 4096 pieces", "atr_AppendLoop/4096", ["std_AppendLoop/4096"]),
        Row("append char x 4096", "atr_AppendChar/4096", ["std_AppendChar/4096"], target=1.3),
        Row("find, 64 chars", "atr_Find/64", ["std_Find/64"]),
        Row("find, 65536 chars", "atr_Find/65536", ["std_Find/65536"]),
    ]),
    Table("cow_string", "bench_cow_String", ["cow_String", "std::string"], [
        Row("copy, 8 chars", "cow_Copy/8", ["std_Copy/8"]),
        Row("copy, 256 chars", "cow_Copy/256", ["std_Copy/256"]),
        Row("compare, differing in the last of 8 chars", "cow_Compare/8", ["std_Compare/8"], target=1.2),
        Row("compare, differing in the last of 256 chars", "cow_Compare/256", ["std_Compare/256"]),
        Row("1000 appends of 5 chars", "cow_Append/1000", ["std_Append/1000"]),
    ]),
    Table("lists", LIST, ["cow", "std::vector"], [
        Row("append 65536 int", "cow_Append<int>/65536", ["std_Append<int>/65536"]),
        Row("append 65536 double", "cow_Append<double>/65536", ["std_Append<double>/65536"], target=3.0),
        Row("sequential read 65536 int, block by block", "cow_BlockRead<int>/65536",
            ["std_SequentialRead<int>/65536"], target=1.3),
        Row("sequential read 65536 int, `operator[]`", "cow_SequentialRead<int>/65536",
            ["std_SequentialRead<int>/65536"], target=1.3),
        Row("sequential read 65536 double, block by block", "cow_BlockRead<double>/65536",
            ["std_SequentialRead<double>/65536"]),
        Row("sequential read 65536 double, `operator[]`", "cow_SequentialRead<double>/65536",
            ["std_SequentialRead<double>/65536"]),
        Row("random read 65536 int", "cow_RandomRead<int>/65536", ["std_RandomRead<int>/65536"], target=2.0),
        Row("random read 65536 double", "cow_RandomRead<double>/65536", ["std_RandomRead<double>/65536"],
            target=2.0),
        Row("copy 10^6 int, then write one", "cow_CopyThenWriteOne/1000000", ["std_CopyThenWriteOne/1000000"]),
        Row("prepend 16384 (cow_List vs vector insert at front)", "cow_ListPrepend/16384",
            ["std_VectorInsertFront/16384"]),
    ]),
    Table("maps", MAP, ["cow_Map", "std::map", "std::unordered_map"], [
        Row("insert 10^5", "cow_Insert/100000", ["std_Insert<StdMap>/100000", "std_Insert<StdHash>/100000"],
            target=1.3),
        Row("find 10^5 present keys", "cow_Find/100000", ["std_Find<StdMap>/100000", "std_Find<StdHash>/100000"]),
        Row("iterate 10^5 (tree order)", "cow_Iterate/100000",
            ["std_Iterate<StdMap>/100000", "std_Iterate<StdHash>/100000"]),
        Row("copy 10^6 entries, then write one", "cow_CopyThenWriteOne/1000000",
            ["std_CopyThenWriteOne<StdMap>/1000000/iterations:3",
             "std_CopyThenWriteOne<StdHash>/1000000/iterations:3"]),
        Row("20000 string keys (\"key_<n>\"): insert, then find each", "cow_StringInsertFind/20000",
            ["std_StringInsertFind/20000"], target=1.2),
    ]),
    Table("btree", MAP, ["cow_Btree", "std::map"], [
        Row("insert 10^5", "btree_Insert/100000", ["std_Insert<StdMap>/100000"], target=1.5),
        Row("find 10^5 present keys", "btree_Find/100000", ["std_Find<StdMap>/100000"]),
        Row("iterate 10^5 in key order", "btree_Iterate/100000", ["std_Iterate<StdMap>/100000"], target=1.5),
    ]),
    Table("hash", "bench_cow_HashTable", ["library", "anchor"], [
        Row("`cow_HashTable` insert 10^5 vs `std::unordered_map`", "hash_Insert/100000", ["std_HashInsert/100000"]),
        Row("`cow_HashTable` find 10^5 vs `std::unordered_map`", "hash_Find/100000", ["std_HashFind/100000"]),
        Row("`cls_PTrie` insert 10^5 vs `std::map`", "trie_Insert/100000", ["std_MapInsert/100000"]),
        Row("`cls_PTrie` find 10^5 vs `std::map`", "trie_Find/100000", ["std_MapFind/100000"]),
        Row("`cls_PTrie` iterate 10^5 vs `std::map`", "trie_Iterate/100000", ["std_MapIterate/100000"]),
    ]),
    Table("multisection", "bench_utl_Multisection", ["library", "anchor"], [
        Row("checksum of 64 MiB (CRC-32/MPEG-2 vs zlib `crc32`)", "utl_Crc64MiB", ["zlib_Crc64MiB"]),
        Row("`saveChanges` of 64 sections of 1 MiB vs a plain read-and-write copy of the 64 MiB", "utl_SaveContainer64MiB",
            ["plain_Copy64MiB"], clock="real"),
        Row("10^6 `WriteInt` calls vs one `WriteIntArray` of 10^6 ints", "utl_BinWriteIntEach/iterations:2",
            ["utl_BinWriteIntArray"], clock="real"),
    ]),
    Table("crypto", "bench_uti_Crypto", ["library", "OpenSSL"], [
        Row("MD5 of 1 MiB (`uti_MD5` vs `MD5()`)", "uti_MD5_1MiB", ["OpenSSL_MD5_1MiB"]),
        Row("Blowfish ECB encrypt 1 MiB (`Encrypt` vs a `BF_ecb_encrypt` loop)", "uti_Blowfish_1MiB/0",
            ["OpenSSL_BF_ecb_1MiB/0"]),
        Row("Blowfish ECB decrypt 1 MiB (`Decrypt` vs `BF_ecb_encrypt(..., BF_DECRYPT)`)", "uti_Blowfish_1MiB/1",
            ["OpenSSL_BF_ecb_1MiB/1"]),
        Row("rotor encrypt 1 MiB (no anchor: against Blowfish encrypt)", "uti_Rotor_Encrypt_1MiB",
            ["OpenSSL_BF_ecb_1MiB/0"]),
        Row("rotor encrypt 64 bytes (no anchor)", "uti_Rotor_Encrypt_64B", []),
    ]),
    Table("threadpool", "bench_thr_ThreadPool", ["library", "anchor"], [
        Row("`RunTask` to task start, workers polling (median of 200)", "thr_StartLatencyPolling/iterations:1", [],
            counter="median_us", anchor_value=10e6, anchor_label="a 10 ms sleep round"),
        Row("`RunTask` to task start, workers blocked after 1.1 s idle (median of 5)",
            "thr_StartLatencyBlocked/iterations:1", [], counter="median_us", anchor_value=10e6,
            anchor_label="a 10 ms sleep round"),
        Row("10^5 small tasks on 2 workers vs the same tasks run inline", "thr_SmallTasksOnTwoWorkers",
            ["anchor_SmallTasksInline"]),
    ], clock="real"),
    Table("base64", "bench_utl_Base64", ["utl", "OpenSSL"], [
        Row("encode 57 bytes", "utl_Encode/57", ["ssl_Encode/57"]),
        Row("encode 4 KiB", "utl_Encode/4096", ["ssl_Encode/4096"]),
        Row("encode 1 MiB", "utl_Encode/1048576", ["ssl_Encode/1048576"]),
        Row("decode 57 bytes", "utl_Decode/57", ["ssl_Decode/57"]),
        Row("decode 4 KiB", "utl_Decode/4096", ["ssl_Decode/4096"]),
        Row("decode 1 MiB", "utl_Decode/1048576", ["ssl_Decode/1048576"]),
        Row("`utl_base64Encode` (string, line breaks) 1 MiB vs `EVP_EncodeBlock`", "utl_EncodeString/1048576",
            ["ssl_Encode/1048576"]),
        Row("`utl_base64Decode` (string, line breaks) 1 MiB vs `EVP_DecodeBlock`", "utl_DecodeString/1048576",
            ["ssl_Decode/1048576"]),
    ]),
    Table("regex", "bench_rgx_Match", ["rgx", "PCRE2"], [
        Row("`rgx_match`, cached pattern, JIT vs `pcre2_match` with JIT", "rgx_Match/jit:1",
            ["pcre2_Match/jit:1/direct:0"]),
        Row("`rgx_match`, cached pattern, JIT vs `pcre2_jit_match`", "rgx_Match/jit:1",
            ["pcre2_Match/jit:1/direct:1"]),
        Row("`rgx_match`, cached pattern, no JIT vs `pcre2_match` without JIT", "rgx_Match/jit:0",
            ["pcre2_Match/jit:0/direct:0"]),
        Row("`rgx_match`, two patterns alternating (map lookup each time), JIT", "rgx_MatchAlternating/jit:1",
            ["pcre2_Match/jit:1/direct:0"]),
        Row("`rgx_match`, two patterns alternating, no JIT", "rgx_MatchAlternating/jit:0",
            ["pcre2_Match/jit:0/direct:0"]),
        Row("`rgx_subn`, 200 replacements, JIT", "rgx_Subn", ["pcre2_Subn"]),
        Row("`rgx_match` with the JIT vs without it", "rgx_Match/jit:1", ["rgx_Match/jit:0"]),
    ]),
]


def sh(cmd, **kw):
    return subprocess.run(cmd, check=True, **kw)


def programs():
    seen = []
    for t in TABLES:
        if t.program not in seen:
            seen.append(t.program)
    return seen


def check_every_program_has_a_table():
    on_disk = sorted(p.stem for p in (ROOT / "bench").glob("bench_*.cpp"))
    missing = [p for p in on_disk if p not in programs()]
    if missing:
        sys.exit("bench_tables.py: no table for " + ", ".join(missing))


def build(progs):
    if not (BUILD / "CMakeCache.txt").exists():
        sh(["cmake", "--preset", "linux"], cwd=ROOT, stdout=subprocess.DEVNULL)
    sh(["cmake", "--build", "--preset", "linux", "--target"] + progs, cwd=ROOT, stdout=subprocess.DEVNULL)


def build_type():
    for line in (BUILD / "CMakeCache.txt").read_text().splitlines():
        if line.startswith("CMAKE_BUILD_TYPE:"):
            return line.split("=", 1)[1]
    return "?"


def filter_for(names):
    # Google Benchmark's filter is a regular expression; names hold '<', '>', '/' and ':'.
    def esc(n):
        return re.sub(r"([.\[\](){}*+?|^$\\])", r"\\\1", n)
    return "^(" + "|".join(esc(n) for n in names) + ")$"


def run(program, names, args, tag):
    """Runs one program (all of it when names is None); returns {benchmark: [run records]}."""
    RESULTS.mkdir(parents=True, exist_ok=True)
    out = RESULTS / f"{program}-{tag}.json"
    cmd = [str(BIN / program), f"--benchmark_repetitions={args.repetitions}",
           "--benchmark_enable_random_interleaving=true", f"--benchmark_out={out}", "--benchmark_out_format=json"]
    cmd.append(f"--benchmark_min_time={args.min_time}")
    if names is not None:
        cmd.append("--benchmark_filter=" + filter_for(names))
    if not args.reuse:
        done = subprocess.run(cmd, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, cwd=BUILD)
        if done.returncode != 0:
            sys.exit(f"bench_tables.py: {' '.join(cmd)} failed:\n{done.stderr}")
    runs = {}
    for b in json.loads(out.read_text())["benchmarks"]:
        if b.get("run_type") == "iteration" and not b.get("error_occurred"):
            runs.setdefault(b["run_name"] if "run_name" in b else b["name"], []).append(b)
    if names is not None:
        lost = [n for n in names if n not in runs]
        if lost:
            sys.exit(f"bench_tables.py: {program} has no benchmark named " + ", ".join(lost))
    return runs


UNIT_NS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def median_ns(records, clock, counter):
    if counter:
        return statistics.median(r[counter] * 1e3 for r in records)  # counters are in microseconds
    key = "real_time" if clock == "real" else "cpu_time"
    return statistics.median(r[key] * UNIT_NS[r["time_unit"]] for r in records)


def fmt_time(ns):
    if ns is None:
        return "—"
    for unit, scale in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if ns >= scale:
            v = ns / scale
            return f"{v:.3g} {unit}" if v < 100 else f"{v:.0f} {unit}"
    return f"{ns:.3g} ns" if ns < 100 else f"{ns:.0f} ns"


def fmt_ratio(r):
    if r is None:
        return "—"
    if r < 0.01:
        return f"{r:.1e}"
    return f"{r:.2f}" if r < 10 else f"{r:.1f}"


def measure(table, row, whole, alone):
    clock = row.clock or table.clock
    out = {}
    for cond, runs in (("alone", alone), ("whole", whole)):
        lib = median_ns(runs[row.lib], clock, row.counter)
        anchors = [median_ns(runs[a], clock, None) for a in row.anchors]
        if row.anchor_value is not None:
            anchors = [row.anchor_value]
        ratio = lib / anchors[0] if anchors and anchors[0] > 0 else None
        out[cond] = (lib, anchors, ratio)
    return out


def render(table, results):
    anchors_cols = table.columns[1:]
    head = ["case", table.columns[0]] + anchors_cols + ["ratio alone", "ratio whole", "target", "holds"]
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * len(head)]
    for row, m in zip(table.rows, results):
        lib, anchors, ra = m["alone"]
        rw = m["whole"][2]
        cells = [row.label, fmt_time(lib)]
        for i in range(len(anchors_cols)):
            if row.anchor_label and i == 0:
                cells.append(row.anchor_label)
            else:
                cells.append(fmt_time(anchors[i]) if i < len(anchors) else "—")
        cells += [fmt_ratio(ra), fmt_ratio(rw)]
        if row.target is None or ra is None:
            cells += ["—", ""]
        else:
            worse = max(ra, rw)
            cells += [f"<= {row.target:g}", "yes" if worse <= row.target else f"no ({fmt_ratio(worse)})"]
        lines.append("| " + " | ".join(cells) + " |")
    return "\n".join(lines)


def machine(load_before, load_after, seconds, args):
    model = "?"
    try:
        for line in Path("/proc/cpuinfo").read_text().splitlines():
            if line.startswith("model name"):
                model = line.split(":", 1)[1].strip()
                break
    except OSError:
        pass
    try:
        commit = subprocess.run(["git", "rev-parse", "--short", "HEAD"], cwd=ROOT, capture_output=True,
                                text=True).stdout.strip()
        dirty = subprocess.run(["git", "status", "--porcelain", "--untracked-files=no"], cwd=ROOT,
                               capture_output=True, text=True).stdout.strip()
        commit += " (with uncommitted changes)" if dirty else ""
    except OSError:
        commit = "?"
    return "\n".join([
        f"- command: `bench/run.sh{' ' + ' '.join(args.passed) if args.passed else ''}`, "
        f"{args.repetitions} interleaved repetitions per condition, medians",
        f"- date: {datetime.date.today().isoformat()}, source commit {commit}, "
        f"build `linux` preset ({build_type()}), {seconds / 60:.1f} minutes in all",
        f"- machine: {model}, {os.cpu_count()} cores; load average (1 / 5 / 15 minutes) {load_before} at "
        f"the start, {load_after} at the end (the machine is shared: other work counts in it)",
        "- time: CPU time of the benchmark thread, except where a table says wall time",
    ])


def rewrite_readme(blocks):
    text = README.read_text()
    for key, body in blocks.items():
        begin, end = f"<!-- bench:{key} -->", f"<!-- /bench:{key} -->"
        pat = re.compile(re.escape(begin) + r".*?" + re.escape(end), re.S)
        if not pat.search(text):
            sys.exit(f"bench_tables.py: bench/README.md has no {begin} ... {end} block")
        text = pat.sub(lambda m: begin + "\n" + body + "\n" + end, text)
    README.write_text(text)


def loadavg():
    try:
        return " / ".join(Path("/proc/loadavg").read_text().split()[:3])
    except OSError:
        return "?"


def main():
    ap = argparse.ArgumentParser(description="Runs bench_* and regenerates the tables of bench/README.md.")
    ap.add_argument("--quick", action="store_true", help="short runs (min time 0.05 s); README left alone")
    ap.add_argument("--reuse", action="store_true",
                    help="no run: the tables from the results of the last run (build/linux/bench-results); "
                         "README left alone")
    ap.add_argument("--repetitions", type=int, default=5, help="interleaved repetitions per condition (default 5)")
    ap.add_argument("--min-time", type=float, default=None,
                    help="--benchmark_min_time in seconds for every repetition (default 0.3)")
    ap.add_argument("--only", nargs="+", metavar="PROGRAM", help="only these programs; README left alone")
    ap.add_argument("--no-build", action="store_true", help="use the programs as built")
    args = ap.parse_args()
    args.passed = sys.argv[1:]
    if args.repetitions < 3:
        sys.exit("bench_tables.py: medians need at least 3 repetitions")
    custom_time = args.min_time is not None
    if args.min_time is None:
        args.min_time = 0.05 if args.quick else 0.3
    check_every_program_has_a_table()
    progs = [p for p in programs() if not args.only or p in args.only]
    if not args.no_build and not args.reuse:
        build(progs)

    started = time.time()
    load_before = loadavg()
    blocks = {}
    for prog in progs:
        print(f"== {prog}: whole program", file=sys.stderr)
        whole = run(prog, None, args, "whole")
        tables = [t for t in TABLES if t.program == prog]
        groups = []
        for t in tables:
            for r in t.rows:
                if r.benchmarks() not in groups:
                    groups.append(r.benchmarks())
        alone_by_group = {}
        for i, g in enumerate(groups):
            print(f"== {prog}: on their own: {', '.join(g)}", file=sys.stderr)
            alone_by_group[tuple(g)] = run(prog, g, args, f"alone{i}")
        for t in tables:
            results = [measure(t, r, whole, alone_by_group[tuple(r.benchmarks())]) for r in t.rows]
            blocks[t.key] = render(t, results)
            print(f"\n{t.key} ({prog})\n{blocks[t.key]}\n")
    seconds = time.time() - started
    blocks["meta"] = machine(load_before, loadavg(), seconds, args)
    print(blocks["meta"])
    if args.quick or args.only or args.reuse or custom_time:
        print("\nbench/README.md left alone (a partial or quick run).", file=sys.stderr)
    else:
        rewrite_readme(blocks)
        print("\nbench/README.md rewritten.", file=sys.stderr)


if __name__ == "__main__":
    main()
