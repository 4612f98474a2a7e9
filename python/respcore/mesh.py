"""The model's mesh from the archive, and meshio meshes with results.

Node coordinates come from the archive's node-coordinate section (one
record of x, y, z per node); the nodes of each element from its record.
Elements are grouped into blocks of one family and one cell type, with the
nodes in the order VTK expects, so that ``to_meshio(...).write("frame.vtu")``
opens in ParaView.
"""

from dataclasses import dataclass, field

import numpy as np

# Cell types by node count: line elements, surface elements (plane and
# plate), solids.
_LINE = {2: "line"}
_SURFACE = {3: "triangle", 4: "quad", 6: "triangle6", 8: "quad8"}
_SOLID = {4: "tetra", 5: "pyramid", 6: "wedge", 8: "hexahedron", 10: "tetra10", 13: "pyramid13",
          15: "wedge15", 20: "hexahedron20"}
_SHAPES = {"truss": _LINE, "beam": _LINE, "wall-beam": _LINE, "solid": _SOLID, "solid-high": _SOLID}

# The archive's wedges run their first triangle counterclockwise seen from
# the second; VTK's run it the other way.
_VTK_ORDER = {"wedge": [0, 2, 1, 3, 5, 4],
              "wedge15": [0, 2, 1, 3, 5, 4, 8, 7, 6, 11, 10, 9, 12, 14, 13]}

# Point data of each node quantity: translations and rotations.
_MOTION = {"displacement": ("node-displacement", "displacement", "rotation"),
           "velocity": ("node-velocity", "velocity", "angular velocity"),
           "acceleration": ("node-acceleration", "acceleration", "angular acceleration")}


@dataclass
class CellBlock:
    """Elements of one family and one cell type."""
    family: str               # e.g. "beam"
    type: str                 # meshio cell type, e.g. "line", "quad8"
    connectivity: np.ndarray  # cells x nodes: indices into Mesh.points, VTK node order
    serials: np.ndarray       # each element's record in its family's section


@dataclass
class Mesh:
    """Node coordinates and element blocks of an archive."""
    points: np.ndarray        # nodes x 3; point i is node i + 1
    cells: list
    # Elements whose nodes the archive does not tell (a truss or solid node
    # without equations) or that name a node past the coordinates: by
    # family, their serials.
    unresolved: dict = field(default_factory=dict)


def mesh(archive, case=1):
    """The mesh of ARCHIVE under a history case (which may pick the element records)."""
    points, families = archive._mesh_records(case)
    cells, unresolved = [], {}
    npoints = len(points)
    for family, serials, counts, nodes in families:
        shapes = _SHAPES.get(family, _SURFACE)
        ok = (counts > 0) & np.array([np.all(row[:c] <= npoints) for row, c in zip(nodes, counts)], dtype=bool)
        bad = serials[~ok]
        for count in sorted(set(counts[ok].tolist())):
            kind = shapes.get(count)
            pick = ok & (counts == count)
            if kind is None:
                bad = np.concatenate([bad, serials[pick]])
                continue
            conn = nodes[pick, :count].astype(np.int64) - 1
            if kind in _VTK_ORDER:
                conn = conn[:, _VTK_ORDER[kind]]
            cells.append(CellBlock(family, kind, conn, serials[pick]))
        if len(bad):
            unresolved[family] = np.sort(bad)
    return Mesh(points, cells, unresolved)


def _field_key(request):
    if isinstance(request, str):
        family, sep, comp = request.partition(":")
        if not sep:
            raise ValueError(f"a field is 'family:component' or (family, component), not {request!r}")
        return family, comp
    family, comp = request
    return family, comp


def to_meshio(archive, step, case=1, fields=(), motion=("displacement",)):
    """A meshio.Mesh of the archive at STEP.

    Point data: for each quantity of MOTION ("displacement", "velocity",
    "acceleration") the nodes' translations and rotations at the step, in
    node axes, NaN at a point without a node record. Cell data: "family"
    (the family number of each cell), "serial" (its record in the family's
    section), and for each of FIELDS ("beam:My" or ("beam", "My")) the
    snapshot of that selector at the step, one value per point of the
    element (both ends of a beam), NaN in the cells of other families.
    """
    import meshio

    from . import family as family_of, points as point_labels

    m = mesh(archive, case)
    n = len(m.points)
    point_data = {}
    for quantity in motion:
        if quantity not in _MOTION:
            raise ValueError(f"motion is one of {', '.join(_MOTION)}, not {quantity!r}")
        family, moves, turns = _MOTION[quantity]
        have = min(n, archive.records(family, case))
        for name, comps in ((moves, ("x", "y", "z")), (turns, ("rx", "ry", "rz"))):
            v = np.full((n, 3), np.nan)
            for k, comp in enumerate(comps if have else ()):
                v[:have, k] = archive.snapshot(family, np.arange(1, have + 1), comp, step, case=case,
                                               axes="global")[:, 0]
            point_data[name] = v

    cell_data = {"family": [np.full(len(b.serials), family_of(b.family).number, dtype=np.int32) for b in m.cells],
                 "serial": [np.asarray(b.serials, dtype=np.int32) for b in m.cells]}
    for request in fields:
        fam, comp = _field_key(request)
        f = family_of(fam)
        if f.node:
            raise ValueError(f"{f.name} is node results, which the motion argument gives")
        width = len(point_labels(f.name, comp))
        cell_data[f"{f.name} {comp}"] = [
            archive.snapshot(f.name, b.serials, comp, step, case=case) if b.family == f.name
            else np.full((len(b.serials), width), np.nan)
            for b in m.cells]
    return meshio.Mesh(m.points, [(b.type, b.connectivity) for b in m.cells], point_data=point_data,
                       cell_data=cell_data)
