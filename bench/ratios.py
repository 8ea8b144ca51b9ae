#!/usr/bin/env python3
"""Ratio table of a json_bench run written with --benchmark_format=json.

Prints, per document, the median CPU time of every repetition of quilljson
and RapidJSON and the ratios RapidJSON time / quilljson time (above 1 means
quilljson is faster): parse against RapidJSON's default and full-precision
parse, serialize against its Writer.
"""
import collections
import json
import statistics
import sys

times = collections.defaultdict(list)
for b in json.load(open(sys.argv[1]))["benchmarks"]:
    if b.get("run_type") == "iteration":
        times[b["run_name"]].append(b["cpu_time"])
median = {name: statistics.median(t) for name, t in times.items()}

print("| Document | quilljson parse | RapidJSON parse | RapidJSON full-precision parse "
      "| quilljson write | RapidJSON write | parse vs default | parse vs full precision | write |")
print("|---|---|---|---|---|---|---|---|---|")
for doc in ("canada", "citm_catalog", "twitter"):
    q, r, rf, qs, rs = (median[f"{n}/{doc}"] for n in
                        ("QuillParse", "RapidParse", "RapidParseFullPrecision", "QuillSerialize", "RapidSerialize"))
    print(f"| {doc} | {q:.3g} | {r:.3g} | {rf:.3g} | {qs:.3g} | {rs:.3g} "
          f"| {r / q:.2f} | {rf / q:.2f} | {rs / qs:.2f} |")
