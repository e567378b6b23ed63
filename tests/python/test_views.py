"""Arrays that look at a scene's memory. These tests mean most under AddressSanitizer."""

import gc

import numpy as np
import pytest

import vumo


def test_columns_look_at_the_elements(editable):
    members = {"f": "f4", "v": ("f8", 3), "m": ("f4", (4, 4)), "ms": ("f8", (2, 4, 4)), "b": bool, "i": "u1", "s": str}
    stream = editable["Body"]["vertex"].create("all", members, size=5)
    for name, shape in {"f": (5,), "v": (5, 3), "m": (5, 4, 4), "ms": (5, 2, 4, 4), "b": (5,), "i": (5,)}.items():
        column = stream[name]
        assert column.shape == shape and not column.any()
        column[...] = np.arange(column.size).reshape(shape) % 2
        assert np.array_equal(stream[name], column) and np.shares_memory(stream[name], column)
        assert column.strides[0] == stream.structure.dtype.itemsize
    records = stream.records
    assert records["v"][1].tolist() == [1, 0, 1] and not records.flags.writeable  # there are strings
    editable.save()
    assert np.array_equal(vumo.open(editable.file)["Body"]["vertex"]["all"]["ms"], stream["ms"])


@pytest.mark.parametrize(
    "move",
    [
        lambda scene, stream: stream.resize(100_000),
        lambda scene, stream: stream.resize(2),
        lambda scene, stream: stream.resize(0),
        lambda scene, stream: stream.set_element(4, {"Weight": 1}),
        lambda scene, stream: stream.set_element(1000, {"Weight": 1}),
        lambda scene, stream: stream.scatter("Weight", [1, 9], 0.5),
        lambda scene, stream: stream.__delitem__(0),
        lambda scene, stream: scene["Body"]["vertex"].__delitem__("weights"),
        lambda scene, stream: scene["Body"]["vertex"].__setitem__("weights", scene["Head"]["face"]["weights"]),
        lambda scene, stream: scene["Body"].__delitem__("vertex"),
        lambda scene, stream: scene["Body"].__setitem__("vertex", scene["Head"]["face"]),
        lambda scene, stream: scene.__setitem__("Body", scene["Head"]),
        lambda scene, stream: scene.__delitem__("Body"),
    ],
)
@pytest.mark.parametrize("look", [lambda s: s["Weight"], lambda s: s["Weight"][1:], lambda s: memoryview(s.records)])
def test_what_would_move_viewed_memory_is_refused(editable, weights, move, look):
    view = look(weights)
    with pytest.raises(BufferError):
        move(editable, weights)
    assert np.array_equal(weights["Weight"], [0, 0.25, 0.5, 1])
    del view
    move(editable, weights)


def test_closing_ends_writing_but_not_reading(path):
    with vumo.open(path, "r+") as scene:
        weight = scene["Body"]["vertex"]["weights"]["Weight"]
        views = [weight, weight[1:], weight[::2][1:], weight.reshape(2, 2), weight.T, weight.view("i4")]
        views.append(scene["Body"]["vertex"]["weights"].records)
        plain, copy, computed = np.asarray(weight), weight.copy(), weight + 1
        picked = weight[[0, 1]]
        weight[0] = 7
    del scene
    gc.collect()
    for view in views:
        with pytest.raises(ValueError, match="read-only"):
            view[...] = 1
    assert weight[0] == plain[0] == 7
    plain[0] = 8  # an array that has forgotten where it is from
    copy[0] = computed[0] = picked[0] = 9
    assert vumo.open(path)["Body"]["vertex"]["weights"]["Weight"][0] == 7


def test_what_is_computed_from_columns_is_plain(weights):
    weight = weights["Weight"]
    weight += 1
    assert isinstance(weight, vumo.Column) and weight.tolist() == [1, 1.25, 1.5, 2]
    assert type(weight + 1) is np.ndarray and type(np.sqrt(weight)) is np.ndarray
    assert isinstance(weight.sum(), np.float32)


def test_a_scene_that_is_only_read_lends_no_writable_memory(path):
    stream = vumo.open(path)["Body"]["vertex"]["weights"]
    for array in (stream["Weight"], stream.records, stream["Weight"][1:], np.asarray(stream["Weight"])):
        with pytest.raises(ValueError, match="read-only"):
            array[0] = 1


def test_copies_share_until_one_is_edited(editable, weights):
    vertex, head = editable["Body"]["vertex"], editable["Head"]
    view = weights["Weight"]  # what arrays write to cannot be shared: this copy is one at once
    vertex["viewed"] = weights
    view[0] = 5
    del view
    vertex["shared"] = weights
    head["vertex"] = vertex
    editable["New"] = editable["Body"]
    assert editable["New"] == editable["Body"] and head["vertex"] == vertex and weights == vertex["shared"]
    assert weights != vertex["viewed"] and editable["Body"]["edge"] != vertex and weights[0] == {"Weight": 5, "Locked": True}
    view[...] = 9 if (view := vertex["shared"]["Weight"]) is not None else 0
    expected = {"weights": 5, "viewed": 0, "shared": 5}
    assert {name: head["vertex"][name]["Weight"][0] for name in expected} == expected
    assert {name: editable["New"]["vertex"][name]["Weight"][0] for name in expected} == expected
    assert weights["Weight"][0] == 5 and vertex["shared"]["Weight"][0] == 9
    del view
    editable.save()
    assert vumo.open(editable.file)["New"]["vertex"]["shared"]["Weight"][0] == 5


def test_streams_go_from_scene_to_scene(path, tmp_path, editable):
    other = vumo.open(path)
    editable["Head"]["face"]["from afar"] = other["Body"]["edge"]["seams"]
    editable["Head"]["face"]["weights"] = other["Body"]["vertex"]["weights"]
    theirs = other["Body"]["vertex"]["weights"]["Weight"]
    other.close()
    editable["Head"]["face"]["weights"]["Weight"] = 3
    assert theirs.tolist() == [0, 0.25, 0.5, 1]
    editable["Body"]["vertex"].create("VertexWeight2", {"Weight": "f8"}, structure="Seam2")
    with pytest.raises(vumo.RefusedError, match="with other members"):
        editable["Body"]["vertex"].create("other", {"Weight": "f8"}, structure="VertexWeight")
    editable.save()
    seams = vumo.open(path)["Head"]["face"]["from afar"]
    assert seams.indices.tolist() == [[0, 3], [1, 2]] and seams[0, 3]["Offset"].tolist() == [0.125, 0, -2.5]


def test_what_arrays_write_after_a_save_is_saved_next(path):
    with vumo.open(path, "r+") as scene:
        weight = scene["Body"]["vertex"]["weights"]["Weight"]
        scene["Head"]["face"]["weights"]["Weight"] = 4
        weight[0] = 2
        scene.save()
        assert scene.edited
        weight[0] = 3
    scene = vumo.open(path, "r+")
    assert scene["Body"]["vertex"]["weights"]["Weight"][0] == 3 and scene["Head"]["face"]["weights"]["Weight"][0] == 4
    scene.save()
    assert not scene.edited
