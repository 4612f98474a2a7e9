"""The Python package against the kernel's C entry and against physics of
the demo archive: histories, snapshots, envelopes, errors and threads."""

import shutil
import struct
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import respcore

# Families of the demo archive: (name, number, items to compare).
FAMILIES = [("node-displacement", 9, [1, 7, 24]), ("node-velocity", 10, [13, 24]),
            ("node-acceleration", 11, [19, 24]), ("truss", 12, [1, 4]), ("beam", 13, [1, 17, 39])]


@pytest.mark.parametrize("name,elem_type,items", FAMILIES)
def test_every_family_of_the_demo_equals_the_c_entry(demo, c_entry, name, elem_type, items):
    a = respcore.Archive(demo)
    rows = respcore.components(name).history
    for item in items:
        for comp in rows:
            got = a.history(name, item, comp.name, axes="local")
            want = c_entry(demo, elem_type, comp.number, [item], size=1000, steps=1000)
            np.testing.assert_array_equal(got, want, err_msg=f"{name} {item} {comp.name}")
    # Snapshots by every selector through the many-items form (step 1 for
    # nodes, where that form holds), with the points of each item in a row.
    step = 1 if elem_type <= 11 else 640
    for sel in respcore.components(name).snapshot:
        got = a.snapshot(name, items, sel.name, step)
        m = got.shape[1]
        want = c_entry(demo, elem_type, sel.number, items, size=m * len(items), step=step, request_mode=2)
        np.testing.assert_array_equal(got, want.reshape(len(items), m))


def test_modal_and_direct_cases_agree(demo):
    a = respcore.Archive(demo)
    assert a.cases == [1, 2] and (a.storage(1), a.storage(2)) == ("modal", "direct")
    for family, item, comp in [("beam", 1, "My-i"), ("truss", 2, "N-j"), ("node-acceleration", 24, "y"),
                               ("node-velocity", 20, "rz")]:
        modal = a.history(family, item, comp, case=1)
        direct = a.history(family, item, comp, case=2)
        scale = np.abs(modal).max()
        assert scale > 0
        np.testing.assert_allclose(modal, direct, rtol=0, atol=1e-9 * scale, err_msg=f"{family} {comp}")


def test_snapshots_and_envelopes_agree_with_histories(demo):
    a = respcore.Archive(demo)
    beams = a.histories("beam", "all", "My-i")
    beams_j = a.histories("beam", "all", "My-j")
    assert beams.shape == (39, 1000)
    for step in (1, 531, 1000):
        np.testing.assert_array_equal(a.snapshot("beam", "all", "My", step),
                                      np.column_stack([beams[:, step - 1], beams_j[:, step - 1]]))
    nodes = a.histories("node-displacement", range(1, 25), "y")
    for step in (1, 2, 777):
        np.testing.assert_array_equal(a.snapshot("node-displacement", range(1, 25), "y", step)[:, 0],
                                      nodes[:, step - 1])

    # Envelopes: the extremes and the first steps that reach them; for nodes
    # all six components at those steps.
    e = a.envelope("node-displacement", range(1, 25), "y")
    np.testing.assert_array_equal(e.max, nodes.max(axis=1))
    np.testing.assert_array_equal(e.min, nodes.min(axis=1))
    np.testing.assert_array_equal(e.max_step, nodes.argmax(axis=1) + 1)
    np.testing.assert_array_equal(e.min_step, nodes.argmin(axis=1) + 1)
    rz = a.histories("node-displacement", range(1, 25), "rz")
    np.testing.assert_array_equal(e.at_max[:, 5], rz[np.arange(24), e.max_step - 1])
    eb = a.envelope("beam", "all", "My-i")
    np.testing.assert_array_equal(eb.max, beams.max(axis=1))
    np.testing.assert_array_equal(eb.min_step, beams.argmin(axis=1) + 1)
    assert eb.at_max is None

    # The ground storey's column bases carry the moments that the upper
    # storeys' do not reach (a physical check on the selection of items).
    assert np.abs(beams[:6]).max() > np.abs(beams[-6:]).max()


