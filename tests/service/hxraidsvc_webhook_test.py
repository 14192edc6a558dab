#!/usr/bin/env python3
"""The webhook sink of hxraidsvc against an HTTPS server of this test, with a certificate of its own.

usage: hxraidsvc_webhook_test.py HXRAIDSVC
"""

import datetime
import email.utils
import hashlib
import hmac
import http.server
import json
import os
import ssl
import subprocess
import threading
import unittest

from hxraidsvc_test import PATIENCE, PROGRAMS, Case

SECRET = b"not for others"
WEBHOOK = os.path.join(os.path.dirname(PROGRAMS), "libexec", "hxraid", "hxraidsvc-webhook")


class Receiver(http.server.BaseHTTPRequestHandler):
    """Keeps what comes and answers what the test has put into `answers`, else 200."""

    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        self.server.got.append((self.path, dict(self.headers), body))
        status, headers = self.server.answers.pop(0) if self.server.answers else (200, {})
        if status is None:
            self.server.ending.wait(PATIENCE)
            return
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name, value)
        self.send_header("Content-Length", "0")
        self.end_headers()

    def log_message(self, *_):
        pass


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self, certificate, key):
        super().__init__(("127.0.0.1", 0), Receiver)
        self.got, self.answers, self.ending = [], [], threading.Event()
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(certificate, key)
        self.socket = context.wrap_socket(self.socket, server_side=True,
                                          do_handshake_on_connect=False)

    def handle_error(self, *_):
        pass  # a client that does not trust the certificate


class Webhook(Case):
    def setUp(self):
        super().setUp()
        self.certificate = self.root.folder / "certificate.pem"
        key = self.root.folder / "key.pem"
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                        "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2", "-subj",
                        "/CN=receiver", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", key,
                        "-out", self.certificate], check=True, capture_output=True,
                       timeout=PATIENCE)
        self.server = Server(self.certificate, key)
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        self.addCleanup(self.server.server_close)
        self.addCleanup(self.server.shutdown)
        self.addCleanup(self.server.ending.set)
        self.secret = self.root.folder / "secret"
        self.secret.write_bytes(SECRET + b"\n")
        self.secret.chmod(0o600)
        self.configure()
        self.root.hxsimctl("smart", "trip", "a0/pd4")

    def configure(self, more="", authority=None, host="127.0.0.1"):
        self.root.configure(
            f'[sink.hook]\nkind = "webhook"\n'
            f'url = "https://{host}:{self.server.server_port}/alerts?team=storage"\n'
            f'ca_file = "{authority or self.certificate}"\nsecret_file = "{self.secret}"\n{more}')

    def fails(self):
        """Why the one attempt of a round failed."""
        lines = [line for line in self.root.service("--once").stderr.splitlines()
                 if "cannot be delivered by hook" in line]
        self.assertEqual(len(lines), 1)
        return lines[0].split("by hook: ")[1]

    def test_gets_the_letter_signed(self):
        self.root.service("--once")
        ((path, headers, body),) = self.server.got
        self.assertEqual(path, "/alerts?team=storage")
        self.assertEqual(headers["Content-Type"], "application/json")
        letter = json.loads(body)
        self.assertEqual([each["code"] for each in letter["alerts"]], ["DISK_PREDICTED_FAILURE"])
        self.assertEqual(headers["Idempotency-Key"], letter["id"])
        expected = hmac.new(SECRET, headers["X-Hxraid-Timestamp"].encode() + b"." + body,
                            hashlib.sha256).hexdigest()
        self.assertEqual(headers["X-Hxraid-Signature"], "sha256=" + expected)

    def test_refuses_a_certificate_that_it_does_not_know(self):
        other = self.root.folder / "other.pem"
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                        "ec_paramgen_curve:prime256v1", "-nodes", "-subj", "/CN=other", "-keyout",
                        self.root.folder / "other.key", "-out", other], check=True,
                       capture_output=True, timeout=PATIENCE)
        self.configure(authority=other)
        self.assertIn("SSL peer certificate", self.fails())
        self.assertEqual(self.server.got, [])

    def test_refuses_a_certificate_of_another_host(self):
        self.configure(host="localhost")
        self.assertIn("SSL", self.fails())
        self.assertEqual(self.server.got, [])

    def test_sends_again_after_an_error_of_the_server(self):
        self.server.answers = [(500, {})]
        self.assertEqual(self.fails(), "the receiver answered 500")
        self.root.service("--once")
        first, second = (json.loads(body) for _, _, body in self.server.got)
        self.assertEqual(first["id"], second["id"])
        self.assertEqual((second["attempt"], second["may_be_repeat"]), (2, True))

    def test_takes_a_refusal_for_a_failing_sink_at_once(self):
        self.server.answers = [(403, {})]
        self.assertEqual(self.fails(), "the receiver answered 403")
        self.server.answers = [(403, {})]
        self.assertIn("DELIVERY_FAILING", self.root.service("--once").stderr)

    def test_is_told_how_long_the_receiver_wants_to_be_left_alone(self):
        """The line that its program tells the service."""
        later = email.utils.format_datetime(
            datetime.datetime.now(datetime.timezone.utc) + datetime.timedelta(seconds=3000),
            usegmt=True)
        order = {"url": f"https://127.0.0.1:{self.server.server_port}/",
                 "ca_file": str(self.certificate), "secret_file": "", "limit_ms": 60000, "id": "1"}
        for answer, least, most in (({"Retry-After": "120"}, 120, 120), ({}, 0, 0),
                                    ({"Retry-After": later}, 3000 - 2 * PATIENCE, 3000),
                                    ({"Retry-After": "soon"}, 0, 0)):
            with self.subTest(answer=answer):
                self.server.answers = [(503, answer)]
                done = subprocess.run([WEBHOOK], input=json.dumps(order) + "\n{}", text=True,
                                      capture_output=True, timeout=PATIENCE, check=False)
                told = json.loads(done.stdout)
                self.assertEqual((done.returncode, told["error"], told["refused"]),
                                 (1, "the receiver answered 503", False))
                self.assertTrue(least <= told["wait_s"] <= most, told)

    def test_follows_no_redirection(self):
        self.server.answers = [(302, {"Location": "http://127.0.0.1:9/"})]
        self.assertIn("302, a redirection, which is not followed", self.fails())

    def test_ends_with_a_receiver_that_hangs(self):
        self.configure('limit = "1s"\n')
        self.server.answers = [(None, {})]
        # On a busy machine the program itself may take too long.
        self.assertRegex(self.fails(), "Timeout|did not end within")

    def test_reads_no_secret_that_others_can_read(self):
        self.secret.chmod(0o640)
        self.assertIn("must be a file that its owner alone can read", self.fails())
        self.assertEqual(self.server.got, [])

    def test_can_be_tried(self):
        self.assertEqual(self.root.service("--test-alert").stdout, "hook (webhook): delivered\n")
        self.assertTrue(json.loads(self.server.got[0][2])["test"])


if __name__ == "__main__":
    unittest.main()
