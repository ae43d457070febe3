# SPDX-License-Identifier: MIT
import pytest

import pelmora


def test_a_signature_states_who_signed_what_and_when(series):
    series.fit()
    made = series.sign_off("Ada Lovelace", remark="after the new bearing")
    assert (made.name, made.remark, made.user, made.valid) == ("Ada Lovelace", "after the new bearing", "Ada", True)
    assert made.fingerprint == series.fingerprint and len(made.fingerprint) == 64
    assert made.version == pelmora.__version__ and made.signed_at.endswith("Z")
    assert series.signatures == [made]


def test_a_later_change_makes_a_signature_void_until_it_is_undone(series):
    series.fit()
    series.sign_off("Ada")
    series.exclude(part=1, number=3, reason="air in the line")
    assert [entry.valid for entry in series.signatures] == [False]
    series.include(part=1, number=3)
    assert [entry.valid for entry in series.signatures] == [True]


def test_signatures_are_listed_with_the_newest_first(series):
    series.fit()
    for name in ("Ada", "Bob"):
        series.sign_off(name)
    assert [entry.name for entry in series.signatures] == ["Bob", "Ada"]
    assert [entry["name"] for entry in series.signatures.to_dict()] == ["Bob", "Ada"]


def test_a_series_that_has_changed_since_it_was_looked_at_is_not_signed(series):
    series.fit()
    seen = series.fingerprint
    series.fit(points=20)
    with pytest.raises(pelmora.Changed, match="look at it again"):
        series.sign_off("Ada", fingerprint=seen)
    assert len(series.signatures) == 0
    assert series.sign_off("Ada", fingerprint=series.fingerprint).valid


def test_only_a_current_curve_is_signed_and_only_with_a_name(db, series):
    with pytest.raises(pelmora.NotFound, match="no stored curve"):
        series.sign_off("Ada")
    series.fit()
    for name in ("", "  ", "Ada\x07"):
        with pytest.raises(pelmora.BadData):
            series.sign_off(name)
    with pytest.raises(pelmora.BadData, match="'name'|name"):
        series.sign_off(7)
    series.exclude(part=1, number=3, reason="air in the line")
    with pytest.raises(pelmora.BadData, match="(?i)fit"):
        series.sign_off("Ada")
    with pelmora.open(db.location, mode="r") as reader, pytest.raises(pelmora.Unusable, match='mode="w"'):
        reader.meter("M1").series["K"].sign_off("Ada")


def test_the_report_lists_the_signatures(series, tmp_path):
    series.fit()
    series.sign_off("Ada Lovelace")
    series.meter.report(tmp_path / "m1.html")
    page = (tmp_path / "m1.html").read_text()
    assert "Signed off" in page and "Ada Lovelace" in page
