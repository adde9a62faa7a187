"""Every example and every code block of the documentation runs."""

import doctest
import importlib
import os
import re
import runpy
from pathlib import Path

import matplotlib.pyplot as plt
import pytest

ROOT = Path(__file__).resolve().parents[2]
EXAMPLES = sorted((ROOT / "examples" / "python").glob("plot_*.py"))


@pytest.mark.parametrize("path", EXAMPLES, ids=lambda path: path.stem)
def test_examples_run_and_draw(path, tmp_path):
    runpy.run_path(str(path), run_name="__main__")

    assert plt.get_fignums()
    target = Path(os.environ.get("KRIGE_PICTURES", tmp_path)) / f"{path.stem}.png"
    plt.savefig(target)
    plt.close("all")
    assert target.stat().st_size > 10_000


@pytest.mark.parametrize("name", ["_estimator", "_cv"])
def test_docstrings_run(name):
    results = doctest.testmod(importlib.import_module(f"krige.{name}"))

    assert results.attempted > 0 and results.failed == 0


@pytest.mark.parametrize("page", ["docs/python.md", "README.md"])
def test_python_of_the_pages_runs(page, monkeypatch):
    blocks = re.findall(r"```python\n(.*?)```", (ROOT / page).read_text(encoding="utf-8"), flags=re.DOTALL)
    monkeypatch.chdir(ROOT)

    assert blocks
    for block in blocks:
        exec(compile(block, page, "exec"), {})
