"""Snapshots and histories of many items as Dask arrays.

The items are split into chunks; each chunk is one task, and the task opens
the archive itself on the worker that runs it (one Archive per worker
thread, kept for its later tasks). Workers therefore need the archive under
the same path, for instance on a shared file system, and nothing but the
base name travels to them. The same code runs on a laptop's threads, a
``distributed.LocalCluster`` or a cluster of machines:

    from distributed import Client
    client = Client("scheduler:8786")        # or Client() for a local cluster
    ux = respcore.dask.snapshot_array(base, "node-displacement", "all", "x", step=531)
    ux.max().compute()
"""

import threading

import dask.array as da
import numpy as np
from dask import delayed

from . import Archive, points

__all__ = ["snapshot_array", "history_array"]

_local = threading.local()


def _archive(base, product):
    """This thread's Archive of BASE, opened once."""
    cache = getattr(_local, "archives", None)
    if cache is None:
        cache = _local.archives = {}
    key = (base, product)
    if key not in cache:
        cache[key] = Archive(base, product)
    return cache[key]


def _snapshot_block(base, product, family, items, comp, step, case, mode, axes):
    return _archive(base, product).snapshot(family, items, comp, step, case=case, mode=mode, axes=axes)


def _history_block(base, product, family, items, comp, case, steps, mode, axes):
    return _archive(base, product).histories(family, items, comp, case=case, steps=steps, mode=mode,
                                             axes=axes)


def _chunked(items, chunks):
    if not isinstance(chunks, int) or chunks < 1:
        raise ValueError("chunks is the number of items per chunk, at least 1")
    return [items[b:b + chunks] for b in range(0, len(items), chunks)]


def snapshot_array(base, family, items, comp, step, *, case=1, chunks=1000, product=None, mode=None,
                   axes="local"):
    """Many items at one step as a Dask array (items x points), CHUNKS items per chunk.

    The arguments are those of Archive.snapshot; the items are checked here,
    against the archive as the client sees it, before any task runs.
    """
    a = _archive(base, product)
    rows = a.items(family, items, case)
    width = len(points(family, comp))
    blocks = [
        da.from_delayed(
            delayed(_snapshot_block, pure=True)(base, product, family, part, comp, step, case, mode, axes),
            shape=(len(part), width), dtype=np.float64)
        for part in _chunked(rows, chunks)
    ]
    return da.concatenate(blocks, axis=0)


def history_array(base, family, items, comp, *, case=1, steps=None, chunks=100, product=None, mode=None,
                  axes="local"):
    """Many items over the steps as a Dask array (items x steps), CHUNKS items per chunk.

    The arguments are those of Archive.history, with many items.
    """
    a = _archive(base, product)
    rows = a.items(family, items, case)
    n = steps if steps is not None else a.steps(case)
    if n is None:
        raise ValueError(f"the archive does not tell how many steps case {case} holds; give steps")
    blocks = [
        da.from_delayed(
            delayed(_history_block, pure=True)(base, product, family, part, comp, case, n, mode, axes),
            shape=(len(part), n), dtype=np.float64)
        for part in _chunked(rows, chunks)
    ]
    return da.concatenate(blocks, axis=0)
