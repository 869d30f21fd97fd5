#!/usr/bin/python3
"""Runs the benchmark workloads as separate processes, beside the peer programs on the
same input in the same run, and prints one table. Started by scripts/bench.sh, which
builds the programs first; bench/README.md tells what each workload measures.

Every process is timed from outside (wall clock, user and system CPU, peak resident set
from wait4), so peak memory is that of one workload. Our programs also print the phases
they time themselves ("phase <name> wall <s> cpu <s>"), which the export, join and
elevation workloads compare.
"""

import argparse
import datetime
import os
import platform
import re
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
PEERS = os.path.join(HERE, "peers")
PYTHON = "/usr/bin/python3"   # the interpreter with openpyxl and XlsxWriter
WORKLOADS = ["write", "read", "export", "join", "elevation", "dxf", "vygis"]


class Run:
    """One finished (or stopped) process: its times, its peak memory and what it printed."""

    def __init__(self, wall, user, system, peak, code, output, timed_out):
        self.wall, self.user, self.system = wall, user, system
        self.cpu = user + system
        self.peak = peak          # bytes
        self.code, self.output, self.timed_out = code, output, timed_out
        self.phases, self.figures = {}, {}
        self.cpu_range = None     # (runs, least, most) where this is a median of several
        for line in output.splitlines():
            words = line.split()
            if len(words) == 6 and words[0] == "phase":
                self.phases.setdefault(words[1], []).append((float(words[3]), float(words[5])))
            elif len(words) == 3 and words[0] == "figure":
                self.figures[words[1]] = float(words[2])

    @property
    def ok(self):
        return self.code == 0 and not self.timed_out

    def phase(self, name):
        """(wall, cpu) of a phase, the median when it ran several times."""
        runs = self.phases.get(name, [])
        if not runs:
            return None
        return (statistics.median(r[0] for r in runs), statistics.median(r[1] for r in runs))


def run(command, timeout, scratch, env=None, stdout_path=None):
    """Runs command in its own process group, stopping it after timeout seconds. What it
    prints is kept, unless stdout_path takes its standard output."""
    out_path = os.path.join(scratch, "last-output.txt")
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", **(env or {}))
    with open(out_path, "w") as out, open(stdout_path or os.devnull, "w") as data:
        start = time.monotonic()
        process = subprocess.Popen(command, stdout=data if stdout_path else out,
                                   stderr=subprocess.STDOUT if not stdout_path else out,
                                   env=environment, start_new_session=True, cwd=scratch)
        timed_out = False
        while True:
            pid, status, usage = os.wait4(process.pid, os.WNOHANG)
            if pid:
                break
            if time.monotonic() - start > timeout:
                timed_out = True
                os.killpg(process.pid, signal.SIGKILL)
                pid, status, usage = os.wait4(process.pid, 0)
                break
            time.sleep(0.02)
        wall = time.monotonic() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    with open(out_path, errors="replace") as out:
        output = out.read()
    result = Run(wall, usage.ru_utime, usage.ru_stime, usage.ru_maxrss * 1024,
                 process.returncode, output, timed_out)
    if not result.ok:
        reason = "stopped after %d s" % timeout if timed_out else "exit %d" % result.code
        print("  ! %s: %s\n%s" % (" ".join(command[:3]), reason, output[-2000:]),
              file=sys.stderr)
    return result


def median_run(runs):
    """One run standing for several of the same command: the median of each figure, so
    that a single run slowed by the machine does not decide a verdict. A failed run
    stands for them all."""
    failed = [r for r in runs if not r.ok]
    if failed:
        return failed[0]
    if len(runs) == 1:
        return runs[0]
    median = statistics.median
    result = Run(median(r.wall for r in runs), median(r.user for r in runs),
                 median(r.system for r in runs), median(r.peak for r in runs), 0,
                 runs[-1].output, False)
    result.cpu = median(r.cpu for r in runs)
    result.phases, result.figures = runs[-1].phases, runs[-1].figures
    result.cpu_range = (len(runs), min(r.cpu for r in runs), max(r.cpu for r in runs))
    return result


