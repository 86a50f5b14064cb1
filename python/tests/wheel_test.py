"""wheel_test.py BUILD: pip makes a wheel without a network and installs it; it needs no other file."""
import glob
import os
import shutil
import subprocess
import sys
import tempfile

PROJECT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
WORK = """
import numpy, subprocess, surrogatemodel
x = numpy.linspace(0, 1, 20)[:, None]
values, limits = surrogatemodel.Kriging().fit(x, numpy.sin(x[:, 0])).predict(x, interval=0.9)
assert abs(values - numpy.sin(x[:, 0])).max() < 1e-6
print(subprocess.check_output(["ldd", surrogatemodel._core.__file__], text=True))
"""


def run(*command, **options):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          **options)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)}:\n{done.stdout}")
    return done.stdout


with tempfile.TemporaryDirectory() as folder:
    # A copy: setuptools writes beside its sources.
    shutil.copytree(os.path.join(PROJECT, "python"), os.path.join(folder, "project", "python"))
    shutil.copy(os.path.join(PROJECT, "CMakeLists.txt"), os.path.join(folder, "project"))
    environment = {**os.environ, "SURROGATE_BUILD": os.path.abspath(sys.argv[1])}
    environment.pop("PYTHONPATH", None)
    python = os.path.join(folder, "venv", "bin", "python")
    run(sys.executable, "-m", "venv", "--system-site-packages", "--without-pip",
        os.path.join(folder, "venv"))
    run(python, "-m", "pip", "wheel", "--no-index", "--no-build-isolation", "--no-deps",
        os.path.join(folder, "project", "python"), cwd=folder, env=environment)
    run(python, "-m", "pip", "install", "--no-index", glob.glob(os.path.join(folder, "*.whl"))[0],
        env=environment)
    libraries = run(python, "-c", WORK, cwd=folder, env=environment)
    wanted = [line for line in libraries.splitlines() if "libmirel" in line]
    assert len(wanted) == 3 and all(folder in line for line in wanted), libraries
    assert "libQt5Widgets" not in libraries and "libvtk" not in libraries, libraries
