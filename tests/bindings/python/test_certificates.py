"""Reports and certificates, and the details that they state."""
# SPDX-License-Identifier: MIT
import datetime
import os
import warnings
import xml.etree.ElementTree as ElementTree

import pytest

import pelmora

LABORATORY = {"name": "Flow laboratory", "city": "Town", "country": "US"}
DETAILS = {"certificate_number": "2026-17", "date": "2026-11-20", "customer": "Customer", "customer_city": "City",
           "signatory": ["A. Signer, head of laboratory", "B. Operator"], "roshko_unit": "Hz/cSt",
           "strouhal_unit": "pulses/gal", "ambient_temperature": "70.5 F"}


@pytest.fixture
def recorded(db, series):
    """A meter with a curve and everything that a certificate states."""
    db.set_laboratory(**LABORATORY)
    series.meter.set_details(**DETAILS)
    series.fit()
    return series.meter


@pytest.mark.parametrize("kind, start", [(".html", b"<!"), (".svg", b"<"), (".json", b"{"), (".csv", b""),
                                         (".xlsx", b"PK")])
def test_a_report_is_of_the_kind_that_its_name_says(calibrated, tmp_path, kind, start):
    path = tmp_path / ("m1" + kind)
    assert calibrated.meter.report(path) == str(path)
    content = path.read_bytes()
    assert content.startswith(start)
    if kind != ".xlsx":
        assert b"Rotor Sum" in content


def test_a_report_of_unknown_kind_is_refused(calibrated, tmp_path):
    with pytest.raises(ValueError, match=r"\.html"):
        calibrated.meter.report(tmp_path / "m1.docx")
    assert list(tmp_path.glob("m1*")) == []


def test_details_are_kept_until_they_are_removed(db):
    meter = db.register("M1")
    assert db.laboratory == {} and meter.details == {}
    db.set_laboratory(**LABORATORY)
    assert db.laboratory == LABORATORY
    meter.set_details(**{**DETAILS, "date": datetime.date(2026, 11, 20)}, maker="Maker", remark="As found")
    assert meter.details == {**DETAILS, "maker": "Maker", "remark": ["As found"]}
    meter.set_details(remark=None, maker="")
    assert meter.details == DETAILS
    later = db.register("M1", new_calibration=True)
    assert later.details == {key: DETAILS[key] for key in ("customer", "customer_city", "roshko_unit", "strouhal_unit")}
    later.set_details(**meter.details)
    assert later.details == meter.details


def test_what_a_change_of_details_replaced_comes_back(db):
    meter = db.register("M1")
    meter.set_details(maker="Maker")
    meter.set_details(maker="Other")
    db.restore(meter.history()[0])
    assert meter.details == {"maker": "Maker"}


@pytest.mark.parametrize("details, kind, message", [
    ({"makr": "Maker"}, pelmora.NotFound, "did you mean maker"), ({"date": "20.11.2026"}, pelmora.BadData, "2026-11-20"),
    ({"ambient_temperature": 21.5}, pelmora.BadData, "21.5 C"), ({"roshko_unit": "kg"}, pelmora.BadData, "kg"),
    ({"ambient_temperature": "3 bar"}, pelmora.BadData, "temperature"), ({"signatory": 5}, pelmora.BadData, "list of texts"),
    ({"name": "Lab"}, pelmora.BadData, "of the laboratory"), ({}, pelmora.BadData, "nothing")])
def test_details_that_cannot_be_meant_are_refused(db, details, kind, message):
    meter = db.register("M1")
    with pytest.raises(kind, match=message) as caught:
        meter.set_details(maker="Maker", **details) if details else meter.set_details()
    assert caught.value.remedy and meter.details == {}


def test_every_detail_is_listed_with_what_it_is():
    fields = {field.name: field for field in pelmora.detail_fields()}
    assert {"certificate_number", "country", "nominal_flow_column"} <= set(fields)
    assert (fields["country"].of, fields["country"].kind) == ("laboratory", "country")
    assert (fields["ambient_temperature"].kind, fields["ambient_temperature"].quantity) == ("measure", "temperature")
    assert all(field.label and field.help for field in fields.values())
    assert all(name.isidentifier() for name in fields)


