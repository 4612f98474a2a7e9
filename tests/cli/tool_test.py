"""The respcore tool end to end on the demo archive: every output read back
with Python's own csv, json and xml readers and compared with the kernel's
C entry called through ctypes; the error paths with their messages and exit
codes. RESPCORE_TOOL names the tool; RESPCORE_LIB the kernel library (left
empty where it cannot be loaded, e.g. under the sanitizers: the values are
then not compared)."""

import csv
import ctypes
import io
import json
import os
import shutil
import struct
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ET

TOOL = os.environ["RESPCORE_TOOL"]
LIB = os.environ.get("RESPCORE_LIB") and ctypes.CDLL(os.environ["RESPCORE_LIB"])
DIR = tempfile.mkdtemp()
BASE = os.path.join(DIR, "demo", "frame")


def tool(args):
    r = subprocess.run([TOOL] + args.split(), capture_output=True, text=True, stdin=subprocess.DEVNULL)
    return r.returncode, r.stdout, r.stderr


def kernel(elem_type, comp, serial, steps, case=1, step=1, mode=1):
    """The kernel's values for one item, local axes; None without the library."""
    if not LIB:
        return None
    f = LIB.respcore_request
    i32 = ctypes.c_int32
    n = steps if mode == 1 else 2
    out = (ctypes.c_double * n)()
    item = (i32 * 1)(serial)
    name = BASE.encode()
    assert f(name, i32(len(name)), i32(elem_type), i32(comp), i32(case), i32(steps), i32(1), i32(step),
             i32(mode), i32(1), i32(0), out, item, item, i32(0)) == 0
    return list(out)


def rows(text):
    return list(csv.reader(io.StringIO(text)))


