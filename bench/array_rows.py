"""Rows of scripts/bench that need a simulated array: tesselctl's lists, and the array's own pages.

usage: tessel-arraysim --run python3 array_rows.py TESSELCTL [--short]
"""
import json
import os
import statistics
import subprocess
import sys
import time
import urllib.request

CONTROL = os.environ["TESSEL_ARRAYSIM_CONTROL"]
LUN, LUN_GROUP, HOST, HOST_GROUP = 11, 256, 21, 14
PAGE = 100


def ask(method, path, body=None):
    data = None if body is None else json.dumps(body).encode()
    with urllib.request.urlopen(urllib.request.Request(CONTROL + path, data, method=method)) as answer:
        return json.load(answer)


def new(resource, **members):
    return ask("POST", "/objects/" + resource, members)["data"]["ID"]


def associate(path, owner, kind, member):
    method = "PUT" if "mappingview" in path else "POST"
    ask(method, "/objects/" + path, {"ID": owner, "ASSOCIATEOBJTYPE": kind, "ASSOCIATEOBJID": member})


def show(host, name, luns):
    """Shows a host new LUNs by a group of each kind. Returns the LUN group."""
    group, hosts, view = (new(kind, NAME=name) for kind in ("lungroup", "hostgroup", "mappingview"))
    ask("POST", "/bulk/luns", {"count": luns, "lungroup": group})
    associate("hostgroup/associate", hosts, HOST, host)
    associate("mappingview/create_associate", view, LUN_GROUP, group)
    associate("mappingview/create_associate", view, HOST_GROUP, hosts)
    return group


def tell_row(row, values, aim, unit="ratio"):
    low, median, high = statistics.quantiles(values, n=4) if len(values) > 1 else values * 3
    print(json.dumps({"row": row, "median": median, "low": low, "high": high, "rounds": len(values), "aim": aim,
                      "unit": unit}), flush=True)


def seconds_of_page(kind, owner, query, first):
    path = "/objects/lun/associate?%sTYPE=%d&ASSOCIATEOBJTYPE=%d&ASSOCIATEOBJID=%s&range=[%d-%d]" % (
        query, LUN, kind, owner, first, first + PAGE)
    begin = time.perf_counter()
    with urllib.request.urlopen(CONTROL + path) as answer:
        text = answer.read()
    seconds = time.perf_counter() - begin
    assert len(json.loads(text)["data"]) == PAGE, path
    return seconds


def page_rows(rounds, many):
    few_host, many_host = (new("host", NAME=name, OPERATIONSYSTEM=0) for name in ("few", "many"))
    few_group, many_group = show(few_host, "few", PAGE), show(many_host, "many", many)
    show(few_host, "few, one more", 1)
    show(many_host, "many, one more", 1)
    for what, kind, few, more, query in (
            ("of a group", LUN_GROUP, few_group, many_group, ""),
            ("of a group, filtered", LUN_GROUP, few_group, many_group, "filter=RUNNINGSTATUS:27&"),
            ("of a host with two groups", HOST, few_host, many_host, "")):
        ratios = []
        for number in range(rounds):
            # Without a filter from anywhere; with one in sequence, as clients read.
            first = PAGE * number if query else many // rounds // PAGE * PAGE * number
            ratios.append(seconds_of_page(kind, more, query, first) / seconds_of_page(kind, few, query, 0))
        tell_row("simulator, a page %s: among %d against %d" % (what, many, PAGE), ratios, 1.5)


def peak_of(process):
    """The most memory so far, in KiB; None where it has ended."""
    with open("/proc/%d/status" % process.pid, encoding="ascii") as status:
        return next((int(line.split()[1]) for line in status if line.startswith("VmHWM:")), None)


def list_of(tesselctl, group, form):
    """Seconds to the first line and to the end, and the most memory that it held, in KiB."""
    begin = time.perf_counter()
    process = subprocess.Popen([tesselctl, "lun", "list", "--group", group, "--output", form],
                               stdout=subprocess.PIPE)
    process.stdout.readline()
    first = time.perf_counter() - begin
    peak = 0
    while process.stdout.read1(1 << 14):
        peak = peak_of(process) or peak  # what the kernel tells of an ended child counts this process in
    assert process.wait() == 0, process.returncode
    return first, time.perf_counter() - begin, peak


def list_rows(tesselctl, rounds, many, aim):
    few_group, many_group = new("lungroup", NAME="listed few"), new("lungroup", NAME="listed many")
    ask("POST", "/bulk/luns", {"count": many // 10, "lungroup": few_group})
    ask("POST", "/bulk/luns", {"count": many, "lungroup": many_group})
    for form in ("text", "json"):
        shares, memory = [], []
        for _ in range(rounds):
            few, more = list_of(tesselctl, few_group, form), list_of(tesselctl, many_group, form)
            shares.append(more[0] / more[1])
            memory.append(more[2] / few[2])
        name = "tesselctl lun list of %d, %s" % (many, form)
        tell_row(name + ", first line, of its time", shares, aim, "share")
        tell_row(name + ", peak memory against %d" % (many // 10), memory, 1.2)


def main():
    is_short = "--short" in sys.argv[2:]
    list_rows(sys.argv[1], *((2, 2000, -1) if is_short else (5, 10000, 0.05)))
    page_rows(5 if is_short else 20, 10000 if is_short else 100000)


main()
