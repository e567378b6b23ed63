"""Streams against dictionaries, and what is saved against what is read again."""

import json
import string

import hypothesis.strategies as st
import numpy as np
import pytest
from conftest import ROOT, tool, write_scene
from hypothesis import example, given
from hypothesis.extra import numpy as hnp
from hypothesis.stateful import RuleBasedStateMachine, invariant, rule, run_state_machine_as_test

import vumo

NUMBERS = st.sampled_from(["?", "i1", "i2", "i4", "i8", "u1", "u2", "u4", "u8", "f4", "f8"]).map(np.dtype)
SHAPES = st.sampled_from([(), (1,), (3,)])
# What scenes can hold: no zero bytes; lone surrogates stand for bytes that are not UTF-8.
TEXTS = st.text(st.characters(blacklist_categories=("Cs", "Cc")) | st.just("\udcff") | st.sampled_from("\n\t\"\\"))
NAMES = st.text(string.ascii_letters + string.digits + " _ü", min_size=1, max_size=9).map(str.strip).filter(bool)
INDICES = {
    "numeric": st.integers(0, 40) | st.integers(0, 2**32 - 2),
    "pair": st.tuples(st.integers(0, 3) | st.integers(0, 2**32 - 1), st.integers(0, 3)),
    "string": st.sampled_from(["", "arm", "leg", "Ü", "a b"]).filter(bool),
}


@st.composite
def columns(draw, size):
    dtype, shape = draw(NUMBERS), draw(SHAPES)
    if draw(st.booleans()):
        return str, np.array(draw(st.lists(TEXTS, min_size=size, max_size=size)), dtype=object)
    if dtype.kind == "f" and draw(st.booleans()):
        shape = (4, 4)
    values = st.floats(width=dtype.itemsize * 8, allow_nan=False, allow_infinity=False) if dtype.kind == "f" else None
    return (dtype, shape), draw(hnp.arrays(dtype, (size, *(() if shape == (1,) else shape)), elements=values))


@st.composite
def streams(draw):
    """A type of indices, as many indices, and members with values at them."""
    index_type = draw(st.sampled_from(list(INDICES)))
    indices = draw(st.lists(INDICES[index_type], unique=True, max_size=5))
    names = draw(st.lists(NAMES, unique=True, min_size=1, max_size=4))
    return index_type, indices, {name: draw(columns(len(indices))) for name in names}


@given(streams(), st.sampled_from(["ob", "oa"]))
@example(("numeric", [0], {"subnormal": (("f4", ()), np.array([1e-45], "f4"))}), "oa")
def test_saved_and_read_again_is_the_same(tmp_path_factory, model, extension):
    index_type, indices, members = model
    path = write_scene(tmp_path_factory.mktemp("model") / f"scene.{extension}")
    with vumo.open(path, "r+", durable=False) as scene:
        types = {name: kind for name, (kind, _) in members.items()}
        stream = scene.create("New").create("a").create("s", types, structure="Model", index_type=index_type)
        stream.add_elements(indices)
        for name, (_, values) in members.items():
            stream.scatter(name, indices, values)
        document = scene.to_dict()
    scene = vumo.open(path)
    stream = scene["New"]["a"]["s"]
    assert len(stream) == len(indices) and stream.structure == vumo.Structure("Model", types)
    for name, (_, values) in members.items():
        assert np.array_equal(stream.gather(name, indices)[1], values)
        assert np.array_equal(stream[name], stream.gather(name)[1])
    assert scene.to_dict() == document

    exported = tool("export", path)
    assert json.loads(exported) == document == json.loads(scene.to_json())
    other = write_scene(path.with_name(f"other.{extension}"))
    with vumo.open(other, "r+", durable=False) as scene:
        scene.clear()
        scene.from_json(exported)
    assert vumo.open(other).to_dict() == document
    assert tool("export", other) == exported


