"""The results of scripts/bench.sh: one file for all rows, medians and ratios to the floor.

A results file is {"machine": {...}, "rows": [{"row", "measurements": [{"role", "what",
"nanoseconds", "lowest", "highest", "runs"}, ...]}, ...]}: nanoseconds of one operation, the median
and the extremes of all runs. Every row has exactly one floor, which comes first.
"""
import json
import platform
import statistics
import subprocess

ROLES = ("floor", "product", "peer")
NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}

# The ratio to the floor that the product is to stay under.
GOALS = {
    ("state query (141 bytes)", "getConnectivityType"): 1.15,
    ("state query (141 bytes)", "getWifiSSID"): 1.25,
    ("extended record (156 bytes)", "one look"): 1.10,
    ("list record (4108 bytes)", "one look"): 1.10,
    ("enqueue (0 bytes)", "enqueue"): 1.10,
    ("enqueue (16 bytes)", "enqueue"): 1.10,
    ("enqueue (100 bytes)", "enqueue"): 1.10,
    ("enqueue (100 bytes)", "sendTextCommand"): 2.0,
    ("log line", "to a file"): 1.10,
}


class InvalidResults(Exception):
    """A file that is not what a complete, successful run writes."""


def load(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def save(results, path):
    with open(path, "w", encoding="utf-8") as file:
        json.dump(results, file, indent=1)
        file.write("\n")


def single_runs(report):
    """(row, role, what, nanoseconds of one operation) of every run in a benchmark's report, in the
    order in which the program names them; they ran in a random one."""
    for run in sorted(report["benchmarks"], key=lambda run: run["family_index"]):
        if run.get("error_occurred"):
            raise InvalidResults(f"{run['name']}: {run.get('error_message')}")
        if run["run_type"] != "iteration":
            continue
        # The program behind "/bin/true" has slashes of its own.
        row, role, what = run["run_name"].removesuffix("/manual_time").split("/", 2)
        if role not in ROLES:
            raise InvalidResults(f"{run['name']}: there is no role {role}")
        if run["delivered"] != run["iterations"] * run["batch"]:
            raise InvalidResults(f"{run['name']}: not every operation was delivered")
        yield row, role, what, run["real_time"] * NANOSECONDS[run["time_unit"]] / run["batch"]


def rows_of(reports):
    times = {}
    for report in reports:
        for row, role, what, nanoseconds in single_runs(report):
            times.setdefault(row, {}).setdefault((role, what), []).append(nanoseconds)
    rows = []
    for row, measurements in times.items():
        ordered = sorted(measurements.items(), key=lambda item: (ROLES.index(item[0][0]), statistics.median(item[1])))
        rows.append({"row": row, "measurements": [
            {"role": role, "what": what, "nanoseconds": statistics.median(runs), "lowest": min(runs),
             "highest": max(runs), "runs": len(runs)} for (role, what), runs in ordered]})
        if [role for (role, _), _ in ordered].count("floor") != 1:
            raise InvalidResults(f"{row}: a row needs one floor")
    if not rows:
        raise InvalidResults("there are no measurements")
    return rows


def first_match(path, key):
    with open(path, encoding="utf-8") as file:
        for line in file:
            name, _, value = line.replace("=", ":", 1).partition(":")
            if name.strip() == key:
                return value.strip().strip('"')
    return "unknown"


def package_version(package):
    query = subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], capture_output=True, text=True, check=False)
    return query.stdout or "unknown"


def machine_of(reports):
    """Where and with what the reports were made; not the machine's name."""
    context = reports[0]["context"]
    return {
        "date": context["date"][:10],
        "processor": first_match("/proc/cpuinfo", "model name"),
        "processors": context["num_cpus"],
        "load at start": context["load_avg"][0],  # later ones are our own work
        "system": first_match("/etc/os-release", "PRETTY_NAME"),
        "kernel": platform.release(),
        "architecture": platform.machine(),
        "compiler": context["compiler"],
        "boost": context["boost"].replace("_", "."),
        "spdlog": context["spdlog"],
        "dbus": package_version("dbus"),
        "sd-bus": package_version("libsystemd0"),
    }


def merged(paths):
    reports = [load(path) for path in paths]
    return {"machine": machine_of(reports), "rows": rows_of(reports)}


def with_ratios(row):
    """The measurements of a row, each with its ratio to the row's floor."""
    floor = row["measurements"][0]["nanoseconds"]
    return [(measurement, measurement["nanoseconds"] / floor) for measurement in row["measurements"]]


def is_busy(machine):
    return machine["load at start"] > machine["processors"] / 2


def machine_sentence(machine):
    """Two sentences: the machine, and whether it was busy."""
    text = (f"{machine['date']}: {machine['processors']} x {machine['processor']}, {machine['architecture']}, "
            f"{machine['system']}, Linux {machine['kernel']}, {machine['compiler']} -O2; Boost {machine['boost']}, "
            f"spdlog {machine['spdlog']}, dbus-daemon {machine['dbus']}, sd-bus {machine['sd-bus']}.")
    load_text = f"Load {machine['load at start']:.1f} at the start"
    return text, (f"{load_text}: the machine was busy, so these figures are provisional." if is_busy(machine)
                  else f"{load_text}: the machine was idle.")
