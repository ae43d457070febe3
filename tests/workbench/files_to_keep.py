#!/usr/bin/env python3
"""Reports, signatures and tables as files that the workbench hands out:
files_to_keep.py PROGRAM DATA OPENAPI SCHEMA [CASE...]"""
# SPDX-License-Identifier: MIT
import csv
import io
import json
import subprocess
import sys
import urllib.parse
import zipfile

from described import DATA, PROGRAM, ROTOR, as_command, change, command, read
from served import run_cases


def run(*words):
    subprocess.run([PROGRAM, *words], check=True, capture_output=True)


def reports_of_every_format_are_files_to_keep(bench, curves):
    begins = {"html": b"<!doctype html", "json": b"{", "csv": b"", "xlsx": b"PK", "svg": b"<"}
    for kind, begin in begins.items():
        status, headers, body = bench.ask("GET", f"/{bench.room}/api/report?meter=M1&format={kind}")
        assert status == 200 and len(body) > 500, (kind, status)
        assert body[:64].lower().lstrip().startswith(begin.lower()), (kind, body[:40])
        assert headers["content-disposition"] == f'attachment; filename="M1-calibration-0.{kind}"', headers
    # A digital certificate needs details of laboratory and customer: the answer names those that are missing.
    status, answer = bench.get("report", meter="M1", format="xml")
    assert status == 400 and "missing are the certificate number" in answer["error"]["what"] and answer["error"]["remedy"], answer
    status, answer = bench.get("report", meter="M1", format="exe")
    assert status == 400 and "html" in answer["error"]["what"]


def a_signature_is_stated_in_every_file_until_and_after_it_is_void(bench, curves):
    run("laboratory", "set", curves, "--name", "Flow laboratory", "--city", "Town", "--country", "US")
    run("meter", "set", curves, "--meter", "M1", "--certificate-number", "2026-17", "--date", "2026-11-20", "--customer", "Customer",
        "--customer-city", "City", "--roshko-unit", "Hz/cSt", "--strouhal-unit", "pulses/gal", "--signatory", "A. Signer, head")
    series = read(bench, "/series", **ROTOR)
    signed = change(bench, "/sign", **ROTOR, revision=series["revision"], name="Ada Byron", remark="as found & left")

    def file(kind):
        status, _, body = bench.ask("GET", f"/{bench.room}/api/report?meter=M1&series=Rotor+A&format={kind}")
        assert status == 200, (kind, status, body[:300])
        return body

    def check_files(valid, state):
        report = json.loads(file("json"))
        as_command("report", report)
        stated = report["series"][0]["signatures"]
        assert [(s["name"], s["remark"], s["fingerprint"], s["valid"]) for s in stated] == [
            ("Ada Byron", "as found & left", signed["fingerprint"], valid)], stated
        assert stated == read(bench, "/series", **ROTOR)["signatures"]
        rows = list(csv.DictReader(io.StringIO(subprocess.run([PROGRAM, "report", curves, "--meter", "M1", "--series", "Rotor A", "-o", "-",
            "--csv", "--table", "signatures"], check=True, capture_output=True, text=True).stdout, newline="")))
        assert [(r["series"], r["name"], r["valid"]) for r in rows] == [("Rotor A", "Ada Byron", "1" if valid else "0")], rows
        book = zipfile.ZipFile(io.BytesIO(file("xlsx")))
        assert 'name="signatures"' in book.read("xl/workbook.xml").decode()
        assert signed["fingerprint"] in book.read("xl/sharedStrings.xml").decode()
        text = "as found &amp; left. Fingerprint " + signed["fingerprint"]
        certificate = file("xml").decode()
        assert f"Rotor A: {state} by Ada Byron, {signed['signedAt']}: {text}" in certificate
        assert f"<b>{state}</b> by Ada Byron, {signed['signedAt']}: as found &amp; left" in file("html").decode()

    check_files(True, "Signed off")
    run("exclude", curves, "--meter", "M1", "--series", "Rotor A", "--part", "1", "--point", "5", "--reason", "air")
    check_files(False, "Void, changed since it was signed off")


def a_table_for_a_flow_computer_is_that_of_the_command(bench, curves):
    line = ["export", curves, "--meter", "M1", "--series", "Rotor A"]
    run("meter", "set", curves, "--meter", "M1", "--expansion", "5e-5 1/K")
    wanted = [({}, ["--for", "roshko"]),
              ({"for": "uvc", "points": 20, "read": "log", "temperature": 35}, ["--for", "uvc", "--points", "20", "--read", "log", "--temperature", "35 C"]),
              ({"for": "linear", "viscosity": 1.2, "xUnit": "kHz", "yUnit": "pulses/l"},
               ["--for", "linear", "--viscosity", "1.2", "--x-unit", "kHz", "--y-unit", "pulses/l"])]
    for query, options in wanted:
        table = read(bench, "/table", **ROTOR, **query)
        as_command("export --for", table)
        assert table == command(*line, *options)
    for kind in ("csv", "json", "xlsx"):
        words = urllib.parse.urlencode({**ROTOR, **query, "format": kind})
        status, headers, body = bench.ask("GET", f"/{bench.room}/api/table?{words}")
        assert status == 200
        assert headers["content-disposition"] == f'attachment; filename="M1-calibration-0-Rotor_A-linear.{kind}"', headers
        if kind == "csv":
            assert body == subprocess.run([PROGRAM, *line, *options], check=True, capture_output=True).stdout, body[:200]
        elif kind == "json":
            assert json.loads(body) == table
        else:
            assert "frequency (kHz)" in zipfile.ZipFile(io.BytesIO(body)).read("xl/sharedStrings.xml").decode()


def a_table_that_cannot_be_made_says_why(bench, curves):
    bad = [({"for": "linear"}, "viscosity"), ({"for": "cubic"}, "'for' must be"), ({"read": "well"}, "'read' must be"), ({"points": 1}, "from 2 to 5000"),
           ({"format": "pdf"}, "'format' must be"), ({"xUnit": "gpm"}, "gpm"), ({"series": "Ratio", "for": "uvc"}, "quotient")]
    for query, word in bad:
        error = read(bench, "/table", 400, **{**ROTOR, **query})["error"]
        assert word in error["what"] + error["remedy"] and error["remedy"], error


run_cases(PROGRAM, DATA, globals(), sys.argv[5:])
