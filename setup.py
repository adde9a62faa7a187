"""Builds the package's module by CMake, and takes the version from CMakeLists.txt."""

import os
import re
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = Path(__file__).resolve().parent


def read_version():
    return re.search(r"project\(\w+ VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"))[1]


class BuildByCMake(build_ext):
    """Builds the module and installs it with the libraries that it needs."""

    def run(self):
        build_folder = Path(self.build_temp).resolve()
        # In place, as for `pip install -e`, the files lie beside the sources.
        destination = ROOT / "python" if self.inplace else Path(self.build_lib).resolve()
        options = {
            "CMAKE_BUILD_TYPE": "Release",
            "CMAKE_BUILD_WITH_INSTALL_RPATH": "ON",
            "FENN_BUILD_PYTHON": "ON",
            "FENN_BUILD_HOST": "OFF",
            "FENN_BUILD_TESTS": "OFF",
            "FENN_BUILD_DIGEST": "OFF",
            "Python_EXECUTABLE": sys.executable,
        }
        command = ["cmake", "-S", str(ROOT), "-B", str(build_folder)]
        subprocess.run([*command, *(f"-D{name}={value}" for name, value in options.items())], check=True)
        jobs = str(self.parallel or os.cpu_count() or 1)
        subprocess.run(
            ["cmake", "--build", str(build_folder), "--target", "fenn_python", "--parallel", jobs], check=True
        )
        install = ["cmake", "--install", str(build_folder), "--component", "python", "--strip"]
        subprocess.run([*install, "--prefix", str(destination)], check=True)

    def get_outputs(self):
        return []


setup(
    version=read_version(),
    ext_modules=[Extension("krige._core", sources=[])],
    cmdclass={"build_ext": BuildByCMake},
)
