"""The array that this test runs beside (tessel-arraysim --run), and what the tests of the manual run against it."""

import json
import os
import subprocess
import urllib.request

PATIENCE_S = 120


class Array:
    password = os.environ["TESSEL_PASSWORD"]
    port = os.environ["TESSEL_ARRAYSIM_PORT"]
    ca_file = os.environ["OVRA_REST_CA_FILE"]

    def control(self, method, path, body=None):
        """One request to the control interface; the answer's JSON."""
        request = urllib.request.Request(os.environ["TESSEL_ARRAYSIM_CONTROL"] + path, method=method,
                                         data=None if body is None else json.dumps(body).encode())
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        with opener.open(request, timeout=PATIENCE_S) as answer:
            return json.loads(answer.read() or b"null")

    def create(self, resource, **fields):
        return self.control("POST", "/objects/" + resource, fields)["data"]

    def run(self, program, *arguments, **environment):
        """The outcome of a program that finds this array in its environment."""
        return subprocess.run([program, *arguments], capture_output=True, text=True, timeout=PATIENCE_S, check=False,
                              env=dict(os.environ, **environment))
