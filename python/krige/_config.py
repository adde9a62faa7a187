"""The settings file of the command line: flat TOML under the long names of the options."""

from __future__ import annotations

import math
from typing import Any

from krige._errors import KrigingError
from krige._parameters import Parameters, show

_KEYS = (
    "duplicates",
    "duplicate-tolerance",
    "scale",
    "drift",
    "range",
    "nugget",
    "nearest",
    "sill",
    "anisotropy",
    "transform",
    "clamp",
)


def write_settings(parameters: Parameters) -> str:
    """The text that `krige --config` reads as these settings, to the bit."""
    lines = ["# Settings of a krige model, for --config", f'duplicates = "{parameters.duplicates}"']
    if parameters.duplicates == "merge":
        lines.append(f"duplicate-tolerance = {parameters.duplicate_tolerance!r}")
    if parameters.scale_factors and parameters.anisotropy is None:
        lines.append(f"scale = [{', '.join(map(repr, parameters.scale_factors))}]")
    lines.append(f"drift = {parameters.drift_order}")
    in_units = parameters.range_in_units
    lines.append(f"range = {parameters.range_fraction!r}" if in_units is None else f'range = "{in_units!r}u"')
    lines.append(f"nugget = {parameters.nugget!r}")
    lines.append(f"nearest = {parameters.n_neighbors or 0}")
    sills = [f'"{sill}"' if isinstance(sill, str) else repr(sill) for sill in parameters.sills]
    lines.append(f"sill = [{', '.join(sills)}]")
    if parameters.anisotropy is not None:
        lines.append(f"anisotropy = [{parameters.anisotropy[0]!r}, {parameters.anisotropy[1]!r}]")
    if parameters.log:
        lines.append('transform = "log"')
    low, high = parameters.clamp
    if not math.isinf(low) or not math.isinf(high):
        lines.append(f'clamp = "{"" if math.isinf(low) else repr(low)}:{"" if math.isinf(high) else repr(high)}"')
    return "\n".join(lines) + "\n"


def read_settings(text: str, name: str) -> dict[str, Any]:
    """Parameters of `KrigingRegressor` from the text of a settings file; name: of the file, for messages.

    What the file leaves out has the command line's default: samples at one place are an error there.
    """
    parameters: dict[str, Any] = {"duplicates": "error"}
    line_of_key: dict[str, int] = {}
    for number, whole in enumerate(text.splitlines(), start=1):
        line = whole.split("#", 1)[0].strip()
        if not line:
            continue
        key, equals, value = (part.strip() for part in line.partition("="))
        where = f"{name}: line {number}: "
        if not equals:
            raise KrigingError(f"{where}{show(line)} is no setting; write KEY = VALUE, for instance drift = 1")
        if key not in _KEYS:
            raise KrigingError(f"{where}{show(key)} is no setting; the settings are {', '.join(_KEYS)}")
        if key in line_of_key:
            raise KrigingError(f"{where}{show(key)} stands in line {line_of_key[key]} already; keep one of them")
        line_of_key[key] = number
        try:
            parameters.update(_parse(key, _without_brackets(value)))
        except ValueError:
            raise KrigingError(f"{where}{show(value)} is no value of {key}") from None
    if "anisotropy" in line_of_key and "scale" in line_of_key:
        raise KrigingError(f"{name}: 'anisotropy' takes the place of 'scale'; keep one of them")
    return parameters


def _without_brackets(value: str) -> str:
    return value[1:-1].strip() if value.startswith("[") and value.endswith("]") else value


def _word(value: str) -> str:
    value = value.strip()
    return value[1:-1].strip() if len(value) >= 2 and value[0] == value[-1] == '"' else value


def _numbers(value: str) -> list[float]:
    return [float(_word(part)) for part in value.split(",")]


def _parse(key: str, value: str) -> dict[str, Any]:
    if key == "duplicates":
        return {"duplicates": _word(value)}
    if key == "duplicate-tolerance":
        tolerance = float(value)
        return {"duplicates": "merge", "duplicate_tolerance": tolerance} if tolerance >= 0.0 else {}
    if key == "scale":
        return {"scale": _numbers(value)}
    if key == "drift":
        return {"drift_order": int(value)}
    if key == "range":
        text = _word(value)
        return {"range_fraction": text if text.endswith("u") else float(text)}
    if key == "nugget":
        return {"nugget": float(value)}
    if key == "nearest":
        return {"n_neighbors": int(value) or None}
    if key == "sill":
        return {"sill": _parse_sill(value)}
    if key == "anisotropy":
        ratio, angle = _numbers(value)
        return {"anisotropy": (ratio, angle)}
    if key == "transform":
        return {"transform": None if _word(value) == "none" else _word(value)}
    low, high = (part.strip() for part in _word(value).split(":"))
    return {"clamp": (float(low) if low else None, float(high) if high else None)}


def _parse_sill(value: str) -> Any:
    words = [_word(part) for part in value.split(",")]
    choices = [word if word in ("auto", "sample") else float(word) for word in words]
    return choices[0] if len(choices) == 1 else choices
