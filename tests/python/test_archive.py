"""The Python package against the kernel's C entry and against the histories
it returns itself: every family, snapshots, envelopes, errors and threads."""

import shutil
import struct
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import respcore

# Families of the demo archive: (name, number, items to compare).
FAMILIES = [("node-displacement", 9, [1, 24]), ("node-velocity", 10, [24]), ("node-acceleration", 11, [19]),
            ("truss", 12, [1, 4]), ("beam", 13, [1, 39])]


@pytest.mark.parametrize("name,elem_type,items", FAMILIES)
def test_every_family_of_the_demo_equals_the_c_entry(demo, c_entry, name, elem_type, items):
    a = respcore.Archive(demo)
    for item in items:
        for comp in respcore.components(name).history:
            want = c_entry(demo, elem_type, comp.number, [item], size=1000, steps=1000)
            np.testing.assert_array_equal(a.history(name, item, comp.name, axes="local"), want)
    step = 1 if elem_type <= 11 else 640  # a node snapshot holds its first step
    for sel in respcore.components(name).snapshot:
        got = a.snapshot(name, items, sel.name, step)
        want = c_entry(demo, elem_type, sel.number, items, size=got.size, step=step, request_mode=2)
        np.testing.assert_array_equal(got, want.reshape(got.shape))


def test_snapshots_and_envelopes_agree_with_histories(demo):
    a = respcore.Archive(demo)
    beams, beams_j = a.histories("beam", "all", "My-i"), a.histories("beam", "all", "My-j")
    assert beams.shape == (39, 1000)
    # A long history of one row is summed in another order than a step's own
    # products: the two agree to rounding of its scale.
    tol = dict(rtol=0, atol=1e-12 * np.abs(beams).max())
    for step in (1, 531, 1000):
        np.testing.assert_allclose(a.snapshot("beam", "all", "My", step),
                                   np.column_stack([beams[:, step - 1], beams_j[:, step - 1]]), **tol)
    nodes = a.histories("node-displacement", range(1, 25), "y")
    np.testing.assert_array_equal(a.snapshot("node-displacement", range(1, 25), "y", 777)[:, 0], nodes[:, 776])
    e = a.envelope("node-displacement", range(1, 25), "y")
    np.testing.assert_array_equal((e.max, e.min), (nodes.max(axis=1), nodes.min(axis=1)))
    np.testing.assert_array_equal((e.max_step, e.min_step), (nodes.argmax(axis=1) + 1, nodes.argmin(axis=1) + 1))
    rz = a.histories("node-displacement", range(1, 25), "rz")
    np.testing.assert_array_equal(e.at_max[:, 5], rz[np.arange(24), e.max_step - 1])
    eb = a.envelope("beam", "all", "My-i")
    np.testing.assert_allclose(eb.max, beams.max(axis=1), **tol)
    np.testing.assert_array_equal(eb.min_step, beams.argmin(axis=1) + 1)
    # A modal history is the sum of its modes' histories.
    n = a.modes(1)
    each = sum(a.history("node-acceleration", 20, "x", mode=m) for m in range(1, n + 1))
    np.testing.assert_allclose(each, a.history("node-acceleration", 20, "x"), rtol=0, atol=1e-12 * np.abs(each).max())
    # Items in every form.
    want = a.snapshot("beam", [1, 2, 3, 12], "N", 10)
    for items in ("1-3,12", "1,2,3,12:112", np.array([1, 2, 3, 12]), [(1, 1), 2, "3", 12]):
        np.testing.assert_array_equal(a.snapshot(13, items, 1, 10), want, err_msg=repr(items))


def test_errors_name_their_cause_and_print_nothing(demo, tmp_path, capfd):
    # The messages themselves are the query layer's (tests/cli/tool_test.py):
    # here the exceptions that carry them.
    with pytest.raises(respcore.ArchiveError, match="no archive at"):
        respcore.Archive(str(tmp_path / "missing"))
    for e in (".PA1", ".PA2", ".PAT2"):
        shutil.copy(demo + e, tmp_path / ("code" + e))
    with open(tmp_path / "code.PA2", "r+b") as f:
        f.seek(4), f.write(struct.pack("<i", 3))
    # A head with another file code: the kernel refuses every look-up.
    with pytest.raises(respcore.ArchiveError, match="ERROR READ-F IN RESP CORE , ID_M, ID_S=THIF") as err:
        respcore.Archive(str(tmp_path / "code")).history("beam", 1, "My-i", steps=5)
    assert "   ERROR READ-F IN RESP CORE , ID_M, ID_S=BEAM      3" in err.value.lines
    a = respcore.Archive(demo)
    for call, message in [(lambda: a.history("bem", 1, "My-i"), "unknown family 'bem'"),
                          (lambda: a.snapshot("beam", [1, 40], "My", 3), "item 40 is past the BEAM/3 section"),
                          (lambda: a.envelope("node-velocity", 1, "warp"), "six components")]:
        with pytest.raises(ValueError, match=message):
            call()
    with pytest.raises(respcore.ArchiveError, match="no plate results here"):
        a.history(3, 1, 1)
    assert capfd.readouterr() == ("", "")


def test_two_threads_with_two_archives_give_the_serial_results(demo):
    requests = [("beam", i, "My-i") for i in range(1, 40)] + [("node-acceleration", n, "x") for n in range(1, 25)]
    serial = [respcore.Archive(demo).history(*r) for r in requests]
    archives = [respcore.Archive(demo), respcore.Archive(demo)]
    with ThreadPoolExecutor(2) as pool:
        halves = list(pool.map(lambda k: [archives[k].history(*r) for r in requests[k::2]], [0, 1]))
    for k in (0, 1):
        for got, want in zip(halves[k], serial[k::2]):
            np.testing.assert_array_equal(got, want)
