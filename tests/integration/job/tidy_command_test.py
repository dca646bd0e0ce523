"""tesselctl tidy against an array. Usage: tessel-arraysim --run python3 tidy_command_test.py TESSELCTL DOCS-TESTS"""

import json
import os
import sys
import tempfile
import unittest

PROGRAM, SUPPORT = sys.argv[1:3]
sys.path.insert(0, SUPPORT)
from simulated_array import Array  # noqa: E402

INITIATOR = "iqn.2026-01.example.host:tidy"


class TidyCommand(unittest.TestCase):
    def setUp(self):
        self.array = Array()
        self.array.control("POST", "/reset")
        self.host = self.array.create("host", NAME="host", OPERATIONSYSTEM=0)["ID"]
        self.array.create("iscsi_initiator", ID=INITIATOR, PARENTID=self.host, PARENTTYPE=21)
        for number in ("1700000000", "1700000001", "payroll"):
            group = self.array.create("hostgroup", NAME="hostgroup_" + number)["ID"]
            self.array.control("POST", "/objects/hostgroup/associate",
                               {"ID": group, "ASSOCIATEOBJTYPE": 21, "ASSOCIATEOBJID": self.host})

    def tidy(self, *arguments):
        return self.array.run(PROGRAM, *arguments)

    def groups(self):
        return sorted(record["NAME"] for record in self.array.control("GET", "/objects/hostgroup")["data"])

    def test_tells_what_it_would_remove_and_changes_nothing(self):
        done = self.tidy("tidy", "--initiator", INITIATOR)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("(hostgroup_1700000000): left by an attach, and leads to nothing\n", done.stdout)
        self.assertIn("(hostgroup_payroll): its name is not one that an attach makes\n", done.stdout)
        self.assertTrue(done.stdout.endswith(f"host {self.host}: 2 to remove (with --remove), 1 kept\n"), done.stdout)
        self.assertEqual(len(self.groups()), 3)

    def test_removes_it_when_told_to_and_goes_on_where_it_ended(self):
        done = self.tidy("tidy", "--host", self.host, "--remove", "--most", "1")
        self.assertTrue(done.stdout.endswith("1 removed, 0 kept; ended early, call it again\n"), done.stdout)
        done = self.tidy("--output", "json", "tidy", "--host", self.host, "--remove")
        told = json.loads(done.stdout)
        self.assertEqual(told["removed"], 1)
        self.assertEqual([entry["verdict"] for entry in told["objects"]], ["removed", "kept"])
        kept = told["objects"][1]
        self.assertEqual((kept["type"], kept["name"]), ("host group", "hostgroup_payroll"))
        self.assertEqual(kept["reason"], "its name is not one that an attach makes")
        self.assertEqual(self.array.control("GET", "/objects/hostgroup/" + kept["id"])["data"]["NAME"], kept["name"])
        self.assertEqual(told["disks"], [])
        self.assertTrue(told["complete"])
        self.assertEqual(self.groups(), ["hostgroup_payroll"])

    def test_tells_each_object_at_once(self):
        second = self.array.control("GET", "/objects/hostgroup")["data"][1]["ID"]
        self.array.control("POST", "/faults", {"path": "/mappingview/associate", "query": f"*ASSOCIATEOBJID={second}*",
                                               "action": "error", "code": 1077000001, "count": 0})
        done = self.tidy("tidy", "--host", self.host, "--remove")
        self.assertEqual(done.returncode, 3, done.stderr)
        self.assertIn("removes host group", done.stdout)
        self.assertIn("(hostgroup_1700000000): left by an attach", done.stdout)

    def test_says_nothing_of_disks_where_there_are_none(self):
        with tempfile.TemporaryDirectory() as tools:
            korvex = os.path.join(tools, "kxRescan")
            with open(korvex, "w", encoding="ascii") as file:
                file.write("#!/bin/sh\n")
            os.chmod(korvex, 0o755)
            done = self.array.run(PROGRAM, "tidy", "--host", self.host, PATH=tools + ":" + os.environ["PATH"])
        there = any(os.path.isdir(kind) and os.listdir(kind) for kind in ("/sys/class/iscsi_session", "/sys/class/fc_host"))
        self.assertEqual(done.returncode, 0)
        self.assertEqual("Korvex is installed" in done.stderr, there, done.stderr)

    def test_tells_an_initiator_of_no_host(self):
        self.array.create("iscsi_initiator", ID=INITIATOR + "2")
        done = self.tidy("tidy", "--initiator", INITIATOR + "2")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr, f"tesselctl: the initiator {INITIATOR}2 belongs to no host\n")

    def test_refuses_two_hosts_and_no_objects(self):
        self.assertEqual(self.tidy("tidy", "--host", self.host, "--initiator", INITIATOR).returncode, 2)
        self.assertEqual(self.tidy("tidy", "--host", self.host, "--most", "0").returncode, 2)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
