#!/usr/bin/env python3
"""The extension of PHP: the .phpt files beside this one, by PHP's own run-tests.php, and the example page.

usage: php_extension_test.py TREE PHP RUN_TESTS EXTENSION LIBRARY HXSIMCTL

LIBRARY is libvexorapi with the virtual controller beside it. VEXORAPI_ROUNDS in the environment is how often
memory.phpt calls everything. The page is tested where php-fpm and nginx are installed.
"""

import contextlib
import ctypes
import html
import http.client
import json
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

TREE, PHP, RUN_TESTS, EXTENSION, LIBRARY, HXSIMCTL = map(pathlib.Path, sys.argv[1:])
FPM = shutil.which("php-fpm8.2", path="/usr/sbin:/usr/bin")
NGINX = shutil.which("nginx", path="/usr/sbin:/usr/bin")
HOSTILE = "<b>&\"x]]>"
PATIENCE_S = 120

FPM_CONF = """[global]
error_log = {folder}/fpm.log
daemonize = no
[www]
{user}listen = {folder}/fpm.sock
pm = static
pm.max_children = 2
clear_env = no
"""
NGINX_CONF = """daemon off;
{user}pid {folder}/nginx.pid;
error_log {folder}/nginx.log;
events {{ }}
http {{
    access_log off;
    client_body_temp_path {folder}/body;
    fastcgi_temp_path {folder}/fastcgi;
    proxy_temp_path {folder}/proxy;
    uwsgi_temp_path {folder}/uwsgi;
    scgi_temp_path {folder}/scgi;
    server {{
        listen unix:{folder}/http.sock;
        location / {{
            fastcgi_pass unix:{folder}/fpm.sock;
            fastcgi_param SCRIPT_FILENAME {page};
            fastcgi_param QUERY_STRING $query_string;
            fastcgi_param REQUEST_METHOD $request_method;
        }}
    }}
}}
"""


def make_root(root):
    """A root with users and an event store, whose events the virtual controller made."""
    shutil.copytree(TREE / "examples/root", root)
    (root / "opt/kestrel/raid/db").mkdir(parents=True)
    os.environ["VEXORAPI_ROOT"] = str(root)
    os.environ["HXSIM_STATE"] = str(root / "machine.db")
    subprocess.run([HXSIMCTL, "init"], check=True, stdout=subprocess.DEVNULL)
    library = ctypes.CDLL(str(LIBRARY))
    result = ctypes.create_string_buffer(524288)

    def command(text):
        assert library.vexorApi(text.encode(), result, 524288) == 1 and b">0</RetVal>" in result.value, \
            result.value

    library.vexorApiInit()
    for disk in range(3):
        command('<HX_PD_StartMediaPatrol type="function">'
                f"<AdapterID>0</AdapterID><HD_ID>{disk}</HD_ID></HX_PD_StartMediaPatrol>")
    command('<HX_LD_SetConfig type="function"><LD_ID>0</LD_ID><CacheMode>5</CacheMode>'
            f"<Name>{html.escape(HOSTILE)}</Name></HX_LD_SetConfig>")
    library.VX_EvFile_CheckIn(2)
    library.vexorApiShutdown()


class UnixConnection(http.client.HTTPConnection):
    def __init__(self, path):
        super().__init__("localhost", timeout=PATIENCE_S)
        self.path = path

    def connect(self):
        self.sock = socket.socket(socket.AF_UNIX)
        self.sock.settimeout(self.timeout)
        self.sock.connect(self.path)


class Extension(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(scratch.cleanup)
        cls.folder = pathlib.Path(scratch.name)
        make_root(cls.folder / "root")

    def test_phpt(self):
        # run-tests.php writes beside the tests.
        tests = self.folder / "tests"
        shutil.copytree(pathlib.Path(__file__).parent, tests,
                        ignore=lambda _, names: [name for name in names if not name.endswith(".phpt")])
        environment = {**os.environ, "NO_INTERACTION": "1", "TEST_PHP_EXECUTABLE": str(PHP),
                       "VEXORAPI_STUB": str(TREE / "bindings/php/vexorapi.stub.php"),
                       "HXSIM_STATE": ":memory:"}
        done = subprocess.run(
            [PHP, "-n", RUN_TESTS, "-n", "-q", "--set-timeout", "600", "--show-diff",
             "-d", f"extension={EXTENSION}", tests],
            env=environment, text=True, capture_output=True, timeout=1200, check=False)
        count = len(list(tests.glob("*.phpt")))
        self.assertGreater(count, 0)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertRegex(done.stdout, rf"Tests passed *: +{count} ", done.stdout)

    @contextlib.contextmanager
    def server(self):
        is_root = os.geteuid() == 0
        page = TREE / "examples/php/index.php"
        (self.folder / "fpm.conf").write_text(FPM_CONF.format(
            folder=self.folder, user="user = root\ngroup = root\n" if is_root else ""))
        (self.folder / "nginx.conf").write_text(NGINX_CONF.format(
            folder=self.folder, page=page, user="user root;\n" if is_root else ""))
        log = (self.folder / "servers.log").open("w")
        commands = (
            [FPM, "-n", "-F", *(["-R"] if is_root else []), "-d", f"extension={EXTENSION}",
             "-y", str(self.folder / "fpm.conf")],
            [NGINX, "-p", str(self.folder), "-c", str(self.folder / "nginx.conf"),
             "-e", str(self.folder / "nginx.log")])
        started = [subprocess.Popen(command, stdout=log, stderr=log) for command in commands]
        try:
            end = time.monotonic() + PATIENCE_S
            while not all((self.folder / name).exists() for name in ("fpm.sock", "http.sock")):
                logs = "".join(path.read_text() for path in self.folder.glob("*.log"))
                self.assertTrue(all(each.poll() is None for each in started), logs)
                self.assertLess(time.monotonic(), end, logs)
                time.sleep(0.05)
            yield
        finally:
            for each in started:
                each.send_signal(signal.SIGTERM)
            for each in started:
                each.wait(PATIENCE_S)
            log.close()

    def get(self, query):
        connection = UnixConnection(str(self.folder / "http.sock"))
        connection.request("GET", "/" + query)
        response = connection.getresponse()
        text = response.read().decode()
        connection.close()
        return response.status, text

    @unittest.skipUnless(FPM and NGINX, "php-fpm or nginx is not installed")
    def test_the_page_under_php_fpm_and_nginx(self):
        with self.server():
            status, page = self.get("")
            self.assertEqual(status, 200, page)
            self.assertEqual(len(re.findall(r'<tr class="disk">', page)), 24)
            self.assertIn("TW600S10", page)
            self.assertIn(html.escape(HOSTILE, quote=True), page.replace("&#039;", "&#x27;"))
            self.assertNotIn("<b>", page)
            status, counters = self.get("?counters")
            self.assertEqual(status, 200)
            self.assertGreater(json.loads(counters)["Whatever_Change"], 0)
            status, events = self.get("?events=1")
            self.assertEqual(status, 200)
            self.assertEqual(json.loads(events)[0]["number"], 1)
            self.assertEqual(self.get("?events=x")[0], 400)
            shutil.move(self.folder / "root/opt", self.folder / "root/away")
            self.addCleanup(shutil.move, self.folder / "root/away", self.folder / "root/opt")
            self.assertEqual(self.get("?events=0")[0], 503)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
