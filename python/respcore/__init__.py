"""Time histories from the result archive of a finished dynamic analysis.

    import respcore
    a = respcore.Archive("build/demo/frame")
    my = a.history("beam", 1, "My-i")                 # one value per step
    ux = a.snapshot("node-displacement", "all", "x", step=531)
    env = a.envelope("node-displacement", "19-24", "x")
    env.max, env.max_step                             # values and their steps

Families are named ("beam", "node-displacement", ...) or numbered 1 to 14;
components by the names of ``components(family)`` or by number; items by
number, as lists, ranges, numpy arrays, texts such as "1-6,9" or "all", or
(serial, number) pairs where a record and its element number differ.

A missing or broken archive, a section that is not there and any error line
of the kernel raise ArchiveError; a bad family, component, item, case or step
raises ValueError. Nothing is printed.
"""

from collections import namedtuple

from . import _core
from ._core import ArchiveError, Envelope, points, write_demo

__all__ = ["Archive", "ArchiveError", "ArchiveFile", "Envelope", "Component", "Components", "Family", "Section",
           "families", "family", "components", "points", "write_demo"]

Family = namedtuple("Family", "number name description section node")
Family.__doc__ = "A result family: its number (the kernel's element type), name, section tag."

Component = namedtuple("Component", "number name meaning")
Component.__doc__ = "A component: the number the kernel takes, its name and what it is."

Components = namedtuple("Components", "history snapshot")
Components.__doc__ = ("The components of a family: the result rows a history returns, and the "
                      "selectors of a snapshot, each of which gives a value at every point.")


ArchiveFile = namedtuple("ArchiveFile", "path role exists form file_code blocks size problem sections")
ArchiveFile.__doc__ = ("One file of an archive and its directory: ROLE 'first file', 'second file' or "
                       "'direct file N'; FORM 'plain' or '64-bit'; PROBLEM empty when the file and its "
                       "directory are sound; SECTIONS in directory order, the directory's own entry first.")

Section = namedtuple("Section", "tag serial first last reclen records")
Section.__doc__ = ("A directory entry: tag and serial, the first and last record in units of the "
                   "section's record length RECLEN (4-byte words), and the number of records.")


def families():
    """The fourteen result families, in number order."""
    return [Family(*f) for f in _core.families()]


def family(family):
    """A family by name, alias or number."""
    return Family(*_core.family(family))


def components(family):
    """The component names of a family (name or number)."""
    rows, selectors, _ = _core.components(family)
    return Components([Component(*c) for c in rows], [Component(*c) for c in selectors])


def __getattr__(name):
    # respcore.dask on first use: Dask is imported only by those who use it.
    if name == "dask":
        import importlib
        return importlib.import_module(".dask", __name__)
    raise AttributeError(f"module 'respcore' has no attribute {name!r}")


class Archive(_core.Archive):
    """A result archive, opened by its base name (the path without extension).

    Archive(base, product=None): PRODUCT is the tag of the files ("P.R.W",
    ...), needed only when files of several products share the base name.

    Each Archive has its own kernel; separate Archives may be used from
    separate threads, and the GIL is released while the kernel runs.
    """

    def __repr__(self):
        return f"<respcore.Archive {self.base!r} ({self.product})>"

    def components(self, family):
        """The component names of a family (name or number)."""
        return components(family)

    def sections(self):
        """The directory of every file of the archive, as it stands now (ArchiveFile list)."""
        return [ArchiveFile(*f[:-1], [Section(*e) for e in f[-1]]) for f in self._sections()]

    def mesh(self, case=1):
        """Node coordinates and element connectivity (a respcore.mesh.Mesh)."""
        from .mesh import mesh
        return mesh(self, case)

    def to_meshio(self, step, case=1, fields=(), motion=("displacement",)):
        """A meshio.Mesh at STEP: node motion as point data, the FIELDS as cell data.

        FIELDS lists element results as "family:selector" or (family,
        selector), e.g. ["beam:My", "truss:N"]; MOTION the node quantities,
        of "displacement", "velocity", "acceleration". See respcore.mesh.
        """
        from .mesh import to_meshio
        return to_meshio(self, step, case, fields, motion)