def test_errors_name_their_cause_and_print_nothing(demo, tmp_path, capfd):
    with pytest.raises(respcore.ArchiveError, match="no archive at"):
        respcore.Archive(str(tmp_path / "missing"))

    # A second file cut short: its directory announces more than it holds.
    for ext in (".PA1", ".PA2", ".PAT2"):
        shutil.copy(demo + ext, tmp_path / ("cut" + ext))
    with open(tmp_path / "cut.PA2", "r+b") as f:
        f.truncate(100000)
    with pytest.raises(respcore.ArchiveError, match=r"cut\.PA2: section \w+/3 needs \d+ bytes"):
        respcore.Archive(str(tmp_path / "cut"))

    # A head with another file code: the directory reads, the kernel refuses
    # every look-up with its own line.
    for ext in (".PA1", ".PA2", ".PAT2"):
        shutil.copy(demo + ext, tmp_path / ("code" + ext))
    with open(tmp_path / "code.PA2", "r+b") as f:
        f.seek(4)
        f.write(struct.pack("<i", 3))
    with pytest.raises(respcore.ArchiveError, match="ERROR READ-F IN RESP CORE , ID_M, ID_S=THIF") as err:
        respcore.Archive(str(tmp_path / "code")).history("beam", 1, "My-i", steps=5)
    assert "   ERROR READ-F IN RESP CORE , ID_M, ID_S=BEAM      3" in err.value.lines

    a = respcore.Archive(demo)
    with pytest.raises(ValueError, match="unknown family 'bem'"):
        a.history("bem", 1, "My-i")
    with pytest.raises(ValueError, match="unknown component 'Mq-i' of beam"):
        a.history("beam", 1, "Mq-i")
    with pytest.raises(ValueError, match="is a snapshot selector here"):
        a.history("beam", 1, "My")
    with pytest.raises(ValueError, match="item 40 is past the BEAM/3 section"):
        a.snapshot("beam", [1, 40], "My", 3)
    with pytest.raises(respcore.ArchiveError, match="no plate results here"):
        a.history(3, 1, 1)
    out, err_text = capfd.readouterr()
    assert out == "" and err_text == ""


def test_two_threads_with_two_archives_give_the_serial_results(demo):
    requests = [("beam", i, "My-i") for i in range(1, 40)] + [("node-acceleration", n, "x") for n in range(1, 25)]
    serial = [respcore.Archive(demo).history(*r) for r in requests]
    archives = [respcore.Archive(demo), respcore.Archive(demo)]

    def run(k):
        return [archives[k].history(*r) for r in requests[k::2]]

    with ThreadPoolExecutor(2) as pool:
        halves = list(pool.map(run, [0, 1]))
    for k in (0, 1):
        for got, want in zip(halves[k], serial[k::2]):
            np.testing.assert_array_equal(got, want)


def test_items_modes_and_arguments_in_every_form(demo):
    a = respcore.Archive(demo)
    want = a.snapshot("beam", [1, 2, 3, 12], "N", 10)
    for items in ("1-3,12", "1,2,3,12:112", np.array([1, 2, 3, 12]), np.array([[1, 1], [2, 2], [3, 3], [12, 12]]),
                  [(1, 1), 2, "3", 12]):
        np.testing.assert_array_equal(a.snapshot(13, items, 1, 10), want, err_msg=repr(items))
    np.testing.assert_array_equal(a.history("beam", "5", 5), a.history(13, 5, "My-i"))

    # A modal history is the sum of its modes' histories.
    n = a.modes(1)
    assert n > 1 and a.modes(2) == 0
    each = sum(a.history("node-acceleration", 20, "x", mode=m) for m in range(1, n + 1))
    np.testing.assert_allclose(each, a.history("node-acceleration", 20, "x"), rtol=0, atol=1e-12 * np.abs(each).max())

    for call, message in [(lambda: a.history("beam", 1, 5, steps=0), "steps"),
                          (lambda: a.history("beam", 1, 5, mode=0), "mode"),
                          (lambda: a.history("beam", 1, 5, axes="sideways"), "axes"),
                          (lambda: a.history("beam", 0, 5), "positive"),
                          (lambda: a.history(15, 1, 5), "unknown family"),
                          (lambda: a.history("beam", 1, 5, steps=1001), "exceed the 1000 steps"),
                          (lambda: a.history("beam", 1, 5, relative_to=3), "node results only"),
                          (lambda: a.snapshot("beam", "all", "N", 1001), "past the 1000 steps"),
                          (lambda: a.envelope("node-velocity", 1, "warp"), "six components")]:
        with pytest.raises(ValueError, match=message):
            call()


def test_sections_list_every_file_as_it_stands(demo, tmp_path):
    for ext in (".PA1", ".PA2", ".PAT2"):
        shutil.copy(demo + ext, tmp_path / ("frame" + ext))
    a = respcore.Archive(str(tmp_path / "frame"))
    files = a.sections()
    assert [f.role for f in files] == ["first file", "second file", "direct file 2"]
    assert all(f.exists and f.problem == "" and f.form == "plain" and f.file_code == 2 for f in files)
    second = {(s.tag, s.serial): s for s in files[1].sections}
    assert files[1].sections[0].tag == "HEAD"
    for family in ("beam", "truss", "node-displacement"):
        s = second[(respcore.family(family).section, 3)]
        assert s.records == a.records(family) == s.last - s.first + 1
    assert second[("CORD", 3)].records == 24 and second[("THIF", 3)].records == len(a.cases)
    # The direct file's histories: three records per equation, a value per step.
    (dmed,) = files[2].sections[1:]
    assert dmed.tag == "DMED" and dmed.reclen == 2 * a.steps(2) and dmed.records % 3 == 0

    # Read afresh: a file cut short after the Archive was opened shows why.
    with open(tmp_path / "frame.PAT2", "r+b") as f:
        f.truncate(1000)
    assert "the file holds 1000" in a.sections()[2].problem
