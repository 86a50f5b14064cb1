"""Builds the compiled module and the libraries that it needs with CMake, into the package.

SURROGATE_BUILD names a folder in which CMake has built this project already."""
import glob
import os
import re
import subprocess
import sys

import pybind11
from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

PROJECT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def version():
    with open(os.path.join(PROJECT, "CMakeLists.txt"), encoding="utf-8") as file:
        return re.search(r"project\(\w+ VERSION ([\d.]+)", file.read()).group(1)


class CMakeBuild(build_ext):
    def build_extension(self, extension):
        build = os.environ.get("SURROGATE_BUILD")
        if not build:
            build = os.path.join(os.path.abspath(self.build_temp), "cmake")
            subprocess.check_call(["cmake", "-G", "Ninja", "-S", PROJECT, "-B", build,
                                   "-DCMAKE_BUILD_TYPE=Release", "-DBUILD_TESTING=OFF",
                                   "-DSURROGATE_FITTING_ONLY=ON",
                                   f"-DPython3_EXECUTABLE={sys.executable}",
                                   f"-Dpybind11_DIR={pybind11.get_cmake_dir()}"])
            subprocess.check_call(["cmake", "--build", build])
        stage = os.path.join(os.path.abspath(self.build_temp), "stage")
        for component in ("fitting", "python"):
            subprocess.check_call(["cmake", "--install", build, "--prefix", stage, "--component",
                                   component])
        target = os.path.dirname(os.path.abspath(self.get_ext_fullpath(extension.name)))
        os.makedirs(target, exist_ok=True)
        # Archives hold no links: each library goes by the name under which it is loaded.
        modules = glob.glob(f"{stage}/**/_core*.so", recursive=True)
        if not modules:
            raise SystemExit("The compiled module was not built: CMake has not found pybind11 or the "
                             f"headers of {sys.executable}.")
        for path in glob.glob(f"{stage}/**/lib*.so.?", recursive=True) + modules:
            self.copy_file(path, os.path.join(target, os.path.basename(path)))


setup(version=version(), packages=["surrogatemodel"],
      package_data={"surrogatemodel": ["py.typed", "_core.pyi"]},
      ext_modules=[Extension("surrogatemodel._core", sources=[])],
      cmdclass={"build_ext": CMakeBuild})
