"""The version, which CMakeLists.txt holds and the build hands to the module."""

from krige import _core

__version__: str = _core.__version__
