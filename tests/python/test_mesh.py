"""The mesh of the demo archive and its round trip through a VTU file."""

import numpy as np
import pytest

import respcore

meshio = pytest.importorskip("meshio")


def test_braces_found_by_their_equations_deform_as_axial_springs(demo):
    # A brace's axial force is EA/L times its elongation along its axis; all
    # braces share one section and material, so N L / elongation is one
    # value for all of them only if each brace has its own two nodes.
    a = respcore.Archive(demo)
    m = a.mesh()
    assert not m.unresolved
    (braces,) = [b for b in m.cells if b.family == "truss"]
    assert braces.type == "line" and braces.connectivity.shape == (8, 2)
    step = 400
    u = np.column_stack([a.snapshot("node-displacement", "all", c, step, axes="global")[:, 0] for c in "xyz"])
    i, j = braces.connectivity.T
    axis = m.points[j] - m.points[i]
    length = np.linalg.norm(axis, axis=1)
    elongation = np.einsum("ij,ij->i", u[j] - u[i], axis / length[:, None])
    force = a.snapshot("truss", braces.serials, "N", step)[:, 0]
    stiffness = force * length / elongation
    np.testing.assert_allclose(stiffness, stiffness[0], rtol=1e-6)
    assert stiffness[0] > 0

    # Columns stand on the ground and are vertical.
    (frame,) = [b for b in m.cells if b.family == "beam"]
    d = m.points[frame.connectivity[:, 1]] - m.points[frame.connectivity[:, 0]]
    vertical = (d[:, 0] == 0) & (d[:, 1] == 0)
    assert vertical.sum() == 18 and np.all(d[vertical, 2] > 0)


def test_meshio_mesh_round_trips_through_vtu(demo, tmp_path):
    a = respcore.Archive(demo)
    step = 531
    mesh = a.to_meshio(step, fields=["beam:My", ("truss", "N")], motion=("displacement", "velocity"))
    path = tmp_path / "frame.vtu"
    mesh.write(path)
    back = meshio.read(path)
    assert back.points.shape == (24, 3)
    assert sum(len(c.data) for c in back.cells) == 47
    serial = np.concatenate(back.cell_data["serial"])
    family = np.concatenate(back.cell_data["family"])
    my = np.concatenate(back.cell_data["beam My"])
    beam7 = np.flatnonzero((family == 13) & (serial == 7))[0]
    np.testing.assert_array_equal(my[beam7], a.snapshot("beam", 7, "My", step)[0])
    assert np.all(np.isnan(my[family == 12]))
    np.testing.assert_array_equal(back.point_data["velocity"][19, 1], a.history("node-velocity", 20, "y")[step - 1])
    with pytest.raises(ValueError, match="node results"):
        a.to_meshio(step, fields=["node-displacement:x"])
