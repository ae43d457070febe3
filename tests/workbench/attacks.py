#!/usr/bin/env python3
"""What strangers send to the workbench gets them nothing: attacks.py PROGRAM DATA [CASE...]"""
# SPDX-License-Identifier: MIT
import json
import os
import subprocess
import sys
import tempfile
import time

from databases import digest
from served import PATIENCE, run_cases

PROGRAM, DATA = sys.argv[1:3]
CHANGE = json.dumps({"meter": "M1", "series": "Rotor A", "revision": "x", "excluded": [], "settings": {}}).encode()


def no_other_address_listens(bench, curves):
    listening = []
    with open("/proc/net/tcp", encoding="ascii") as table, open("/proc/net/tcp6", encoding="ascii") as table6:
        for line in table.readlines()[1:] + table6.readlines()[1:]:
            local, state = line.split()[1], line.split()[3]
            if state == "0A" and int(local.rsplit(":", 1)[1], 16) == bench.port:
                listening.append(local.rsplit(":", 1)[0])
    assert listening == ["0100007F"], listening  # 127.0.0.1, least significant byte first


def a_rebound_name_gets_nothing(bench, curves):
    """The page of an attacker whose name now resolves to this machine: its Host gives it away."""
    for host in (f"attacker.example:{bench.port}", f"localhost:{bench.port}", f"127.0.0.1.nip.io:{bench.port}", "127.0.0.1",
                 f"127.0.0.1:{bench.port + 1}"):
        for path in ("/", f"/{bench.room}/", f"/{bench.room}/api/meters", f"/{bench.room}/open?token={'0' * 32}"):
            status, headers, body = bench.ask("GET", path, headers={"Host": host})
            assert status == 421 and b"M1" not in body and "set-cookie" not in headers, (host, path, status)
        status, _, _ = bench.ask("POST", f"/{bench.room}/api/store", CHANGE, {"Host": host, "Origin": f"http://{host}"})
        assert status == 421


def a_cross_site_post_changes_nothing(bench, curves):
    before = digest(curves)
    for headers in ({"Origin": "https://attacker.example"}, {"Origin": "null"}, {"Origin": None}, {"Sec-Fetch-Site": "cross-site"},
                    {"Sec-Fetch-Site": "same-site", "Origin": "http://127.0.0.1:9"}, {"Content-Type": "text/plain"},
                    {"Content-Type": "application/x-www-form-urlencoded"}, {"Content-Type": "multipart/form-data; boundary=b"}):
        status, _, _ = bench.ask("POST", f"/{bench.room}/api/store", CHANGE, headers)
        assert status in (403, 415), (headers, status)
    assert digest(curves) == before


def a_get_changes_nothing(bench, curves):
    before = digest(curves)
    for path in ("store", "sign", "restore", "import", "raw", "fit", "upload"):
        status, _, body = bench.ask("GET", f"/{bench.room}/api/{path}?meter=M1&series=Rotor+A&name=x&entry=1")
        assert status == 405 and b'"error"' in body, (path, status)
    assert digest(curves) == before


def without_the_cookie_there_is_nothing(bench, curves):
    for path in ("", "main.js", "api/meters", "api/openapi.json"):
        for cookie in (None, "pelmora-%d=%s" % (bench.port, "0" * 32), bench.cookie.replace("=", "=0")):
            status, _, body = bench.ask("GET", f"/{bench.room}/{path}", headers={"Cookie": cookie})
            assert status == 401 and b"M1" not in body, (path, cookie, status)
    for path in ("/", "/main.js", "/api/meters", f"/{'0' * 32}/"):
        assert bench.ask("GET", path)[0] == 404, path


def a_token_works_once_and_the_next_one_is_printed(bench, curves):
    assert bench.ask("GET", f"/{bench.room}/open?token={bench.token}", cookie=False)[0] == 403
    second = bench.next_address()
    assert second != bench.address
    status, headers, _ = bench.ask("GET", second.removeprefix(bench.origin), cookie=False)
    assert status == 200 and "HttpOnly" in headers["set-cookie"] and "SameSite=Strict" in headers["set-cookie"]


