"""Fixtures of the Python tests: the demo archive, and the kernel's C entry
called directly through ctypes, the reference the package is held to."""

import ctypes
import os

import numpy as np
import pytest

import respcore


@pytest.fixture(scope="session")
def demo(tmp_path_factory):
    return respcore.write_demo(str(tmp_path_factory.mktemp("demo")))


class CEntry:
    """respcore_request of librespcore.so: one request, the caller's array."""

    def __init__(self, path):
        self.lib = ctypes.CDLL(path)
        i32 = ctypes.c_int32
        f = self.lib.respcore_request
        f.restype = i32
        f.argtypes = [ctypes.c_char_p, i32, i32, i32, i32, i32, i32, i32, i32, i32, i32,
                      ctypes.POINTER(ctypes.c_double), ctypes.POINTER(i32), ctypes.POINTER(i32), i32]

    def __call__(self, base, elem_type, comp, items, *, size, case=1, steps=1, step=1, request_mode=1,
                 axis_flag=0):
        out = np.zeros(size)
        serial = (ctypes.c_int32 * len(items))(*items)
        name = base.encode()
        status = self.lib.respcore_request(
            name, len(name), elem_type, comp, case, steps, len(items), step, request_mode, 1, 0,
            out.ctypes.data_as(ctypes.POINTER(ctypes.c_double)), serial, serial, axis_flag)
        assert status == 0
        return out


@pytest.fixture(scope="session")
def c_entry():
    path = os.environ.get("RESPCORE_LIB")
    if not path:
        pytest.skip("RESPCORE_LIB names the kernel library (set by ctest)")
    return CEntry(path)
