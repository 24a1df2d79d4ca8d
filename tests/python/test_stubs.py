"""The type stubs name exactly what the module has, so that editors complete real names."""

import ast

from conftest import ROOT

import strokeset


def stub_members():
    tree = ast.parse((ROOT / "python" / "strokeset.pyi").read_text(encoding="utf-8"))
    members = {}
    for node in tree.body:
        if isinstance(node, ast.ClassDef):
            members[node.name] = {
                item.name if isinstance(item, ast.FunctionDef)
                else item.target.id if isinstance(item, ast.AnnAssign) else item.targets[0].id
                for item in node.body
                if isinstance(item, (ast.FunctionDef, ast.AnnAssign, ast.Assign))}
        elif isinstance(node, ast.FunctionDef):
            members[node.name] = None
        elif isinstance(node, ast.AnnAssign) and node.target.id.isupper():
            members[node.target.id] = None
    return members


def test_stubs_and_module_name_the_same_things():
    stubs = stub_members()
    public = {name for name in dir(strokeset) if not name.startswith("_")}
    assert set(stubs) == public
    for name, names in stubs.items():
        if names is None:
            continue
        cls = getattr(strokeset, name)
        if name == "OpcodeType":
            assert names == set(cls.__members__)
            continue
        ours = {m for m in dir(cls) if not m.startswith("_") or m in ("__len__", "__iter__")}
        ours.discard("__init__")
        names.discard("__init__")
        assert names == ours, name
        for member in ours:  # help() and editors show these
            assert getattr(cls, member).__doc__, f"{name}.{member}"