def every_answer_has_the_policy(bench, curves):
    for path in ("", "main.js", "style.css", "api/state", "api/nothing", "nothing", "api/report?meter=M1&format=html"):
        _, headers, _ = bench.ask("GET", f"/{bench.room}/{path}")
        policy = headers["content-security-policy"]
        assert "default-src 'none'" in policy and "frame-ancestors 'none'" in policy and "unsafe" not in policy, path
        assert headers["x-frame-options"] == "DENY" and headers["cache-control"] == "no-store", path
        assert headers["x-content-type-options"] == "nosniff" and headers["referrer-policy"] == "no-referrer", path
        assert "access-control-allow-origin" not in headers, path


def too_much_is_refused(bench, curves):
    status, headers, _ = bench.ask("POST", f"/{bench.room}/api/sign", b" " * (1 << 20) + b"{}")
    assert status == 413 and "content-security-policy" in headers, status
    status, _, _ = bench.ask("GET", f"/{bench.room}/api/state", headers={"X-Long": "y" * 40000})
    assert status in (413, 414, 431), status
    # Without a length that could be refused beforehand.
    head = (f"POST /{bench.room}/api/sign HTTP/1.1\r\nHost: {bench.host}\r\nOrigin: {bench.origin}\r\nCookie: {bench.cookie}\r\n"
            "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n").encode()
    chunk = b"10000\r\n" + b" " * 0x10000 + b"\r\n"
    assert bench.raw(head + chunk * 20 + b"0\r\n\r\n").startswith(b"HTTP/1.1 413")


def paths_lead_nowhere_else(bench, curves):
    for path in ("../../../../etc/passwd", "..%2f..%2fetc%2fpasswd", "%2e%2e/%2e%2e/etc/passwd", "api/../../etc/passwd", "//etc/passwd",
                 "main.js%00.html", "api/report?meter=M1&format=../../etc/passwd"):
        answer = bench.raw(f"GET /{bench.room}/{path} HTTP/1.1\r\nHost: {bench.host}\r\nCookie: {bench.cookie}\r\nConnection: close\r\n\r\n".encode())
        assert b"root:" not in answer and answer[9:12] in (b"404", b"400", b"405", b"200"), (path, answer[:80])


def the_browser_is_handed_no_token_on_a_command_line(bench, curves):
    """Everybody on a machine can read the arguments of programs: the address is in a private file."""
    with tempfile.TemporaryDirectory() as folder:
        seen, program = os.path.join(folder, "seen"), os.path.join(folder, "xdg-open")
        with open(program, "w", encoding="ascii") as stream:
            stream.write(f'#!/bin/sh\nfile="${{1#file://}}"\n{{ echo "$1"; stat -c %a "$(dirname "$file")"; cat "$file"; }} >{seen}.part\nmv {seen}.part {seen}\n')
        os.chmod(program, 0o755)
        with subprocess.Popen([PROGRAM, "workbench", curves], stdout=subprocess.PIPE, text=True,
                              env={**os.environ, "PATH": folder + ":" + os.environ["PATH"]}) as process:
            try:
                end = time.monotonic() + PATIENCE
                while not os.path.exists(seen):
                    assert time.monotonic() < end
                    time.sleep(0.05)
                with open(seen, encoding="ascii") as stream:
                    argument, mode, *page = stream.read().splitlines()
                assert argument.startswith("file://") and "token=" not in argument and mode == "700"
                assert "/open?token=" in "".join(page)
                with open(f"/proc/{process.pid}/cmdline", "rb") as stream:
                    assert b"token=" not in stream.read()
            finally:
                process.terminate()
        assert not os.path.exists(argument.removeprefix("file://")), "the file outlives the workbench"


run_cases(PROGRAM, DATA, globals(), sys.argv[3:])
