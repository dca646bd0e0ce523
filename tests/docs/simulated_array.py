"""An array of the test's own, and what the tests of the manual run against it."""

import json
import os
import shutil
import subprocess
import tempfile
import time
import urllib.request

PASSWORD = "password-of-this-test"
PATIENCE_S = 120


class Array:
    def __init__(self, program):
        self.home = tempfile.mkdtemp(prefix="tessel-docs-")
        files = {name: os.path.join(self.home, name) for name in ("state", "port", "control")}
        self.ca_file = os.path.join(files["state"], "ca.pem")
        self.log = open(os.path.join(self.home, "log"), "wb+")
        self.process = subprocess.Popen(
            [program, "--state-dir", files["state"], "--port", "0", "--port-file", files["port"],
             "--control-port", "0", "--control-port-file", files["control"], "--stop-on-stdin-eof"],
            stdin=subprocess.PIPE, stdout=self.log, stderr=self.log,
            env=dict(os.environ, TESSEL_ARRAYSIM_PASSWORD=PASSWORD))
        self.port = self._read(files["port"])
        self.control_port = self._read(files["control"])

    def _read(self, path):
        end = time.monotonic() + PATIENCE_S
        while not os.path.exists(path):
            if self.process.poll() is not None or time.monotonic() > end:
                self.log.seek(0)
                raise RuntimeError("the array does not start: " + self.log.read().decode(errors="replace"))
            time.sleep(0.05)
        with open(path, encoding="ascii") as file:
            return file.read().strip()

    def control(self, method, path, body=None):
        """One request to the control interface; the answer's JSON."""
        request = urllib.request.Request(f"http://127.0.0.1:{self.control_port}{path}", method=method,
                                         data=None if body is None else json.dumps(body).encode())
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        with opener.open(request, timeout=PATIENCE_S) as answer:
            return json.loads(answer.read() or b"null")

    def create(self, resource, **fields):
        return self.control("POST", "/objects/" + resource, fields)["data"]

    def run(self, program, *arguments, **environment):
        """The outcome of a program that is to trust this array."""
        return subprocess.run([program, *arguments], capture_output=True, text=True, timeout=PATIENCE_S, check=False,
                              env=dict(os.environ, OVRA_REST_CA_FILE=self.ca_file, TESSEL_PASSWORD=PASSWORD, **environment))

    def stop(self):
        self.process.stdin.close()
        self.process.wait(PATIENCE_S)
        self.log.close()
        shutil.rmtree(self.home)
