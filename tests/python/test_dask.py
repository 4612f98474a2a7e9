"""The Dask arrays on a two-worker LocalCluster against the serial calls."""

import numpy as np
import pytest

import respcore

distributed = pytest.importorskip("distributed")
respcore_dask = pytest.importorskip("respcore.dask")


def test_dask_arrays_on_a_local_cluster_equal_the_serial_calls(demo):
    a = respcore.Archive(demo)
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  dashboard_address=None) as cluster, distributed.Client(cluster):
        snap = respcore_dask.snapshot_array(demo, "beam", "all", "corner1", 531, chunks=10)
        hist = respcore_dask.history_array(demo, "node-displacement", "1-24", "x", case=2, chunks=7)
        assert snap.numblocks == (4, 1) and hist.shape == (24, 1000)
        snap_v, hist_v = snap.compute(), hist.compute()
    np.testing.assert_array_equal(snap_v, a.snapshot("beam", "all", "corner1", 531))
    np.testing.assert_array_equal(hist_v, a.histories("node-displacement", "1-24", "x", case=2))
