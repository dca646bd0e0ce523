"""Runs the small examples against an array. Usage: tessel-arraysim --run examples_test.py EXAMPLES-DIRECTORY"""

import http.server
import json
import os
import ssl
import sys
import threading
import unittest
import urllib.request

from simulated_array import PATIENCE_S, Array

EXAMPLES = sys.argv[1]
INITIATOR = "iqn.2026-01.example.host:one"


class Collector(http.server.HTTPServer):
    """Keeps what is posted to it."""

    class Handler(http.server.BaseHTTPRequestHandler):
        def do_POST(self):
            body = self.rfile.read(int(self.headers["Content-Length"]))
            self.server.received.append((self.path, self.headers["Content-Type"], json.loads(body)))
            self.send_response(200)
            self.end_headers()

        def log_message(self, *arguments):
            pass

    def __init__(self):
        super().__init__(("127.0.0.1", 0), self.Handler)
        self.received = []

    def __enter__(self):
        threading.Thread(target=self.serve_forever).start()
        return self

    def __exit__(self, *_):
        self.shutdown()
        self.server_close()


class Examples(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.array = Array()

    def setUp(self):
        self.array.control("POST", "/reset")

    def example(self, name, *arguments, user=True, **environment):
        who = ["admin"] if user else []
        return self.array.run(os.path.join(EXAMPLES, name), "127.0.0.1", self.array.port, *who, *arguments, **environment)

    def lun(self, name):
        return self.array.create("lun", NAME=name, PARENTID="0", CAPACITY=2048)

    def exposed(self, count, initiator=INITIATOR):
        """LUNs that the initiator's host sees; the LUN group that they are in."""
        create = self.array.create
        host = create("host", NAME="host_one", OPERATIONSYSTEM=0)["ID"]
        create("iscsi_initiator", ID=initiator, PARENTID=host, PARENTTYPE=21)
        luns, hosts = create("lungroup", NAME="luns")["ID"], create("hostgroup", NAME="hosts")["ID"]
        view = create("mappingview", NAME="view")["ID"]
        self.array.control("POST", "/objects/hostgroup/associate", {"ID": hosts, "ASSOCIATEOBJTYPE": 21, "ASSOCIATEOBJID": host})
        for kind, group in ((256, luns), (14, hosts)):
            self.array.control("PUT", "/objects/mappingview/create_associate",
                               {"TYPE": 245, "ID": view, "ASSOCIATEOBJTYPE": kind, "ASSOCIATEOBJID": group})
        self.array.control("POST", "/bulk/luns", {"count": count, "lungroup": luns})
        return luns

    def requests(self, path):
        journal = self.array.control("GET", "/journal?since=0")
        return [entry for entry in journal if entry["path"].split("?")[0].endswith(path)]

    def test_first_lun_prints_the_lun(self):
        lun = self.lun("payroll")
        # It logs in as "admin", which it has no argument for.
        done = self.example("first_lun", lun["ID"], user=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stdout, f"payroll: {2048 * 512} bytes, WWN {lun['WWN']}\n")

    def test_tour_shows_the_lun_to_a_host_and_takes_it_away_again(self):
        done = self.example("tour", "0")
        self.assertEqual(done.returncode, 0, done.stderr)
        attached, detached = done.stdout.split("== Attach the LUN", 1)[1].split("== Detach it again", 1)
        self.assertIn("sees 1 LUN(s)", attached)
        self.assertIn("sees 0 LUN(s)", detached)

    def test_list_luns_prints_every_page(self):
        self.exposed(250)
        done = self.example("list_luns", INITIATOR)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(len(set(done.stdout.splitlines())), 250)
        self.assertEqual(len(self.requests("/lun/associate")), 3)

    def test_list_luns_prints_the_lun_of_a_name_alone(self):
        group = self.exposed(3)
        lun = self.lun("a name & more")
        self.array.control("POST", "/objects/lungroup/associate",
                           {"ID": group, "ASSOCIATEOBJTYPE": 11, "ASSOCIATEOBJID": lun["ID"]})
        done = self.example("list_luns", INITIATOR, "a name & more")
        self.assertEqual(done.stdout, f"LUN {lun['ID']} a name & more {lun['WWN']}\n")

    def test_list_luns_prints_snapshots(self):
        group = self.exposed(0)
        lun = self.lun("source")
        snapshot = self.array.create("snapshot", NAME="copy", PARENTID=lun["ID"])
        self.array.control("POST", "/objects/lungroup/associate",
                           {"ID": group, "ASSOCIATEOBJTYPE": 27, "ASSOCIATEOBJID": snapshot["ID"]})
        done = self.example("list_luns", INITIATOR)
        self.assertEqual(done.stdout, f"snapshot {snapshot['ID']} of LUN {lun['ID']} copy {snapshot['WWN']}\n")

    def test_observe_calls_prints_the_calls_and_not_their_steps(self):
        self.array.create("iscsi_initiator", ID=INITIATOR)
        lun = self.lun("l")["ID"]
        done = self.example("observe_calls", lun, INITIATOR)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("loginDevice done\n", done.stdout)
        self.assertRegex(done.stdout, f"ensureVisible lun={lun} host=[0-9]+ done\n")
        self.assertNotIn("addLunToLunGroup", done.stdout)
        refused = self.example("observe_calls", "4711", INITIATOR)
        self.assertIn("ensureVisible lun=4711", refused.stdout)
        self.assertIn(" failed: ", refused.stdout)

    def test_send_spans_sends_each_call_as_a_trace_with_its_steps(self):
        self.array.create("iscsi_initiator", ID=INITIATOR)
        lun = self.lun("l")["ID"]
        with Collector() as collector:
            endpoint = {"OTEL_EXPORTER_OTLP_ENDPOINT": f"http://127.0.0.1:{collector.server_port}"}
            done = self.example("send_spans", lun, INITIATOR, **endpoint)
            refused = self.example("send_spans", "4711", INITIATOR, **endpoint)
        self.assertEqual((done.returncode, done.stderr, refused.returncode), (0, "", 1))
        self.assertEqual({(path, kind) for path, kind, _ in collector.received}, {("/v1/traces", "application/json")})
        spans = [span for _, _, body in collector.received for span in body["resourceSpans"][0]["scopeSpans"][0]["spans"]]
        calls = [span for span in spans if "parentSpanId" not in span]
        self.assertEqual([span["name"] for span in calls], ["loginDevice", "ensureVisible", "logoutDevice"] * 2)
        self.assertEqual(len({span["traceId"] for span in spans}), len(calls))
        self.assertEqual(len({span["spanId"] for span in spans}), len(spans))
        for span in spans:
            self.assertRegex(span["traceId"] + span["spanId"], "^[0-9a-f]{48}$")
            self.assertLessEqual(int(span["startTimeUnixNano"]), int(span["endTimeUnixNano"]))
        shown, not_shown = calls[1], calls[4]
        steps = [span["name"] for span in spans if span.get("parentSpanId") == shown["spanId"]]
        self.assertIn("addLunToLunGroup", steps)
        self.assertIn({"key": "tessel.lun", "value": {"stringValue": lun}}, shown["attributes"])
        self.assertNotIn("status", shown)
        self.assertEqual(not_shown["status"]["code"], 2)
        self.assertNotIn(self.array.password, json.dumps(spans))

    def test_send_spans_goes_on_without_a_collector(self):
        self.array.create("iscsi_initiator", ID=INITIATOR)
        done = self.example("send_spans", self.lun("l")["ID"], INITIATOR, OTEL_EXPORTER_OTLP_ENDPOINT="http://127.0.0.1:1")
        self.assertEqual(done.returncode, 0)
        self.assertRegex(done.stderr, "^([0-9]+ spans are lost: .*\n)+$")

    def test_list_luns_names_an_initiator_without_a_host(self):
        self.array.create("iscsi_initiator", ID=INITIATOR)
        done = self.example("list_luns", INITIATOR)
        self.assertEqual((done.returncode, done.stderr), (1, INITIATOR + " belongs to no host\n"))

    def test_handle_errors_finds_the_lun(self):
        lun = self.lun("payroll")
        done = self.example("handle_errors", lun["ID"])
        self.assertEqual((done.returncode, done.stdout), (0, f"LUN {lun['ID']} is payroll\n"))

    def test_handle_errors_tells_that_there_is_no_such_lun(self):
        done = self.example("handle_errors", "77")
        self.assertEqual((done.returncode, done.stdout), (3, "there is no LUN 77\n"))

    def test_handle_errors_takes_an_empty_answer_for_no_such_lun(self):
        self.array.control("POST", "/faults", {"method": "GET", "path": "/lun/77", "action": "answer", "status": 200,
                                               "body": '{"data":{},"error":{"code":0,"description":""}}'})
        done = self.example("handle_errors", "77")
        self.assertEqual((done.returncode, done.stdout), (3, "there is no LUN 77\n"))

    def test_handle_errors_tells_a_session_that_has_ended(self):
        self.array.control("POST", "/faults", {"method": "GET", "path": "/lun/*", "action": "dropSession"})
        done = self.example("handle_errors", "1")
        self.assertEqual(done.returncode, 4)
        self.assertTrue(done.stdout.startswith("the session has ended: log in again\ncode 1077950102: Exception:get error"),
                        done.stdout)

    def test_handle_errors_tells_that_there_was_no_answer(self):
        self.array.control("POST", "/faults", {"method": "GET", "path": "/lun/*", "action": "close", "count": 0})
        done = self.example("handle_errors", "1")
        self.assertEqual((done.returncode, done.stdout), (5, "Exception:url error or internet error getLun\n"))

    def test_handle_errors_tells_that_an_argument_was_refused(self):
        done = self.example("handle_errors", "")
        self.assertEqual((done.returncode, done.stdout), (5, "Exception:lunID is empty! getLun\n"))

    def test_limits_reads_within_its_time_from_an_array_trusted_by_its_key(self):
        done = self.example("limits", os.environ["TESSEL_ARRAYSIM_PINNED_KEY"], OVRA_REST_CA_FILE="/nowhere.pem")
        self.assertEqual((done.returncode, done.stdout), (0, "4 Ethernet ports\n"), done.stderr)
        self.array.control("POST", "/faults", {"method": "GET", "path": "/ETH_PORT/*", "action": "dropSession"})
        self.assertEqual(self.example("limits", os.environ["TESSEL_ARRAYSIM_PINNED_KEY"]).returncode, 0)

    def test_why_no_login_tells_the_arrays_words(self):
        self.array.control("POST", "/faults", {"method": "POST", "path": "/sessions", "action": "error",
                                               "code": 1077949999, "description": "not today"})
        done = self.example("why_no_login")
        self.assertEqual(done.returncode, 1)
        self.assertTrue(done.stdout.endswith("; do as the array says\n"), done.stdout)
        self.assertIn(" 1077949999: ", done.stdout)

    def test_why_no_login_logs_in(self):
        done = self.example("why_no_login")
        self.assertEqual((done.returncode, done.stdout), (0, "logged in\n"))

    def test_print_record_leaves_out_what_is_unset_and_secret(self):
        self.array.create("iscsi_initiator", ID=INITIATOR, NAME="one", USECHAP="true", NORMALVERMODE="1",
                          CHAPNAME="chap_user", CHAPPASSWORD="chap-secret-of-12")
        done = self.example("print_record", INITIATOR)
        self.assertEqual(done.returncode, 0, done.stderr)
        lines = done.stdout.splitlines()
        self.assertIn("ID: " + INITIATOR, lines)
        self.assertIn("CHAPNAME: chap_user", lines)
        self.assertNotIn("PASSWORD", done.stdout)
        self.assertNotIn("PARENTID", done.stdout)

    def test_attach_checked_attaches_and_says_when_there_was_nothing_to_do(self):
        lun = self.lun("volume")["ID"]
        self.array.create("iscsi_initiator", ID=INITIATOR)
        for says in ("the host sees the LUN\n", "the host saw the LUN before\n"):
            done = self.example("attach_checked", lun, INITIATOR)
            self.assertEqual((done.returncode, done.stdout), (0, says), done.stderr)

    def test_attach_checked_notices_a_part_that_failed_without_an_exception(self):
        for path in ("/lungroup/associate", "/hostgroup/associate", "/mappingview/create_associate"):
            self.array.control("POST", "/reset")
            lun = self.lun("volume")["ID"]
            self.array.create("iscsi_initiator", ID=INITIATOR)
            self.array.control("POST", "/faults", {"path": path, "action": "error", "code": 1077949999})
            done = self.example("attach_checked", lun, INITIATOR)
            self.assertEqual((done.returncode, done.stdout),
                             (1, "the host does not see the LUN: the run log says why\n"), path)

    def login(self):
        body = json.dumps({"username": "admin", "password": self.array.password, "scope": 0}).encode()
        request = urllib.request.Request(f"https://127.0.0.1:{self.array.port}/deviceManager/rest/xxxx/sessions", data=body,
                                         headers={"Content-Type": "application/json"}, method="POST")
        trust = urllib.request.HTTPSHandler(context=ssl.create_default_context(cafile=self.array.ca_file))
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}), trust)
        with opener.open(request, timeout=PATIENCE_S) as answer:
            record = json.loads(answer.read())["data"]
            return {"TESSEL_DEVICE_ID": record["deviceid"], "TESSEL_TOKEN": record["iBaseToken"],
                    "TESSEL_COOKIE": answer.headers["Set-Cookie"].split(";")[0]}

    def test_adopt_session_works_on_a_session_opened_elsewhere_and_leaves_it_open(self):
        session = self.login()
        for _ in range(2):
            done = self.example("adopt_session", user=False, **session)
            self.assertEqual((done.returncode, done.stdout), (0, "the session is alive\n"))

    def test_adopt_session_tells_that_the_session_has_ended(self):
        session = self.login()
        self.array.control("DELETE", "/sessions")
        done = self.example("adopt_session", user=False, **session)
        self.assertEqual((done.returncode, done.stdout), (1, "the session has ended\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
