"""A migration takes over what it can, says what is lost, and loses nothing else."""

import numpy as np
import pytest
from conftest import write_scene

import vumo

OLD = "name=Old:float=w:double=d:int32[3]=i:string=s:bool=b:int64=big:flt4x4=m"
RULES = {"rename": {"w": "weight", "s": "label"}, "default": {"made": [1, 2]}, "drop": ["b"], "reorder": True}



@pytest.fixture
def file(tmp_path):
    path = write_scene(tmp_path / "a.ob")
    structure = vumo.Migration(OLD, OLD).old
    with vumo.open(path, "r+") as scene:
        for index_type, indices in (("numeric", [0, 1, 2]), ("pair", [[0, 1], [5, 2], [7, 7]]), ("string", ["a", "b", "c"])):
            stream = scene["Body"].create("own").create(index_type, structure, index_type=index_type)
            stream.add_elements(indices)
            stream.scatter("w", indices, [0.1, 0.2, 0.3])
            stream.scatter("d", indices, [0.1, 0.5, 0])
            stream.scatter("i", indices, [[1, 2, 0], [3, 4, 0], [0, 0, 5]])
            stream.scatter("s", indices, ["x", None, "z"])
            stream.scatter("big", indices, [2**53 + 1, 2**40, -1])
            stream.scatter("b", indices, [False, True, True])
            stream.scatter("m", indices, np.arange(48).reshape(3, 4, 4))
    return path



@pytest.mark.parametrize("name", ["Old", "New"])
def test_values_go_over_and_losses_are_told_before(file, name):
    new = f"name={name}:string[2]=label:float=weight:float=d:int32[2]=i:double=big:uint8[2]=made:flt4x4[2]=m"
    migration = vumo.migrate(OLD, new, RULES)
    before = file.read_bytes()
    expected = {"d": 1, "i": 1, "b": 2, "big": 1}
    plan = migration.plan(file)
    assert {(row["stream"], row["member"]): row["elements"] for row in plan} == {
        (stream, member): count for stream in ("numeric", "pair", "string") for member, count in expected.items()
    }
    assert file.read_bytes() == before
    untouched = vumo.open(file)["Head"].to_dict()
    campaign = vumo.campaign(migration, file, record=file.with_name("record"))
    assert not campaign.run().failures
    scene = vumo.open(file)
    assert scene["Head"].to_dict() == untouched
    assert "Old" not in scene.structures or name == "Old"
    assert scene.structures[name] == migration.new
    for index_type in ("numeric", "pair", "string"):
        stream = scene["Body"]["own"][index_type]
        assert stream.index_type == index_type
        assert np.asarray(stream.indices).tolist() == {
            "numeric": [0, 1, 2], "pair": [[0, 1], [5, 2], [7, 7]], "string": ["a", "b", "c"]}[index_type]  # fmt: skip
        values = {member: stream.gather(member, stream.indices)[1].tolist() for member in stream}
        assert values["weight"] == np.array([0.1, 0.2, 0.3], "f4").tolist()
        assert [[text or "" for text in texts] for texts in values["label"]] == [["x", ""], ["", ""], ["z", ""]]
        assert values["i"] == [[1, 2], [3, 4], [0, 0]]
        assert values["made"] == [[1, 2]] * 3
        assert values["big"] == [2**53, 2**40, -1]
        assert np.array_equal(values["m"][2], [np.arange(32, 48).reshape(4, 4), np.zeros((4, 4))])
    assert migration.plan([file]) == []
    assert not campaign.undo().failures
    assert file.read_bytes() == before


def test_a_number_that_does_not_fit_leaves_the_file_as_it_is(file):
    before = file.read_bytes()
    migration = vumo.migrate(OLD, OLD.replace("int64=big", "uint8=big").replace("Old", "New"))
    assert [row["elements"] for row in migration.plan(file)] == [3, 3, 3]
    report = vumo.campaign(migration, file, record=file.with_name("record")).run()
    assert "does not fit" in report.failures[0].error
    assert file.read_bytes() == before


@pytest.mark.parametrize(
    ("new", "rules", "fault"),
    [
        ("name=N:float=a", {}, "what becomes of 'b'"),
        ("name=N:float=a:int8=b:int8=c", {}, "where 'c' comes from"),
        ("name=N:int8=b:float=a", {}, "another order"),
        ("name=N:string=a:int8=b", {}, "does not become"),
        ("name=N:flt4x4=a:int8=b", {}, "does not become"),
        ("name=N:float=a", {"rename": {"b": "a"}}, "the same one"),
        ("name=N:float=a:int8=b", {"default": {"b": 1}}, "has a default"),
        ("name=N:float=a:int8=c:string=s", {"drop": ["b"], "default": {"c": 300, "s": 7}}, "'c' .* 300: .*'s' .* 7: it is no text"),
        ("name=N:float=a:int8[2]=c", {"drop": ["b"], "default": {"c": [1, 2, 3]}}, "'c' cannot have"),
        ("name=N:float=a:int8=b", {"drop": ["x"], "renam": {}}, "no rule 'renam'; there is no old member 'x'"),
        ("float=a", {}, "no text of a structure"),
    ],
)
def test_rules_that_do_not_say_all_are_refused(new, rules, fault):
    with pytest.raises(ValueError, match=fault):
        vumo.migrate("name=O:float=a:int8=b", new, rules)
