# A first look at a scene, cell by cell, as in a notebook:
#
#     first_look.py SCENE
#
# SCENE is a copy of examples/scenes/example.ob, or what vumo_write_scene has written; it is edited.

import sys
from pathlib import Path

import numpy as np

import vumo

path = sys.argv[1]

# %% Open a scene and look around. A node is read when it is touched.
scene = vumo.open(path)
print(scene)
print(scene["Body"])

# %% A stream is a table: a row for each element, a column for each member of its structure.
weights = scene["Body"]["vertex"]["weights"]
print(weights)
print("mean weight", weights["Weight"].mean(), "of", len(weights))

# %% Elements can have pairs or texts as indices, too.
seams = scene["Body"]["edge"]["seams"]
print(seams.indices.tolist(), seams[0, 3]["Stitch"])

# %% Edit a column: it looks at the scene's own memory. The scene is saved at the end of the block.
with vumo.open(path, "r+") as scene:
    weights = scene["Body"]["vertex"]["weights"]
    weight = weights["Weight"]
    weight[~weights["Locked"]] *= 0.5
    normals = scene["Body"]["vertex"].create("normals", {"N": ("f4", 3), "from": str}, size=len(weights))
    normals["N"] = (0, 0, 1)
    normals["from"] = "first_look"

# %% And there it is.
print(vumo.open(path)["Body"]["vertex"]["normals"].records["N"].tolist())
print(np.asarray(vumo.open(path)["Body"]["vertex"]["weights"]["Weight"]))

# %% A catalogue says what is in all scenes of a folder. It reads what has changed since the last time.
folder = Path(path).parent
with vumo.catalog(folder / "catalogue.sqlite") as catalog:
    print(catalog.update(folder))
    print(catalog.versions("VertexWeight"))
    files = [row["file"] for row in catalog.streams(stream="normals")]


# %% A campaign makes the same edit in many of them, and can be undone.
def flip(scene):
    scene["Body"]["vertex"]["normals"]["N"] *= -1


campaign = vumo.campaign(flip, files, record=folder / "flip")
print("plan:", campaign.plan())
print("run:", campaign.run())
print(vumo.open(files[0])["Body"]["vertex"]["normals"].records["N"].tolist())
print("undo:", campaign.undo())