def python_has(module):
    return subprocess.run([PYTHON, "-c", "import " + module], stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL).returncode == 0


def remove(path):
    if os.path.isdir(path):
        shutil.rmtree(path, ignore_errors=True)
    elif os.path.exists(path):
        os.remove(path)


def fmt_count(n):
    for size, suffix in ((1e6, "M"), (1e3, "k")):
        if n >= size:
            value = n / size
            return ("%d%s" if value == int(value) else "%.1f%s") % (value, suffix)
    return str(int(n))


def fmt_mb(n):
    return "%.0f MB" % (n / 1e6)


class Table:
    """The rows of the report, printed as they come and again together at the end."""

    HEADER = "%-38s %8s %8s %8s %7s  %s" % ("workload / program", "wall s", "cpu s", "peak",
                                            "B/cell", "against the target")

    def __init__(self):
        self.lines = []

    def section(self, title):
        self.add("")
        self.add("== " + title)

    def add(self, line):
        self.lines.append(line)
        print(line, flush=True)

    def row(self, label, wall=None, cpu=None, peak=None, per_cell=None, note=""):
        cell = lambda v, f: (f % v) if v is not None else "-"
        self.add("%-38s %8s %8s %8s %7s  %s" % (
            label, cell(wall, "%.2f"), cell(cpu, "%.2f"),
            fmt_mb(peak) if peak is not None else "-", cell(per_cell, "%.0f"), note))

    def run_row(self, label, result, cells=None, baseline=None, note=""):
        if result.timed_out:
            self.row(label, note="stopped after %.0f s" % result.wall)
            return
        if not result.ok:
            self.row(label, note="FAILED (exit %d)" % result.code)
            return
        per_cell = None
        if cells and baseline is not None:
            per_cell = max(result.peak - baseline, 0) / cells
        if result.cpu_range:
            spread = "median of %d, cpu %.2f-%.2f s" % result.cpu_range
            note = spread + ("; " + note if note else "")
        self.row(label, result.wall, result.cpu, result.peak, per_cell, note)


def verdict(value, limit, smaller=True):
    good = value <= limit if smaller else value >= limit
    return "PASS" if good else "MISS"


def ratio_note(ours, peer, limit, what):
    """Our time over the peer's, by CPU time (the verdict) and by wall time."""
    cpu = ours.cpu / peer.cpu if peer.cpu > 0 else float("inf")
    wall = ours.wall / peer.wall if peer.wall > 0 else float("inf")
    return "%s: %.3f cpu (%.3f wall), target <= %.2f %s" % (what, cpu, wall, limit,
                                                             verdict(cpu, limit))


def speed_note(ours, peer, what):
    """Our time over the peer's, by CPU time and by wall time, where there is no target."""
    cpu = ours.cpu / peer.cpu if peer.cpu > 0 else float("inf")
    wall = ours.wall / peer.wall if peer.wall > 0 else float("inf")
    return "%s: %.3f cpu (%.3f wall)" % (what, cpu, wall)