class Tool(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        assert tool("demo " + os.path.dirname(BASE))[0] == 0

    def same(self, got, want):
        if want is not None:
            self.assertEqual(got, want)

    def test_sections_list_the_demo(self):
        code, out, err = tool("sections " + BASE)
        self.assertEqual((code, err), (0, ""))
        records = {}
        for line in out.splitlines():
            f = line.split()
            if len(f) == 6 and f[1].isdigit():
                self.assertEqual(int(f[5]), int(f[3]) - int(f[2]) + 1, line)
                records[f[0]] = int(f[5])
        self.assertEqual((records["BEAM"], records["TRUS"], records["THIF"]), (39, 8, 2))
        for ext in (".PA1", ".PA2", ".PAT2"):
            self.assertIn(BASE + ext, out)

    def test_history_in_every_format(self):
        q = "history %s --type beam --item 3 --comp My-i" % BASE
        want = kernel(13, 5, 3, 1000)
        code, out, _ = tool(q + " --format csv")
        t = rows(out)
        self.assertEqual((code, t[0], len(t)), (0, ["step", "My-i"], 1001))
        self.assertEqual([int(r[0]) for r in t[1:]], list(range(1, 1001)))
        self.same([float(r[1]) for r in t[1:]], want)  # shortest round-trip text: exact
        j = json.loads(tool(q + " -f json")[1])
        self.assertEqual((j["family"], j["elem_type"], j["case"], j["storage"], j["steps"]), ("beam", 13, 1, "modal", 1000))
        self.assertEqual((j["component"]["number"], j["component"]["name"], j["item"]["serial"]), (5, "My-i", 3))
        self.same(j["values"], want)

    def test_snapshots_hold_the_histories_at_the_step(self):
        for sel, row_i, row_j in (("N", 1, 7), ("corner1", 27, 31), ("sMz1", 16, 23)):
            j = json.loads(tool("snapshot %s -t beam -i 1-5,12:112 -c %s --step 300 -f json" % (BASE, sel))[1])
            self.assertEqual((j["step"], j["points"][0], len(j["items"])), (300, "end-i", 6))
            self.assertEqual((j["items"][5]["serial"], j["items"][5]["number"]), (12, 112))
            for it in j["items"] if LIB else []:
                # A long history of one row is summed in another order than a
                # step's own products: the two agree to rounding of its scale.
                for v, r in zip(it["values"], (row_i, row_j)):
                    h = kernel(13, r, it["serial"], 300)
                    self.assertAlmostEqual(v, h[299], delta=1e-12 * max(map(abs, h)), msg=sel)
        t = rows(tool("snapshot %s -t node-velocity -i 7-9 -c y --step 250 -f csv" % BASE)[1])
        self.assertEqual((t[0], len(t)), (["serial", "number", "value"], 4))
        for r in t[1:] if LIB else []:
            self.assertEqual(float(r[2]), kernel(10, 2, int(r[0]), 250)[249])

    def test_envelopes_hold_the_extremes_and_their_first_steps(self):
        j = json.loads(tool("envelope %s -t node-displacement -i 19-24 -c x -f json" % BASE)[1])
        self.assertEqual(len(j["items"]), 6)
        for it in j["items"] if LIB else []:
            h = [kernel(9, c, it["number"], 1000) for c in range(1, 7)]
            smax, smin = h[0].index(max(h[0])), h[0].index(min(h[0]))
            self.assertEqual((it["max_step"], it["min_step"]), (smax + 1, smin + 1))
            self.assertEqual((it["max"], it["min"]), ([x[smax] for x in h], [x[smin] for x in h]))
        t = rows(tool("envelope %s -t beam -i 2,5 -c My-j -f csv" % BASE)[1])
        self.assertEqual((t[0], len(t)), (["serial", "number", "extreme", "step", "My-j"], 5))
        for r in t[1:] if LIB else []:
            h = kernel(13, 11, int(r[0]), 1000)
            v = max(h) if r[2] == "max" else min(h)
            self.assertEqual((int(r[3]), float(r[4])), (h.index(v) + 1, v))

    def test_plot_is_a_well_formed_svg_of_the_history(self):
        svg = os.path.join(DIR, "column.svg")
        self.assertEqual(tool("history %s --type beam --item 1 --comp My-i --every 100 --plot %s" % (BASE, svg))[0], 0)
        root = ET.parse(svg).getroot()
        ns = "{http://www.w3.org/2000/svg}"
        self.assertEqual(root.tag, ns + "svg")
        (line,) = root.iter(ns + "polyline")
        points = [tuple(map(float, p.split(","))) for p in line.get("points").split()]
        self.assertEqual(len(points), 1000)
        self.assertTrue(all(0 <= x <= 900 and 0 <= y <= 500 for x, y in points))
        self.assertIn("My-i", root.find(ns + "title").text)
        text = " ".join(t.text or "" for t in root.iter(ns + "text"))
        for words in (BASE, "beam 1", "time step"):
            self.assertIn(words, text)

    def test_bad_arguments_give_one_line_and_exit_code_two(self):
        b = BASE
        for args, message in [
                ("history %s --type bem --item 1 --comp 5" % b, "unknown type 'bem'"),
                ("history %s --type beam --item 40 --comp 5" % b, "item 40 is past the BEAM/3 section"),
                ("history %s --type node-displacement --item 25 --comp x" % b, "node 25 is past the NDSP/3 section"),
                ("history %s --type beam --item 1 --comp Mq-i" % b, "unknown component 'Mq-i' of beam"),
                ("history %s --type beam --item 1 --comp corner1" % b, "is a snapshot selector here"),
                ("history %s --type beam --item 1 --comp 5 --steps 1001" % b, "exceed the 1000 steps stored"),
                ("history %s --type beam --item 1 --comp 5 -f xml" % b, "unknown format 'xml'"),
                ("snapshot %s --type truss --items 3-1 --comp N --step 2" % b, "bad item range '3-1'"),
                ("envelope %s --type node-velocity --items 1 --comp warp" % b, "one of the six components"),
                ("history %s --type truss --item 1 --comp N-i --absolute" % b, "node results only"),
                ("", "subcommand is required")]:
            code, out, err = tool(args)
            self.assertEqual((code, out, err.count("\n")), (2, "", 1), args)
            self.assertTrue(err.startswith("respcore: ") and message in err, err)

    def test_missing_broken_and_refused_archives_exit_with_one(self):
        code, _, err = tool("history %s -t beam -i 1 -c 5" % os.path.join(DIR, "nothing"))
        self.assertEqual((code, err.count("\n")), (1, 1))
        self.assertIn("no archive at", err)
        self.assertIn("no plate results here", tool("history %s -t plate -i 1 -c 1" % BASE)[2])

        def copy(name, ext, at, data):
            os.makedirs(os.path.join(DIR, name), exist_ok=True)
            base = os.path.join(DIR, name, "frame")
            for e in (".PA1", ".PA2", ".PAT2"):
                shutil.copy(BASE + e, base + e)
            with open(base + ext, "r+b") as f:
                f.truncate(at) if data is None else (f.seek(at), f.write(data))
            return base
        for base, ext, what in [(copy("cut", ".PA2", 100000, None), ".PA2", "the file holds"),
                                (copy("foreign", ".PAT2", 0, b"ABCD"), ".PAT2", "not an archive file")]:
            for args in ("sections " + base, "history %s -t beam -i 1 -c 5 --case 2" % base):
                code, _, err = tool(args)
                self.assertEqual((code, err.count("\n")), (1, 1), args)
                self.assertIn(base + ext + ": ", err)
            self.assertIn(what, tool("sections " + base)[2])

        # A second file with another file code: the tool lists it, the kernel
        # refuses every look-up in it with its own line.
        base = copy("code3", ".PA2", 4, struct.pack("<i", 3))
        code, out, err = tool("history %s -t beam -i 1 -c 5 --steps 5 -f csv" % base)
        self.assertEqual((code, err.count("\n")), (1, 1))
        self.assertIn("   ERROR READ-F IN RESP CORE , ID_M, ID_S=THIF", out)
        self.assertIn("the kernel reported", err)
        # Quiet: the CSV alone on standard output, the lines with their items
        # on standard error, also when one call served several items.
        code, out, err = tool("snapshot %s -t beam -i 2,3 -c My --step 5 -f csv --quiet" % base)
        self.assertEqual((code, out), (1, "serial,number,end-i,end-j\n2,2,0,0\n3,3,0,0\n"))
        for item in (2, 3):
            self.assertIn("item %d:    ERROR READ-F IN RESP CORE , ID_M, ID_S=BEAM      3\n" % item, err)


if __name__ == "__main__":
    try:
        unittest.main(verbosity=2)
    finally:
        shutil.rmtree(DIR, ignore_errors=True)
