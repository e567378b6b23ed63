"""Typed metadata beside the objects of 3D scenes, read and edited in place.

    import vumo
    with vumo.open("shot.ob", "r+") as scene:
        weight = scene["Body"]["vertex"]["skin"]["Weight"]
        weight *= 0.5
"""

from ._campaign import Campaign
from ._campaign import Campaign as campaign
from ._catalog import Catalog
from ._catalog import Catalog as catalog
from ._column import Column
from ._layout import Member, Structure
from ._migrate import Migration
from ._migrate import Migration as migrate
from ._scene import Channel, Cost, Fault, Node, Scene, open
from ._stream import Element, Stream
from ._vumo import __version__
from .errors import (
    BusyError,
    CatalogError,
    ChangedError,
    ClosedError,
    Error,
    LockedError,
    MalformedError,
    NoAccessError,
    NoFileError,
    NotFoundError,
    NotRestoredError,
    NotSceneError,
    ReadOnlyError,
    RefusedError,
    SystemCallError,
)

__all__ = [
    "BusyError",
    "Campaign",
    "Catalog",
    "CatalogError",
    "ChangedError",
    "Channel",
    "ClosedError",
    "Column",
    "Cost",
    "Element",
    "Error",
    "Fault",
    "LockedError",
    "MalformedError",
    "Member",
    "Migration",
    "NoAccessError",
    "NoFileError",
    "Node",
    "NotFoundError",
    "NotRestoredError",
    "NotSceneError",
    "ReadOnlyError",
    "RefusedError",
    "Scene",
    "Stream",
    "Structure",
    "SystemCallError",
    "__version__",
    "campaign",
    "catalog",
    "migrate",
    "open",
]