class StreamModel(RuleBasedStateMachine):
    """Edits of a stream, done to a dictionary as well; some while an array looks at the elements."""

    index_type = "numeric"

    def __init__(self):
        super().__init__()
        self.path = write_scene(self.folder / "scene.ob")
        self.scene = vumo.open(self.path, "r+", durable=False)
        members = {"number": "f8", "text": str, "two": ("i4", 2)}
        self.stream = self.scene["Body"].create("model").create("s", members, index_type=self.index_type)
        self.model = {}
        self.view = None

    @rule(index=st.data(), number=st.floats(allow_nan=False, allow_infinity=False), text=TEXTS)
    def set(self, index, number, text):
        index = index.draw(INDICES[self.index_type])
        values = {"number": number, "text": text, "two": [1, -1]}
        if self.tries(lambda: self.stream.set_element(index, values)):
            self.model[index] = values

    @rule(index=st.data())
    def remove(self, index):
        index = index.draw(INDICES[self.index_type])
        if index in self.model and self.tries(lambda: self.stream.remove_element(index)):
            del self.model[index]

    @rule(indices=st.data(), number=st.integers(-9, 9))
    def scatter(self, indices, number):
        indices = indices.draw(st.lists(INDICES[self.index_type], max_size=4))
        if self.tries(lambda: self.stream.scatter("number", indices, number)):
            for index in indices:
                self.model.setdefault(index, {"number": 0, "text": "", "two": [0, 0]})["number"] = number

    @rule()
    def look(self):
        self.view = self.stream["number"]

    @rule()
    def look_away(self):
        self.view = None

    @rule()
    def save(self):
        self.scene.save()

    @rule()
    def reopen(self):
        self.scene.save()
        self.scene.close()
        self.scene = vumo.open(self.path, "r+", durable=False)
        self.stream = self.scene["Body"]["model"]["s"]

    def tries(self, action):
        """Does it; false where it is refused because of the array."""
        try:
            action()
        except BufferError:
            assert self.view is not None
            return False
        return True

    @invariant()
    def holds_what_the_model_holds(self):
        order = sorted(self.model)
        indices, numbers = self.stream.gather("number")
        if self.index_type != "string":
            assert indices.dtype == np.uint32 and indices.shape[1:] == ((2,) if self.index_type == "pair" else ())
        assert [tuple(i) if self.index_type == "pair" else i for i in indices] == order
        assert numbers.tolist() == [self.model[index]["number"] for index in order]
        assert self.stream["text"].tolist() == [self.model[index]["text"] for index in order]
        assert self.stream.gather("two")[1].tolist() == [self.model[index]["two"] for index in order]

    def teardown(self):
        self.scene.close()


@pytest.mark.parametrize("index_type", INDICES)
def test_streams_do_what_dictionaries_do(tmp_path, index_type):
    model = type("Model", (StreamModel,), {"index_type": index_type, "folder": tmp_path})
    run_state_machine_as_test(model)


def test_the_example_of_the_page_comes_back(tmp_path):
    text = (ROOT / "tests/golden/codec.json").read_text()
    path = write_scene(tmp_path / "scene.oa")
    with vumo.open(path, "r+", durable=False) as scene:
        scene.clear()
        scene.from_json(text)
        document = scene.to_dict()
    expected = json.loads(text)
    assert document["nodes"] == expected["nodes"]
    assert all(structure in document["structures"] for structure in expected["structures"])


@pytest.mark.parametrize(
    ("change", "message"),
    [
        (('"vumo": 1', '"vumo": 2'), "version 2"),
        (('"vumo": 1', '"vumo": 1, "more": 1'), "must not have a key 'more'"),
        (('"vumo": 1, ', ""), "has no key 'vumo'"),
        (('"vumo": 1', '"vumo": 1, "vumo": 1'), "twice"),
        (('"structure": "S", "indexType"', '"structure": "T", "indexType"'), "no structure 'T'"),
        (('"i": 1', '"i": 300'), "does not fit"),
        (('"i": 1', '"i": 0.5'), "does not fit"),
        (('"i": 1', '"j": 1'), "no key 'i'"),
        (('"int8"', '"int9"'), "needs a name of its own, a type"),
        (('{"index": 0,', '{"index": 1, "values": {"i": 1, "s": ""}}, {"index": 1,'), "index comes twice"),
        (('"s": "x"', '"s": 7'), "no text"),
        (('"i": 1', '"i": "1"'), "numbers are expected"),
        (('"i": 1', '"i": NaN'), "NaN is no number"),
        (('{"i": 1, "s": "x"}', "[1]"), "2 values"),
        (('"index": 0', '"index": "x"'), "whole numbers"),
        (('"index": 0', '"index": -1'), "0 to 4294967295"),
        (('"numeric"', "5"), "no type of indices"),
        (('{"channel": "c", "streams": [', '{"channel": "c", "streams": {}}, {"channel": "d", "streams": ['), "no list of streams"),
        (('"int8"', '"int8", "length": "x"'), "integer"),
    ],
)
def test_documents_with_faults_are_refused(editable, change, message):
    text = (
        '{"vumo": 1, "structures": [{"structure": "S", "members": [{"name": "i", "type": "int8"}, '
        '{"name": "s", "type": "string"}]}], "nodes": [{"node": "N", "channels": [{"channel": "c", "streams": ['
        '{"stream": "s", "structure": "S", "indexType": "numeric", "elements": ['
        '{"index": 0, "values": {"i": 1, "s": "x"}}]}]}]}]}'
    )
    assert change[0] in text
    with pytest.raises(ValueError, match=message):
        editable.from_json(text.replace(*change))
    editable.from_json(text)
    assert editable["N"]["c"]["s"][0]["s"] == "x"


@pytest.mark.parametrize("number", [np.nan, np.inf])
def test_numbers_that_are_not_finite_go_neither_out_nor_in(editable, weights, number):
    document = editable.to_dict()
    weights["Weight"][0] = number
    with pytest.raises(ValueError, match="'Weight' is not finite"):
        weights.to_dict()
    [body] = [node for node in document["nodes"] if node["node"] == "Body"]
    body["channels"][1]["streams"][0]["elements"][0]["values"]["Weight"] = number
    with pytest.raises(ValueError, match="'Weight' is not finite"):
        editable.from_dict(document)