def test_a_digital_certificate_states_the_details_and_the_points(recorded, points, tmp_path):
    path = tmp_path / "m1.xml"
    assert recorded.report(path) == str(path)
    root = ElementTree.parse(path).getroot()
    assert root.tag.endswith("digitalCalibrationCertificate")
    texts = [text.strip() for text in root.itertext() if text.strip()]
    assert {"2026-17", "Flow laboratory", "Customer", "2026-11-20"} <= set(texts)
    lists = [[float(each) for each in text.split()] for text in texts
             if len(text.split()) == len(points[0]) and text[0].isdigit()]
    assert any(values == pytest.approx(points[0], rel=1e-4) for values in lists)


def test_a_digital_certificate_without_its_details_is_refused_with_what_is_missing(series, tmp_path):
    series.fit()
    with pytest.raises(pelmora.BadData) as caught:
        series.meter.report(tmp_path / "m1.xml")
    assert "the certificate number" in caught.value.what
    assert "meter.set_details" in caught.value.remedy and "db.set_laboratory" in caught.value.remedy
    assert list(tmp_path.glob("*.xml*")) == []


def test_a_pdf_without_its_certificate_is_written_with_a_warning(recorded, tmp_path, monkeypatch):
    program = tmp_path / "weasyprint"  # in place of the real one, which takes seconds
    program.write_text("#!/bin/sh\nfor file; do :; done\nprintf '%s' '%PDF-1.7' > \"$file\"\n")
    program.chmod(0o755)
    monkeypatch.setenv("PATH", f"{tmp_path}:{os.environ['PATH']}")
    path = tmp_path / "m1.pdf"
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        assert recorded.report(path) == str(path)
    path.unlink()
    recorded.set_details(certificate_number=None)
    with pytest.warns(pelmora.PelmoraWarning, match="no digital certificate.*certificate number.*meter.set_details") as caught:
        assert recorded.report(path) == str(path)
    assert path.read_bytes().startswith(b"%PDF-")
    assert [warning.filename for warning in caught] == [__file__]


def test_a_pdf_without_the_program_that_makes_it_says_what_is_missing(recorded, tmp_path, monkeypatch):
    monkeypatch.setenv("PATH", str(tmp_path))
    with pytest.raises(pelmora.Unusable, match="weasyprint") as caught:
        recorded.report(tmp_path / "m1.pdf")
    assert caught.value.remedy and list(tmp_path.glob("m1*")) == []


def test_a_pdf_has_the_certificate_attached(recorded, tmp_path, monkeypatch):
    # In place of the real weasyprint, which takes seconds: the file to attach, which follows its option.
    program = tmp_path / "weasyprint"
    program.write_text("#!/bin/sh\nwhile [ \"$1\" != --attachment ]; do shift; done\n"
                       "cp \"$2\" \"$ATTACHED\"\nfor file; do :; done\nprintf '%s' '%PDF-1.7' > \"$file\"\n")
    program.chmod(0o755)
    monkeypatch.setenv("PATH", f"{tmp_path}:{os.environ['PATH']}")
    monkeypatch.setenv("ATTACHED", str(tmp_path / "attached.xml"))
    recorded.report(tmp_path / "m1.pdf")
    attached = ElementTree.parse(tmp_path / "attached.xml").getroot()
    assert attached.tag.endswith("digitalCalibrationCertificate")
    assert "2026-17" in [text.strip() for text in attached.itertext()]


def test_only_a_certificate_can_be_signed(recorded, tmp_path):
    with pytest.raises(pelmora.BadData, match=".xml or .pdf"):
        recorded.report(tmp_path / "m1.html", sign=("key.pem", "certificate.pem"))
    with pytest.raises(pelmora.BadData, match="two files"):
        recorded.report(tmp_path / "m1.xml", sign="key.pem")
    with pytest.raises(pelmora.Error, match="key.pem|xmlsec1"):
        recorded.report(tmp_path / "m1.xml", sign=(tmp_path / "key.pem", tmp_path / "certificate.pem"))
    assert list(tmp_path.glob("m1.*")) == []


def test_a_report_in_a_folder_that_does_not_exist_says_so(series, tmp_path):
    with pytest.raises(pelmora.Unusable, match="No such file or directory"):
        series.meter.report(tmp_path / "none" / "m1.json")