class Bench:
    def __init__(self, options):
        self.o = options
        self.bin = os.path.join(options.build_dir, "bench")
        self.scratch = tempfile.mkdtemp(prefix="vygis-bench-", dir=options.scratch)
        self.table = Table()
        self.written = {}   # cells -> our workbook of that size, for the read workload
        q = options.quick
        self.sizes = [200_000, 2_000_000] if q else [2_000_000, 20_000_000]
        self.features = 100_000 if q else 1_000_000
        self.join_rows = 10_000 if q else 100_000
        self.points = 10_000 if q else 100_000
        self.grid = 1000 if q else 4000
        # A peer runs at the larger size only when ten times its time at the smaller one
        # stays under this; every process is stopped after timeout seconds (GDAL's XLSX
        # writer, for one, slows down far more than tenfold at 20M cells).
        self.projection_limit = 60 if q else 240
        self.timeout = 120 if q else 300
        # The runs a verdict compares are repeated and their medians kept: on a virtual
        # machine the same run of ours took from 0.4 to 0.6 s at 2M cells and from 2.9
        # to 5.0 s at 20M, depending on what the machine's memory went through before.
        self.repeats = 3

    def path(self, name):
        return os.path.join(self.scratch, name)

    def ours(self, program, *arguments, timeout=None):
        return run([os.path.join(self.bin, program)] + [str(a) for a in arguments],
                   timeout or self.timeout, self.scratch)

    def peer(self, command, timeout=None, stdout_path=None):
        return run(command, timeout or self.timeout, self.scratch, stdout_path=stdout_path)

    def qxlsx(self, workload):
        """The QXlsx peer of the write or read workload, where this build has it: it is
        built only from a QXlsx source tree the user gives (bench/README.md)."""
        program = os.path.join(self.bin, "qxlsx_" + workload)
        return program if os.path.exists(program) else None

    def qxlsx_skipped(self):
        self.table.add("  skipped: QXlsx (not built: no QXlsx source tree given, "
                       "scripts/bench.sh --qxlsx PATH)")

    # --- 1. writing -----------------------------------------------------------------

    def write_peers(self):
        peers = []
        lxw = os.path.join(self.bin, "libxlsxwriter_write")
        if os.path.exists(lxw):
            peers.append(("libxlsxwriter constant-mem", lambda n, out: [lxw, n, out, "constant"]))
            peers.append(("libxlsxwriter default", lambda n, out: [lxw, n, out]))
        qxlsx = self.qxlsx("write")
        if qxlsx:
            peers.append(("QXlsx", lambda n, out: [qxlsx, n, out]))
        for name, module, script in (("XlsxWriter (Python)", "xlsxwriter", "xlsxwriter_write.py"),
                                     ("openpyxl write-only", "openpyxl", "openpyxl_write.py")):
            command = lambda n, out, script=script: [PYTHON, os.path.join(PEERS, script), n, out]
            peers.append((name, command if python_has(module) else None))
        if shutil.which("ogr2ogr"):
            peers.append(("GDAL ogr2ogr CSV->XLSX", "gdal"))
        return peers

    def write_with_gdal(self, cells, out):
        csv_path = self.path("cells-%d" % cells)
        if not os.path.exists(csv_path):
            subprocess.run([PYTHON, os.path.join(PEERS, "cells_csv.py"), str(cells), csv_path],
                           check=True)
        result = self.peer(["ogr2ogr", "-f", "XLSX", out, csv_path])
        remove(csv_path)
        return result

    def bench_write(self):
        t = self.table
        t.section("1. Writing %s formatted text cells (title, header, rows of 10)"
                  % " and ".join(fmt_count(n) for n in self.sizes))
        baseline = self.ours("bench_write", 0, self.path("baseline.xlsx"))
        self.baseline_peak = baseline.peak
        t.add("baseline (title and header only): peak %s" % fmt_mb(baseline.peak))
        ours_by_size, small_times, skipped = {}, {}, []
        for index, cells in enumerate(self.sizes):
            t.add("-- %s cells" % fmt_count(cells))
            out = self.path("ours-%d.xlsx" % cells)
            ours = median_run([self.ours("bench_write", cells, out)
                               for _ in range(self.repeats)])
            ours_by_size[cells] = ours
            if ours.ok:
                self.written[cells] = out
            per_cell = max(ours.peak - baseline.peak, 0) / cells if ours.ok else None
            note = ""
            if per_cell is not None:
                note = "memory %.0f B/cell above baseline, target <= 80 %s" % (
                    per_cell, verdict(per_cell, 80))
            t.run_row("vygisutil engine", ours, cells, baseline.peak, note)
            for name, command in self.write_peers():
                if command is None:
                    if index == 0:
                        t.add("  %s: not installed" % name)
                    continue
                if index > 0 and not self.projected_ok(small_times.get(name)):
                    skipped.append((name, cells, small_times.get(name)))
                    continue
                peer_out = self.path("peer.xlsx")
                remove(peer_out)
                repeats = self.repeats if name == "libxlsxwriter constant-mem" else 1
                result = median_run([self.write_with_gdal(cells, peer_out) if command == "gdal"
                                     else self.peer([str(a) for a in command(cells, peer_out)])
                                     for _ in range(repeats)])
                remove(peer_out)
                if index == 0:
                    small_times[name] = result.wall if result.ok else None
                note = ""
                if name == "libxlsxwriter constant-mem" and result.ok and ours.ok:
                    note = ratio_note(ours, result, 0.35, "ours/this")
                if name == "QXlsx" and result.ok and ours.ok:
                    note = speed_note(ours, result, "ours/QXlsx")
                t.run_row("  " + name, result, cells, baseline.peak, note)
        if not self.qxlsx("write"):
            self.qxlsx_skipped()
        for name, cells, small in skipped:
            t.add("  skipped at %s: %s (%s at %s, x10 > %d s)" % (
                fmt_count(cells), name,
                "%.0f s" % small if small else "failed", fmt_count(self.sizes[0]),
                self.projection_limit))
        self.scaling_row("scaling", ours_by_size)

    def scaling_row(self, label, runs):
        """How much more the larger size cost than the smaller, against 1.1 x the sizes."""
        small, large = (runs.get(n) for n in self.sizes)
        if small and large and small.ok and large.ok:
            factor = self.sizes[1] / self.sizes[0]
            cpu, wall = large.cpu / small.cpu, large.wall / small.wall
            self.table.add("%s %s/%s: %.2fx cpu (%.2fx wall), target <= %.0fx %s" % (
                label, fmt_count(self.sizes[1]), fmt_count(self.sizes[0]), cpu, wall,
                1.1 * factor, verdict(cpu, 1.1 * factor)))

    def projected_ok(self, small_time):
        return small_time is not None and small_time * 10 <= self.projection_limit

    # --- 2. reading -----------------------------------------------------------------

    def bench_read(self):
        t = self.table
        t.section("2. Reading our workbooks back")
        if not self.written:
            for cells in self.sizes:
                out = self.path("ours-%d.xlsx" % cells)
                if self.ours("bench_write", cells, out).ok:
                    self.written[cells] = out
        empty = self.path("baseline.xlsx")
        if not os.path.exists(empty):
            self.ours("bench_write", 0, empty)
        baseline = self.ours("bench_read", "data", empty)
        t.add("baseline (reading the title and header only): peak %s" % fmt_mb(baseline.peak))
        soffice = shutil.which("soffice")
        if soffice:   # its first start makes a profile: not part of any timing
            self.peer(self.libreoffice_command(soffice, empty, self.path("lo-warm")))
        small_times, skipped, by_cell_runs = {}, [], {}
        for index, cells in enumerate(self.sizes):
            source = self.written.get(cells)
            if not source:
                continue
            t.add("-- %s cells (%s)" % (fmt_count(cells), fmt_mb(os.path.getsize(source))))
            repeats = self.repeats
            # Cell by cell first: right after getExcelData's 1.6 GB at 20M cells it took
            # 4.9 to 5.3 s of CPU instead of 2.9, the machine's memory slow to recover.
            by_cell = median_run([self.ours("bench_read", "cells", source)
                                  for _ in range(repeats)])
            data = median_run([self.ours("bench_read", "data", source) for _ in range(repeats)])
            by_cell_runs[cells] = by_cell
            # getExcelData reads the active sheet; a workbook beyond one sheet's rows has more
            whole = data.ok and data.figures.get("cells", 0) >= cells
            t.run_row("getExcelData", data, cells if whole else None, baseline.peak,
                      "" if whole or not data.ok else "active sheet only: %s cells"
                      % fmt_count(data.figures.get("cells", 0)))
            t.run_row("open + cellAt()->value()", by_cell, cells, baseline.peak)
            peers = [("GDAL ogr2ogr XLSX->CSV",
                      lambda out: ["ogr2ogr", "-f", "CSV", out, source], 0.20),
                     ("openpyxl read-only",
                      lambda out: [PYTHON, os.path.join(PEERS, "openpyxl_read.py"), source], 0.05),
                     ("xlsx2csv", lambda out: ["xlsx2csv", "-a", source, out], None)]
            qxlsx = self.qxlsx("read")
            if qxlsx:
                peers.append(("QXlsx open + cellAt()->value()", lambda out: [qxlsx, source],
                              None))
            if soffice:
                peers.append(("LibreOffice --convert-to csv",
                              lambda out: self.libreoffice_command(soffice, source, out), None))
            for name, command, limit in peers:
                program = command("x")[0]
                if program != PYTHON and not shutil.which(program):
                    t.add("  %s: not installed" % name)
                    continue
                if index > 0 and (name.startswith("LibreOffice")
                                  or not self.projected_ok(small_times.get(name))):
                    skipped.append((name, cells, small_times.get(name)))
                    continue
                out = self.path("peer-read.csv")
                result = median_run([self.read_peer(command, out)
                                     for _ in range(repeats if name.startswith("GDAL") else 1)])
                if index == 0:
                    small_times[name] = result.wall if result.ok else None
                notes = []
                if limit and result.ok:
                    for label, ours in (("getExcelData", data), ("cellAt", by_cell)):
                        if ours.ok and (whole or ours is by_cell):
                            notes.append(ratio_note(ours, result, limit, label + "/this"))
                if name.startswith("QXlsx") and result.ok and by_cell.ok:
                    notes.append(speed_note(by_cell, result, "cellAt/QXlsx"))
                    if result.figures != by_cell.figures:
                        notes.append("read other counts than ours: %s" % result.figures)
                t.run_row("  " + name, result, cells, baseline.peak, "; ".join(notes))
        for name, cells, small in skipped:
            why = ("run at the smaller size only" if name.startswith("LibreOffice") else
                   "%s at %s, x10 > %d s" % ("%.0f s" % small if small else "failed",
                                             fmt_count(self.sizes[0]), self.projection_limit))
            t.add("  skipped at %s: %s (%s)" % (fmt_count(cells), name, why))
        if not self.qxlsx("read"):
            self.qxlsx_skipped()
        self.scaling_row("scaling of cellAt", by_cell_runs)

    def read_peer(self, command, out):
        """A peer's run with its output in a folder of its own, removed after: given a
        workbook of two sheets, ogr2ogr writes the second one's CSV beside the first."""
        folder = os.path.join(os.path.dirname(out), "peer-output")
        remove(folder)
        os.makedirs(folder)
        result = self.peer(command(os.path.join(folder, os.path.basename(out))))
        remove(folder)
        return result

    def libreoffice_command(self, soffice, source, out_dir):
        profile = "file://" + self.path("lo-profile")
        return [soffice, "-env:UserInstallation=" + profile, "--headless", "--convert-to",
                "csv", "--outdir", out_dir, source]

    # --- 3. exports -----------------------------------------------------------------

    def bench_export(self):
        t = self.table
        t.section("3. Attribute exports of %s in-memory point features x 10 fields"
                  % fmt_count(self.features))
        out = self.path("export.xlsx")
        for mode, label, cells in (("layer", "export2Excel (feature layer)", self.features * 10),
                                   ("xyz", "export2ExcelHasXYZ (X, Y, 10 f.)",
                                    self.features * 12)):
            export = self.ours("bench_export", mode, self.features, out)
            engine = self.ours("bench_export", mode + "-engine", self.features, out)
            remove(out)
            if not (export.ok and engine.ok):
                t.run_row(label, export)
                continue
            ew, ec = export.phase("export")
            gw, gc = engine.phase("engine")
            t.row(label, ew, ec, export.peak, None,
                  "export/engine: %.2f cpu (%.2f wall), target <= 2 %s"
                  % (ec / gc, ew / gw, verdict(ec / gc, 2.0)))
            t.row("  engine alone, same cells", gw, gc, engine.peak, None,
                  "(texts made beforehand, %.2f s)" % engine.phase("prepare-cells")[0])

    # --- 4. join --------------------------------------------------------------------

    def bench_join(self):
        t = self.table
        rounds = 3
        t.section("4. Attribute join of a %s-row workbook into %s features (median of %d)"
                  % (fmt_count(self.join_rows), fmt_count(self.join_rows), rounds))
        result = self.ours("bench_join", self.join_rows, rounds)
        if not result.ok:
            t.run_row("assocationFromExcel", result)
            return
        rw, rc = result.phase("read")
        jw, jc = result.phase("join")
        t.row("reading the workbook (every cell)", rw, rc, None)
        t.row("assocationFromExcel, whole", jw, jc, result.peak, None,
              "beyond reading: %.3f s cpu (%.3f s wall), target < 1 s %s"
              % (jc - rc, jw - rw, verdict(jc - rc, 1.0)))

    # --- 5. elevation ---------------------------------------------------------------

    def bench_elevation(self):
        t = self.table
        t.section("5. Elevation report (saveQueryElevationOutputFile) of %s points, %d x %d DEM"
                  % (fmt_count(self.points), self.grid, self.grid))
        out = self.path("elevation.xlsx")
        for label, extra in (("DEM in memory", []), ("GeoTIFF DEM (GDAL)",
                                                     ["--geotiff", self.path("dem.tif")])):
            result = self.ours("bench_elevation", self.points, out, self.grid, self.grid, *extra)
            remove(out)
            remove(self.path("dem.tif"))
            if not result.ok:
                t.run_row("elevation report, " + label, result)
                continue
            wall, cpu = result.phase("report")
            raster = result.figures.get("raster-seconds", 0.0)
            share = raster / wall if wall else 0.0
            t.row("elevation report, " + label, wall, cpu, result.peak, None,
                  "raster reads %.3f s (%.0f%% of wall), workbook %.3f s; raster-dominated %s"
                  % (raster, 100 * share, wall - raster, verdict(share, 0.5, smaller=False)))

    # --- 6. DXF ---------------------------------------------------------------------

    def bench_dxf(self):
        t = self.table
        t.section("6. DXF code page rewrite of 50 MB (median of 5, warm cache)")
        result = self.ours("bench_dxf_rewrite", self.scratch)
        if not result.ok:
            t.run_row("replaceDxfCodepage", result)
            return
        for line in result.output.splitlines():
            m = re.match(r"(\S+)\s+([\d.]+) MB\s+rewrite\s+([\d.]+) ms\s+cp\s+([\d.]+) ms", line)
            if m:
                rewrite, cp = float(m.group(3)) / 1000, float(m.group(4)) / 1000
                t.row("replaceDxfCodepage, %s line ends" % m.group(1), rewrite, None, None,
                      None, "cp %.3f s, rewrite/cp %.2f (wall)" % (cp, rewrite / cp))
        t.add("  peak of the process: %s" % fmt_mb(result.peak))

    # --- 7. vygis tool --------------------------------------------------------------

    def bench_vygis(self):
        t = self.table
        t.section("7. vygis export / dump of a %s-feature GeoPackage layer, 10 fields"
                  % fmt_count(self.features))
        vygis = os.path.join(self.o.build_dir, "tools", "vygis", "vygis")
        commands = run([vygis, "--help"], 30, self.scratch).output if os.path.exists(vygis) else ""
        missing = [c for c in ("export", "dump") if not re.search(r"^\s+%s\s" % c, commands, re.M)]
        if missing:
            t.add("  not run: the vygis tool has no %s command in this build" % " or ".join(missing))
            return
        layer = self.path("parcels.gpkg")
        csv_path = self.path("parcels.csv")
        subprocess.run([PYTHON, os.path.join(PEERS, "parcels_csv.py"), str(self.features),
                        csv_path], check=True)
        made = self.peer(["ogr2ogr", "-f", "GPKG", layer, csv_path, "-nln", "parcels",
                          "-oo", "X_POSSIBLE_NAMES=X", "-oo", "Y_POSSIBLE_NAMES=Y",
                          "-oo", "KEEP_GEOM_COLUMNS=NO", "-oo", "AUTODETECT_TYPE=YES"])
        remove(csv_path)
        if not made.ok:
            t.add("  not run: GDAL could not make the GeoPackage")
            return
        cells = self.features * 10
        ours_xlsx, gdal_xlsx = self.path("vygis.xlsx"), self.path("gdal.xlsx")
        export = self.peer([vygis, "export", layer, ours_xlsx])
        gdal_export = self.peer(["ogr2ogr", "-f", "XLSX", gdal_xlsx, layer])
        note = ratio_note(export, gdal_export, 0.25, "vygis/ogr2ogr") if (
            export.ok and gdal_export.ok) else ""
        t.run_row("vygis export", export, note=note)
        t.run_row("  ogr2ogr -f XLSX", gdal_export)
        remove(gdal_xlsx)
        if not export.ok:
            return
        dumped, gdal_csv = self.path("vygis.csv"), self.path("gdal.csv")
        dump = self.peer([vygis, "dump", ours_xlsx], stdout_path=dumped)
        gdal_dump = self.peer(["ogr2ogr", "-f", "CSV", gdal_csv, ours_xlsx])
        note = ratio_note(dump, gdal_dump, 0.25, "vygis/ogr2ogr") if (
            dump.ok and gdal_dump.ok) else ""
        t.run_row("vygis dump (of vygis export)", dump, note=note)
        t.run_row("  ogr2ogr -f CSV", gdal_dump)
        t.add("  (%s cells; GeoPackage made by ogr2ogr from CSV beforehand, not timed)"
              % fmt_count(cells))
        for path in (dumped, gdal_csv, ours_xlsx, layer):
            remove(path)

    def machine(self):
        model = "unknown CPU"
        try:
            with open("/proc/cpuinfo") as info:
                for line in info:
                    if line.startswith("model name"):
                        model = line.split(":", 1)[1].strip()
                        break
        except OSError:
            pass
        commit = subprocess.run(["git", "-C", HERE, "rev-parse", "--short", "HEAD"],
                                capture_output=True, text=True).stdout.strip()
        return "%s, %d cores (%s); commit %s; %s" % (
            model, os.cpu_count(), platform.machine(), commit,
            datetime.datetime.now().strftime("%Y-%m-%d %H:%M"))

    def run_all(self, workloads):
        t = self.table
        t.add("vygisutil benchmarks (%s mode): %s" % ("quick" if self.o.quick else "full",
                                                      self.machine()))
        t.add("load average at start: %.2f %.2f %.2f" % os.getloadavg())
        t.add("Times are of whole processes (wall, user+sys CPU) unless a row says otherwise;")
        t.add("verdicts use CPU time, which other work on the machine disturbs least.")
        t.add(Table.HEADER)
        try:
            for name in workloads:
                getattr(self, "bench_" + name)()
        finally:
            t.add("")
            t.add("load average at end: %.2f %.2f %.2f" % os.getloadavg())
            if not self.o.keep:
                shutil.rmtree(self.scratch, ignore_errors=True)
            else:
                t.add("files kept in " + self.scratch)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--build-dir", required=True)
    parser.add_argument("--only", default=",".join(WORKLOADS),
                        help="comma-separated workloads: " + ", ".join(WORKLOADS))
    parser.add_argument("--quick", action="store_true",
                        help="a tenth of every size, shorter time limits")
    parser.add_argument("--scratch", default=None, help="folder for the temporary files")
    parser.add_argument("--keep", action="store_true", help="keep the temporary files")
    parser.add_argument("--output", help="also write the table to this file")
    options = parser.parse_args()
    options.build_dir = os.path.abspath(options.build_dir)
    workloads = [w.strip() for w in options.only.split(",") if w.strip()]
    unknown = [w for w in workloads if w not in WORKLOADS]
    if unknown:
        parser.error("unknown workload(s): " + ", ".join(unknown))
    bench = Bench(options)
    bench.run_all(workloads)
    if options.output:
        with open(options.output, "w") as out:
            out.write("\n".join(bench.table.lines) + "\n")


main()
